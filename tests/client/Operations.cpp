#include "tests/client/Operations.h"

#include <algorithm>

namespace {

using Client = RestApiJobManager;

constexpr int small = 90;
constexpr int ordinary = 5000;
constexpr int lengthy = 60000;
constexpr std::size_t largeCap = 64 * 1024 * 1024;

// An id with everything that has a meaning in a path, and what becomes of it there.
const std::string hardId = "J/1.ä %?#";
const std::string hardIdEncoded = "J%2F1%2E%C3%A4%20%25%3F%23";

std::string text(bool value)
{
    return value ? "true" : "false";
}

std::string joined(const std::vector<std::string>& list)
{
    std::string result;
    for (const std::string& element : list)
        result += "," + element;
    return "[" + (list.empty() ? result : result.substr(1)) + "]";
}

std::string text(const Client::MinimalJobInfo& job)
{
    return joined({ job.id, job.workOrderLabel, job.workflowTypeName, job.customerName, job.modifiedOn,
        job.managedByInfo, job.managementState, joined(job.teamTechIds), text(job.archived),
        std::to_string(job.totalNumberOfRequiredTests), std::to_string(job.numberOfCompletedRequiredTests) });
}

std::string text(const std::vector<Client::MinimalJobInfo>& jobs)
{
    std::vector<std::string> texts;
    for (const auto& job : jobs)
        texts.push_back(text(job));
    return joined(texts);
}

std::string text(const cdm::CdmSouthboundJob& job)
{
    std::string result = "job '" + job.details.id + "'";
    if (job.tests) {
        for (const cdm::Test& test : *job.tests)
            result += " " + test.testType;
    }
    return result;
}

std::string text(const std::map<std::string, std::string>& settings)
{
    std::vector<std::string> texts;
    for (const auto& [key, value] : settings)
        texts.push_back(key + "=" + value);
    return joined(texts);
}

const std::string summary = R"({"jobs": [{"id": "W-2", "workOrderLabel": "Work order", "workflowTypeName": "Install",
    "customerName": "Čeněk", "modifiedOn": "2026-03-01T08:15:00.000Z", "managedByInfo": "Head office",
    "managementState": "assigned", "teamTechIds": ["T1", "T2"], "archived": true, "totalNumberOfRequiredTests": 5,
    "numberOfCompletedRequiredTests": 2, "unknownMember": {}}, {"id": "W-1"}]})";
const std::string summaryText = "[[W-2,Work order,Install,Čeněk,2026-03-01T08:15:00.000Z,Head office,assigned,[T1,T2],"
                                "true,5,2],[W-1,,,,,,,[],false,0,0]]";
const std::string jobTemplate = R"({"name": "Fibre", "workOrderLabel": "Order number", "numberOfTests": 7})";

std::vector<Operation> makeReads()
{
    std::vector<Operation> list;
    list.push_back({ "getJobList", [](Client& client) { return text(client.getJobList()); }, "GET /api/v1/jobs", "",
        200, summary, summaryText, "[]", true, ordinary, largeCap });
    list.push_back(
        { "getJob", [](Client& client) { return text(client.getJob(hardId)); }, "GET /api/v1/jobs/" + hardIdEncoded, "",
            200, R"({"details": {"id": "J/1.ä %?#"}, "tests": [{"testType": "otdr"}, {"testType": "manual"}]})",
            "job '" + hardId + "' otdr manual", "job '" + hardId + "'", true, ordinary, largeCap });
    list.push_back({ "getChangeCount", [](Client& client) { return std::to_string(client.getChangeCount()); },
        "GET /api/v1/change-count", "", 200, R"({"changeCount": 12})", "12", "0", true, small });
    list.push_back({ "getActiveWorkorderID", [](Client& client) { return client.getActiveWorkorderID(); },
        "GET /api/v1/active-job", "", 200, R"({"id": "W-2"})", "W-2", "", true, small });
    list.push_back({ "getSettingsListInfo", [](Client& client) { return text(client.getSettingsListInfo()); },
        "GET /api/v1/settings", "", 200, R"({"settings": {"language": "de", "groupType": "2"}})",
        "[groupType=2,language=de]", "[]", true, small });
    list.push_back({ "getInstrumentLoginConfig",
        [](Client& client) {
            const auto config = client.getInstrumentLoginConfig();
            return joined({ config.techId, config.opaqueText1, config.opaqueText2 });
        },
        "GET /api/v1/login-config", "", 200, R"({"techId": "T7", "opaqueText1": "a", "opaqueText2": "b"})", "[T7,a,b]",
        "[,,]", true, small });
    list.push_back({ "getTemplateList", [](Client& client) { return joined(client.getTemplateList()); },
        "GET /api/v1/templates", "", 200, R"({"templates": [)" + jobTemplate + R"(, {"name": "Coax"}]})",
        "[Fibre,Coax]", "[]", false, ordinary });
    list.push_back({ "getTemplateNumberOfTests",
        [](Client& client) { return std::to_string(client.getTemplateNumberOfTests("Fibre 1.0")); },
        "GET /api/v1/templates/Fibre%201%2E0", "", 200, jobTemplate, "7", "0", false, ordinary });
    list.push_back(
        { "getTemplateWorkOrderLabel", [](Client& client) { return client.getTemplateWorkOrderLabel("Fibre 1.0"); },
            "GET /api/v1/templates/Fibre%201%2E0", "", 200, jobTemplate, "Order number", "", false, ordinary });
    return list;
}

/// A write that gives true if the service accepts it.
Operation write(const std::string& name, const std::function<bool(Client&)>& call, const std::string& route,
    const std::string& body, int deadline = ordinary)
{
    return { name, [call](Client& client) { return text(call(client)); }, route, body, 204, "", "true", "false", false,
        deadline };
}

std::vector<Operation> makeWrites()
{
    std::vector<Operation> list;
    const std::string job = "/api/v1/jobs/" + hardIdEncoded;
    list.push_back(write(
        "setActiveWorkorderID", [](Client& client) { return client.setActiveWorkorderID("W-2"); },
        "PUT /api/v1/active-job", R"({"id":"W-2"})"));
    list.push_back({ "newJob",
        [](Client& client) { return text(client.newJob("W-3", "T\"7", "Fibre", "l.csv", true)); }, "POST /api/v1/jobs",
        R"({"workOrderNo":"W-3","techId":"T\"7","templateName":"Fibre","locationsFilename":"l.csv","syncToNimbrel":true})",
        201, R"({"id": "W-3"})", "true", "false", false, ordinary });
    list.push_back(write(
        "deleteJob", [](Client& client) { return client.deleteJob(hardId); }, "DELETE " + job, ""));
    list.push_back(write(
        "archiveJob", [](Client& client) { return client.archiveJob(hardId); }, "POST " + job + "/archive", ""));
    list.push_back(write(
        "restoreJob", [](Client& client) { return client.restoreJob(hardId); }, "POST " + job + "/restore", ""));
    list.push_back({ "launchTest",
        [](Client& client) {
            const auto result = client.launchTest("2_1");
            return text(result.success) + " " + result.message;
        },
        "POST /api/v1/launches", R"({"uiIndex":"2_1"})", 200, R"({"success": false, "message": "ERROR_OPTION^OTDR"})",
        "false ERROR_OPTION^OTDR", "false ERROR_CAN_LAUNCH_FAILED_TO_RUN", false, lengthy });
    list.push_back(write(
        "setManualTestResponse", [](Client& client) { return client.setManualTestResponse("grün", "", "2"); },
        "POST /api/v1/manual-responses", R"({"uiIndex":"2","text1":"grün","text2":""})"));
    list.push_back(write(
        "updateWorkflowAttributes",
        [](Client& client) {
            return client.updateWorkflowAttributes(hardId, { { "techInfo", { { "techId", "T8" } } } });
        },
        "PATCH " + job, R"({"techInfo":{"techId":"T8"}})"));
    list.push_back({ "exportJobData", [](Client& client) { return client.exportJobData("W-2", "/media/stick"); },
        "POST /api/v1/exports", R"({"jobId":"W-2","folder":"/media/stick"})", 200,
        R"({"path": "/media/stick/W-2.job.json"})", "/media/stick/W-2.job.json", "", false, lengthy });
    list.push_back({ "importJobs", [](Client& client) { return std::to_string(client.importJobs("/media/stick")); },
        "POST /api/v1/imports", R"({"path":"/media/stick"})", 200, R"({"imported": 3})", "3", "0", false, lengthy });
    list.push_back(write(
        "exchangeCurrentJob", [](Client& client) { return client.exchangeCurrentJob("/dev/qzx", ""); },
        "POST /api/v1/exchanges", R"({"devicePath":"/dev/qzx","second":""})", lengthy));
    list.push_back(write(
        "writeSetting",
        [](Client& client) {
            client.writeSetting("group/Type", "2");
            return true;
        },
        "PUT /api/v1/settings/group%2FType", R"({"value":"2"})", small));
    list.push_back(write(
        "setUiGroupType",
        [](Client& client) {
            client.setUiGroupType("location");
            return true;
        },
        "PUT /api/v1/ui-group-type", R"({"groupType":"location"})", small));
    // These two give nothing.
    list[list.size() - 2].failedResult = "true";
    list[list.size() - 1].failedResult = "true";
    return list;
}

} // namespace

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> list = [] {
        auto all = makeReads();
        for (Operation& write : makeWrites())
            all.push_back(std::move(write));
        return all;
    }();
    return list;
}

const Operation& operation(const std::string& name)
{
    return *std::find_if(
        operations().begin(), operations().end(), [&](const Operation& candidate) { return candidate.name == name; });
}

std::ostream& operator<<(std::ostream& stream, const Operation& operation)
{
    return stream << operation.name;
}
