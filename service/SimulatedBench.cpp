#include "service/SimulatedBench.h"

#include "service/SimulatedResult.h"
#include "service/StopSignal.h"

namespace job_service {

namespace {

class SimulatedRun : public TestRun
{
public:
    SimulatedRun(std::chrono::milliseconds duration, TestOutcome outcome)
        : m_duration(duration)
        , m_outcome(std::move(outcome))
    {
    }

    std::optional<TestOutcome> finish(const StopSignal& stop) override
    {
        if (stop.waitFor(m_duration))
            return std::nullopt;
        return std::move(m_outcome);
    }

private:
    const std::chrono::milliseconds m_duration;
    TestOutcome m_outcome;
};

} // namespace

std::unique_ptr<TestRun> SimulatedBench::start(const TestToRun& test, const StopSignal& stop)
{
    if (stop.waitFor(m_settings.startDuration))
        return nullptr;
    return std::make_unique<SimulatedRun>(m_settings.runDuration, simulatedOutcome(m_settings.seed, test));
}

} // namespace job_service
