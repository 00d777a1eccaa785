#include "api/JobManagerAPIAbstraction.h"
#include "api/Logging.h"
#include "api/rest/JobManagerRestAPI.h"
#include "api/rest/RestApiPort.h"

#include <QDebug>

namespace jobmanager_ui {

// The interface names the factory; its body is here, so that the interface builds without the service's client.
std::shared_ptr<JobManagerAPIAbstraction> JobManagerAPIAbstraction::createJobManagerAPI()
{
    const char* const host = "127.0.0.1";
    const unsigned short port = restApiPortFromText(QStringLiteral(JOBMANAGER_UI_REST_PORT));
    qCDebug(logCategory) << "Using JobManagerRestAPI{ host =" << host << ", port =" << port << "}";
    return std::make_shared<JobManagerRestAPI>(host, port);
}

} // namespace jobmanager_ui
