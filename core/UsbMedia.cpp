#include "core/UsbMedia.h"

#include <algorithm>
#include <QDir>

namespace jobmanager_ui {

QString findFirstUsbDirectory(QString path)
{
    const QDir directory(path);
    if (!directory.exists()) {
        return {};
    }
    const QStringList names = directory.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    const auto found = std::find_if(names.cbegin(), names.cend(),
        [](const QString& name) { return name.contains(QLatin1String("usb"), Qt::CaseInsensitive); });
    return found == names.cend() ? QString() : directory.absoluteFilePath(*found);
}

} // namespace jobmanager_ui
