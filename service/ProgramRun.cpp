#include "service/ProgramRun.h"

#include "service/Log.h"
#include "service/ProgramAnswer.h"
#include "service/StopSignal.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace job_service {

namespace {

using namespace std::chrono_literals;

/// Result data can hold a curve or a picture.
constexpr std::size_t mostOutput = 1024 * 1024;
/// Of what a program says on standard error, the beginning tells enough.
constexpr std::size_t mostErrors = 2048;

std::string secondsText(std::chrono::milliseconds duration)
{
    std::string text = std::to_string(duration / 1000ms);
    if (const auto rest = duration % 1000ms; rest > 0ms)
        text += "." + std::to_string(1000 + rest.count()).substr(1);
    return text;
}

/// How a program ended that did not end well; empty if it did.
std::string faultOf(int status)
{
    if (WIFSIGNALED(status))
        return "The test program died of signal " + std::to_string(WTERMSIG(status)) + ".";
    if (WEXITSTATUS(status) != 0)
        return "The test program ended with code " + std::to_string(WEXITSTATUS(status)) + ".";
    return {};
}

} // namespace

ProgramRun::ProgramRun(GuardedProcess process, std::string input, std::chrono::milliseconds longest)
    : m_process(std::move(process))
    , m_input(std::move(input))
    , m_longest(longest)
    , m_end(std::chrono::steady_clock::now() + longest)
{
}

std::optional<TestOutcome> ProgramRun::finish(const StopSignal& stop)
{
    const Wait wait = exchange(stop);
    if (wait == Wait::Stopped)
        return std::nullopt;
    TestOutcome result = outcome(wait);
    if (result.status.empty() && !m_errors.empty()) {
        std::replace(m_errors.begin(), m_errors.end(), '\n', ' ');
        logLine("the test program said: " + printable(m_errors));
    }
    return result;
}

TestOutcome ProgramRun::outcome(Wait wait)
{
    if (wait == Wait::TooLong)
        return TestOutcome::failed("The test program gave no result within " + secondsText(m_longest) + " seconds.");
    if (wait == Wait::TooMuch)
        return TestOutcome::failed("The test program wrote more than 1 MiB.");
    const std::string fault = faultOf(m_process.finish());
    return fault.empty() ? programAnswer(m_output) : TestOutcome::failed(fault);
}

ProgramRun::Wait ProgramRun::exchange(const StopSignal& stop)
{
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_end - std::chrono::steady_clock::now());
        if (left <= 0ms)
            return Wait::TooLong;
        // Descriptors that are closed are negative, which poll() passes over.
        pollfd waiting[] = { { stop.descriptor(), POLLIN, 0 }, { m_process.end(), POLLIN, 0 },
            { m_process.input.get(), POLLOUT, 0 }, { m_process.output.get(), POLLIN, 0 },
            { m_process.errors.get(), POLLIN, 0 } };
        const auto longest = std::min<std::chrono::milliseconds::rep>(left.count(), std::numeric_limits<int>::max());
        if (::poll(waiting, std::size(waiting), static_cast<int>(longest)) <= 0)
            continue;
        if (waiting[0].revents != 0)
            return Wait::Stopped;
        if (waiting[2].revents != 0)
            feed();
        drain(m_process.output, m_output, mostOutput + 1);
        drain(m_process.errors, m_errors, mostErrors);
        if (m_output.size() > mostOutput)
            return Wait::TooMuch;
        // What was written before the end has just been read.
        if (waiting[1].revents != 0)
            return Wait::Ended;
    }
}

void ProgramRun::feed()
{
    const ssize_t count = ::write(m_process.input.get(), m_input.data() + m_written, m_input.size() - m_written);
    if (count > 0)
        m_written += static_cast<std::size_t>(count);
    const bool isGone = count < 0 && errno != EAGAIN && errno != EINTR;
    if (isGone || m_written == m_input.size())
        m_process.input = FileHandle();
}

void ProgramRun::drain(FileHandle& from, std::string& into, std::size_t most)
{
    char buffer[65536];
    // A few rounds at a time: a program that never stops writing must not keep the rest waiting.
    for (int round = 0; from && round < 32; ++round) {
        const ssize_t count = ::read(from.get(), buffer, sizeof buffer);
        if (count < 0)
            return;
        if (count == 0)
            from = FileHandle();
        into.append(buffer, std::min(static_cast<std::size_t>(count), most - std::min(most, into.size())));
    }
}

} // namespace job_service
