#include "models/Job.h"

#include "api/Logging.h"

#include <QQmlEngine>
#include <utility>

namespace jobmanager_ui {

Job::Job(std::shared_ptr<JobManagerAPIAbstraction> api, QString jobID)
    : m_api(std::move(api))
    , m_jobID(std::move(jobID))
{
    // Without a parent, a job that JavaScript gets from a model's data() would belong to the JavaScript collector.
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    updateDataFromAPI();
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
    emitSummarySignals();
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

void Job::emitSummarySignals()
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

} // namespace jobmanager_ui
