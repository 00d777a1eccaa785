// The current job, and creating and deleting jobs: what is asked of the service here comes back by the update cycle.
#include "core/JobManager.h"

#include "api/Logging.h"

#include <utility>

namespace jobmanager_ui {

QString JobManager::getTechID()
{
    return m_api->getTechID();
}

bool JobManager::setCurrentJob(Job* job)
{
    if (job == nullptr) {
        return false;
    }
    if (!backgroundFetching()) {
        return setCurrentJobByID(job->concreteTypeJobID());
    }
    requestCurrentJob(job->concreteTypeJobID());
    return true;
}

bool JobManager::unsetCurrentJob()
{
    if (backgroundFetching()) {
        requestCurrentJob(QString());
    } else if (m_api->setCurrentJobByID(QString())) {
        checkChangeCount(true);
    }
    return true;
}

void JobManager::requestCurrentJob(const QString& jobID)
{
    m_settingCurrentJob = true;
    Q_EMIT settingCurrentJobChanged();
    Q_EMIT setCurrentJobOnBackgroundThread(jobID);
}

bool JobManager::setCurrentJobByID(QVariant jobID)
{
    if (!jobID.canConvert<QString>()) {
        qCDebug(logCategory) << "Invalid type sent to "
                             << "bool jobmanager_ui::JobManager::setCurrentJobByID(QVariant)";
        return false;
    }
    const QString id = jobID.toString();
    if (m_currentJob != nullptr && m_currentJob->concreteTypeJobID() == id) {
        qCDebug(logCategory) << "Trying to change the active job to the same one. Skipping";
        return false;
    }
    if (m_api->setCurrentJobByID(id)) {
        checkChangeCount(true);
    }
    return true;
}

void JobManager::onSetCurrentJobFinished()
{
    // The flag stands until the update is through: whoever waits for its fall finds the new current job.
    checkChangeCount(true);
    m_settingCurrentJob = false;
    Q_EMIT settingCurrentJobChanged();
}

bool JobManager::deleteJob(Job* job)
{
    if (job == nullptr || !m_api->deleteJob(job->concreteTypeJobID())) {
        return false;
    }
    checkChangeCount(false);
    return true;
}

bool JobManager::createNewJob(
    QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename, bool syncJobToNimbrel)
{
    qCDebug(logCategory) << "bool jobmanager_ui::JobManager::createNewJob(QString, QString, QString, QString, bool)"
                         << WorkOrderNo << TechID << templateName << locationsFilename;
    if (WorkOrderNo.isEmpty()) {
        return false;
    }
    // A job that has just come from elsewhere counts as well.
    checkChangeCount(false);
    if (m_jobs.contains(WorkOrderNo)) {
        return false;
    }
    if (!m_api->createJob(WorkOrderNo, TechID, templateName, locationsFilename, syncJobToNimbrel)) {
        return false;
    }
    if (!m_api->setCurrentJobByID(WorkOrderNo)) {
        return false;
    }
    m_newJobID = WorkOrderNo;
    checkChangeCount(false);
    return true;
}

void JobManager::announceNewJob()
{
    // Forgotten first: a receiver that creates another job waits for the announcement of that one.
    const QString jobID = std::exchange(m_newJobID, QString());
    if (jobID.isEmpty()) {
        return;
    }
    if (Job* const job = getJob(jobID)) {
        Q_EMIT newJobCreated(job);
    }
}

QStringList JobManager::fetchJobTemplates()
{
    return m_api->fetchJobTemplates();
}

QString JobManager::getWorkOrderLabelFromTemplate(const QString& typeName)
{
    return m_api->getWorkOrderLabelFromTemplate(typeName);
}

int JobManager::getTemplateNumberOfTests(const QString& typeName)
{
    return m_api->getTemplateNumberOfTests(typeName);
}

bool JobManager::doesJobExist(QVariant jobID)
{
    if (!jobID.canConvert<QString>()) {
        qCDebug(logCategory) << "Invalid type sent to "
                             << "bool jobmanager_ui::JobManager::doesJobExist(QVariant)";
        return false;
    }
    return getJob(jobID.toString()) != nullptr;
}

} // namespace jobmanager_ui
