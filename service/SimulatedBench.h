#pragma once

#include "service/TestRun.h"

#include <chrono>
#include <cstdint>

namespace job_service {

/// Runs tests without an instrument: a run takes its time and ends in what simulatedOutcome() gives.
class SimulatedBench : public TestBench
{
public:
    struct Settings
    {
        /// From the launch to the start of the run.
        std::chrono::milliseconds startDuration{ 500 };
        std::chrono::milliseconds runDuration{ 3000 };
        std::uint32_t seed = 0;
    };

    explicit SimulatedBench(const Settings& settings) : m_settings(settings) { }

    std::unique_ptr<TestRun> start(const TestToRun& test, const StopSignal& stop) override;

private:
    const Settings m_settings;
};

} // namespace job_service
