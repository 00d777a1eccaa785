#include "tests/core/RecordedManager.h"

#include "core/JobManagerWorker.h"
#include "tests/support/Deadline.h"

#include <QDeadlineTimer>
#include <QTimer>
#include <QtTest>
#include <thread>
#include <utility>

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

RecordedManager::RecordedManager(std::shared_ptr<RecordingApi> recordingApi)
    : api(std::move(recordingApi))
    , messages(api->journal())
    , manager(api)
    , recorder(manager, api->journal())
{
}

void RecordedManager::start()
{
    manager.initialize();
    manager.findChild<QTimer*>()->stop();
    QTRY_VERIFY(!manager.fetchingJobList());
    take();
}

void RecordedManager::poll()
{
    QVERIFY(QMetaObject::invokeMethod(&manager, "queryChangeCountSlot"));
}

void RecordedManager::rebuild(const std::vector<QString>& jobIDs)
{
    api->setJobIDs(jobIDs);
    manager.doUpdateDataFromAPI();
}

bool RecordedManager::waitUntilAnswered(const QString& call)
{
    if (!api->journal().waitFor(QStringLiteral("call ") + call + QStringLiteral(" on worker"))) {
        return false;
    }
    const JobManagerWorker* const worker = manager.getJob(ids().constFirst())->worker();
    const QDeadlineTimer deadline(stretched(std::chrono::seconds(10)));
    while (worker->isBackgroundRequestInProgress()) {
        if (deadline.hasExpired()) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

} // namespace jobmanager_test
