#include "service/Router.h"

#include "api/cdm/JsonText.h"
#include "service/ApiError.h"
#include "service/RequestGuard.h"
#include "service/UrlPath.h"

#include <optional>

namespace job_service {

namespace {

bool isParameter(const std::string& segment)
{
    return segment.front() == '{';
}

/// The values of the pattern's parameters; nothing if the path is not of the pattern.
std::optional<std::vector<std::string>> match(
    const std::vector<std::string>& pattern, const std::vector<std::string>& path)
{
    if (pattern.size() != path.size())
        return std::nullopt;
    std::vector<std::string> parameters;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (isParameter(pattern[i]))
            parameters.push_back(path[i]);
        else if (pattern[i] != path[i])
            return std::nullopt;
    }
    return parameters;
}

HttpResponse run(const Route& route, RouteRequest request, const std::string& body)
{
    try {
        if (route.needsJson) {
            cdm::DocumentError error;
            std::optional<nlohmann::json> json = cdm::parseJson(body, error);
            if (!json)
                throw ApiError(400, "invalid_json", error.message);
            request.json = std::move(*json);
            request.text = body;
        }
        return route.handler(request);
    } catch (const ApiError& error) {
        return errorResponse(error.status(), error.code(), error.what());
    }
}

} // namespace

Router::Router(std::vector<Route> routes, unsigned short port) : m_port(port)
{
    for (Route& route : routes) {
        std::vector<std::string> segments = *pathSegments(route.pattern);
        m_entries.push_back({ std::move(route), std::move(segments) });
    }
}

std::variant<HttpResponse, HttpCall> Router::decide(const HttpHead& head) const
{
    if (auto refusal = refuseForeign(head, m_port))
        return *refusal;
    const std::optional<std::vector<std::string>> path = pathSegments(head.target);
    if (!path)
        return errorResponse(400, "bad_path", "The request has no valid path.");

    std::string allowed;
    for (const Entry& entry : m_entries) {
        const Route& route = entry.route;
        std::optional<std::vector<std::string>> parameters = match(entry.segments, *path);
        if (!parameters)
            continue;
        if (route.method != head.method) {
            allowed += (allowed.empty() ? "" : ", ") + route.method;
            continue;
        }
        if (auto refusal = refuseEncoded(head))
            return *refusal;
        if (route.needsJson || head.hasBody()) {
            if (auto refusal = refuseOtherThanJson(head))
                return *refusal;
        }
        return HttpCall{ route.maximumBody, route.answersAtOnce,
            [&route, parameters = std::move(*parameters)](const std::string& body) {
                return run(route, { parameters, {}, {} }, body);
            } };
    }
    if (allowed.empty())
        return errorResponse(404, "not_found", "There is nothing at this path.");
    HttpResponse refusal = errorResponse(405, "method_not_allowed", "This path does not take this method.");
    refusal.fields.emplace_back("Allow", allowed);
    return refusal;
}

} // namespace job_service
