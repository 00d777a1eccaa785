#include "core/JobManager.h"

#include "api/Logging.h"
#include "core/JobManagerWorker.h"
#include "core/RequestGate.h"

#include <algorithm>
#include <QScopedValueRollback>
#include <QTimer>
#include <utility>

namespace jobmanager_ui {

namespace {

QString groupTypeSetting()
{
    return QStringLiteral("groupType");
}

/// Whether one change lies between the two counts, in either direction.
bool isOneStep(int oldCount, int newCount)
{
    return qAbs(qint64{ newCount } - qint64{ oldCount }) == 1;
}

} // namespace

JobManager::JobManager(QObject* parent) : JobManager(JobManagerAPIAbstraction::createJobManagerAPI(), parent)
{
}

JobManager::JobManager(std::shared_ptr<JobManagerAPIAbstraction> api, QObject* parent)
    : QAbstractListModel(parent)
    , m_api(std::move(api))
{
}

JobManager::~JobManager()
{
    // A thread that is told to quit first runs all that is already queued. From here on the gate drops the requests
    // among it. It does so on their own thread: taken away from this one, by QCoreApplication::removePostedEvents,
    // they would race with a counter that the thread's event loop changes without its lock.
    m_workerThread.requestInterruption();
    m_workerThread.quit();
    m_workerThread.wait();
}

void JobManager::initialize()
{
    m_changeCount = m_api->getChangeCount();
    initializeJobManagerWorker();
    updateDataFromAPI(true);
    setUpView(m_archivedJobs, QStringLiteral("archived=true,current=false"));
    setUpView(m_requiredJobs, QStringLiteral("archived=false,current=false"));
    sortView(m_archivedJobs);
    sortView(m_requiredJobs);
    auto* const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &JobManager::queryChangeCountSlot);
    timer->start(m_queryChangeCountInterval);
    m_workerThread.start(QThread::InheritPriority);
}

void JobManager::initializeJobManagerWorker()
{
    m_worker = new JobManagerWorker(m_api); // owned by the thread's end, see the first connection
    m_worker->installEventFilter(new RequestGate(m_worker));
    m_worker->moveToThread(&m_workerThread);
    connect(&m_workerThread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(this, &JobManager::launchTestSignal, m_worker, &JobManagerWorker::onLaunchTest);
    connect(m_worker, &JobManagerWorker::testLaunchFinished, this, &JobManager::onTestLaunchFinished);
    connect(this, &JobManager::syncWithNimbrelSignal, m_worker, &JobManagerWorker::onSyncWithNimbrel);
    connect(m_worker, &JobManagerWorker::syncFinished, this, &JobManager::onSyncFinished);
    connect(this, &JobManager::fetchJobList, m_worker, &JobManagerWorker::onFetchJobList);
    connect(m_worker, &JobManagerWorker::fetchJobListFinished, this, &JobManager::onFetchJobListFinished);
    connect(this, &JobManager::setCurrentJobOnBackgroundThread, m_worker, &JobManagerWorker::onSetCurrentJob);
    connect(m_worker, &JobManagerWorker::setCurrentJobFinished, this, &JobManager::onSetCurrentJobFinished);
    connect(this, &JobManager::exportJobDataOnBackgroundThread, m_worker, &JobManagerWorker::onExportJobData);
    connect(m_worker, &JobManagerWorker::exportJobDataFinished, this, &JobManager::onExportJobDataFinished);
    connect(this, &JobManager::importJobsOnBackgroundThread, m_worker, &JobManagerWorker::onImportJobs);
    connect(m_worker, &JobManagerWorker::importJobsFinished, this, &JobManager::onImportJobsFinished);
    connect(this, &JobManager::exchangeJobOnBackgroundThread, m_worker, &JobManagerWorker::onExchangeJob);
    connect(m_worker, &JobManagerWorker::exchangeJobFinished, this, &JobManager::onExchangeJobFinished);
}

void JobManager::setUpView(QSortFilterProxyModel& view, const QString& filter)
{
    view.setSourceModel(this);
    view.setFilterRole(FilterRole);
    view.setFilterFixedString(filter);
}

void JobManager::sortView(QSortFilterProxyModel& view)
{
    view.setSortRole(JobSortRole);
    view.sort(0, Qt::DescendingOrder);
}

int JobManager::rowCount(const QModelIndex& /*parent*/) const
{
    return static_cast<int>(m_jobIDs.size());
}

QVariant JobManager::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const QString& jobID = m_jobIDs[static_cast<std::size_t>(index.row())];
    if (role == JobIDRole) {
        return jobID;
    }
    Job* const job = getJob(jobID);
    if (job == nullptr) {
        return {};
    }
    switch (role) {
    case JobRole:
        return QVariant::fromValue(job);
    case JobSortRole:
        return job->getModifiedOn();
    case FilterRole:
        return filterText(job);
    default:
        return {};
    }
}

QVariant JobManager::filterText(Job* job) const
{
    // Whole texts, since the views ask for them again and again and a literal is not built anew.
    if (job->isArchived()) {
        return isCurrentJob(job) ? QStringLiteral("archived=true,current=true")
                                 : QStringLiteral("archived=true,current=false");
    }
    return isCurrentJob(job) ? QStringLiteral("archived=false,current=true")
                             : QStringLiteral("archived=false,current=false");
}

bool JobManager::setData(const QModelIndex& /*index*/, const QVariant& /*value*/, int /*role*/)
{
    return false;
}

QHash<int, QByteArray> JobManager::roleNames() const
{
    return {
        { JobIDRole, QByteArrayLiteral("jobID") },
        { JobRole, QByteArrayLiteral("job") },
        { JobSortRole, QByteArrayLiteral("jobSort") },
        { FilterRole, QByteArrayLiteral("filterRole") },
    };
}

int JobManager::restApiPort() const
{
    return m_api == nullptr ? 0 : m_api->getRestApiPort();
}

void JobManager::setRestApiPort(int port)
{
    if (m_api == nullptr) {
        return;
    }
    qCDebug(logCategory) << "jobmanager-ui: Setting rest api port to " << port;
    m_api->setRestApiPort(port);
    updateDataFromAPI(true);
}

bool JobManager::isBackgroundRequestInProgress() const
{
    if (m_worker == nullptr) {
        return false;
    }
    return m_worker->isBackgroundRequestInProgress() || m_settingCurrentJob;
}

Job* JobManager::getJob(QString jobID) const
{
    const auto found = m_jobs.constFind(jobID);
    return found == m_jobs.constEnd() ? nullptr : found->get();
}

int JobManager::getJobIndex(const Job& job) const
{
    return m_jobRows.value(job.concreteTypeJobID(), -1);
}

bool JobManager::isCurrentJob(Job* job) const
{
    return job != nullptr && m_currentJob != nullptr && job->concreteTypeJobID() == m_currentJob->concreteTypeJobID();
}

void JobManager::queryChangeCountSlot()
{
    if (isBackgroundRequestInProgress()) {
        qCDebug(logCategory) << "Query request ignored because a request is in progress";
        return;
    }
    if (m_pauseAutomaticUpdates) {
        return;
    }
    const bool changed = checkChangeCount(false);
    if (changed && !m_skipNextUpdateSignal && !m_isTestLaunching) {
        Q_EMIT jobManagerUpdated();
    }
    m_skipNextUpdateSignal = false;
}

bool JobManager::checkChangeCount(bool allowPartialUpdate)
{
    const int newCount = m_api->getChangeCount();
    const bool fullUpdate = !allowPartialUpdate || !isOneStep(m_changeCount, newCount);
    if (newCount == m_changeCount) {
        return false;
    }
    qCDebug(logCategory) << "Change count changed! Old change count: " << m_changeCount
                         << ", new change count: " << newCount;
    m_changeCount = newCount;
    updateDataFromAPI(fullUpdate);
    return true;
}

void JobManager::updateDataFromAPI(bool fullUpdate)
{
    if (fullUpdate) {
        m_api->clearCache();
    }
    if (!backgroundFetching()) {
        doUpdateDataFromAPI();
        return;
    }
    if (m_fetchingJobList) {
        qCDebug(logCategory) << "Already fetching data";
        return;
    }
    if (m_api->isJobListInCache()) {
        qCDebug(logCategory) << "Job list is still in cache. No need to re-fetch it";
        onFetchJobListFinished();
    } else {
        qCDebug(logCategory) << "Starting fething job list on separate thread";
        m_fetchingJobList = true;
        Q_EMIT fetchingJobListChanged();
        Q_EMIT fetchJobList();
    }
    updateSettingsFromDb();
}

void JobManager::onFetchJobListFinished()
{
    qCDebug(logCategory) << "Done fetching the job list";
    m_api->commitFetchedData();
    doUpdateDataFromAPI();
    m_fetchingJobList = false;
    Q_EMIT fetchingJobListChanged();
}

void JobManager::doUpdateDataFromAPI()
{
    // The signals of a rebuild go out while the tables are being filled. A receiver that asks for an update from
    // there must not start a second rebuild inside the first: it is noted and run when the reset has ended.
    if (m_rebuilding) {
        m_rebuildAgain = true;
        return;
    }
    const QScopedValueRollback<bool> rebuilding(m_rebuilding, true);
    rebuild();
    if (std::exchange(m_rebuildAgain, false)) {
        rebuild();
    }
    // A receiver that asks in each rebuild would never let this thread go: its next turn goes through the event loop.
    if (std::exchange(m_rebuildAgain, false)) {
        QMetaObject::invokeMethod(this, &JobManager::doUpdateDataFromAPI, Qt::QueuedConnection);
    }
}

void JobManager::rebuild()
{
    beginResetModel();
    // Keeps every job alive until the reset has ended.
    const QHash<QString, std::shared_ptr<Job>> oldJobs = m_jobs;
    m_jobIDs.clear();
    m_jobs.clear();
    m_jobRows.clear();
    m_jobIDs = m_api->getAllJobIDs();
    m_jobs.reserve(std::max(1, rowCount()));
    const QString apiCurrentID = m_api->getCurrentJobID();
    const QString localCurrentID = m_currentJob == nullptr ? QString() : m_currentJob->concreteTypeJobID();
    if (apiCurrentID != localCurrentID) {
        m_currentJob.reset();
        Q_EMIT currentJobChanged();
    }
    rebuildRows(oldJobs);
    updateCurrentJob(apiCurrentID);
    announceNewJob();
    sortTestlistForAllJobs();
    endResetModel();
}

void JobManager::rebuildRows(const QHash<QString, std::shared_ptr<Job>>& oldJobs)
{
    int row = 0;
    for (const QString& jobID : m_jobIDs) {
        std::shared_ptr<Job> job = oldJobs.value(jobID);
        if (job != nullptr) {
            job->updateDataFromAPI();
        } else {
            job = makeJob(jobID);
        }
        if (backgroundFetching() && m_worker != nullptr && job->worker() == nullptr) {
            job->setWorker(m_worker);
        }
        m_jobRows.insert(jobID, row++);
        m_jobs.insert(jobID, std::move(job));
    }
}

std::shared_ptr<Job> JobManager::makeJob(const QString& jobID)
{
    auto job = std::make_shared<Job>(m_api, jobID);
    connect(
        job.get(), &Job::optionalPropertyValueChanged, job.get(),
        [this](bool valueAccepted) { onOptionalPropertyValueChanged(valueAccepted); }, Qt::DirectConnection);
    return job;
}

void JobManager::onOptionalPropertyValueChanged(bool valueAccepted)
{
    if (!valueAccepted) {
        return;
    }
    // The one step that the write itself caused is taken as seen, so that the next poll does not rebuild the model
    // under the user's edit.
    const int newCount = m_api->getChangeCount();
    if (isOneStep(m_changeCount, newCount)) {
        m_changeCount = newCount;
    }
}

void JobManager::updateCurrentJob(const QString& currentID)
{
    if (!m_api->hasCurrentJob()) {
        resetCurrentJobPointer();
        Q_EMIT currentJobChanged();
        return;
    }
    const std::shared_ptr<Job> found = m_jobs.value(currentID);
    if (found == nullptr) {
        return;
    }
    const std::shared_ptr<Job> previous = std::exchange(m_currentJob, found);
    if (found != previous) {
        Q_EMIT currentJobChanged();
    }
}

void JobManager::resetCurrentJobPointer()
{
    if (m_currentJob == nullptr) {
        return;
    }
    const int row = getJobIndex(*m_currentJob);
    m_currentJob.reset();
    const QModelIndex changed = index(row, 0);
    Q_EMIT dataChanged(changed, changed, { FilterRole });
}

void JobManager::sortTestlistForAllJobs()
{
    // Each list that is regrouped tells so, and a receiver may bring about a rebuild of the jobs, or may have regrouped
    // from inside one while the tables were half full: hence the copy, and a job that is not there is passed over.
    const std::vector<QString> jobIDs = m_jobIDs;
    for (const QString& jobID : jobIDs) {
        if (const std::shared_ptr<Job> job = m_jobs.value(jobID)) {
            job->sortTests(m_groupType);
        }
    }
}

void JobManager::setPauseAutomaticUpdates(bool paused)
{
    if (paused == m_pauseAutomaticUpdates) {
        return;
    }
    m_pauseAutomaticUpdates = paused;
    Q_EMIT pauseAutomaticUpdatesChanged();
    if (!paused) {
        checkChangeCount(false);
    }
}

void JobManager::setIsQueryCountChangeInProgress(bool isQueryChangeCountInProgress)
{
    if (isQueryChangeCountInProgress == m_isQueryChangeCountInProgress) {
        return;
    }
    m_isQueryChangeCountInProgress = isQueryChangeCountInProgress;
    Q_EMIT isQueryCountChangeInProgressChanged(isQueryChangeCountInProgress);
}

void JobManager::writeSetting(QString settings_id, QString settings_value)
{
    m_api->writeSetting(settings_id.toStdString(), settings_value.toStdString());
}

void JobManager::setGroupType(TestGroupType::Enum groupType)
{
    if (groupType == m_groupType) {
        return;
    }
    m_groupType = groupType;
    m_api->setGroupType(groupType);
    writeSetting(groupTypeSetting(), QString::number(groupType));
    sortTestlistForAllJobs();
    Q_EMIT groupTypeChanged();
}

void JobManager::updateSettingsFromDb()
{
    m_settings = m_api->getSettingsListInfo();
    const QString& stored = m_settings[groupTypeSetting()];
    // An absent setting, and only that, is a null text. Any other text that is no number counts as 0.
    setGroupType(stored.isNull() ? TestGroupType::DEFAULT_VIEW : static_cast<TestGroupType::Enum>(stored.toInt()));
}

} // namespace jobmanager_ui
