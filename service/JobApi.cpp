#include "service/JobApi.h"

#include "service/ApiError.h"
#include "service/ApiSupport.h"
#include "service/JobDocument.h"
#include "service/ServiceVersion.h"
#include "service/UtcTime.h"

namespace job_service {

namespace {

constexpr std::size_t longestSettingId = 256;

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

/// Null would pass for attributes that are missing.
JsonTree attributesFrom(const RouteRequest& request)
{
    if (!request.json.is_object())
        refuseRequest("Attributes have to be an object.");
    return JsonTree::fromText(request.text);
}

} // namespace

JobApi::JobApi(JobStore& store, std::string techId, AttributeRules attributeRules, LocationLists locationLists)
    : m_store(store)
    , m_techId(std::move(techId))
    , m_locationLists(std::move(locationLists))
    , m_attributes(store, std::move(attributeRules))
{
}

void JobApi::stop()
{
    m_attributes.stop();
}

std::vector<Route> JobApi::routes()
{
    using Request = const RouteRequest&;
    RouteTable table;

    table.add("GET", "/change-count", [this](Request) { return changeCount(); }).answersAtOnce = true;
    table.add("GET", "/status", [this](Request) { return status(); }).answersAtOnce = true;
    table.add("GET", "/login-config", [this](Request) { return loginConfig(); }).answersAtOnce = true;

    table.add("GET", "/jobs", [this](Request) { return jobs(); });
    table.addWrite("POST", "/jobs", smallBody, [this](Request request) { return createJob(request); });
    table.add("GET", "/jobs/{id}", [this](Request request) { return job(request); });
    table.addWrite("PATCH", "/jobs/{id}", partOfJob, [this](Request request) { return updateJob(request); });
    table.add("DELETE", "/jobs/{id}", [this](Request request) { return deleteJob(request); });
    table.add("POST", "/jobs/{id}/archive", [this](Request request) { return setArchived(request, true); });
    table.add("POST", "/jobs/{id}/restore", [this](Request request) { return setArchived(request, false); });
    table.addWrite(
        "PUT", "/jobs/{id}/attributes", partOfJob, [this](Request request) { return putJobAttributes(request); });
    table.addWrite("PUT", "/jobs/{id}/tests/{uiIndex}/attributes", partOfJob,
        [this](Request request) { return putTestAttributes(request); });
    table.addWrite("PUT", "/jobs/{id}/tests/{uiIndex}/results", partOfJob,
        [this](Request request) { return putTestResults(request); });

    table.add("GET", "/active-job", [this](Request) { return activeJob(); });
    table.addWrite("PUT", "/active-job", smallBody, [this](Request request) { return putActiveJob(request); });
    table.add("GET", "/settings", [this](Request) { return settings(); });
    table.addWrite("PUT", "/settings/{name}", smallBody, [this](Request request) { return putSetting(request); });
    table.add("GET", "/ui-group-type", [this](Request) { return groupType(); });
    table.addWrite("PUT", "/ui-group-type", smallBody, [this](Request request) { return putGroupType(request); });
    return table.routes();
}

HttpResponse JobApi::changeCount() const
{
    return { 200, "{\"changeCount\":" + std::to_string(m_store.changeCount()) + "}", {} };
}

HttpResponse JobApi::status() const
{
    const StoreState state = m_store.state();
    return jsonResponse(200,
        { { "service", "job-service" }, { "version", serviceVersion }, { "store", nameOf(state.kind) },
            { "since", state.since } });
}

HttpResponse JobApi::loginConfig() const
{
    return jsonResponse(200, { { "techId", m_techId }, { "opaqueText1", "" }, { "opaqueText2", "" } });
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
        optionalBool(request.json, "syncToNimbrel"), {} };
    if (!isJobId(job.id))
        throw ApiError(400, "invalid_id", "An id has 1 to 512 bytes and no control characters.");
    const std::string templateName = optionalString(request.json, "templateName");
    std::optional<std::string> document = std::string();
    if (!templateName.empty())
        document = m_store.templateDocument(templateName);
    if (!document)
        refuseUnknownTemplate();
    const std::string locationsFilename = optionalString(request.json, "locationsFilename");
    if (!locationsFilename.empty())
        job.locations = m_locationLists.locations(locationsFilename);
    if (!m_store.createJob(jobFromTemplate(job, *document, utcNow())))
        throw ApiError(409, "job_exists", "There is already a job with this id.");
    return jsonResponse(201, { { "id", job.id } });
}

HttpResponse JobApi::updateJob(const RouteRequest& request)
{
    checkFound(m_attributes.update(request.parameters[0], request.json));
    return noContent();
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
    return jsonResponse(200, { { "id", m_store.activeJob() } });
}

HttpResponse JobApi::putActiveJob(const RouteRequest& request)
{
    checkFound(m_store.setActiveJob(requiredString(request.json, "id")));
    return noContent();
}

HttpResponse JobApi::settings() const
{
    return jsonResponse(200, { { "settings", m_store.settings() } });
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
    return jsonResponse(200, { { "groupType", m_store.groupType() } });
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
