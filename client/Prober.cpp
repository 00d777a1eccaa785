#include "client/Prober.h"

#include "client/Deadlines.h"
#include "client/Requests.h"

#include <csignal>
#include <pthread.h>

namespace job_client {

namespace {

/// While it lives, threads that this thread starts get no signals: these belong to the threads of the host process.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before{};
};

} // namespace

Prober::Prober(Endpoint endpoint, std::function<void()> onAnswer)
    : m_endpoint(std::move(endpoint))
    , m_onAnswer(std::move(onAnswer))
{
}

Prober::~Prober()
{
    stop();
    if (m_thread.joinable())
        m_thread.join();
}

void Prober::start()
{
    // A thread of an earlier outage has called onAnswer and is at its end.
    if (m_thread.joinable())
        m_thread.join();
    {
        const std::lock_guard lock(m_mutex);
        if (m_stopped)
            return;
        m_transfer = std::make_unique<HttpTransfer>();
    }
    const SignalsBlocked blocked;
    m_thread = std::thread(&Prober::probeUntilAnswered, this);
    pthread_setname_np(m_thread.native_handle(), "job-probe");
}

void Prober::stop() noexcept
{
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
    m_stopChanged.notify_all();
    if (m_transfer)
        m_transfer->cancel();
}

void Prober::probeUntilAnswered()
{
    // Not at once: whoever found the service hanging should get through all its calls without waiting again.
    auto next = std::chrono::steady_clock::now() + deadlines::probePeriod;
    while (!isStoppedBefore(next)) {
        next = std::chrono::steady_clock::now() + deadlines::probePeriod;
        if (probe()) {
            m_onAnswer();
            return;
        }
    }
}

bool Prober::probe()
{
    try {
        const auto kind = m_transfer->run(m_endpoint, requests::changeCount()).kind;
        return kind == HttpOutcome::Kind::Answered;
    } catch (...) {
        // Out of memory: the next probe may be luckier.
        return false;
    }
}

bool Prober::isStoppedBefore(std::chrono::steady_clock::time_point time)
{
    std::unique_lock lock(m_mutex);
    return m_stopChanged.wait_until(lock, time, [this] { return m_stopped; });
}

} // namespace job_client
