#include "benchmarks/WatchedApplication.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <QAbstractEventDispatcher>
#include <unistd.h>

using std::chrono::nanoseconds;

namespace {

nanoseconds timeOf(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

} // namespace

WatchedApplication::WatchedApplication(int& argc, char** argv)
    : QGuiApplication(argc, argv)
    , m_schedulerFile(::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC))
{
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
        [this] { m_turnBegun = false; });
}

WatchedApplication::~WatchedApplication()
{
    ::close(m_schedulerFile);
}

bool WatchedApplication::notify(QObject* receiver, QEvent* event)
{
    if (m_depth == 0 && !m_turnBegun) {
        m_turnBegun = true;
        m_turnBegin = now();
    }
    ++m_depth;
    const bool result = QGuiApplication::notify(receiver, event);
    --m_depth;
    if (m_depth == 0) {
        const Moment end = now();
        const nanoseconds held = (end.clock - m_turnBegin.clock) - (end.ready - m_turnBegin.ready);
        m_longest.held = std::max(m_longest.held, held);
        // The system does not always tell the one in step with the other.
        m_longest.computing = std::max(m_longest.computing, std::min(held, end.computing - m_turnBegin.computing));
    }
    return result;
}

WatchedApplication::Moment WatchedApplication::now() const
{
    return { timeOf(CLOCK_MONOTONIC), timeOf(CLOCK_THREAD_CPUTIME_ID), readyTime() };
}

/// How long the thread has been ready to run in all, while the system ran others; zero where the system does not tell.
nanoseconds WatchedApplication::readyTime() const
{
    char text[128] = {};
    long long running = 0;
    long long ready = 0;
    if (::pread(m_schedulerFile, text, sizeof text - 1, 0) <= 0
        || std::sscanf(text, "%lld %lld", &running, &ready) != 2)
        return nanoseconds(0);
    return nanoseconds(ready);
}
