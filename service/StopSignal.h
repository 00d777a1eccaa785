#pragma once

#include <chrono>

namespace job_service {

/// Tells other threads, and poll(), that something is to end. Once raised, it stays raised. Safe for concurrent use.
class StopSignal
{
public:
    /// Throws std::system_error if the system gives no descriptor.
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    void raise() noexcept;
    bool isRaised() const noexcept;
    /// Waits until the signal is raised, at most so long. Returns whether it is.
    bool waitFor(std::chrono::milliseconds duration) const noexcept;
    /// Readable from the moment on at which the signal is raised.
    int descriptor() const noexcept { return m_descriptor; }

private:
    int m_descriptor;
};

} // namespace job_service
