#pragma once

#include "service/HttpMessages.h"

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace job_service {

/// What a handler gets of a request.
struct RouteRequest
{
    /// The decoded segments that stand for the `{...}` of the pattern, in order.
    std::vector<std::string> parameters;
    /// The body of a route that needs JSON: parsed, and as it came. Null and empty on other routes.
    nlohmann::json json;
    std::string text;
};

/// One method of one path.
struct Route
{
    std::string method;
    /// "/api/v1/jobs/{id}"
    std::string pattern;
    /// May throw ApiError. Runs on several threads at once.
    std::function<HttpResponse(const RouteRequest& request)> handler;
    bool needsJson = false;
    /// A body that a route has no use for is small, and passed over.
    std::size_t maximumBody = 1024;
    /// Whether the handler is so quick that it runs on the I/O thread.
    bool answersAtOnce = false;
};

/// Finds the route of a request and guards it: every refusal that needs no handler happens here.
class Router
{
public:
    /// `port` is the one that the service listens on.
    Router(std::vector<Route> routes, unsigned short port);

    /// Decides about a request, as HttpServer asks for it. The router must outlive the calls.
    std::variant<HttpResponse, HttpCall> decide(const HttpHead& head) const;

private:
    struct Entry
    {
        Route route;
        std::vector<std::string> segments;
    };
    std::vector<Entry> m_entries;
    unsigned short m_port;
};

} // namespace job_service
