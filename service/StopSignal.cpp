#include "service/StopSignal.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace job_service {

StopSignal::StopSignal() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "no descriptor for a signal");
}

StopSignal::~StopSignal()
{
    ::close(m_descriptor);
}

void StopSignal::raise() noexcept
{
    // Fails only where the signal is raised already, beyond counting.
    ::eventfd_write(m_descriptor, 1);
}

bool StopSignal::isRaised() const noexcept
{
    return waitFor(std::chrono::milliseconds(0));
}

bool StopSignal::waitFor(std::chrono::milliseconds duration) const noexcept
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds longest(std::numeric_limits<int>::max());
    const Clock::time_point end = Clock::now() + duration;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd waiting{ m_descriptor, POLLIN, 0 };
        const auto milliseconds = std::clamp(left, std::chrono::milliseconds(0), longest).count();
        if (::poll(&waiting, 1, static_cast<int>(milliseconds)) > 0)
            return true;
        if (Clock::now() >= end)
            return false;
    }
}

} // namespace job_service
