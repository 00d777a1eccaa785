#include "api/rest/JobManagerRestAPI.h"

#include "api/Logging.h"
#include "api/rest/TestIdentifiers.h"

#include <QDebug>
#include <utility>

namespace jobmanager_ui {

namespace {

using MinimalJobInfo = RestApiJobManager::MinimalJobInfo;

/// The summary's text; null for an unknown job.
QString textOf(const MinimalJobInfo* info, std::string MinimalJobInfo::*text)
{
    return info ? QString::fromStdString(info->*text) : QString();
}

QStringList toStringList(const std::vector<std::string>& texts)
{
    QStringList list;
    list.reserve(static_cast<int>(texts.size()));
    for (const std::string& text : texts)
        list.append(QString::fromStdString(text));
    return list;
}

/// The service's name of a grouping.
const char* groupName(TestGroupType::Enum groupType)
{
    switch (groupType) {
    case TestGroupType::GROUPBY_LOCATION:
        return "location";
    case TestGroupType::GROUPBY_TEST_NAME:
        return "testtype";
    case TestGroupType::NONE:
    case TestGroupType::DEFAULT_VIEW:
        break;
    }
    return "job_order";
}

} // namespace

JobManagerRestAPI::JobManagerRestAPI(std::string host, unsigned short port)
    : m_client(host, port)
    , m_host(std::move(host))
    , m_port(port)
    , m_cache(m_client)
{
    createJobAttributeExtractors();
    createTestAttributeExtractors();
    m_client.setUiGroupType(groupName(TestGroupType::DEFAULT_VIEW));
}

int JobManagerRestAPI::getChangeCount()
{
    return m_client.getChangeCount();
}

void JobManagerRestAPI::clearCache()
{
    m_cache.clear();
}

QDateTime JobManagerRestAPI::getTime()
{
    return QDateTime();
}

bool JobManagerRestAPI::hasCurrentJob()
{
    return !getCurrentJobID().isEmpty();
}

QString JobManagerRestAPI::getCurrentJobID()
{
    return QString::fromStdString(m_client.getActiveWorkorderID());
}

QString JobManagerRestAPI::getTechID()
{
    return QString::fromStdString(m_client.getInstrumentLoginConfig().techId);
}

bool JobManagerRestAPI::setCurrentJobByID(QString jobID)
{
    return m_client.setActiveWorkorderID(jobID.toStdString());
}

std::vector<QString> JobManagerRestAPI::getAllJobIDs()
{
    return m_cache.getJobList();
}

QString JobManagerRestAPI::getJobNumber(QString jobID)
{
    return jobID;
}

QString JobManagerRestAPI::getCustomerName(QString jobID)
{
    return textOf(m_cache.getMinimalJobInfo(jobID), &MinimalJobInfo::customerName);
}

QString JobManagerRestAPI::getWorkflowTypeName(QString jobID)
{
    return textOf(m_cache.getMinimalJobInfo(jobID), &MinimalJobInfo::workflowTypeName);
}

bool JobManagerRestAPI::isJobArchived(QString jobID)
{
    const MinimalJobInfo* const info = m_cache.getMinimalJobInfo(jobID);
    return !info || info->archived;
}

QString JobManagerRestAPI::getJobModifiedOn(QString jobID)
{
    const MinimalJobInfo* const info = m_cache.getMinimalJobInfo(jobID);
    // Unlike its neighbours this one is never null: it is a sort key.
    return QString::fromStdString(info ? info->modifiedOn : std::string());
}

bool JobManagerRestAPI::setIsJobArchived(QString jobID, bool archived)
{
    if (!archived)
        return m_client.restoreJob(jobID.toStdString());
    if (jobID == getCurrentJobID())
        setCurrentJobByID(QString());
    return m_client.archiveJob(jobID.toStdString());
}

int JobManagerRestAPI::getTotalNumberOfRequiredTests(QString jobID)
{
    const MinimalJobInfo* const info = m_cache.getMinimalJobInfo(jobID);
    return info ? info->totalNumberOfRequiredTests : 0;
}

int JobManagerRestAPI::getNumberOfCompletedRequiredTests(QString jobID)
{
    const MinimalJobInfo* const info = m_cache.getMinimalJobInfo(jobID);
    return info ? info->numberOfCompletedRequiredTests : 0;
}

bool JobManagerRestAPI::deleteJob(QString jobID)
{
    return m_client.deleteJob(jobID.toStdString());
}

bool JobManagerRestAPI::createJob(
    QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename, bool syncJobToNimbrel)
{
    return m_client.newJob(WorkOrderNo.toStdString(), TechID.toStdString(), templateName.toStdString(),
        locationsFilename.toStdString(), syncJobToNimbrel);
}

QStringList JobManagerRestAPI::getTeamTechIds(QString jobID)
{
    const MinimalJobInfo* const info = m_cache.getMinimalJobInfo(jobID);
    return info ? toStringList(info->teamTechIds) : QStringList();
}

bool JobManagerRestAPI::setManualTestResult(
    QString /*jobID*/, long long testID, const QString& text1, const QString& text2)
{
    qCDebug(logCategory) << "JobManagerRestAPI setting manual test result to:" << text1 << ", " << text2;
    return m_client.setManualTestResponse(text1.toStdString(), text2.toStdString(), getUiIndexFromTestId(testID));
}

QString JobManagerRestAPI::exportJobData(QString jobID, QString usbRootFolder)
{
    const std::string path = m_client.exportJobData(jobID.toStdString(), usbRootFolder.toStdString());
    // The one text of the client that is not UTF-8.
    return QString::fromLatin1(path.data(), static_cast<int>(path.size()));
}

int JobManagerRestAPI::importJobs(QString path)
{
    return m_client.importJobs(path.toStdString());
}

bool JobManagerRestAPI::exchangeCurrentJob(QString devicePath)
{
    return m_client.exchangeCurrentJob(devicePath.toStdString(), std::string());
}

QStringList JobManagerRestAPI::fetchJobTemplates()
{
    const QStringList templates = toStringList(m_client.getTemplateList());
    qCDebug(logCategory) << "Templates: " << templates;
    return templates;
}

QString JobManagerRestAPI::getWorkOrderLabelFromTemplate(const QString& typeName)
{
    return QString::fromStdString(m_client.getTemplateWorkOrderLabel(typeName.toStdString()));
}

int JobManagerRestAPI::getTemplateNumberOfTests(const QString& typeName)
{
    return m_client.getTemplateNumberOfTests(typeName.toStdString());
}

QString JobManagerRestAPI::getJobManagedByInfo(QString jobID)
{
    return textOf(m_cache.getMinimalJobInfo(jobID), &MinimalJobInfo::managedByInfo);
}

QString JobManagerRestAPI::getJobManagementState(QString jobID)
{
    return textOf(m_cache.getMinimalJobInfo(jobID), &MinimalJobInfo::managementState);
}

QString JobManagerRestAPI::getWorkOrderLabel(QString jobID)
{
    return textOf(m_cache.getMinimalJobInfo(jobID), &MinimalJobInfo::workOrderLabel);
}

void JobManagerRestAPI::setGroupType(TestGroupType::Enum groupType)
{
    m_client.setUiGroupType(groupName(groupType));
}

bool JobManagerRestAPI::isJobListInCache() const
{
    return m_cache.isJobListFetched();
}

bool JobManagerRestAPI::isJobInCache(QString jobID) const
{
    return m_cache.isJobCached(jobID);
}

bool JobManagerRestAPI::fetchJob(QString jobID)
{
    cdm::CdmSouthboundJob job = m_client.getJob(jobID.toStdString());
    const std::lock_guard lock(m_fetchMutex);
    m_fetchedJobs[jobID] = std::move(job);
    return true;
}

bool JobManagerRestAPI::fetchJobList()
{
    std::vector<MinimalJobInfo> jobs = m_client.getJobList();
    const std::lock_guard lock(m_fetchMutex);
    m_fetchedJobList = std::move(jobs);
    return true;
}

bool JobManagerRestAPI::commitFetchedData()
{
    const std::lock_guard lock(m_fetchMutex);
    const bool anythingPending = m_fetchedJobList || !m_fetchedJobs.isEmpty();
    if (m_fetchedJobList) {
        m_cache.addToCache(*m_fetchedJobList);
        m_fetchedJobList.reset();
    }
    for (auto job = m_fetchedJobs.begin(); job != m_fetchedJobs.end(); ++job)
        m_cache.addToCache(std::move(job.value()));
    m_fetchedJobs.clear();
    return anythingPending;
}

QHash<QString, QString> JobManagerRestAPI::getSettingsListInfo()
{
    QHash<QString, QString> settings;
    for (const auto& [id, value] : m_client.getSettingsListInfo())
        settings.insert(QString::fromStdString(id), QString::fromStdString(value));
    return settings;
}

void JobManagerRestAPI::writeSetting(const std::string& id, const std::string& value)
{
    m_client.writeSetting(id, value);
}

int JobManagerRestAPI::getRestApiPort()
{
    return m_port;
}

void JobManagerRestAPI::setRestApiPort(int port)
{
    m_port = port;
    // The cache refers to the client, so that the client stays and takes the new address over.
    const RestApiJobManager other(m_host, static_cast<unsigned short>(port));
    m_client.serviceAddress = other.serviceAddress;
    m_client.servicePort = other.servicePort;
    clearCache();
}

} // namespace jobmanager_ui
