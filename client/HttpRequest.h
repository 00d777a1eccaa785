#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace job_client {

/// One request to the job service, with what it may cost.
struct HttpRequest
{
    /// "GET", "POST", "PUT", "PATCH" or "DELETE".
    const char* method = "GET";
    /// Percent-encoded, from the root of the service.
    std::string path;
    /// JSON text; nothing for a request without a body.
    std::optional<std::string> body;
    /// For the whole exchange.
    std::chrono::milliseconds deadline{};
    /// The longest body that is taken as an answer, in bytes.
    std::size_t answerCap = 0;
    /// Whether one missed deadline alone tells that the service hangs: true for what is given so much time that
    /// nobody should wait for it twice.
    bool hangsOnFirstMiss = false;
};

} // namespace job_client
