#include "service/DeviceLink.h"

#include "service/ApiError.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace job_service {

namespace {

using Clock = std::chrono::steady_clock;

/// How soon the end of the service or of the time is noticed.
constexpr std::chrono::milliseconds slice{ 100 };

bool isTryAgain(int reason)
{
    return reason == EAGAIN || reason == EINTR;
}

[[noreturn]] void refuseBusy()
{
    throw ApiError(409, "device_busy", "The device is in use.");
}

void makeRaw(const FileHandle& device)
{
    termios settings{};
    if (::tcgetattr(device.get(), &settings) != 0)
        return;
    ::cfmakeraw(&settings);
    ::tcsetattr(device.get(), TCSANOW, &settings);
}

} // namespace

FileHandle openDevice(const std::string& path)
{
    FileHandle device(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!device && errno == EBUSY)
        refuseBusy();
    if (!device)
        throw ApiError(404, "device_not_found", "There is no device, or it cannot be opened.");
    struct stat status
    {
    };
    if (::fstat(device.get(), &status) != 0 || !S_ISCHR(status.st_mode))
        throw ApiError(400, "not_a_device", "What has this path is no device.");
    if (::flock(device.get(), LOCK_EX | LOCK_NB) != 0)
        refuseBusy();
    makeRaw(device);
    return device;
}

DeviceLink::DeviceLink(FileHandle device, const TransferBudget& budget, std::chrono::milliseconds patience)
    : m_device(std::move(device))
    , m_budget(budget)
    , m_patience(patience)
{
}

void DeviceLink::waitFor(short events)
{
    const Clock::time_point end = Clock::now() + m_patience;
    for (;;) {
        m_budget.checkTime();
        pollfd waiting{ m_device.get(), events, 0 };
        const int ready = ::poll(&waiting, 1, static_cast<int>(std::min(slice, m_patience).count()));
        if (ready > 0 && (waiting.revents & events) != 0)
            return;
        if (ready > 0)
            throw DeviceFailed("the device is gone");
        if (ready < 0 && errno != EINTR)
            throw DeviceFailed("the device cannot be waited for");
        if (Clock::now() >= end)
            throw DeviceFailed(events == POLLIN ? "the device does not answer" : "the device takes nothing");
    }
}

void DeviceLink::drain()
{
    ::tcflush(m_device.get(), TCIFLUSH);
    char buffer[4096];
    while (::read(m_device.get(), buffer, sizeof buffer) > 0)
        m_budget.checkTime();
}

void DeviceLink::send(const ExchangeFrame& frame)
{
    const std::string bytes = encoded(frame, m_sent++);
    for (std::size_t sent = 0; sent < bytes.size();) {
        waitFor(POLLOUT);
        const ssize_t count = ::write(m_device.get(), bytes.data() + sent, bytes.size() - sent);
        if (count < 0 && !isTryAgain(errno))
            throw DeviceFailed("the device is gone");
        sent += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
}

ExchangeFrame DeviceLink::receive()
{
    for (;;) {
        if (std::optional<ExchangeFrame> frame = m_reader.next())
            return std::move(*frame);
        waitFor(POLLIN);
        char buffer[4096];
        const ssize_t count = ::read(m_device.get(), buffer, sizeof buffer);
        if (count == 0 || (count < 0 && !isTryAgain(errno)))
            throw DeviceFailed("the device is gone");
        if (count > 0)
            m_reader.feed({ buffer, static_cast<std::size_t>(count) });
    }
}

} // namespace job_service
