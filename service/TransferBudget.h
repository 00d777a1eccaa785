#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <stdexcept>

namespace job_service {

/// How much a transfer may take. The time ends well before the client's patience of a minute.
struct TransferLimits
{
    std::chrono::milliseconds time = std::chrono::seconds(40);
    /// Entries of folders that are looked at.
    std::size_t entries = 50000;
    /// Folders below the one named.
    std::size_t depth = 16;
    /// Bytes that are read.
    std::size_t bytes = std::size_t{ 1024 } * 1024 * 1024;
};

/// A transfer has used up its limits or is to end; the text says why.
class CutOff : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What a running transfer has left of its limits. Used by one thread; any thread may set `cancelled`.
class TransferBudget
{
public:
    /// `cancelled` must outlive the object.
    TransferBudget(const TransferLimits& limits, const std::atomic<bool>& cancelled)
        : m_left(limits)
        , m_end(std::chrono::steady_clock::now() + limits.time)
        , m_cancelled(cancelled)
    {
    }

    std::size_t depth() const { return m_left.depth; }
    /// Throws CutOff when the time is up or the service ends.
    void checkTime() const
    {
        if (m_cancelled)
            throw CutOff("the service ends");
        if (std::chrono::steady_clock::now() >= m_end)
            throw CutOff("the time is up");
    }
    /// Takes one entry; false if none is left.
    bool takeEntry()
    {
        if (m_left.entries == 0)
            return false;
        --m_left.entries;
        return true;
    }
    /// Takes bytes that have been read. Throws CutOff when they are used up.
    void takeBytes(std::size_t count)
    {
        if (count > m_left.bytes)
            throw CutOff("there is too much to read");
        m_left.bytes -= count;
    }

private:
    TransferLimits m_left;
    std::chrono::steady_clock::time_point m_end;
    const std::atomic<bool>& m_cancelled;
};

} // namespace job_service
