// Launching tests over HTTP, with the service as a process.

#include "tests/service/LaunchFixture.h"

#include <future>
#include <sys/resource.h>

using namespace jobmanager_test;

namespace {

class LaunchTest : public LaunchFixture
{
protected:
    /// Starts the service with tests that run until the gate is opened.
    void startWithGate()
    {
        start({ "--test-command", "/bin/sh", "--test-argument=-c", "--test-argument",
            R"(while ! [ -e "$1" ]; do sleep 0.01; done; printf '{"status":"pass"}')", "--test-argument", "sh",
            "--test-argument", (m_files.path() / "gate").string() });
    }
    void openGate() { m_files.write("gate", ""); }

    /// The results after three runs with this seed, on a store of its own.
    json resultsOfThreeRuns(const std::string& seed, const std::string& dataFolder)
    {
        m_service.setDataFolder(m_files.path() / dataFolder);
        start({ "--start-seconds", "0", "--run-seconds", "0", "--seed", seed });
        for (int run = 0; run < 3; ++run) {
            const int before = changeCount();
            EXPECT_EQ(launch("0"), started);
            waitForCount(before + 1);
        }
        json recorded = results("/tests/0");
        recorded.erase("time");
        EXPECT_EQ(m_service.terminate(), 0);
        return recorded;
    }
};

TEST_F(LaunchTest, theResultComesByTheChangeCount)
{
    start({ "--start-seconds", "0", "--run-seconds", "0.05" });
    const int before = changeCount();
    EXPECT_EQ(launch("1_1"), started);
    waitForCount(before + 1);
    EXPECT_EQ(results("/tests/1/testLocations/1").at("data").at("simulated"), true);
    EXPECT_EQ(launch("0"), started);
}

TEST_F(LaunchTest, whileATestRunsNoOtherIsLaunched)
{
    start({ "--start-seconds", "0", "--run-seconds", "86400" });
    EXPECT_EQ(launch("1_1"), started);
    for (const char* uiIndex : { "0", "1_1", "99", "x" })
        EXPECT_EQ(launch(uiIndex), busy);
}

TEST_F(LaunchTest, theSameSeedGivesTheSameResults)
{
    const json first = resultsOfThreeRuns("7", "first");
    EXPECT_EQ(first.at("data").at("run"), 3);
    EXPECT_EQ(resultsOfThreeRuns("7", "second"), first);
    EXPECT_NE(resultsOfThreeRuns("8", "third"), first);
}

TEST_F(LaunchTest, whatIsNotThereIsNotFound)
{
    start({});
    EXPECT_EQ(launch("2"), refused("ERROR_TEST_NOT_FOUND"));
    EXPECT_EQ(launch("x"), refused("ERROR_INVALID_LAUNCH_PARAMETERS"));
    EXPECT_EQ(call("PUT", "/active-job", R"({"id":""})").status, 204);
    EXPECT_EQ(launch("0"), refused("ERROR_TEST_NOT_FOUND"));
}

TEST_F(LaunchTest, aSlowStartDelaysNoOtherRequest)
{
    start({ "--start-seconds", "86400" });
    // What looks whether the launch is under way, with an index that starts nothing, can itself be in its way.
    auto launching = std::async(std::launch::async, [this] {
        json answer = busy;
        while (answer == busy)
            answer = launch("0");
        return answer;
    });
    waitUntil([this] { return launch("x") == busy; });
    const int before = changeCount();
    const auto begin = Clock::now();
    EXPECT_EQ(call("GET", "/jobs/a").status, 200);
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"b"})").status, 201);
    EXPECT_EQ(call("PUT", "/jobs/a/tests/0/results", R"({"status":"pass","time":"t"})").status, 204);
    EXPECT_EQ(call("DELETE", "/jobs/a").status, 204);
    EXPECT_EQ(changeCount(), before + 3);
    EXPECT_LT(Clock::now() - begin, stretched(5s));
    EXPECT_EQ(m_service.terminate(), 0) << "nor does it hold up the end";
    EXPECT_EQ(launching.get(), refused("ERROR_CAN_LAUNCH_FAILED_TO_RUN"));
}

TEST_F(LaunchTest, terminationDoesNotWaitForARun)
{
    start({ "--start-seconds", "0", "--run-seconds", "86400" });
    EXPECT_EQ(launch("0"), started);
    const auto begin = Clock::now();
    EXPECT_EQ(m_service.terminate(), 0);
    EXPECT_LT(Clock::now() - begin, stretched(5s));
    ASSERT_TRUE(m_service.start()) << m_service.log();
    EXPECT_EQ(results("/tests/0"), json());
}

TEST_F(LaunchTest, afterAKillDuringARunNothingIsLeftAndTheTestCanBeLaunchedAgain)
{
    start({ "--start-seconds", "0", "--run-seconds", "86400" });
    const json before = get("/jobs/a");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(launch("0"), started);
        ASSERT_TRUE(m_service.restart()) << m_service.log();
        EXPECT_EQ(get("/jobs/a"), before);
        EXPECT_EQ(get("/active-job").at("id"), "a");
        EXPECT_EQ(get("/status").at("store"), "ok");
    }
    m_service.kill();
    start({ "--start-seconds", "0", "--run-seconds", "0" });
    const int count = changeCount();
    EXPECT_EQ(launch("0"), started);
    waitForCount(count + 1);
    EXPECT_EQ(results("/tests/0").at("data").at("run"), 1);
}

TEST_F(LaunchTest, theResultOfAJobThatIsDeletedDuringTheRunIsDropped)
{
    startWithGate();
    EXPECT_EQ(launch("0"), started);
    EXPECT_EQ(call("DELETE", "/jobs/a").status, 204);
    const int before = changeCount();
    openGate();
    waitUntil([this] { return logTells("the result of test 0 of job a is dropped: it is no longer there"); });
    EXPECT_EQ(changeCount(), before);
    EXPECT_EQ(call("GET", "/jobs/a").status, 404);
}

TEST_F(LaunchTest, aJobThatIsArchivedDuringTheRunGetsItsResult)
{
    startWithGate();
    EXPECT_EQ(launch("0"), started);
    const int before = changeCount();
    EXPECT_EQ(call("POST", "/jobs/a/archive").status, 204);
    openGate();
    waitForCount(before + 2);
    EXPECT_EQ(results("/tests/0").at("status"), "pass");
    EXPECT_EQ(launch("0"), started) << "it is still the active job";
}

/// No file of the service may grow beyond the log of its store as it is.
TEST_F(LaunchTest, aResultWaitsForRoomAndOtherLaunchesForTheResult)
{
    start({ "--start-seconds", "0", "--run-seconds", "0" });
    const rlimit noRoom{ std::filesystem::file_size(m_service.dataFolder() / "jobs.sqlite-wal"), RLIM_INFINITY };
    const rlimit room{ RLIM_INFINITY, RLIM_INFINITY };
    const int before = changeCount();
    ASSERT_EQ(::prlimit(m_service.pid(), RLIMIT_FSIZE, &noRoom, nullptr), 0);
    EXPECT_EQ(launch("0"), started);
    waitUntil([this] { return logTells("the result of test 0 of job a could not be stored"); });
    EXPECT_EQ(launch("1_0"), busy);
    EXPECT_EQ(changeCount(), before);
    ASSERT_EQ(::prlimit(m_service.pid(), RLIMIT_FSIZE, &room, nullptr), 0);
    waitForCount(before + 1);
    EXPECT_EQ(results("/tests/0").at("data").at("run"), 1);
    EXPECT_EQ(launch("1_0"), started);
}

} // namespace
