#pragma once

#include <QString>

namespace jobmanager_ui {

/// The absolute path of the first directory in `path`, by name without regard to letter case, whose name contains
/// "usb" in any letter case: there the system mounts its USB media. Empty if there is none or no directory `path`.
QString findFirstUsbDirectory(QString path);

} // namespace jobmanager_ui
