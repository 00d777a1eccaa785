#include "service/TestApi.h"

#include "service/ApiSupport.h"

namespace job_service {

std::vector<Route> TestApi::routes()
{
    RouteTable table;
    table.addWrite("POST", "/launches", smallBody, [this](const RouteRequest& request) { return launch(request); });
    return table.routes();
}

HttpResponse TestApi::launch(const RouteRequest& request)
{
    const std::string status = m_runner.launch(requiredString(request.json, "uiIndex"));
    return jsonResponse(200, { { "success", status.empty() }, { "message", status } });
}

} // namespace job_service
