#pragma once

#include <QString>

namespace jobmanager_ui {

/// The job service's port from a text: a decimal number from 0 to 65535. 8082 for any other text.
unsigned short restApiPortFromText(const QString& text);

} // namespace jobmanager_ui
