#include "service/ApiSupport.h"

#include "api/cdm/JsonText.h"
#include "service/ApiError.h"
#include "service/JobDocument.h"
#include "service/Log.h"
#include "service/SqliteError.h"

#include <sqlite3.h>
#include <utility>

namespace job_service {

namespace {

const nlohmann::json* memberOf(const nlohmann::json& body, const std::string& name)
{
    if (!body.is_object())
        refuseRequest("The body has to be an object.");
    const auto member = body.find(name);
    return member == body.end() ? nullptr : &*member;
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

HttpResponse answerOf(const RouteTable::Handler& handler, const RouteRequest& request)
{
    try {
        return handler(request);
    } catch (const SqliteError& error) {
        throw storeFailure(error);
    } catch (const DocumentRefused& refused) {
        throw ApiError(400, "invalid_document", refusalOf(refused.error()));
    }
}

} // namespace

HttpResponse jsonResponse(int status, const nlohmann::json& value)
{
    return { status, cdm::dumpJson(value), {} };
}

HttpResponse noContent()
{
    return { 204, {}, {} };
}

void refuseRequest(const std::string& message)
{
    throw ApiError(400, "invalid_request", message);
}

void refuseUnknownJob()
{
    throw ApiError(404, "job_not_found", "There is no job with this id.");
}

void refuseUnknownTemplate()
{
    throw ApiError(404, "template_not_found", "There is no template with this name.");
}

void checkFound(JobStore::Change change)
{
    if (change == JobStore::Change::NoSuchJob)
        refuseUnknownJob();
}

JsonTree& testIn(JsonTree& document, const std::string& uiIndex)
{
    JsonTree* test = findTest(document, uiIndex);
    if (!test)
        throw ApiError(404, "test_not_found", "The job has no test or location with this index.");
    return *test;
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

Route& RouteTable::add(const char* method, const std::string& path, Handler handler)
{
    m_routes.push_back({ method, "/api/v1" + path,
        [handler = std::move(handler)](const RouteRequest& request) { return answerOf(handler, request); } });
    return m_routes.back();
}

void RouteTable::addWrite(const char* method, const std::string& path, std::size_t maximumBody, Handler handler)
{
    Route& route = add(method, path, std::move(handler));
    route.needsJson = true;
    route.maximumBody = maximumBody;
}

} // namespace job_service
