#include "service/StoreFile.h"

#include "service/Log.h"
#include "service/SqliteStatement.h"

#include <optional>
#include <sqlite3.h>

namespace job_service {

namespace {

/// "JobS" as a number: tells our files from other programs' databases.
constexpr int applicationId = 0x4a6f6253;
constexpr int schemaVersion = 1;

constexpr const char* schema = R"(
BEGIN IMMEDIATE;
CREATE TABLE job(id TEXT PRIMARY KEY, modified_on TEXT NOT NULL, summary TEXT NOT NULL) WITHOUT ROWID;
CREATE INDEX job_modified_on ON job(modified_on DESC, id);
CREATE TABLE job_document(id TEXT PRIMARY KEY REFERENCES job(id) ON DELETE CASCADE, text TEXT NOT NULL);
CREATE TABLE template(name TEXT PRIMARY KEY, document TEXT NOT NULL);
CREATE TABLE setting(id TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE state(name TEXT PRIMARY KEY, value NOT NULL);
PRAGMA application_id=1248813651;
PRAGMA user_version=1;
COMMIT;
)";
static_assert(applicationId == 1248813651 && schemaVersion == 1, "the schema text names both");

/// The file can be read, but not used as a store.
class UnusableFile : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Whether nothing has ever been stored: a new file, or one whose making was cut off.
bool isBlank(SqliteDatabase& database)
{
    return database.queryInteger("PRAGMA application_id") == 0
        && database.queryInteger("SELECT count(*) FROM sqlite_master") == 0;
}

/// Reads only: a file that turns out to be somebody else's stays as it is.
void checkOwnership(SqliteDatabase& database)
{
    if (database.queryInteger("PRAGMA application_id") != applicationId)
        throw UnusableFile("it belongs to another program");
    if (database.queryInteger("PRAGMA user_version") > schemaVersion)
        throw StoreRefused("The data folder was written by a newer version of job-service.");
}

void checkSoundness(SqliteDatabase& database)
{
    const std::string verdict = database.queryText("PRAGMA quick_check(1)");
    if (verdict != "ok")
        throw UnusableFile(verdict);
}

void checkSchema(SqliteDatabase& database)
{
    try {
        for (const char* query : { "SELECT id, modified_on, summary FROM job", "SELECT id, text FROM job_document",
                 "SELECT name, document FROM template", "SELECT id, value FROM setting",
                 "SELECT name, value FROM state" })
            SqliteStatement(database, query);
    } catch (const SqliteError& error) {
        if (error.code() != SQLITE_ERROR)
            throw;
        throw UnusableFile(error.what());
    }
}

void useDurably(SqliteDatabase& database)
{
    database.queryText("PRAGMA journal_mode=WAL");
    database.execute("PRAGMA synchronous=FULL");
}

OpenedStore openExisting(const std::filesystem::path& file)
{
    OpenedStore store{ SqliteDatabase(file) };
    // Until the file is known to be sound, nothing may be moved into it.
    store.database.keepLogOnClose(true);
    store.created = isBlank(store.database);
    if (!store.created) {
        checkOwnership(store.database);
        checkSoundness(store.database);
        checkSchema(store.database);
    }
    store.database.keepLogOnClose(false);
    useDurably(store.database);
    if (store.created)
        store.database.execute(schema);
    return store;
}

std::filesystem::path withSuffix(const std::filesystem::path& file, const std::string& suffix)
{
    std::filesystem::path result = file;
    result += suffix;
    return result;
}

void putAside(const std::filesystem::path& file, const std::string& reason)
{
    int number = 1;
    while (std::filesystem::exists(withSuffix(file, ".corrupt-" + std::to_string(number))))
        ++number;
    const std::string suffix = ".corrupt-" + std::to_string(number);
    // What SQLite keeps beside the file belongs to it.
    for (const char* companion : { "-wal", "-shm", "-journal" }) {
        if (std::filesystem::exists(withSuffix(file, companion)))
            std::filesystem::rename(withSuffix(file, companion), withSuffix(file, suffix + companion));
    }
    std::filesystem::rename(file, withSuffix(file, suffix));
    logLine("the store cannot be used (" + reason + "): it is now " + printable(withSuffix(file, suffix).string())
        + ", and a new one begins empty");
}

} // namespace

OpenedStore openStoreFile(const std::filesystem::path& file)
{
    std::optional<std::string> obstacle;
    try {
        return openExisting(file);
    } catch (const SqliteError& error) {
        if (!error.isDamage())
            throw;
        obstacle = error.what();
    } catch (const UnusableFile& unusable) {
        obstacle = unusable.what();
    }
    putAside(file, *obstacle);
    OpenedStore store = openExisting(file);
    store.replaced = true;
    return store;
}

SqliteDatabase openStoreReader(const std::filesystem::path& file)
{
    SqliteDatabase database(file);
    database.execute("PRAGMA query_only=ON");
    return database;
}

} // namespace job_service
