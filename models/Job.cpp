#include "models/Job.h"

#include "api/Logging.h"
#include "core/JobManagerWorker.h"

#include <QQmlEngine>
#include <utility>

namespace jobmanager_ui {

Job::Job(std::shared_ptr<JobManagerAPIAbstraction> api, QString jobID)
    : m_api(std::move(api))
    , m_jobID(std::move(jobID))
    , m_tests(m_api, m_jobID, TestList::TESTSUBSET_ALL)
{
    // Without a parent, a job that JavaScript gets from a model's data() would belong to the JavaScript collector.
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    updateDataFromAPI();
    connect(&m_tests, &TestList::newTestResultsReceived, this, &Job::newTestResultsReceived);
}

Job::~Job()
{
    qCDebug(logCategory) << "Job " << jobNumber() << "deallocated";
}

void Job::setIsArchived(bool archived)
{
    if (archived == m_isArchived || !m_api->setIsJobArchived(m_jobID, archived)) {
        return;
    }
    m_isArchived = archived;
    Q_EMIT isArchivedChanged(this);
}

void Job::updateDataFromAPI()
{
    qCDebug(logCategory) << "void jobmanager_ui::Job::updateDataFromAPI()"
                         << ": updating job: " << m_jobID;
    readSummary();
    m_tests.markAsUpdateRequired();
    dropProperties();
    // Whether a fetch is under way stays as it is: an update that lands meanwhile must not start a second one.
    m_backgroundFetchRequired = !m_api->isJobInCache(m_jobID);
    // Counted anew with the map, and told then.
    m_totalNumberOfRequiredAttributes = 0;
    m_numberOfIncompleteRequiredAttributes = 0;
    emitUpdateSignals();
}

void Job::readSummary()
{
    m_jobNumber = m_api->getJobNumber(m_jobID);
    m_workOrderLabel = m_api->getWorkOrderLabel(m_jobID);
    m_customerName = m_api->getCustomerName(m_jobID);
    m_typeName = m_api->getWorkflowTypeName(m_jobID);
    m_isArchived = m_api->isJobArchived(m_jobID);
    m_modifiedOn = m_api->getJobModifiedOn(m_jobID);
    m_totalNumberOfRequiredTests = m_api->getTotalNumberOfRequiredTests(m_jobID);
    m_numberOfCompletedRequiredTests = m_api->getNumberOfCompletedRequiredTests(m_jobID);
    m_managedBy = m_api->getJobManagedByInfo(m_jobID);
    m_state = m_api->getJobManagementState(m_jobID);
    m_teamTechIds = m_api->getTeamTechIds(m_jobID);
}

void Job::emitUpdateSignals()
{
    Q_EMIT jobNumberChanged();
    Q_EMIT customerNameChanged();
    Q_EMIT workOrderLabelChanged();
    Q_EMIT typeNameChanged();
    Q_EMIT isArchivedChanged(this);
    Q_EMIT totalNumberOfRequiredTestsChanged();
    Q_EMIT numberOfCompletedRequiredTestsChanged();
    Q_EMIT managedByChanged();
    Q_EMIT stateChanged();
    Q_EMIT teamTechIdsChanged();
    Q_EMIT testsChanged();
    Q_EMIT optionalPropertiesChanged();
    Q_EMIT allDisplayableJobPropertiesChanged();
    Q_EMIT jobPropertyDisplayInfosChanged();
    Q_EMIT allDisplayableTestPropertiesChanged();
    Q_EMIT testPropertyDisplayInfosChanged();
    // Twice in one update: part of what the front end is promised.
    Q_EMIT managedByChanged();
    Q_EMIT stateChanged();
}

void Job::setWorker(JobManagerWorker* worker)
{
    if (m_worker != nullptr) {
        disconnect(m_worker, nullptr, this, nullptr);
        disconnect(this, nullptr, m_worker, nullptr);
    }
    m_worker = worker;
    connect(this, &Job::fetchJob, m_worker, &JobManagerWorker::onFetchJob);
    connect(m_worker, &JobManagerWorker::fetchJobFinished, this, &Job::onFetchJobFinished);
}

bool Job::isBackgroundFetchCompleted()
{
    if (m_worker == nullptr || !m_backgroundFetchRequired) {
        return true;
    }
    if (!m_fetchInProgress) {
        m_fetchInProgress = true;
        Q_EMIT fetchInProgressChanged();
        Q_EMIT fetchJob(m_jobID);
    }
    return false;
}

void Job::onFetchJobFinished(QString jobID)
{
    if (jobID != m_jobID) {
        return;
    }
    m_api->commitFetchedData();
    m_fetchInProgress = false;
    Q_EMIT fetchInProgressChanged();
    m_backgroundFetchRequired = false;
    Q_EMIT testsChanged();
    Q_EMIT optionalPropertiesChanged();
    Q_EMIT allDisplayableJobPropertiesChanged();
    Q_EMIT jobPropertyDisplayInfosChanged();
    Q_EMIT allDisplayableTestPropertiesChanged();
    Q_EMIT testPropertyDisplayInfosChanged();
    Q_EMIT totalNumberOfRequiredAttributesChanged();
    Q_EMIT numberOfIncompleteRequiredAttributesChanged();
}

QAbstractListModel* Job::tests()
{
    if (!isBackgroundFetchCompleted()) {
        return nullptr;
    }
    m_tests.updateDataFromAPIIfRequired();
    return &m_tests;
}

QString Job::getTestNamebyTestIndex(int index)
{
    return m_tests.getTestNamebyTestIndex(index);
}

QString Job::getTestDescriptionByTestIndex(int index)
{
    return m_tests.getTestDescriptionByTestIndex(index);
}

QString Job::getTestSiteByTestIndex(int index)
{
    return m_tests.getTestSiteByTestIndex(index);
}

QString Job::getTestTypeByTestIndex(int index)
{
    return m_tests.getTestTypeByTestIndex(index);
}

int Job::testLocationsNumberByIndex(int index)
{
    return m_tests.testLocationsNumberByIndex(index);
}

int Job::countTestsByDisplayName(QString displayName)
{
    return m_tests.countTestsByDisplayName(displayName);
}

int Job::testLocationsNumberByDisplayName(QString displayName)
{
    return m_tests.testLocationsNumberByDisplayName(displayName);
}

void Job::resetTestFilter()
{
    m_tests.setTestFilter(TestList::TESTFILTER_ALL);
}

void Job::resetTestLocationSearch()
{
    m_tests.setSearchRegExpStr(QString());
}

} // namespace jobmanager_ui
