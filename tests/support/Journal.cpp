#include "tests/support/Journal.h"

#include "tests/support/Deadline.h"

#include <utility>

namespace jobmanager_test {

void Journal::add(const QString& entry)
{
    {
        const std::lock_guard lock(m_mutex);
        m_entries.append(entry);
    }
    m_added.notify_all();
}

QStringList Journal::entries() const
{
    const std::lock_guard lock(m_mutex);
    return m_entries;
}

QStringList Journal::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_entries, {});
}

bool Journal::contains(const QString& entry) const
{
    const std::lock_guard lock(m_mutex);
    return m_entries.contains(entry);
}

bool Journal::waitFor(const QString& entry, std::chrono::milliseconds deadline) const
{
    std::unique_lock lock(m_mutex);
    return m_added.wait_for(lock, stretched(deadline), [&] { return m_entries.contains(entry); });
}

} // namespace jobmanager_test
