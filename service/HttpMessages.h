#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace job_service {

/// A request without its body.
struct HttpHead
{
    std::string method;
    /// The request target as it came: path and query, percent-encoded.
    std::string target;
    /// Names are in lower case, in the order in which they came.
    std::vector<std::pair<std::string, std::string>> fields;
    /// Bytes of the body, if the head says so.
    std::optional<std::uint64_t> contentLength;
    bool chunked = false;

    /// The values of all fields of this lower-case name.
    std::vector<std::string> values(const std::string& name) const
    {
        std::vector<std::string> found;
        for (const auto& [fieldName, value] : fields) {
            if (fieldName == name)
                found.push_back(value);
        }
        return found;
    }
    bool hasBody() const { return chunked || contentLength.value_or(0) > 0; }
};

/// An answer. A body is JSON.
struct HttpResponse
{
    int status = 200;
    std::string body;
    /// Fields beyond those that every answer has.
    std::vector<std::pair<std::string, std::string>> fields;
};

/// What is to be done for a request whose head is accepted.
struct HttpCall
{
    /// A greater body is refused.
    std::size_t maximumBody = 0;
    /// Whether `answer` is so quick that it runs on the I/O thread; otherwise a worker runs it.
    bool answersAtOnce = false;
    /// Gets the whole body.
    std::function<HttpResponse(const std::string& body)> answer;
};

/// Decides about a request by its head: refuses it, or says what is to be done.
using HttpHeadHandler = std::function<std::variant<HttpResponse, HttpCall>(const HttpHead& head)>;

/// `{"error": {"code", "message"}}`
HttpResponse errorResponse(int status, const std::string& code, const std::string& message);

} // namespace job_service
