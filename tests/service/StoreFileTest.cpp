#include "service/StoreFile.h"

#include "tests/service/StoreFixture.h"

#include <sqlite3.h>

using namespace job_service;
using jobmanager_test::contentOf;

namespace {

class StoreFileTest : public jobmanager_test::StoreFixture
{
protected:
    void execute(const char* sql)
    {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(file().c_str(), &database), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
        sqlite3_close(database);
    }

    /// A store of some pages, closed.
    void makeStore()
    {
        for (int i = 0; i < 40; ++i)
            addJob("job-" + std::to_string(i));
        close();
    }

    std::filesystem::path aside(int number) { return file().string() + ".corrupt-" + std::to_string(number); }

    void expectReplaced()
    {
        open();
        EXPECT_EQ(store().state().kind, StoreState::Kind::Replaced);
        EXPECT_EQ(store().jobList(), "[]");
        addJob("afterwards");
        open();
        EXPECT_EQ(store().state().kind, StoreState::Kind::Ok);
        EXPECT_EQ(jobList().size(), 1u);
    }
};

TEST_F(StoreFileTest, anEmptyFileBecomesAStore)
{
    close();
    std::filesystem::remove(file());
    m_folder.write("jobs.sqlite", "");
    open();
    EXPECT_EQ(store().state().kind, StoreState::Kind::Ok);
    EXPECT_EQ(store().jobList(), "[]");
    EXPECT_FALSE(std::filesystem::exists(aside(1)));
}

TEST_F(StoreFileTest, aDatabaseWithoutAnythingBecomesAStore)
{
    close();
    std::filesystem::remove(file());
    execute("PRAGMA journal_mode=WAL; VACUUM;");
    ASSERT_GT(std::filesystem::file_size(file()), 0u);
    open();
    EXPECT_EQ(store().state().kind, StoreState::Kind::Ok);
    EXPECT_EQ(store().jobList(), "[]");
}

TEST_F(StoreFileTest, garbageIsPutAsideUntouched)
{
    close();
    const std::string garbage(20000, 'g');
    m_folder.write("jobs.sqlite", garbage);
    expectReplaced();
    EXPECT_EQ(contentOf(aside(1)), garbage);
}

TEST_F(StoreFileTest, aDatabaseOfAnotherProgramIsPutAsideUntouched)
{
    close();
    std::filesystem::remove(file());
    execute("CREATE TABLE theirs(x); INSERT INTO theirs VALUES('precious')");
    const std::string before = contentOf(file());
    expectReplaced();
    EXPECT_EQ(contentOf(aside(1)), before);
}

TEST_F(StoreFileTest, aCutFileIsPutAside)
{
    makeStore();
    std::filesystem::resize_file(file(), std::filesystem::file_size(file()) / 2);
    const std::string before = contentOf(file());
    expectReplaced();
    EXPECT_EQ(contentOf(aside(1)), before);
}

TEST_F(StoreFileTest, aDamagedPageIsPutAside)
{
    makeStore();
    std::string content = contentOf(file());
    ASSERT_GT(content.size(), 5 * 4096u);
    content.replace(2 * 4096, 3 * 4096, std::string(3 * 4096, '\x5a'));
    m_folder.write("jobs.sqlite", content);
    expectReplaced();
}

TEST_F(StoreFileTest, aStoreWithoutItsTablesIsPutAside)
{
    makeStore();
    execute("DROP TABLE setting");
    expectReplaced();
}

TEST_F(StoreFileTest, eachUnusableFileGetsANumberOfItsOwn)
{
    for (int number = 1; number <= 3; ++number) {
        close();
        m_folder.write("jobs.sqlite", "no database " + std::to_string(number));
        open();
        EXPECT_EQ(contentOf(aside(number)), "no database " + std::to_string(number));
    }
}

TEST_F(StoreFileTest, theLogThatBelongsToAnUnusableFileGoesWithIt)
{
    makeStore();
    open();
    addJob("in-the-log");
    const std::string log = contentOf(file().string() + "-wal");
    std::string content = contentOf(file());
    close();
    ASSERT_FALSE(log.empty());
    content.replace(2 * 4096, 3 * 4096, std::string(3 * 4096, '\x5a'));
    m_folder.write("jobs.sqlite", content);
    m_folder.write("jobs.sqlite-wal", log);
    expectReplaced();
    EXPECT_EQ(contentOf(aside(1)), content);
    EXPECT_EQ(contentOf(aside(1).string() + "-wal"), log);
}

TEST_F(StoreFileTest, aNewerStoreIsLeftAloneAndRefused)
{
    makeStore();
    execute("PRAGMA user_version=2");
    const std::string before = contentOf(file());
    EXPECT_THROW(open(), StoreRefused);
    EXPECT_EQ(contentOf(file()), before);
    EXPECT_FALSE(std::filesystem::exists(aside(1)));
}

TEST_F(StoreFileTest, theCountOfAReplacementDiffersFromTheLastOne)
{
    makeStore();
    open();
    const int before = store().changeCount();
    close();
    m_folder.write("jobs.sqlite", "no database");
    open();
    EXPECT_GE(std::abs(store().changeCount() - before), 2);
}

TEST_F(StoreFileTest, theStoreIsDurableAndMarkedAsOurs)
{
    SqliteDatabase database(file());
    EXPECT_EQ(database.queryText("PRAGMA journal_mode"), "wal");
    EXPECT_EQ(database.queryInteger("PRAGMA application_id"), 0x4a6f6253);
    EXPECT_EQ(database.queryInteger("PRAGMA user_version"), 1);
    OpenedStore opened = openStoreFile(file());
    EXPECT_EQ(opened.database.queryInteger("PRAGMA synchronous"), 2);
    EXPECT_EQ(opened.database.queryInteger("PRAGMA foreign_keys"), 1);
    EXPECT_EQ(opened.database.queryInteger("PRAGMA trusted_schema"), 0);
    EXPECT_EQ(opened.database.queryInteger("PRAGMA cell_size_check"), 1);
    EXPECT_EQ(opened.database.queryInteger("PRAGMA busy_timeout"), 2000);
}

TEST_F(StoreFileTest, aReaderCannotWrite)
{
    SqliteDatabase reader = openStoreReader(file());
    EXPECT_THROW(reader.execute("DELETE FROM job"), SqliteError);
}

TEST_F(StoreFileTest, closingLeavesOneTidyFile)
{
    addJob("a");
    close();
    EXPECT_FALSE(std::filesystem::exists(file().string() + "-wal"));
}

} // namespace
