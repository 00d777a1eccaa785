#include "tests/support/ValueText.h"

#include <QModelIndex>
#include <QObject>
#include <QStringList>

namespace jobmanager_test {

namespace {

QString listText(const QVariantList& values)
{
    QStringList texts;
    for (const QVariant& value : values) {
        texts.append(valueText(value));
    }
    return texts.join(QStringLiteral(", "));
}

QString objectText(const QObject* object)
{
    if (object == nullptr) {
        return QStringLiteral("null");
    }
    return QLatin1Char('<') + object->property("jobNumber").toString() + QLatin1Char('>');
}

} // namespace

QString valueText(const QVariant& value)
{
    if (!value.isValid()) {
        return QStringLiteral("invalid");
    }
    if (value.canConvert<QObject*>()) {
        return objectText(value.value<QObject*>());
    }
    if (value.userType() == QMetaType::QString) {
        return QLatin1Char('"') + value.toString() + QLatin1Char('"');
    }
    if (value.userType() == QMetaType::QModelIndex) {
        return QStringLiteral("row %1").arg(value.toModelIndex().row());
    }
    if (value.userType() == qMetaTypeId<QVector<int>>()) {
        QVariantList numbers;
        const auto roles = value.value<QVector<int>>();
        for (const int role : roles) {
            numbers.append(role);
        }
        return QLatin1Char('[') + listText(numbers) + QLatin1Char(']');
    }
    if (value.canConvert<QVariantList>()) {
        return QLatin1Char('[') + listText(value.toList()) + QLatin1Char(']');
    }
    return value.toString();
}

QString callText(const QString& name, const QVariantList& arguments)
{
    return name + QLatin1Char('(') + listText(arguments) + QLatin1Char(')');
}

} // namespace jobmanager_test
