#include "service/SqliteTransaction.h"

#include <sqlite3.h>

namespace job_service {

SqliteTransaction::SqliteTransaction(SqliteDatabase& database) : m_database(database)
{
    database.execute("BEGIN IMMEDIATE");
}

SqliteTransaction::~SqliteTransaction()
{
    // A full disk, for one, has already taken the transaction back.
    if (sqlite3_get_autocommit(m_database.handle()) == 0)
        sqlite3_exec(m_database.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteTransaction::commit()
{
    m_database.execute("COMMIT");
}

} // namespace job_service
