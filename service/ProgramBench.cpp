#include "service/ProgramBench.h"

#include "service/GuardedProcess.h"
#include "service/Log.h"
#include "service/ProgramRun.h"

#include <system_error>

namespace job_service {

namespace {

/// What the program gets on its standard input.
std::string inputOf(const TestToRun& test)
{
    JsonTree input = JsonTree::emptyObject();
    input.set("jobId", JsonTree::fromString(test.jobId));
    input.set("uiIndex", JsonTree::fromString(test.uiIndex));
    input.set("test", test.test);
    if (test.location)
        input.set("location", *test.location);
    return input.text() + "\n";
}

ProgramBench::Settings withWholePath(ProgramBench::Settings settings)
{
    settings.program = std::filesystem::absolute(settings.program);
    return settings;
}

} // namespace

ProgramBench::ProgramBench(Settings settings) : m_settings(withWholePath(std::move(settings)))
{
}

std::unique_ptr<TestRun> ProgramBench::start(const TestToRun& test, const StopSignal& stop)
{
    std::vector<std::string> command{ m_settings.program.string() };
    command.insert(command.end(), m_settings.arguments.begin(), m_settings.arguments.end());
    try {
        GuardedProcess process(command);
        if (!process.waitForStart(stop, m_settings.longestRun))
            return nullptr;
        return std::make_unique<ProgramRun>(std::move(process), inputOf(test), m_settings.longestRun);
    } catch (const std::system_error& error) {
        logLine(std::string("the test program could not be started: ") + error.what());
        return nullptr;
    }
}

} // namespace job_service
