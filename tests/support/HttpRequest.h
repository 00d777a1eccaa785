#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>

namespace jobmanager_test {

/// What came back from one HTTP request.
struct HttpReply
{
    /// The status code; 0 if no complete answer came.
    int status = 0;
    /// Header values by lower-case name.
    std::map<std::string, std::string> headers;
    std::string body;
};

/// Sends one request on a connection of its own to 127.0.0.1:`port` and waits for the whole answer.
/// A body that is not empty goes out as application/json. Blocks for at most `deadline` in all, which
/// sanitizer builds stretch. Never throws for anything that the other side does.
HttpReply httpRequest(unsigned short port, const std::string& method, const std::string& path,
    const std::string& body = {}, std::chrono::milliseconds deadline = std::chrono::seconds(10));

/// Takes the first answer on the wire apart and tells how many bytes it has; status 0 if it is not a complete one.
HttpReply parseHttpReply(const std::string& bytes, std::size_t& length);

} // namespace jobmanager_test
