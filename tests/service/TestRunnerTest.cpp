#include "service/TestRunner.h"

#include "service/Instrument.h"
#include "service/UtcTime.h"
#include "tests/service/ScriptedBench.h"
#include "tests/service/StoreFixture.h"
#include "tests/support/Deadline.h"

#include <future>

using namespace job_service;
using namespace std::chrono_literals;
using jobmanager_test::stretched;
using nlohmann::json;

namespace {

constexpr const char* busy = "ERROR_CUSTOM_NONFATAL^Another test is still running. Wait until it has finished.";

/// A runner over a store with the active job "a", and a bench that does what the test says.
class TestRunnerTest : public jobmanager_test::StoreFixture
{
protected:
    const Instrument m_instrument = Instrument::standard();
    jobmanager_test::ScriptedBench m_bench;
    std::optional<TestRunner> m_runner;

    void SetUp() override
    {
        addJob("a");
        store().setActiveJob("a");
        m_runner.emplace(store(), m_instrument, m_bench);
    }
    void TearDown() override { m_runner.reset(); }

    std::string launch(const std::string& uiIndex) { return m_runner->launch(uiIndex); }
    /// Waits until the count is the given one, and fails if it never is.
    void waitForCount(int count)
    {
        const auto end = std::chrono::steady_clock::now() + stretched(20s);
        while (store().changeCount() != count && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        ASSERT_EQ(store().changeCount(), count);
    }
    /// Launches a test, which has to succeed, and lets its run end so.
    void run(const std::string& uiIndex, const TestOutcome& outcome)
    {
        const int before = store().changeCount();
        ASSERT_EQ(launch(uiIndex), "");
        m_bench.end(outcome);
        waitForCount(before + 1);
    }
    /// Launches a test as soon as the run before it, which leaves no trace, is over.
    std::string launchWhenFree(const std::string& uiIndex)
    {
        const auto end = std::chrono::steady_clock::now() + stretched(20s);
        std::string status = launch(uiIndex);
        while (status == busy && std::chrono::steady_clock::now() < end)
            status = launch(uiIndex);
        return status;
    }
    json results(const std::string& pointer)
    {
        return document("a").value(json::json_pointer(pointer + "/results"), json());
    }
    void putResults(const std::string& uiIndex, const std::string& text)
    {
        store().changeJob(
            "a", [&](JsonTree& document) { findTest(document, uiIndex)->set("results", JsonTree::fromText(text)); });
    }
    static TestOutcome outcome(const std::string& status, const std::string& data = "{}")
    {
        return { status, JsonTree::fromText(data), {} };
    }
};

TEST_F(TestRunnerTest, theResultOfARunLandsInTheTestAndMovesTheCountByOne)
{
    const std::string before = utcNow();
    run("0", outcome("pass", R"({"lossDb":1.10})"));
    const json recorded = results("/tests/0");
    EXPECT_EQ(recorded.at("status"), "pass");
    EXPECT_EQ(recorded.at("data"), (json{ { "lossDb", 1.1 } }));
    EXPECT_TRUE(isUtcText(recorded.at("time").get<std::string>()));
    EXPECT_GE(recorded.at("time"), before);
    EXPECT_EQ(recorded.size(), 3u);
    EXPECT_NE(store().document("a")->find("1.10"), std::string::npos) << "numbers stay as they came";
    EXPECT_EQ(summary("a").at("numberOfCompletedRequiredTests"), 1);
}

TEST_F(TestRunnerTest, theResultOfALocationLandsThere)
{
    run("1_1", outcome("fail"));
    EXPECT_EQ(results("/tests/1/testLocations/1").at("status"), "fail");
    EXPECT_EQ(results("/tests/1/testLocations/0"), json());
    EXPECT_EQ(results("/tests/1"), json());
}

TEST_F(TestRunnerTest, theBenchGetsTheTestAndItsLocation)
{
    run("0", outcome("pass"));
    run("1_1", outcome("pass"));
    const std::vector<TestToRun> started = m_bench.started();
    ASSERT_EQ(started.size(), 2u);
    EXPECT_EQ(started[0].jobId, "a");
    EXPECT_EQ(started[0].uiIndex, "0");
    EXPECT_EQ(json::parse(started[0].test.text()), (json{ { "testType", "otdr" }, { "uiIndex", "0" } }));
    EXPECT_FALSE(started[0].location);
    EXPECT_EQ(json::parse(started[1].test.text()).at("testType"), "power");
    EXPECT_EQ(json::parse(started[1].location->text()), (json{ { "location", "B" }, { "uiIndex", "1_1" } }));
}

TEST_F(TestRunnerTest, aLaunchMovesNoCount)
{
    const int before = store().changeCount();
    EXPECT_EQ(launch("0"), "");
    EXPECT_EQ(store().changeCount(), before);
    EXPECT_EQ(results("/tests/0"), json());
}

TEST_F(TestRunnerTest, whatIsNotThereIsNotFound)
{
    for (const char* uiIndex : { "2", "0_0", "1_2", "00", "01_0", "1_00", "99999999999999999999" })
        EXPECT_EQ(launch(uiIndex), "ERROR_TEST_NOT_FOUND") << uiIndex;
    store().setActiveJob("");
    EXPECT_EQ(launch("0"), "ERROR_TEST_NOT_FOUND");
    EXPECT_TRUE(m_bench.started().empty());
}

TEST_F(TestRunnerTest, whatIsNoIndexStringIsRefusedAsSuch)
{
    for (const char* uiIndex : { "", "x", "-1", "_5", "1_", "1_2_3", " 1", "0x1", "1.0" })
        EXPECT_EQ(launch(uiIndex), "ERROR_INVALID_LAUNCH_PARAMETERS") << uiIndex;
    EXPECT_EQ(launch(std::string(10000, '1') + "_"), "ERROR_INVALID_LAUNCH_PARAMETERS");
    EXPECT_TRUE(m_bench.started().empty());
}

TEST_F(TestRunnerTest, aManualStepIsNotLaunched)
{
    store().changeJob(
        "a", [](JsonTree& document) { findTest(document, "0")->set("testType", JsonTree::fromString("manual")); });
    EXPECT_EQ(launch("0"), "ERROR_CUSTOM_NONFATAL^This is a manual step. Answer its question instead of launching it.");
    EXPECT_EQ(launch("1_0"), "") << "the refusal left nothing in the way";
}

TEST_F(TestRunnerTest, aStartThatFailsIsToldAndLeavesNothingInTheWay)
{
    m_bench.startsWell = false;
    EXPECT_EQ(launch("0"), "ERROR_CAN_LAUNCH_FAILED_TO_RUN");
    m_bench.startsWell = true;
    EXPECT_EQ(launch("0"), "");
}

TEST_F(TestRunnerTest, oneTestRunsAtATime)
{
    EXPECT_EQ(launch("0"), "");
    EXPECT_EQ(launch("0"), busy);
    EXPECT_EQ(launch("1_0"), busy);
    EXPECT_EQ(launch("99"), busy);
    EXPECT_EQ(m_bench.started().size(), 1u);
    const int before = store().changeCount();
    m_bench.end("pass");
    waitForCount(before + 1);
    EXPECT_EQ(launch("1_0"), "");
}

/// Who sees the count move launches the next test at once: the last run must not be in the way.
TEST_F(TestRunnerTest, theNextTestCanBeLaunchedAsSoonAsTheResultShows)
{
    for (int round = 0; round < 50; ++round)
        run("0", outcome("pass"));
}

TEST_F(TestRunnerTest, whileATestStartsAnotherLaunchIsRefusedAtOnce)
{
    m_bench.startsSlowly = true;
    auto first = std::async(std::launch::async, [this] { return launch("0"); });
    m_bench.waitForStarts(1);
    EXPECT_EQ(launch("1_0"), busy);
    m_bench.startsSlowly = false;
    EXPECT_EQ(first.get(), "");
}

TEST_F(TestRunnerTest, aRunBelongsToTheJobThatWasActiveAtItsLaunch)
{
    addJob("b");
    const int before = store().changeCount();
    EXPECT_EQ(launch("0"), "");
    store().setActiveJob("b");
    m_bench.end("pass");
    waitForCount(before + 2);
    EXPECT_EQ(results("/tests/0").at("status"), "pass");
    EXPECT_FALSE(document("b").at("tests")[0].contains("results"));
}

TEST_F(TestRunnerTest, anArchivedJobGetsItsResult)
{
    EXPECT_EQ(launch("0"), "");
    store().changeJob("a", [](JsonTree& document) { detailsOf(document).set("archived", JsonTree::fromBool(true)); });
    const int before = store().changeCount();
    m_bench.end("pass");
    waitForCount(before + 1);
    EXPECT_EQ(results("/tests/0").at("status"), "pass");
    EXPECT_EQ(summary("a").at("archived"), true);
}

TEST_F(TestRunnerTest, theResultOfADeletedJobIsDropped)
{
    addJob("b");
    EXPECT_EQ(launch("0"), "");
    store().removeJob("a");
    store().setActiveJob("b");
    const int before = store().changeCount();
    m_bench.end("pass");
    EXPECT_EQ(launchWhenFree("1_0"), "");
    EXPECT_EQ(store().changeCount(), before);
    EXPECT_FALSE(store().document("a"));
    EXPECT_FALSE(document("b").at("tests")[0].contains("results"));
}

/// A job with the same number and tests, but another one.
TEST_F(TestRunnerTest, theResultDoesNotLandInAJobThatWasMadeAnewUnderTheId)
{
    const auto make = [this](const char* now) {
        ASSERT_TRUE(store().createJob(jobFromTemplate({ "t", "", false }, R"({"tests":[{"testType":"x"}]})", now)));
        store().setActiveJob("t");
    };
    make("2026-03-01T08:15:00.000Z");
    EXPECT_EQ(launch("0"), "");
    store().removeJob("t");
    make("2026-03-01T08:15:00.001Z");
    const int before = store().changeCount();
    m_bench.end("pass");
    EXPECT_EQ(launchWhenFree("0"), "");
    EXPECT_EQ(store().changeCount(), before);
    EXPECT_FALSE(document("t").at("tests")[0].contains("results"));
}

TEST_F(TestRunnerTest, aVerdictReplacesTheResultsAndKeepsTheMarkOfAnAddedTest)
{
    putResults("0", R"({"status":"fail","time":"t","response":"r","data":{"old":1,"ijm_additionalTest":true},
        "error":{"time":"t","message":"m"}})");
    run("0", outcome("pass", R"({"new":2})"));
    const json recorded = results("/tests/0");
    EXPECT_EQ(recorded.at("data"), (json{ { "new", 2 }, { "ijm_additionalTest", true } }));
    EXPECT_EQ(recorded.size(), 3u) << recorded;
}

TEST_F(TestRunnerTest, aRunWithoutAVerdictTakesNoneAway)
{
    putResults("0", R"({"status":"pass","time":"t","data":{"lossDb":1}})");
    run("0", TestOutcome::failed("It broke."));
    const json recorded = results("/tests/0");
    EXPECT_EQ(recorded.at("status"), "pass");
    EXPECT_EQ(recorded.at("time"), "t");
    EXPECT_EQ(recorded.at("data"), (json{ { "lossDb", 1 } }));
    EXPECT_EQ(recorded.at("error").at("message"), "It broke.");
    EXPECT_TRUE(isUtcText(recorded.at("error").at("time").get<std::string>()));
}

TEST_F(TestRunnerTest, aRunWithoutAVerdictIsAnErrorWhereThereIsNone)
{
    run("0", TestOutcome::failed("It \"broke\"\nagain."));
    EXPECT_EQ(results("/tests/0").at("status"), "error");
    EXPECT_EQ(results("/tests/0").at("error").at("message"), "It \"broke\"\nagain.");
    const std::string firstTime = results("/tests/0").at("time");
    EXPECT_TRUE(isUtcText(firstTime));
    run("0", TestOutcome::failed("Once more."));
    EXPECT_EQ(results("/tests/0").at("status"), "error");
    EXPECT_GE(results("/tests/0").at("time"), firstTime);
    EXPECT_EQ(results("/tests/0").at("error").at("message"), "Once more.");
    putResults("0", R"({"status":"","time":""})");
    run("0", TestOutcome::failed("And again."));
    EXPECT_EQ(results("/tests/0").at("status"), "error");
}

TEST_F(TestRunnerTest, aResultThatDoesNotFitIntoTheJobIsNoVerdict)
{
    const auto nested = [](std::size_t depth) {
        return R"({"x":)" + std::string(depth, '[') + std::string(depth, ']') + "}";
    };
    run("0", outcome("pass", nested(70)));
    EXPECT_EQ(results("/tests/0").at("status"), "error");
    EXPECT_EQ(results("/tests/0").at("error").at("message"), "The result does not fit into the job.");
}

TEST_F(TestRunnerTest, stoppingEndsARunWithoutAResult)
{
    const int before = store().changeCount();
    EXPECT_EQ(launch("0"), "");
    m_runner.reset();
    EXPECT_EQ(store().changeCount(), before);
    EXPECT_EQ(results("/tests/0"), json());
    m_runner.emplace(store(), m_instrument, m_bench);
    EXPECT_EQ(launch("0"), "") << "the test can be launched again";
}

TEST_F(TestRunnerTest, stoppingEndsAStartAndAllowsNoOther)
{
    m_bench.startsSlowly = true;
    auto first = std::async(std::launch::async, [this] { return launch("0"); });
    m_bench.waitForStarts(1);
    m_runner->stop();
    EXPECT_EQ(first.get(), "ERROR_CAN_LAUNCH_FAILED_TO_RUN");
    EXPECT_EQ(launch("0"), "ERROR_CAN_LAUNCH_FAILED_TO_RUN");
}

} // namespace
