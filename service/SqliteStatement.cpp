#include "service/SqliteStatement.h"

#include <cerrno>
#include <sqlite3.h>

namespace job_service {

void SqliteStatement::Finalizer::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

SqliteStatement::SqliteStatement(SqliteDatabase& database, const char* sql) : m_database(database)
{
    sqlite3_stmt* statement = nullptr;
    errno = 0;
    const int result = sqlite3_prepare_v2(database.handle(), sql, -1, &statement, nullptr);
    m_statement.reset(statement);
    check(result);
}

SqliteStatement& SqliteStatement::bind(int number, std::string_view utf8)
{
    check(sqlite3_bind_text64(
        m_statement.get(), number, utf8.empty() ? "" : utf8.data(), utf8.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
    return *this;
}

SqliteStatement& SqliteStatement::bind(int number, int value)
{
    check(sqlite3_bind_int(m_statement.get(), number, value));
    return *this;
}

bool SqliteStatement::step()
{
    errno = 0;
    const int result = sqlite3_step(m_statement.get());
    if (result == SQLITE_ROW)
        return true;
    if (result == SQLITE_DONE)
        return false;
    check(result);
    return false;
}

int SqliteStatement::run()
{
    while (step()) { }
    return sqlite3_changes(m_database.handle());
}

std::string SqliteStatement::text(int column) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement.get(), column));
    const int size = sqlite3_column_bytes(m_statement.get(), column);
    return bytes ? std::string(bytes, static_cast<std::size_t>(size)) : std::string();
}

int SqliteStatement::integer(int column) const
{
    return sqlite3_column_int(m_statement.get(), column);
}

void SqliteStatement::check(int result) const
{
    if (result != SQLITE_OK)
        throw m_database.failure(result);
}

} // namespace job_service
