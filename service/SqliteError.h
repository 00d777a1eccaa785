#pragma once

#include <stdexcept>
#include <string>

namespace job_service {

/// An operation on the database failed.
class SqliteError : public std::runtime_error
{
public:
    /// `code` is SQLite's primary result code.
    SqliteError(int code, const std::string& message) : std::runtime_error(message), m_code(code) { }

    int code() const { return m_code; }
    /// Whether the file itself is no sound database.
    bool isDamage() const;

private:
    int m_code;
};

} // namespace job_service
