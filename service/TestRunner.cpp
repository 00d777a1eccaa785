#include "service/TestRunner.h"

#include "service/JobDocument.h"
#include "service/LaunchCheck.h"
#include "service/LaunchStatus.h"
#include "service/Log.h"
#include "service/SqliteError.h"
#include "service/TestResults.h"
#include "service/UtcTime.h"

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

namespace job_service {

namespace {

using namespace std::chrono_literals;

constexpr const char* busySentence = "Another test is still running. Wait until it has finished.";
constexpr const char* manualSentence = "This is a manual step. Answer its question instead of launching it.";

/// Between attempts to store a result for which there is no room.
constexpr auto retryPause = 1s;

/// The test of a result is no longer there.
class TargetGone : public std::exception
{
};

bool isNumber(std::string_view text)
{
    return !text.empty()
        && std::all_of(text.begin(), text.end(), [](unsigned char character) { return std::isdigit(character); });
}

/// "2" or "2_1"
bool isIndexString(std::string_view text)
{
    const std::size_t separator = text.find('_');
    return isNumber(text.substr(0, separator))
        && (separator == std::string_view::npos || isNumber(text.substr(separator + 1)));
}

std::string memberText(const JsonTree& object, std::string_view name)
{
    const JsonTree* member = object.find(name);
    return member ? member->stringValue() : std::string();
}

/// For the log.
std::string nameOf(const TestToRun& test)
{
    return "test " + test.uiIndex + " of job " + printable(test.jobId);
}

/// Takes the test or location with this index string out of a document.
std::optional<TestToRun> testToRun(const std::string& jobId, JsonTree& document, const std::string& uiIndex)
{
    const JsonTree* target = findTest(document, uiIndex);
    if (!target)
        return std::nullopt;
    const std::size_t separator = uiIndex.find('_');
    TestToRun test{ jobId, memberText(detailsOf(document), "timestamp"), uiIndex,
        *findTest(document, uiIndex.substr(0, separator)), {} };
    if (separator != std::string::npos)
        test.location = *target;
    return test;
}

/// Whether a document that was read anew still holds what was launched: a job that was made anew under its id is
/// another one.
bool isSame(const std::optional<TestToRun>& now, const TestToRun& launched)
{
    return now && now->jobTimestamp == launched.jobTimestamp
        && memberText(now->test, "testType") == memberText(launched.test, "testType")
        && memberText(now->target(), "location") == memberText(launched.target(), "location");
}

} // namespace

/// The right to run a test. Gives it back at the end, unless a run has taken it over.
class TestRunner::Slot
{
public:
    explicit Slot(TestRunner& runner) : m_runner(runner) { }
    ~Slot()
    {
        if (m_held)
            m_runner.setState(State::Idle);
    }
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    void passOn() { m_held = false; }

private:
    TestRunner& m_runner;
    bool m_held = true;
};

TestRunner::TestRunner(JobStore& store, const Instrument& instrument, TestBench& bench)
    : m_store(store)
    , m_instrument(instrument)
    , m_bench(bench)
{
}

TestRunner::~TestRunner()
{
    stop();
    if (m_thread.joinable())
        m_thread.join();
}

void TestRunner::stop()
{
    m_stop.raise();
}

std::string TestRunner::launch(const std::string& uiIndex)
{
    if (!take())
        return m_stop.isRaised() ? launch_status::failedToRun() : launch_status::customNonfatal(busySentence);
    Slot slot(*this);
    return launchNow(uiIndex, slot);
}

bool TestRunner::take()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    // Who has seen a result in the store and launches the next test at once must not find the last one in the way.
    m_stateChanged.wait_for(lock, 1s, [this] { return m_state != State::Recording; });
    if (m_state != State::Idle || m_stop.isRaised())
        return false;
    m_state = State::Busy;
    return true;
}

void TestRunner::setState(State state)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_state = state;
    }
    m_stateChanged.notify_all();
}

std::string TestRunner::launchNow(const std::string& uiIndex, Slot& slot)
{
    if (!isIndexString(uiIndex))
        return launch_status::invalidLaunchParameters();
    const std::optional<TestToRun> test = testOfActiveJob(uiIndex);
    if (!test)
        return launch_status::testNotFound();
    if (isManual(test->test))
        return launch_status::customNonfatal(manualSentence);
    std::string obstacle = launchObstacle(m_instrument, nlohmann::json::parse(test->test.text()));
    if (!obstacle.empty())
        return obstacle;
    std::unique_ptr<TestRun> started = m_bench.start(*test, m_stop);
    if (!started)
        return launch_status::failedToRun();

    if (m_thread.joinable())
        m_thread.join();
    // A run that ends at once must not let the next launch at the thread object before it is whole.
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_thread =
        std::thread([this, test = *test, started = std::move(started)]() mutable { run(test, std::move(started)); });
    slot.passOn();
    return {};
}

std::optional<TestToRun> TestRunner::testOfActiveJob(const std::string& uiIndex) const
{
    const std::string jobId = m_store.activeJob();
    const std::optional<std::string> text = m_store.document(jobId);
    if (!text)
        return std::nullopt;
    JsonTree document = JsonTree::fromText(*text);
    return testToRun(jobId, document, uiIndex);
}

void TestRunner::run(const TestToRun& test, std::unique_ptr<TestRun> run)
{
    try {
        const std::optional<TestOutcome> outcome = run->finish(m_stop);
        run.reset();
        if (outcome) {
            setState(State::Recording);
            record(test, *outcome);
        }
    } catch (const std::exception& error) {
        logLine("a run was lost: " + printable(error.what()));
    }
    setState(State::Idle);
}

void TestRunner::record(const TestToRun& test, const TestOutcome& outcome)
{
    const std::string time = utcNow();
    if (outcome.status.empty())
        logLine(nameOf(test) + " came to no verdict: " + printable(outcome.failure));
    while (!tryRecord(test, outcome, time)) {
        if (m_stop.waitFor(retryPause))
            return;
    }
}

bool TestRunner::tryRecord(const TestToRun& test, const TestOutcome& outcome, const std::string& time)
{
    const auto patch = [&](JsonTree& document) {
        if (!isSame(testToRun(test.jobId, document, test.uiIndex), test))
            throw TargetGone();
        recordOutcome(*findTest(document, test.uiIndex), outcome, time);
    };
    try {
        if (m_store.changeJob(test.jobId, patch) == JobStore::Change::NoSuchJob)
            throw TargetGone();
    } catch (const TargetGone&) {
        logLine("the result of " + nameOf(test) + " is dropped: it is no longer there");
    } catch (const DocumentRefused& refused) {
        logLine("the result of " + nameOf(test) + " does not fit into the job: " + refused.what());
        if (!outcome.status.empty())
            return tryRecord(test, TestOutcome::failed("The result does not fit into the job."), time);
    } catch (const SqliteError& error) {
        logLine("the result of " + nameOf(test) + " could not be stored: " + error.what());
        return error.isDamage();
    }
    return true;
}

} // namespace job_service
