#pragma once

#include "service/SqliteError.h"

#include <filesystem>
#include <memory>

struct sqlite3;

namespace job_service {

/// One connection to a database file. Used by one thread at a time; its owner guards it.
class SqliteDatabase
{
public:
    /// Opens the file, and makes it if it is missing. Changes nothing in it. Throws SqliteError.
    explicit SqliteDatabase(const std::filesystem::path& file);

    /// Whether closing leaves the write-ahead log as it is, instead of moving it into the file.
    void keepLogOnClose(bool keep);
    /// Runs statements that give no rows and take no values. Throws SqliteError.
    void execute(const char* sql);
    /// The first column of the first row of a query without values. Throws SqliteError if there is none.
    std::string queryText(const char* sql);
    int queryInteger(const char* sql);

    sqlite3* handle() const { return m_handle.get(); }
    /// What to throw for a result other than success of the call that was just made, on this thread and with errno
    /// cleared before it. A want of room is SQLITE_FULL, however the system calls it.
    SqliteError failure(int result) const;

private:
    struct Closer
    {
        void operator()(sqlite3* handle) const;
    };
    std::unique_ptr<sqlite3, Closer> m_handle;
};

} // namespace job_service
