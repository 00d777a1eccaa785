#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <QString>
#include <QStringList>

namespace jobmanager_test {

/// The entries one below the other, so that a failed comparison shows them all.
inline QString lines(const QStringList& entries)
{
    return entries.join(QLatin1Char('\n'));
}

/// One list of what happened, in order, whoever saw it: calls, signals, messages. Safe for concurrent use.
class Journal
{
public:
    /// Adds one entry.
    void add(const QString& entry);
    /// All entries so far.
    QStringList entries() const;
    /// All entries so far, which are then forgotten.
    QStringList take();
    /// Whether the entry is there.
    bool contains(const QString& entry) const;
    /// Blocks the calling thread until the entry is there; false if it did not come in time.
    bool waitFor(const QString& entry, std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_added;
    QStringList m_entries;
};

} // namespace jobmanager_test
