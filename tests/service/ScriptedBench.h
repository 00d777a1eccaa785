#pragma once

#include "service/StopSignal.h"
#include "service/TestRun.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace jobmanager_test {

/// A bench whose starts and runs end when the test says so.
class ScriptedBench : public job_service::TestBench
{
public:
    /// Whether the next starts succeed.
    std::atomic<bool> startsWell{ true };
    /// Whether starts wait for letStart().
    std::atomic<bool> startsSlowly{ false };

    std::unique_ptr<job_service::TestRun> start(
        const job_service::TestToRun& test, const job_service::StopSignal& stop) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_started.push_back(test);
        m_changed.notify_all();
        while (startsSlowly && !stop.isRaised())
            m_changed.wait_for(lock, std::chrono::milliseconds(5));
        return startsWell && !stop.isRaised() ? std::make_unique<Run>(*this) : nullptr;
    }

    /// Waits until so many starts have been asked for.
    void waitForStarts(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [&] { return m_started.size() >= count; });
    }
    std::vector<job_service::TestToRun> started()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_started;
    }
    /// Ends the run that is under way, or the next one, with this.
    void end(job_service::TestOutcome outcome)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_outcome = std::move(outcome);
        }
        m_changed.notify_all();
    }
    void end(const std::string& status) { end({ status, job_service::JsonTree::emptyObject(), {} }); }

private:
    class Run : public job_service::TestRun
    {
    public:
        explicit Run(ScriptedBench& bench) : m_bench(bench) { }
        std::optional<job_service::TestOutcome> finish(const job_service::StopSignal& stop) override
        {
            std::unique_lock<std::mutex> lock(m_bench.m_mutex);
            while (!m_bench.m_outcome && !stop.isRaised())
                m_bench.m_changed.wait_for(lock, std::chrono::milliseconds(5));
            return std::exchange(m_bench.m_outcome, std::nullopt);
        }

    private:
        ScriptedBench& m_bench;
    };

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<job_service::TestToRun> m_started;
    std::optional<job_service::TestOutcome> m_outcome;
};

} // namespace jobmanager_test
