#include "api/rest/RestApiPort.h"

namespace jobmanager_ui {

unsigned short restApiPortFromText(const QString& text)
{
    constexpr unsigned short defaultPort = 8082;
    bool isNumber = false;
    const unsigned short port = text.toUShort(&isNumber, 10);
    return isNumber ? port : defaultPort;
}

} // namespace jobmanager_ui
