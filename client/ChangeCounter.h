#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

namespace job_client {

/// Turns the change counts of one service into those given to the caller.
///
/// The caller takes a step of one for its own change. A count that comes after an outage therefore differs from the
/// one given last by at least two, even if the service's own count stands where it stood: whatever was missed is
/// then read again. Later counts follow the service's own, step by step. Not thread-safe.
class ChangeCounter
{
public:
    /// `given` is the count that the caller was given last, by whatever service. It must outlive the counter.
    explicit ChangeCounter(std::atomic<int>& given);

    /// The count to give when the service answered `counted`. Counts beyond the range of int wrap around.
    int answered(std::int64_t counted, bool afterOutage);

    /// The count to give when it did not answer: the one given last for this service, or 0.
    int unanswered();

private:
    int give(std::uint32_t count);

    std::atomic<int>& m_given;
    std::optional<std::uint32_t> m_last;
    std::uint32_t m_shift = 0;
};

} // namespace job_client
