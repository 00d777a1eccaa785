#pragma once

#include "tests/core/RecordedManager.h"

#include <QObject>

namespace jobmanager_test {

inline const QString idA = QStringLiteral("A");
inline const QString idB = QStringLiteral("B");
inline const QString idC = QStringLiteral("C");

/// A recorded manager for each test. It is not initialized unless a test does it: the worker is then not there, and a
/// fetch ends when the test says so.
class ManagerFixture : public QObject
{
protected:
    void setUp()
    {
        m_journal.take();
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_recorded = std::make_unique<RecordedManager>(m_api);
        m_manager = &m_recorded->manager;
    }

    void tearDown()
    {
        m_manager = nullptr;
        m_recorded.reset();
        m_api.reset();
    }

    void poll() { m_recorded->poll(); }
    void rebuild(const std::vector<QString>& jobIDs) { m_recorded->rebuild(jobIDs); }
    QStringList ids() const { return m_recorded->ids(); }

    Journal m_journal;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<RecordedManager> m_recorded;
    jobmanager_ui::JobManager* m_manager = nullptr;
};

} // namespace jobmanager_test
