#include "tests/core/ManagerFixture.h"

#include <QTimer>
#include <QtTest>

using namespace jobmanager_ui;

namespace jobmanager_test {

QStringList rowIDs(const QAbstractItemModel& jobs)
{
    QStringList ids;
    for (int row = 0; row < jobs.rowCount(); ++row) {
        ids.append(jobs.index(row, 0).data(JobManager::JobIDRole).toString());
    }
    return ids;
}

void ManagerFixture::setUp()
{
    m_journal.take();
    m_messages = std::make_unique<MessageCollector>(m_journal);
    m_api = std::make_shared<RecordingApi>(m_journal);
    m_manager = std::make_unique<JobManager>(m_api);
    m_recorder = std::make_unique<SignalRecorder>(*m_manager, m_journal);
}

void ManagerFixture::tearDown()
{
    m_recorder.reset();
    m_manager.reset();
    m_api.reset();
    m_messages.reset();
}

void ManagerFixture::poll()
{
    QVERIFY(QMetaObject::invokeMethod(m_manager.get(), "queryChangeCountSlot"));
}

void ManagerFixture::rebuild(const std::vector<QString>& jobIDs)
{
    m_api->setJobIDs(jobIDs);
    m_manager->doUpdateDataFromAPI();
}

void ManagerFixture::initialize()
{
    m_manager->initialize();
    m_manager->findChild<QTimer*>()->stop();
    QTRY_VERIFY(!m_manager->fetchingJobList());
    m_journal.take();
}

} // namespace jobmanager_test
