#include "client/Requests.h"

#include "api/cdm/JsonText.h"
#include "client/Deadlines.h"
#include "client/UrlPath.h"

#include <initializer_list>
#include <utility>

namespace job_client::requests {

namespace {

constexpr std::size_t largeCap = std::size_t{ 64 } * 1024 * 1024;
constexpr std::size_t smallCap = std::size_t{ 64 } * 1024;

HttpRequest request(const char* method, const std::string& path, std::chrono::milliseconds deadline)
{
    return { method, "/api/v1" + path, std::nullopt, deadline, smallCap, false };
}

HttpRequest read(const std::string& path, std::chrono::milliseconds deadline)
{
    return request("GET", path, deadline);
}

HttpRequest largeRead(const std::string& path)
{
    HttpRequest large = read(path, deadlines::ordinary);
    large.answerCap = largeCap;
    large.hangsOnFirstMiss = true;
    return large;
}

/// A member of a body: its name, and its value as JSON text.
using Member = std::pair<const char*, std::string>;

std::string jsonText(const std::string& text)
{
    return cdm::dumpJson(nlohmann::json(text));
}

/// Put together as text, since nlohmann's objects need memory even to be destroyed: where there is none, a request
/// must fail and not end the process.
std::string object(std::initializer_list<Member> members)
{
    std::string text;
    for (const auto& [name, value] : members)
        text += std::string(text.empty() ? "{" : ",") + '"' + name + "\":" + value;
    return text + '}';
}

HttpRequest write(const char* method, const std::string& path, std::string body, std::chrono::milliseconds deadline)
{
    HttpRequest full = request(method, path, deadline);
    full.body = std::move(body);
    return full;
}

std::string jobPath(const std::string& id)
{
    return "/jobs/" + pathSegment(id);
}

} // namespace

HttpRequest changeCount()
{
    return read("/change-count", deadlines::small);
}

HttpRequest jobList()
{
    return largeRead("/jobs");
}

HttpRequest job(const std::string& id)
{
    return largeRead(jobPath(id));
}

HttpRequest activeJob()
{
    return read("/active-job", deadlines::small);
}

HttpRequest setActiveJob(const std::string& id)
{
    return write("PUT", "/active-job", object({ { "id", jsonText(id) } }), deadlines::ordinary);
}

HttpRequest newJob(const std::string& workOrderNo, const std::string& techId, const std::string& templateName,
    const std::string& locationsFilename, bool syncToNimbrel)
{
    return write("POST", "/jobs",
        object({ { "workOrderNo", jsonText(workOrderNo) }, { "techId", jsonText(techId) },
            { "templateName", jsonText(templateName) }, { "locationsFilename", jsonText(locationsFilename) },
            { "syncToNimbrel", syncToNimbrel ? "true" : "false" } }),
        deadlines::ordinary);
}

HttpRequest deleteJob(const std::string& id)
{
    return request("DELETE", jobPath(id), deadlines::ordinary);
}

HttpRequest archiveJob(const std::string& id)
{
    return request("POST", jobPath(id) + "/archive", deadlines::ordinary);
}

HttpRequest restoreJob(const std::string& id)
{
    return request("POST", jobPath(id) + "/restore", deadlines::ordinary);
}

HttpRequest launch(const std::string& uiIndex)
{
    return write("POST", "/launches", object({ { "uiIndex", jsonText(uiIndex) } }), deadlines::lengthy);
}

HttpRequest manualResponse(const std::string& text1, const std::string& text2, const std::string& uiIndex)
{
    return write("POST", "/manual-responses",
        object({ { "uiIndex", jsonText(uiIndex) }, { "text1", jsonText(text1) }, { "text2", jsonText(text2) } }),
        deadlines::ordinary);
}

HttpRequest updateJob(const std::string& id, const nlohmann::json& update)
{
    return write("PATCH", jobPath(id), cdm::dumpJson(update), deadlines::ordinary);
}

HttpRequest exportJob(const std::string& jobId, const std::string& folder)
{
    return write("POST", "/exports", object({ { "jobId", jsonText(jobId) }, { "folder", jsonText(folder) } }),
        deadlines::lengthy);
}

HttpRequest importJobs(const std::string& path)
{
    return write("POST", "/imports", object({ { "path", jsonText(path) } }), deadlines::lengthy);
}

HttpRequest exchangeJob(const std::string& devicePath, const std::string& second)
{
    return write("POST", "/exchanges",
        object({ { "devicePath", jsonText(devicePath) }, { "second", jsonText(second) } }), deadlines::lengthy);
}

HttpRequest templateList()
{
    return read("/templates", deadlines::ordinary);
}

HttpRequest jobTemplate(const std::string& name)
{
    return read("/templates/" + pathSegment(name), deadlines::ordinary);
}

HttpRequest settings()
{
    return read("/settings", deadlines::small);
}

HttpRequest writeSetting(const std::string& id, const std::string& value)
{
    return write("PUT", "/settings/" + pathSegment(id), object({ { "value", jsonText(value) } }), deadlines::small);
}

HttpRequest setUiGroupType(const std::string& groupType)
{
    return write("PUT", "/ui-group-type", object({ { "groupType", jsonText(groupType) } }), deadlines::small);
}

HttpRequest loginConfig()
{
    return read("/login-config", deadlines::small);
}

} // namespace job_client::requests
