// Launching tests, and the sync with the cloud service: both run on the worker, and the flags tell that they do.
#include "core/JobManager.h"

#include "api/Logging.h"
#include "core/ErrorMessageHelper.h"

#include <QScopedValueRollback>

namespace jobmanager_ui {

void JobManager::launchTest(Test* test)
{
    if (test == nullptr) {
        qCDebug(logCategory) << "Can't launch a NULL test";
        return;
    }
    if (m_isTestLaunching || m_announcingLaunch) {
        qCDebug(logCategory) << "There's already a test launching";
        return;
    }
    // A receiver of the announcement may bring about an update in which the test goes.
    const QString jobID = test->concreteTypeJobID();
    const long long testID = test->concreteTypeTestID();
    announceLaunch(test);
    setIsTestLaunching(true);
    m_api->prepareForLaunchTest(jobID, testID);
    Q_EMIT launchTestSignal(jobID, testID);
}

void JobManager::announceLaunch(Test* test)
{
    // A receiver that launches a test itself is too late: this one is on its way.
    const QScopedValueRollback<bool> announcing(m_announcingLaunch, true);
    Q_EMIT testAboutToLaunch(test);
}

void JobManager::onTestLaunchFinished(QVariant jobID, QVariant testID, QString status)
{
    qCDebug(logCategory) << "Test from job " << jobID << " with id " << testID << " finished with status: " << status;
    reportLaunch(jobID.toString(), testID.toLongLong(), status);
    setIsTestLaunching(false);
    m_skipNextUpdateSignal = true;
}

void JobManager::reportLaunch(const QString& jobID, long long testID, const QString& status)
{
    // Looked up by id: an update may have come since the launch began. Held, since a receiver may bring about another.
    const std::shared_ptr<Job> job = m_jobs.value(jobID);
    if (job == nullptr) {
        qCWarning(logCategory) << "Could not find job: " << jobID;
        return;
    }
    const std::shared_ptr<Test> test = job->getTest(testID);
    if (test == nullptr) {
        qCWarning(logCategory) << "Could not find test: " << testID;
        return;
    }
    int severity = 0;
    const QString message = ErrorMessageHelper::errorCodeToDisplayString(status, severity);
    test->setErrorMessage(message);
    test->setErrorSeverity(severity);
}

void JobManager::setIsTestLaunching(bool isTestLaunching)
{
    if (isTestLaunching == m_isTestLaunching) {
        return;
    }
    m_isTestLaunching = isTestLaunching;
    Q_EMIT isTestLaunchingChanged();
}

void JobManager::syncWithNimbrel()
{
    setIsSyncInProgress(true);
    Q_EMIT syncWithNimbrelSignal();
}

void JobManager::onSyncFinished()
{
    qCDebug(logCategory) << "Sync finished";
    setIsSyncInProgress(false);
}

void JobManager::setIsSyncInProgress(bool isSyncInProgress)
{
    if (isSyncInProgress == m_isSyncInProgress) {
        return;
    }
    m_isSyncInProgress = isSyncInProgress;
    Q_EMIT isSyncInProgressChanged();
}

} // namespace jobmanager_ui
