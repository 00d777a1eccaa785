#pragma once

#include "service/SqliteDatabase.h"

#include <memory>
#include <string>
#include <string_view>

struct sqlite3_stmt;

namespace job_service {

/// A prepared statement, for one use. All operations throw SqliteError on failure.
class SqliteStatement
{
public:
    /// `database` must outlive the statement.
    SqliteStatement(SqliteDatabase& database, const char* sql);

    /// Binds the value with this 1-based number.
    SqliteStatement& bind(int number, std::string_view utf8);
    SqliteStatement& bind(int number, int value);
    /// Goes to the next row. Returns false behind the last one.
    bool step();
    /// Runs a statement that gives no rows and returns how many rows it changed.
    int run();

    /// The value of the 0-based column in the current row.
    std::string text(int column) const;
    int integer(int column) const;

private:
    struct Finalizer
    {
        void operator()(sqlite3_stmt* statement) const;
    };
    SqliteDatabase& m_database;
    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;

    void check(int result) const;
};

} // namespace job_service
