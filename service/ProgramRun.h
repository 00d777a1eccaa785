#pragma once

#include "service/GuardedProcess.h"
#include "service/TestRun.h"

#include <chrono>
#include <string>

namespace job_service {

/// A run by a program that has started: hands it the test and takes its answer, as much as a part of a job may have.
class ProgramRun : public TestRun
{
public:
    /// `input` is what the program gets. It has to end within `longest`.
    ProgramRun(GuardedProcess process, std::string input, std::chrono::milliseconds longest);

    std::optional<TestOutcome> finish(const StopSignal& stop) override;

private:
    GuardedProcess m_process;
    const std::string m_input;
    std::size_t m_written = 0;
    const std::chrono::milliseconds m_longest;
    const std::chrono::steady_clock::time_point m_end;
    std::string m_output;
    std::string m_errors;

    enum class Wait { Ended, Stopped, TooLong, TooMuch };
    Wait exchange(const StopSignal& stop);
    void feed();
    void drain(FileHandle& from, std::string& into, std::size_t most);
    TestOutcome outcome(Wait wait);
};

} // namespace job_service
