#pragma once

#include "client/Endpoint.h"
#include "client/HttpTransfer.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace job_client {

/// Asks a service that hangs, again and again, until it answers, on a thread that exists only for that time.
class Prober
{
public:
    /// `onAnswer` is called on the probing thread, as the last thing it does.
    Prober(Endpoint endpoint, std::function<void()> onAnswer);
    /// Ends the probing at once, and the thread with it.
    ~Prober();
    Prober(const Prober&) = delete;
    Prober& operator=(const Prober&) = delete;

    /// Begins to probe. Must not be called between an earlier call and its onAnswer, nor by two threads at once.
    /// Throws if there can be no thread.
    void start();

    /// Ends the probing for good, without waiting for the thread.
    void stop() noexcept;

private:
    void probeUntilAnswered();
    bool probe();
    bool isStoppedBefore(std::chrono::steady_clock::time_point time);

    const Endpoint m_endpoint;
    const std::function<void()> m_onAnswer;
    std::mutex m_mutex;
    std::condition_variable m_stopChanged;
    bool m_stopped = false;
    std::unique_ptr<HttpTransfer> m_transfer;
    std::thread m_thread;
};

} // namespace job_client
