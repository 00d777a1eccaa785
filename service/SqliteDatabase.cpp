#include "service/SqliteDatabase.h"

#include "service/SqliteStatement.h"

#include <cerrno>
#include <sqlite3.h>

namespace job_service {

namespace {

constexpr int busyTimeoutMs = 2000;
/// A job document of the greatest size, its summary and some room.
constexpr int greatestValue = 20 * 1024 * 1024;
constexpr int greatestStatement = 100 * 1024;

/// SQLite itself knows ENOSPC alone, and that not for all of its files.
bool isWantOfRoom(int systemError)
{
    return systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
}

} // namespace

bool SqliteError::isDamage() const
{
    return m_code == SQLITE_CORRUPT || m_code == SQLITE_NOTADB;
}

void SqliteDatabase::Closer::operator()(sqlite3* handle) const
{
    sqlite3_close_v2(handle);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file)
{
    sqlite3* handle = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(file.c_str(), &handle, flags, nullptr);
    m_handle.reset(handle);
    if (result != SQLITE_OK)
        throw SqliteError(result & 0xff, sqlite3_errstr(result));
    sqlite3_busy_timeout(handle, busyTimeoutMs);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, greatestValue);
    sqlite3_limit(handle, SQLITE_LIMIT_SQL_LENGTH, greatestStatement);
    sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
    execute("PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON; PRAGMA foreign_keys=ON;");
}

void SqliteDatabase::keepLogOnClose(bool keep)
{
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, keep ? 1 : 0, nullptr);
}

void SqliteDatabase::execute(const char* sql)
{
    errno = 0;
    const int result = sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        throw failure(result);
}

SqliteError SqliteDatabase::failure(int result) const
{
    const int code = result & 0xff;
    if (code == SQLITE_IOERR && isWantOfRoom(errno))
        return { SQLITE_FULL, sqlite3_errstr(SQLITE_FULL) };
    return { code, sqlite3_errmsg(handle()) };
}

std::string SqliteDatabase::queryText(const char* sql)
{
    SqliteStatement statement(*this, sql);
    if (!statement.step())
        throw SqliteError(SQLITE_ERROR, "a row is missing");
    return statement.text(0);
}

int SqliteDatabase::queryInteger(const char* sql)
{
    SqliteStatement statement(*this, sql);
    if (!statement.step())
        throw SqliteError(SQLITE_ERROR, "a row is missing");
    return statement.integer(0);
}

} // namespace job_service
