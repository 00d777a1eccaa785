#include "tests/support/HttpRequest.h"

#include "tests/support/Connection.h"

#include <cctype>
#include <cstdlib>

namespace jobmanager_test {

namespace {

std::string lowerCase(std::string text)
{
    for (char& character : text)
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    return text;
}

} // namespace

HttpReply parseHttpReply(const std::string& bytes, std::size_t& length)
{
    length = 0;
    const std::size_t headEnd = bytes.find("\r\n\r\n");
    if (headEnd == std::string::npos || bytes.compare(0, 7, "HTTP/1.") != 0 || bytes.size() < 12)
        return {};
    HttpReply reply;
    std::size_t line = bytes.find("\r\n") + 2;
    while (line < headEnd + 2) {
        const std::size_t lineEnd = bytes.find("\r\n", line);
        const std::size_t colon = bytes.find(':', line);
        if (colon != std::string::npos && colon < lineEnd) {
            const std::size_t value = bytes.find_first_not_of(' ', colon + 1);
            reply.headers[lowerCase(bytes.substr(line, colon - line))] =
                value < lineEnd ? bytes.substr(value, lineEnd - value) : std::string();
        }
        line = lineEnd + 2;
    }
    const auto contentLength = reply.headers.find("content-length");
    const std::size_t expected =
        contentLength == reply.headers.end() ? 0 : std::strtoul(contentLength->second.c_str(), nullptr, 10);
    if (bytes.size() - headEnd - 4 < expected)
        return {};
    reply.body = bytes.substr(headEnd + 4, expected);
    reply.status = std::atoi(bytes.c_str() + 9);
    length = headEnd + 4 + expected;
    return reply;
}

HttpReply httpRequest(unsigned short port, const std::string& method, const std::string& path, const std::string& body,
    std::chrono::milliseconds deadline)
{
    std::string request =
        method + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\nConnection: close\r\n";
    if (!body.empty())
        request += "Content-Type: application/json\r\n";
    if (!body.empty() || (method != "GET" && method != "HEAD"))
        request += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    return Connection(port, deadline).request(request + "\r\n" + body);
}

} // namespace jobmanager_test
