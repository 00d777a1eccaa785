#pragma once

#include "api/JobManagerAPIAbstraction.h"

#include <atomic>
#include <memory>
#include <QObject>
#include <QString>
#include <QVariant>

namespace jobmanager_ui {

/// Carries out the slow requests on the background thread, one at a time and in the order of their signals.
///
/// Each slot raises the in-progress flag, makes one blocking call of the data interface, lowers the flag and then
/// emits its finish signal: whoever gets the signal finds the flag down. A failure travels as a value in that
/// signal. The data interface must not throw out of these calls.
///
/// JobManager makes the worker, moves it to its thread and has it deleted there when the thread has finished.
/// All of it runs on that thread, with the one exception named at isBackgroundRequestInProgress.
class JobManagerWorker : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(JobManagerWorker)

public:
    /// A worker over `api`, without a parent, so that it can be moved to its thread.
    explicit JobManagerWorker(std::shared_ptr<JobManagerAPIAbstraction> api);

    /// True while a slot is inside its call. Any thread may ask.
    bool isBackgroundRequestInProgress() const;
    /// Stores the flag and emits backgroundRequestInProgressChanged, also for an unchanged value. To be called on
    /// the worker's thread with a new value; anything else is stored as well, after a warning.
    void setBackgroundRequestInProgress(bool value);

Q_SIGNALS:
    void backgroundRequestInProgressChanged();
    /// The ids as they came with the request; `status` is empty on success, else the launch's error.
    void testLaunchFinished(QVariant jobID, QVariant testID, QString status);
    void syncFinished();
    /// The list is pending in the data interface, or could not be had.
    void fetchJobListFinished();
    /// The job is pending in the data interface, or could not be had.
    void fetchJobFinished(QString jobID);
    void setCurrentJobFinished();
    /// `outputPath` is empty on failure.
    void exportJobDataFinished(QString outputPath);
    void importJobsFinished(int numberJobs);
    /// `status` tells whether the exchange succeeded.
    void exchangeJobFinished(bool status);

public Q_SLOTS:
    /// Launches the test. An id that does not convert counts as the empty job id, or as test id 0.
    void onLaunchTest(QVariant jobID, QVariant testID);
    /// Holds the flag up for two seconds, so that the front end shows its busy state; the service syncs by itself.
    void onSyncWithNimbrel();
    /// Fetches the job list.
    void onFetchJobList();
    /// Fetches one job's full data.
    void onFetchJob(QString jobID);
    /// Makes the job current; the empty id clears the current job.
    void onSetCurrentJob(QString jobID);
    /// Exports the job below the folder.
    void onExportJobData(QString jobID, QString usbRootPath);
    /// Imports jobs from the path.
    void onImportJobs(QString usbRootPath);
    /// Exchanges the current job with the device.
    void onExchangeJob(QString devicePath);

private:
    /// Runs `work` with the flag up. The flag is down again when this returns the result of `work`.
    template <typename Work> auto carryOut(Work work);

    std::shared_ptr<JobManagerAPIAbstraction> m_api;
    std::atomic<bool> m_backgroundRequestInProgress{ false };
};

} // namespace jobmanager_ui
