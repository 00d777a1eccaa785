#pragma once

#include "core/JobManager.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <memory>
#include <QObject>
#include <vector>

namespace jobmanager_test {

inline const QString idA = QStringLiteral("A");
inline const QString idB = QStringLiteral("B");
inline const QString idC = QStringLiteral("C");

/// The ids of the jobs in the rows of the manager or of a view of it, in order.
QStringList rowIDs(const QAbstractItemModel& jobs);

/// A manager over the recording data interface. Calls, signals of the manager and messages go into one journal. The
/// manager is not initialized unless a test does it: the worker is then not there, and a fetch ends when the test says
/// so.
class ManagerFixture : public QObject
{
protected:
    /// A fresh manager that has read nothing.
    void setUp();
    void tearDown();

    /// What the timer does.
    void poll();
    /// Has the manager rebuild its rows from this list of jobs.
    void rebuild(const std::vector<QString>& jobIDs);
    QStringList ids() const { return rowIDs(*m_manager); }
    /// Initializes the manager and waits for the first list. The test polls itself.
    void initialize();

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<jobmanager_ui::JobManager> m_manager;
    std::unique_ptr<SignalRecorder> m_recorder;
};

} // namespace jobmanager_test
