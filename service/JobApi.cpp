#include "service/JobApi.h"

#include "api/cdm/JsonText.h"
#include "service/ApiError.h"
#include "service/JobDocument.h"
#include "service/Log.h"
#include "service/ServiceVersion.h"
#include "service/SqliteError.h"
#include "service/UtcTime.h"

#include <algorithm>
#include <sqlite3.h>

namespace job_service {

namespace {

constexpr std::size_t smallBody = 64 * 1024;
/// Result data can hold a curve or a picture.
constexpr std::size_t partOfJob = 1024 * 1024;
constexpr std::size_t longestSettingId = 256;

HttpResponse json(int status, const nlohmann::json& value)
{
    return { status, cdm::dumpJson(value), {} };
}

HttpResponse noContent()
{
    return { 204, {}, {} };
}

[[noreturn]] void refuseRequest(const std::string& message)
{
    throw ApiError(400, "invalid_request", message);
}

[[noreturn]] void refuseUnknownJob()
{
    throw ApiError(404, "job_not_found", "There is no job with this id.");
}

void checkFound(JobStore::Change change)
{
    if (change == JobStore::Change::NoSuchJob)
        refuseUnknownJob();
}

const nlohmann::json* memberOf(const nlohmann::json& body, const std::string& name)
{
    if (!body.is_object())
        refuseRequest("The body has to be an object.");
    const auto member = body.find(name);
    return member == body.end() ? nullptr : &*member;
}

std::string requiredString(const nlohmann::json& body, const std::string& name)
{
    const nlohmann::json* member = memberOf(body, name);
    if (!member || !member->is_string())
        refuseRequest("The member " + name + " has to be a string.");
    return member->get<std::string>();
}

std::string optionalString(const nlohmann::json& body, const std::string& name)
{
    return memberOf(body, name) ? requiredString(body, name) : std::string();
}

bool optionalBool(const nlohmann::json& body, const std::string& name)
{
    const nlohmann::json* member = memberOf(body, name);
    if (member && !member->is_boolean())
        refuseRequest("The member " + name + " has to be a boolean.");
    return member && member->get<bool>();
}

const char* nameOf(StoreState::Kind kind)
{
    switch (kind) {
    case StoreState::Kind::Ok:
        return "ok";
    case StoreState::Kind::Replaced:
        return "replaced";
    case StoreState::Kind::Damaged:
        return "damaged";
    }
    return "damaged";
}

JsonTree& testIn(JsonTree& document, const std::string& uiIndex)
{
    JsonTree* test = findTest(document, uiIndex);
    if (!test)
        throw ApiError(404, "test_not_found", "The job has no test or location with this index.");
    return *test;
}

/// Null would pass for attributes that are missing.
JsonTree attributesFrom(const RouteRequest& request)
{
    if (!request.json.is_object())
        refuseRequest("Attributes have to be an object.");
    return JsonTree::fromText(request.text);
}

ApiError storeFailure(const SqliteError& error)
{
    logLine(std::string("the store failed: ") + error.what());
    if (error.code() == SQLITE_FULL)
        return { 507, "storage_full", "There is no room left to store this." };
    if (error.isDamage())
        return { 503, "store_damaged", "The store of the service is damaged." };
    return { 503, "store_unavailable", "The store of the service does not answer; try again." };
}

/// The path leads through the whole document, of which the peer has sent a part: the last member tells enough.
std::string refusalOf(const cdm::DocumentError& error)
{
    if (error.path.empty())
        return error.message;
    return "Member " + error.path.substr(error.path.rfind('/') + 1) + ": " + error.message;
}

/// Runs a handler over the store and tells its failures in the terms of the interface.
template <typename Handler> HttpResponse overStore(Handler handler)
{
    try {
        return handler();
    } catch (const SqliteError& error) {
        throw storeFailure(error);
    } catch (const DocumentRefused& refused) {
        throw ApiError(400, "invalid_document", refusalOf(refused.error()));
    }
}

} // namespace

JobApi::JobApi(JobStore& store, std::string techId) : m_store(store), m_techId(std::move(techId))
{
}

std::vector<Route> JobApi::routes()
{
    using Request = const RouteRequest&;
    std::vector<Route> routes;
    const auto add = [&](const char* method, const std::string& path, auto handler) -> Route& {
        routes.push_back({ method, "/api/v1" + path,
            [handler](Request request) { return overStore([&] { return handler(request); }); } });
        return routes.back();
    };
    const auto addWrite = [&](const char* method, const std::string& path, std::size_t maximumBody, auto handler) {
        Route& route = add(method, path, handler);
        route.needsJson = true;
        route.maximumBody = maximumBody;
    };

    add("GET", "/change-count", [this](Request) { return changeCount(); }).answersAtOnce = true;
    add("GET", "/status", [this](Request) { return status(); }).answersAtOnce = true;
    add("GET", "/login-config", [this](Request) { return loginConfig(); }).answersAtOnce = true;

    add("GET", "/jobs", [this](Request) { return jobs(); });
    addWrite("POST", "/jobs", smallBody, [this](Request request) { return createJob(request); });
    add("GET", "/jobs/{id}", [this](Request request) { return job(request); });
    add("DELETE", "/jobs/{id}", [this](Request request) { return deleteJob(request); });
    add("POST", "/jobs/{id}/archive", [this](Request request) { return setArchived(request, true); });
    add("POST", "/jobs/{id}/restore", [this](Request request) { return setArchived(request, false); });
    addWrite("PUT", "/jobs/{id}/attributes", partOfJob, [this](Request request) { return putJobAttributes(request); });
    addWrite("PUT", "/jobs/{id}/tests/{uiIndex}/attributes", partOfJob,
        [this](Request request) { return putTestAttributes(request); });
    addWrite("PUT", "/jobs/{id}/tests/{uiIndex}/results", partOfJob,
        [this](Request request) { return putTestResults(request); });

    add("GET", "/active-job", [this](Request) { return activeJob(); });
    addWrite("PUT", "/active-job", smallBody, [this](Request request) { return putActiveJob(request); });
    add("GET", "/settings", [this](Request) { return settings(); });
    addWrite("PUT", "/settings/{name}", smallBody, [this](Request request) { return putSetting(request); });
    add("GET", "/ui-group-type", [this](Request) { return groupType(); });
    addWrite("PUT", "/ui-group-type", smallBody, [this](Request request) { return putGroupType(request); });
    return routes;
}

HttpResponse JobApi::changeCount() const
{
    return { 200, "{\"changeCount\":" + std::to_string(m_store.changeCount()) + "}", {} };
}

HttpResponse JobApi::status() const
{
    const StoreState state = m_store.state();
    return json(200,
        { { "service", "job-service" }, { "version", serviceVersion }, { "store", nameOf(state.kind) },
            { "since", state.since } });
}

HttpResponse JobApi::loginConfig() const
{
    return json(200, { { "techId", m_techId }, { "opaqueText1", "" }, { "opaqueText2", "" } });
}

HttpResponse JobApi::jobs() const
{
    return { 200, "{\"jobs\":" + m_store.jobList() + "}", {} };
}

HttpResponse JobApi::job(const RouteRequest& request) const
{
    std::optional<std::string> document = m_store.document(request.parameters[0]);
    if (!document)
        refuseUnknownJob();
    return { 200, std::move(*document), {} };
}

HttpResponse JobApi::createJob(const RouteRequest& request)
{
    NewJob job{ requiredString(request.json, "workOrderNo"), optionalString(request.json, "techId"),
        optionalBool(request.json, "syncToNimbrel") };
    if (!isJobId(job.id))
        throw ApiError(400, "invalid_id", "An id has 1 to 512 bytes and no control characters.");
    if (!optionalString(request.json, "locationsFilename").empty())
        throw ApiError(400, "locations_not_supported", "This version takes no file of locations.");
    const std::string templateName = optionalString(request.json, "templateName");
    std::optional<std::string> document = std::string();
    if (!templateName.empty())
        document = m_store.templateDocument(templateName);
    if (!document)
        throw ApiError(404, "template_not_found", "There is no template with this name.");
    if (!m_store.createJob(jobFromTemplate(job, *document, utcNow())))
        throw ApiError(409, "job_exists", "There is already a job with this id.");
    return json(201, { { "id", job.id } });
}

HttpResponse JobApi::deleteJob(const RouteRequest& request)
{
    checkFound(m_store.removeJob(request.parameters[0]));
    return noContent();
}

HttpResponse JobApi::setArchived(const RouteRequest& request, bool archived)
{
    checkFound(m_store.changeJob(request.parameters[0],
        [&](JsonTree& document) { detailsOf(document).set("archived", JsonTree::fromBool(archived)); }));
    return noContent();
}

HttpResponse JobApi::putJobAttributes(const RouteRequest& request)
{
    checkFound(m_store.changeJob(request.parameters[0],
        [&](JsonTree& document) { detailsOf(document).set("jobManagerAttributes", attributesFrom(request)); }));
    return noContent();
}

HttpResponse JobApi::putTestAttributes(const RouteRequest& request)
{
    checkFound(m_store.changeJob(request.parameters[0], [&](JsonTree& document) {
        testIn(document, request.parameters[1]).set("attributes", attributesFrom(request));
    }));
    return noContent();
}

HttpResponse JobApi::putTestResults(const RouteRequest& request)
{
    checkFound(m_store.changeJob(request.parameters[0], [&](JsonTree& document) {
        JsonTree& test = testIn(document, request.parameters[1]);
        if (request.json.is_null())
            test.remove("results");
        else
            test.set("results", JsonTree::fromText(request.text));
    }));
    return noContent();
}

HttpResponse JobApi::activeJob() const
{
    return json(200, { { "id", m_store.activeJob() } });
}

HttpResponse JobApi::putActiveJob(const RouteRequest& request)
{
    checkFound(m_store.setActiveJob(requiredString(request.json, "id")));
    return noContent();
}

HttpResponse JobApi::settings() const
{
    return json(200, { { "settings", m_store.settings() } });
}

HttpResponse JobApi::putSetting(const RouteRequest& request)
{
    const std::string& id = request.parameters[0];
    if (id.empty() || id.size() > longestSettingId)
        refuseRequest("The name of a setting has 1 to 256 bytes.");
    m_store.writeSetting(id, requiredString(request.json, "value"));
    return noContent();
}

HttpResponse JobApi::groupType() const
{
    return json(200, { { "groupType", m_store.groupType() } });
}

HttpResponse JobApi::putGroupType(const RouteRequest& request)
{
    const std::string groupType = requiredString(request.json, "groupType");
    if (groupType != "job_order" && groupType != "location" && groupType != "testtype")
        refuseRequest("The group type is job_order, location or testtype.");
    m_store.setGroupType(groupType);
    return noContent();
}

} // namespace job_service
