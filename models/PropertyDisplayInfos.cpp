#include "models/PropertyDisplayInfos.h"

#include <QRegExp>

namespace jobmanager_ui {

QVariantMap propertyDisplayInfoToVariantMap(const PropertyDisplayInfo& info)
{
    QVariantMap map{
        { QStringLiteral("propName"), info.propName },
        { QStringLiteral("label"), info.label },
        { QStringLiteral("editable"), info.editable },
        { QStringLiteral("visible"), info.visible },
        { QStringLiteral("type"), static_cast<int>(info.type) },
        { QStringLiteral("validValues"), info.validValues },
        { QStringLiteral("orderIndex"), info.orderIndex },
    };
    if (!info.regex.isEmpty()) {
        map.insert(QStringLiteral("regex"), QRegExp(info.regex, Qt::CaseSensitive, QRegExp::RegExp));
    }
    return map;
}

PropertyDisplayInfo fixedDisplayInfo(const QString& propName, const QString& label)
{
    PropertyDisplayInfo info;
    info.propName = propName;
    info.label = label;
    info.editable = false;
    return info;
}

} // namespace jobmanager_ui
