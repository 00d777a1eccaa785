#include "service/TestApi.h"

#include "service/ApiError.h"
#include "service/ApiSupport.h"
#include "service/TestResults.h"
#include "service/UtcTime.h"

namespace job_service {

std::vector<Route> TestApi::routes()
{
    RouteTable table;
    table.addWrite("POST", "/launches", smallBody, [this](const RouteRequest& request) { return launch(request); });
    table.addWrite("POST", "/manual-responses", smallBody,
        [this](const RouteRequest& request) { return answerManualStep(request); });
    return table.routes();
}

HttpResponse TestApi::launch(const RouteRequest& request)
{
    const std::string status = m_runner.launch(requiredString(request.json, "uiIndex"));
    return jsonResponse(200, { { "success", status.empty() }, { "message", status } });
}

HttpResponse TestApi::answerManualStep(const RouteRequest& request)
{
    const std::string uiIndex = requiredString(request.json, "uiIndex");
    const ManualAnswer answer{ requiredString(request.json, "text1"), optionalString(request.json, "text2") };
    const auto patch = [&](JsonTree& document) {
        JsonTree& target = testIn(document, uiIndex);
        const JsonTree& test = testIn(document, uiIndex.substr(0, uiIndex.find('_')));
        if (!isManual(test))
            throw ApiError(409, "not_manual", "This test is no manual step.");
        recordAnswer(target, answer, asksYesNo(test), utcNow());
    };
    if (m_store.changeJob(m_store.activeJob(), patch) == JobStore::Change::NoSuchJob)
        throw ApiError(409, "no_active_job", "There is no active job.");
    return noContent();
}

} // namespace job_service
