#include "service/JobStore.h"

#include "service/UtcTime.h"
#include "tests/service/StoreFixture.h"

#include <functional>
#include <sqlite3.h>
#include <thread>

using namespace job_service;
using nlohmann::json;

namespace {

using Change = JobStore::Change;

class JobStoreTest : public jobmanager_test::StoreFixture
{
protected:
    /// How far the count moves while `action` runs.
    int movesBy(const std::function<void()>& action)
    {
        const int before = store().changeCount();
        action();
        return store().changeCount() - before;
    }

    void setCount(int count)
    {
        close();
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(file().c_str(), &database), SQLITE_OK);
        const std::string sql = "UPDATE state SET value='" + std::to_string(count) + "' WHERE name='change_count'";
        ASSERT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }
};

void nothing(JsonTree&)
{
}

TEST_F(JobStoreTest, aNewStoreIsEmpty)
{
    EXPECT_EQ(store().jobList(), "[]");
    EXPECT_EQ(store().activeJob(), "");
    EXPECT_EQ(store().groupType(), "job_order");
    EXPECT_TRUE(store().settings().empty());
    EXPECT_EQ(store().state().kind, StoreState::Kind::Ok);
    EXPECT_TRUE(isUtcText(store().state().since));
}

TEST_F(JobStoreTest, theCountOfANewStoreDoesNotBeginAtNought)
{
    EXPECT_GT(store().changeCount(), 1000000);
}

TEST_F(JobStoreTest, aJobIsThereOnceItIsCreated)
{
    EXPECT_EQ(movesBy([&] { addJob("a"); }), 1);
    EXPECT_EQ(document("a").at("details").at("id"), "a");
    EXPECT_EQ(summary("a").at("totalNumberOfRequiredTests"), 2);
    EXPECT_FALSE(store().document("b"));
}

TEST_F(JobStoreTest, aSecondJobOfTheSameIdIsRefused)
{
    addJob("a");
    const json before = document("a");
    EXPECT_EQ(movesBy([&] { EXPECT_FALSE(store().createJob(jobFromFile(R"({"details":{"id":"a"}})", utcNow()))); }), 0);
    EXPECT_EQ(document("a"), before);
}

TEST_F(JobStoreTest, theListIsNewestFirst)
{
    addJob("old", "2026-01-01T00:00:00.000Z");
    addJob("new", "2026-03-01T00:00:00.000Z");
    addJob("middle", "2026-02-01T00:00:00.000Z");
    addJob("alike", "2026-02-01T00:00:00.000Z");
    std::vector<std::string> ids;
    for (const json& entry : jobList())
        ids.push_back(entry.at("id"));
    EXPECT_EQ(ids, (std::vector<std::string>{ "new", "alike", "middle", "old" }));
}

TEST_F(JobStoreTest, addingManyIsOneChange)
{
    int number = 0;
    std::vector<std::string> kept;
    addJob("job-1");
    const auto next = [&]() -> std::optional<StoredJob> {
        if (number == 3)
            return std::nullopt;
        return jobFromFile(R"({"details":{"id":"job-)" + std::to_string(number++) + "\"}}", utcNow());
    };
    EXPECT_EQ(
        movesBy([&] { EXPECT_EQ(store().addJobs(next, [&](const std::string& id) { kept.push_back(id); }), 2u); }), 1);
    EXPECT_EQ(kept, std::vector<std::string>{ "job-1" });
    EXPECT_EQ(jobList().size(), 3u);
    EXPECT_EQ(document("job-1").at("tests").size(), 2u) << "the job that was there was replaced";
}

TEST_F(JobStoreTest, addingNothingMovesNothing)
{
    EXPECT_EQ(movesBy([&] { store().addJobs([] { return std::nullopt; }, [](const std::string&) {}); }), 0);
}

TEST_F(JobStoreTest, aChangeIsOneStepAndSetsTheTimeOfModification)
{
    addJob("a");
    const std::string before = utcNow();
    EXPECT_EQ(movesBy([&] {
        EXPECT_EQ(
            store().changeJob("a", [](JsonTree& tree) { tree.set("x", JsonTree::fromBool(true)); }), Change::Done);
    }),
        1);
    EXPECT_EQ(document("a").at("x"), true);
    const std::string modifiedOn = document("a").at("details").at("modifiedOn");
    EXPECT_TRUE(isUtcText(modifiedOn));
    EXPECT_GE(modifiedOn, before);
    EXPECT_EQ(summary("a").at("modifiedOn"), modifiedOn);
}

TEST_F(JobStoreTest, aChangeThatAltersNothingIsAStepToo)
{
    addJob("a");
    EXPECT_EQ(movesBy([&] { store().changeJob("a", nothing); }), 1);
}

TEST_F(JobStoreTest, aChangedJobMovesToTheFrontOfTheList)
{
    addJob("a", "2020-01-01T00:00:00.000Z");
    addJob("b", "2020-01-02T00:00:00.000Z");
    store().changeJob("a", nothing);
    EXPECT_EQ(jobList().at(0).at("id"), "a");
}

TEST_F(JobStoreTest, anUnknownJobIsNotChanged)
{
    EXPECT_EQ(movesBy([&] { EXPECT_EQ(store().changeJob("a", nothing), Change::NoSuchJob); }), 0);
}

TEST_F(JobStoreTest, aChangeThatThrowsChangesNothing)
{
    addJob("a");
    const std::string before = store().document("a").value();
    EXPECT_EQ(movesBy([&] {
        EXPECT_THROW(store().changeJob("a",
                         [](JsonTree& tree) {
                             tree.set("x", JsonTree());
                             throw std::runtime_error("no");
                         }),
            std::runtime_error);
    }),
        0);
    EXPECT_EQ(store().document("a"), before);
}

TEST_F(JobStoreTest, aChangeThatBreaksTheFormatIsRefused)
{
    addJob("a");
    const std::string before = store().document("a").value();
    EXPECT_EQ(movesBy([&] {
        EXPECT_THROW(store().changeJob("a", [](JsonTree& tree) { tree.set("tests", JsonTree::fromText("3")); }),
            DocumentRefused);
    }),
        0);
    EXPECT_EQ(store().document("a"), before);
}

TEST_F(JobStoreTest, theCountsOfTheSummaryFollowTheDocument)
{
    addJob("a");
    const auto complete = [](JsonTree& tree, const char* uiIndex) {
        findTest(tree, uiIndex)->set("results", JsonTree::fromText(R"({"status":"pass","time":"t"})"));
    };
    store().changeJob("a", [&](JsonTree& tree) { complete(tree, "1_0"); });
    EXPECT_EQ(summary("a").at("numberOfCompletedRequiredTests"), 0);
    store().changeJob("a", [&](JsonTree& tree) { complete(tree, "1_1"); });
    EXPECT_EQ(summary("a").at("numberOfCompletedRequiredTests"), 1);
    store().changeJob("a", [&](JsonTree& tree) { complete(tree, "0"); });
    EXPECT_EQ(summary("a").at("numberOfCompletedRequiredTests"), 2);
    store().changeJob("a", [&](JsonTree& tree) { findTest(tree, "0")->remove("results"); });
    EXPECT_EQ(summary("a").at("numberOfCompletedRequiredTests"), 1);
}

TEST_F(JobStoreTest, aRemovedJobIsGone)
{
    addJob("a");
    EXPECT_EQ(movesBy([&] { EXPECT_EQ(store().removeJob("a"), Change::Done); }), 1);
    EXPECT_FALSE(store().document("a"));
    EXPECT_EQ(store().jobList(), "[]");
    EXPECT_EQ(movesBy([&] { EXPECT_EQ(store().removeJob("a"), Change::NoSuchJob); }), 0);
}

TEST_F(JobStoreTest, aJobCanBecomeActiveAndNoneCan)
{
    addJob("a");
    EXPECT_EQ(movesBy([&] { EXPECT_EQ(store().setActiveJob("a"), Change::Done); }), 1);
    EXPECT_EQ(store().activeJob(), "a");
    EXPECT_EQ(movesBy([&] { EXPECT_EQ(store().setActiveJob("a"), Change::Done); }), 1) << "an accepted write";
    EXPECT_EQ(movesBy([&] { EXPECT_EQ(store().setActiveJob(""), Change::Done); }), 1);
    EXPECT_EQ(store().activeJob(), "");
}

TEST_F(JobStoreTest, anUnknownJobCannotBecomeActive)
{
    addJob("a");
    store().setActiveJob("a");
    EXPECT_EQ(movesBy([&] { EXPECT_EQ(store().setActiveJob("b"), Change::NoSuchJob); }), 0);
    EXPECT_EQ(store().activeJob(), "a");
}

TEST_F(JobStoreTest, removingTheActiveJobLeavesNone)
{
    addJob("a");
    addJob("b");
    store().setActiveJob("a");
    store().removeJob("b");
    EXPECT_EQ(store().activeJob(), "a");
    EXPECT_EQ(movesBy([&] { store().removeJob("a"); }), 1);
    EXPECT_EQ(store().activeJob(), "");
}

TEST_F(JobStoreTest, settingsGroupTypeAndTemplatesDoNotMoveTheCount)
{
    EXPECT_EQ(movesBy([&] {
        store().writeSetting("groupType", "1");
        store().writeSetting("groupType", "2");
        store().writeSetting("other", "");
        store().setGroupType("location");
        store().putTemplate("T", "{}");
    }),
        0);
    EXPECT_EQ(store().settings(), (std::map<std::string, std::string>{ { "groupType", "2" }, { "other", "" } }));
    EXPECT_EQ(store().groupType(), "location");
    EXPECT_EQ(store().templateDocument("T"), "{}");
    EXPECT_FALSE(store().templateDocument("U"));
}

TEST_F(JobStoreTest, everythingOutlivesARestart)
{
    addJob("a");
    store().setActiveJob("a");
    store().writeSetting("s", "v");
    store().setGroupType("testtype");
    store().putTemplate("T", "{}");
    const std::string list = store().jobList();
    const std::string text = store().document("a").value();
    open();
    EXPECT_EQ(store().jobList(), list);
    EXPECT_EQ(store().document("a"), text);
    EXPECT_EQ(store().activeJob(), "a");
    EXPECT_EQ(store().settings().at("s"), "v");
    EXPECT_EQ(store().groupType(), "testtype");
    EXPECT_EQ(store().templateDocument("T"), "{}");
}

TEST_F(JobStoreTest, eachStartMovesTheCountByTwo)
{
    addJob("a");
    EXPECT_EQ(movesBy([&] { open(); }), 2);
    EXPECT_EQ(movesBy([&] { open(); }), 2);
}

TEST_F(JobStoreTest, theCountGoesRoundIn31Bits)
{
    setCount(2147483645);
    open();
    EXPECT_EQ(store().changeCount(), 2147483647);
    addJob("a");
    EXPECT_EQ(store().changeCount(), 0);
    open();
    EXPECT_EQ(store().changeCount(), 2);
    setCount(2147483647);
    open();
    EXPECT_EQ(store().changeCount(), 1);
}

TEST_F(JobStoreTest, hostileTextsAreOnlyTexts)
{
    const std::string id = "'; DROP TABLE job; --\"<b>\xE4\xBD\x9C";
    const json file{ { "details", { { "id", id } } } };
    ASSERT_TRUE(store().createJob(jobFromFile(file.dump(), utcNow())));
    store().writeSetting(id, id);
    EXPECT_EQ(document(id).at("details").at("id"), id);
    EXPECT_EQ(summary(id).at("id"), id);
    EXPECT_EQ(store().settings().at(id), id);
    EXPECT_EQ(store().removeJob(id), Change::Done);
}

TEST_F(JobStoreTest, readersAndWritersOnManyThreadsSeeWholeChanges)
{
    addJob("a");
    const int before = store().changeCount();
    constexpr int writes = 20;
    const auto write = [&] {
        for (int i = 0; i < writes; ++i)
            store().changeJob("a", nothing);
    };
    const auto read = [&] {
        for (int i = 0; i < 10 * writes; ++i) {
            const json list = jobList();
            ASSERT_EQ(list.size(), 1u);
            ASSERT_TRUE(store().document("a"));
            ASSERT_GE(store().changeCount(), before);
        }
    };
    std::thread threads[] = { std::thread(write), std::thread(read), std::thread(write), std::thread(read) };
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(store().changeCount(), before + 2 * writes);
}

} // namespace
