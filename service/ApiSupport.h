#pragma once

#include "service/JobStore.h"
#include "service/Router.h"

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace job_service {

class JsonTree;

/// The largest body of an ordinary request, in bytes.
constexpr std::size_t smallBody = 64 * 1024;
/// The same where a part of a job comes in: result data can hold a curve or a picture.
constexpr std::size_t partOfJob = 1024 * 1024;

HttpResponse jsonResponse(int status, const nlohmann::json& value);
HttpResponse noContent();

/// These throw the ApiError of what they are named after.
[[noreturn]] void refuseRequest(const std::string& message);
[[noreturn]] void refuseUnknownJob();
[[noreturn]] void refuseUnknownTemplate();
void checkFound(JobStore::Change change);

/// The test or location with this index string. Throws the ApiError of an unknown one.
JsonTree& testIn(JsonTree& document, const std::string& uiIndex);

/// Members of a body. All throw the ApiError of a body that is no object or a member of the wrong type; the required
/// one also that of a missing member, where the others give an empty text and false.
std::string requiredString(const nlohmann::json& body, const std::string& name);
std::string optionalString(const nlohmann::json& body, const std::string& name);
bool optionalBool(const nlohmann::json& body, const std::string& name);

/// Collects routes below /api/v1 whose handlers may let the failures of the store and of documents through: the
/// caller of the route gets them in the terms of the interface.
class RouteTable
{
public:
    using Handler = std::function<HttpResponse(const RouteRequest& request)>;

    /// The reference is good until the next call.
    Route& add(const char* method, const std::string& path, Handler handler);
    /// The same for a route that takes a JSON body.
    void addWrite(const char* method, const std::string& path, std::size_t maximumBody, Handler handler);
    std::vector<Route> routes() const { return m_routes; }

private:
    std::vector<Route> m_routes;
};

} // namespace job_service
