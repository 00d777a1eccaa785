#include "service/RequestGuard.h"

#include <algorithm>
#include <cctype>

namespace job_service {

namespace {

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text;
}

bool isOwnHost(const std::string& host, unsigned short port)
{
    const std::string suffix = ":" + std::to_string(port);
    for (const char* name : { "127.0.0.1", "localhost", "[::1]" }) {
        if (host == name + suffix)
            return true;
    }
    return false;
}

bool isJson(const std::string& contentType)
{
    std::string type = lowerCase(contentType.substr(0, contentType.find(';')));
    type.erase(type.find_last_not_of(" \t") + 1);
    return type == "application/json";
}

} // namespace

std::optional<HttpResponse> refuseForeign(const HttpHead& head, unsigned short port)
{
    const std::vector<std::string> hosts = head.values("host");
    const std::string host = hosts.size() == 1 ? lowerCase(hosts.front()) : std::string();
    if (!isOwnHost(host, port))
        return errorResponse(403, "foreign_host", "The service answers to its own address only.");
    for (const std::string& origin : head.values("origin")) {
        if (lowerCase(origin) != "http://" + host)
            return errorResponse(403, "foreign_origin", "The service does not answer to other sites.");
    }
    for (const std::string& site : head.values("sec-fetch-site")) {
        if (site != "same-origin" && site != "none")
            return errorResponse(403, "foreign_origin", "The service does not answer to other sites.");
    }
    return std::nullopt;
}

std::optional<HttpResponse> refuseEncoded(const HttpHead& head)
{
    for (const std::string& encoding : head.values("content-encoding")) {
        if (lowerCase(encoding) != "identity")
            return errorResponse(415, "unsupported_encoding", "The service takes bodies without an encoding only.");
    }
    for (const std::string& encoding : head.values("transfer-encoding")) {
        if (lowerCase(encoding) != "chunked")
            return errorResponse(501, "unsupported_encoding", "The service knows no transfer encoding but chunked.");
    }
    return std::nullopt;
}

std::optional<HttpResponse> refuseOtherThanJson(const HttpHead& head)
{
    if (!head.contentLength && !head.chunked)
        return errorResponse(411, "length_required", "The request needs a body with a length.");
    const std::vector<std::string> types = head.values("content-type");
    if (types.size() != 1 || !isJson(types.front()))
        return errorResponse(415, "unsupported_media_type", "The body has to be application/json.");
    return std::nullopt;
}

} // namespace job_service
