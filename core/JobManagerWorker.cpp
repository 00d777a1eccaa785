#include "core/JobManagerWorker.h"

#include "api/Logging.h"

#include <chrono>
#include <QScopeGuard>
#include <QThread>
#include <thread>
#include <utility>

namespace jobmanager_ui {

namespace {

constexpr std::chrono::seconds syncDuration{ 2 };

} // namespace

JobManagerWorker::JobManagerWorker(std::shared_ptr<JobManagerAPIAbstraction> api) : m_api(std::move(api))
{
}

bool JobManagerWorker::isBackgroundRequestInProgress() const
{
    return m_backgroundRequestInProgress.load(std::memory_order_acquire);
}

void JobManagerWorker::setBackgroundRequestInProgress(bool value)
{
    if (value == isBackgroundRequestInProgress()) {
        qCWarning(logCategory)
            << "WARNING: Setting the same value for m_backgroundRequestInProgress. Something is not right";
    }
    if (QThread::currentThread() != thread()) {
        qCWarning(logCategory) << "WARNING: This method should only be called from the worker thread";
    }
    m_backgroundRequestInProgress.store(value, std::memory_order_release);
    Q_EMIT backgroundRequestInProgressChanged();
}

template <typename Work> auto JobManagerWorker::carryOut(Work work)
{
    setBackgroundRequestInProgress(true);
    const auto lowerFlag = qScopeGuard([this] { setBackgroundRequestInProgress(false); });
    return work();
}

void JobManagerWorker::onLaunchTest(QVariant jobID, QVariant testID)
{
    const QString status = carryOut([&] { return m_api->launchTest(jobID.toString(), testID.toLongLong()); });
    Q_EMIT testLaunchFinished(jobID, testID, status);
}

void JobManagerWorker::onSyncWithNimbrel()
{
    // sleep_for goes on with the rest of the time when a signal interrupts it.
    carryOut([] { std::this_thread::sleep_for(syncDuration); });
    Q_EMIT syncFinished();
}

void JobManagerWorker::onFetchJobList()
{
    carryOut([this] { m_api->fetchJobList(); });
    Q_EMIT fetchJobListFinished();
}

void JobManagerWorker::onFetchJob(QString jobID)
{
    carryOut([&] { m_api->fetchJob(jobID); });
    Q_EMIT fetchJobFinished(jobID);
}

void JobManagerWorker::onSetCurrentJob(QString jobID)
{
    carryOut([&] { m_api->setCurrentJobByID(jobID); });
    Q_EMIT setCurrentJobFinished();
}

void JobManagerWorker::onExportJobData(QString jobID, QString usbRootPath)
{
    const QString outputPath = carryOut([&] { return m_api->exportJobData(jobID, usbRootPath); });
    Q_EMIT exportJobDataFinished(outputPath);
}

void JobManagerWorker::onImportJobs(QString usbRootPath)
{
    const int numberJobs = carryOut([&] { return m_api->importJobs(usbRootPath); });
    Q_EMIT importJobsFinished(numberJobs);
}

void JobManagerWorker::onExchangeJob(QString devicePath)
{
    const bool status = carryOut([&] { return m_api->exchangeCurrentJob(devicePath); });
    Q_EMIT exchangeJobFinished(status);
}

} // namespace jobmanager_ui
