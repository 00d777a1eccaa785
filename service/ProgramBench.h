#pragma once

#include "service/TestRun.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace job_service {

/// Runs tests by a program: one process a run, started by its arguments and never through a shell
/// (docs/job-service-api.md). It inherits no descriptor of the service, and neither it nor what it starts outlives the
/// run or the service.
class ProgramBench : public TestBench
{
public:
    struct Settings
    {
        /// The program; empty for none.
        std::filesystem::path program;
        std::vector<std::string> arguments;
        /// From the start of the program to its result.
        std::chrono::milliseconds longestRun = std::chrono::minutes(10);
    };

    explicit ProgramBench(Settings settings);

    std::unique_ptr<TestRun> start(const TestToRun& test, const StopSignal& stop) override;

private:
    const Settings m_settings;
};

} // namespace job_service
