#pragma once

#include <stdexcept>
#include <string>

namespace job_service {

/// A request is refused. The code is stable, the sentence is for people; neither names a path of the file system.
class ApiError : public std::runtime_error
{
public:
    ApiError(int status, std::string code, const std::string& message)
        : std::runtime_error(message)
        , m_status(status)
        , m_code(std::move(code))
    {
    }

    /// The HTTP status.
    int status() const { return m_status; }
    const std::string& code() const { return m_code; }

private:
    int m_status;
    std::string m_code;
};

} // namespace job_service
