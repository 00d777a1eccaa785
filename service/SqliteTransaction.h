#pragma once

#include "service/SqliteDatabase.h"

namespace job_service {

/// A write transaction. Without commit() everything since the construction is taken back at the end.
class SqliteTransaction
{
public:
    /// Waits for other writers. Throws SqliteError.
    explicit SqliteTransaction(SqliteDatabase& database);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    /// When this returns, the changes are on disk. Throws SqliteError, and then nothing has changed.
    void commit();

private:
    SqliteDatabase& m_database;
};

} // namespace job_service
