#pragma once

#include "service/JobStore.h"
#include "service/StopSignal.h"
#include "service/TestRun.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace job_service {

struct Instrument;

/// Runs the tests of the active job, one at a time, and records what comes of them.
///
/// A run belongs to the job that was active at its launch, whichever is active later. Its result is one change of that
/// job; it is dropped if the job is gone by then, or no longer has the test.
class TestRunner
{
public:
    /// All three must outlive the object. `instrument` is what tests are checked against before they start.
    TestRunner(JobStore& store, const Instrument& instrument, TestBench& bench);
    /// As stop(); then waits for the run to end.
    ~TestRunner();
    TestRunner(const TestRunner&) = delete;
    TestRunner& operator=(const TestRunner&) = delete;

    /// Launches the test or location with this index string. Returns the status of the launch: empty once the run has
    /// started (LaunchStatus.h). Waits for the start, but not for another run. Safe for concurrent use.
    /// Throws SqliteError.
    std::string launch(const std::string& uiIndex);

    /// Ends starts and runs that are under way, without a result, and allows no further ones.
    void stop();

private:
    enum class State {
        Idle,
        /// A test is starting or running.
        Busy,
        /// A run has ended, and its result is on the way into the store.
        Recording
    };
    class Slot;

    JobStore& m_store;
    const Instrument& m_instrument;
    TestBench& m_bench;
    StopSignal m_stop;
    std::mutex m_mutex;
    std::condition_variable m_stateChanged;
    State m_state = State::Idle;
    /// Belongs to whoever has made the state Busy.
    std::thread m_thread;

    bool take();
    void setState(State state);
    std::string launchNow(const std::string& uiIndex, Slot& slot);
    std::optional<TestToRun> testOfActiveJob(const std::string& uiIndex) const;
    void run(const TestToRun& test, std::unique_ptr<TestRun> run);
    /// Tries until the store takes the outcome, which waits for room if there is none.
    void record(const TestToRun& test, const TestOutcome& outcome);
    /// Whether no further attempt is needed.
    bool tryRecord(const TestToRun& test, const TestOutcome& outcome, const std::string& time);
};

} // namespace job_service
