#include "tests/support/RecordingApi.h"

#include "tests/support/Deadline.h"
#include "tests/support/ValueText.h"

#include <algorithm>
#include <utility>

using namespace jobmanager_ui;

namespace jobmanager_test {

RecordingApi::RecordingApi() : m_journal(m_ownJournal), m_creator(std::this_thread::get_id())
{
}

RecordingApi::RecordingApi(Journal& journal) : m_journal(journal), m_creator(std::this_thread::get_id())
{
}

QStringList RecordingApi::calls() const
{
    QStringList names;
    const QStringList entries = m_journal.entries();
    for (const QString& entry : entries) {
        if (entry.startsWith(QLatin1String("call "))) {
            names.append(entry.mid(5, entry.indexOf(QLatin1Char('(')) - 5));
        }
    }
    return names;
}

int RecordingApi::count(const QString& operation) const
{
    return calls().count(operation);
}

void RecordingApi::setAnswer(const QString& operation, const QVariant& value)
{
    const std::lock_guard lock(m_mutex);
    m_answers[operation] = value;
}

void RecordingApi::setDisplayInfo(const PropertyDisplayInfo& info)
{
    const std::lock_guard lock(m_mutex);
    m_displayInfos[info.propName] = info;
}

PropertyDisplayInfo RecordingApi::displayInfo(const QString& propName) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_displayInfos.find(propName);
    if (found != m_displayInfos.end()) {
        return found->second;
    }
    PropertyDisplayInfo info;
    info.propName = propName;
    return info;
}

void RecordingApi::setJob(const QString& jobID, const JobSummary& summary)
{
    const auto set = [&](const char* operation, const QVariant& value) {
        setAnswer(callText(QString::fromLatin1(operation), { jobID }), value);
    };
    set("getWorkOrderLabel", summary.workOrderLabel);
    set("getCustomerName", summary.customerName);
    set("getWorkflowTypeName", summary.typeName);
    set("isJobArchived", summary.archived);
    set("getJobModifiedOn", summary.modifiedOn);
    set("getTotalNumberOfRequiredTests", summary.requiredTests);
    set("getNumberOfCompletedRequiredTests", summary.completedTests);
    set("getJobManagedByInfo", summary.managedBy);
    set("getJobManagementState", summary.state);
    set("getTeamTechIds", summary.team);
    const std::lock_guard lock(m_mutex);
    if (std::find(m_jobIDs.begin(), m_jobIDs.end(), jobID) == m_jobIDs.end()) {
        m_jobIDs.push_back(jobID);
    }
}

void RecordingApi::removeJob(const QString& jobID)
{
    const std::lock_guard lock(m_mutex);
    m_jobIDs.erase(std::remove(m_jobIDs.begin(), m_jobIDs.end(), jobID), m_jobIDs.end());
}

void RecordingApi::setJobIDs(const std::vector<QString>& jobIDs)
{
    const std::lock_guard lock(m_mutex);
    m_jobIDs = jobIDs;
}

void RecordingApi::setCurrentID(const QString& jobID)
{
    const std::lock_guard lock(m_mutex);
    m_currentID = jobID;
}

void RecordingApi::setChangeCount(int count)
{
    const std::lock_guard lock(m_mutex);
    m_changeCount = count;
}

void RecordingApi::setJobListCached(bool cached)
{
    const std::lock_guard lock(m_mutex);
    m_jobListCached = cached;
}

void RecordingApi::keepJobListCached()
{
    const std::lock_guard lock(m_mutex);
    m_alwaysCached = true;
}

void RecordingApi::setSettings(const QHash<QString, QString>& settings)
{
    const std::lock_guard lock(m_mutex);
    m_settings = settings;
}

void RecordingApi::hold(const QString& operation)
{
    const std::lock_guard lock(m_mutex);
    m_held.insert(operation);
}

void RecordingApi::release(const QString& operation)
{
    {
        const std::lock_guard lock(m_mutex);
        m_held.erase(operation);
    }
    m_changed.notify_all();
}

bool RecordingApi::waitUntilHeld(const QString& operation)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(
        lock, stretched(std::chrono::seconds(10)), [&] { return m_waiting.count(operation) == 1; });
}

QVariant RecordingApi::call(const char* operation, const QVariantList& arguments) const
{
    const QString name = QString::fromLatin1(operation);
    const QString text = callText(name, arguments);
    const bool onCreator = std::this_thread::get_id() == m_creator;
    m_journal.add(QStringLiteral("call ") + text + (onCreator ? QString() : QStringLiteral(" on worker")));

    std::unique_lock lock(m_mutex);
    if (m_held.count(name) == 1) {
        m_waiting.insert(name);
        m_changed.notify_all();
        m_changed.wait_for(lock, stretched(std::chrono::seconds(20)), [&] { return m_held.count(name) == 0; });
        m_waiting.erase(name);
    }
    const auto exact = m_answers.find(text);
    if (exact != m_answers.end()) {
        return exact->second;
    }
    const auto general = m_answers.find(name);
    return general == m_answers.end() ? QVariant() : general->second;
}

std::vector<QString> RecordingApi::texts(const QVariant& answer) const
{
    const QStringList list = answer.toStringList();
    return { list.begin(), list.end() };
}

std::vector<long long> RecordingApi::numbers(const QVariant& answer) const
{
    std::vector<long long> result;
    const QVariantList list = answer.toList();
    for (const QVariant& number : list) {
        result.push_back(number.toLongLong());
    }
    return result;
}

int RecordingApi::getChangeCount()
{
    call("getChangeCount");
    const std::lock_guard lock(m_mutex);
    return m_changeCount;
}

void RecordingApi::clearCache()
{
    call("clearCache");
    setJobListCached(false);
}

bool RecordingApi::hasCurrentJob()
{
    const QVariant answer = call("hasCurrentJob");
    const std::lock_guard lock(m_mutex);
    return answer.isValid() ? answer.toBool() : !m_currentID.isEmpty();
}

QString RecordingApi::getCurrentJobID()
{
    call("getCurrentJobID");
    const std::lock_guard lock(m_mutex);
    return m_currentID;
}

std::vector<QString> RecordingApi::getAllJobIDs()
{
    call("getAllJobIDs");
    const std::lock_guard lock(m_mutex);
    return m_jobIDs;
}

QString RecordingApi::getJobNumber(QString jobID)
{
    const QVariant answer = call("getJobNumber", { jobID });
    return answer.isValid() ? answer.toString() : jobID;
}

bool RecordingApi::setIsJobArchived(QString jobID, bool archived)
{
    const QVariant answer = call("setIsJobArchived", { jobID, archived });
    return answer.isValid() ? answer.toBool() : true;
}

bool RecordingApi::isJobListInCache() const
{
    call("isJobListInCache");
    const std::lock_guard lock(m_mutex);
    return m_alwaysCached || m_jobListCached;
}

bool RecordingApi::fetchJob(QString jobID)
{
    call("fetchJob", { jobID });
    return true;
}

bool RecordingApi::fetchJobList()
{
    call("fetchJobList");
    const std::lock_guard lock(m_mutex);
    m_pending = true;
    return true;
}

bool RecordingApi::commitFetchedData()
{
    call("commitFetchedData");
    const std::lock_guard lock(m_mutex);
    const bool pending = std::exchange(m_pending, false);
    m_jobListCached = m_jobListCached || pending;
    return pending;
}

QHash<QString, QString> RecordingApi::getSettingsListInfo()
{
    call("getSettingsListInfo");
    const std::lock_guard lock(m_mutex);
    return m_settings;
}

void RecordingApi::writeSetting(const std::string& id, const std::string& value)
{
    call("writeSetting", { QString::fromStdString(id), QString::fromStdString(value) });
}

void RecordingApi::setGroupType(TestGroupType::Enum groupType)
{
    call("setGroupType", { static_cast<int>(groupType) });
}

QDateTime RecordingApi::getTime()
{
    return call("getTime").toDateTime();
}

QString RecordingApi::getTechID()
{
    return call("getTechID").toString();
}

bool RecordingApi::setCurrentJobByID(QString jobID)
{
    return call("setCurrentJobByID", { jobID }).toBool();
}

QString RecordingApi::getCustomerName(QString jobID)
{
    return call("getCustomerName", { jobID }).toString();
}

QString RecordingApi::getWorkflowTypeName(QString jobID)
{
    return call("getWorkflowTypeName", { jobID }).toString();
}

bool RecordingApi::isJobArchived(QString jobID)
{
    return call("isJobArchived", { jobID }).toBool();
}

QString RecordingApi::getJobModifiedOn(QString jobID)
{
    return call("getJobModifiedOn", { jobID }).toString();
}

int RecordingApi::getTotalNumberOfRequiredTests(QString jobID)
{
    return call("getTotalNumberOfRequiredTests", { jobID }).toInt();
}

int RecordingApi::getNumberOfCompletedRequiredTests(QString jobID)
{
    return call("getNumberOfCompletedRequiredTests", { jobID }).toInt();
}

bool RecordingApi::deleteJob(QString jobID)
{
    return call("deleteJob", { jobID }).toBool();
}

bool RecordingApi::createJob(
    QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename, bool syncJobToNimbrel)
{
    return call("createJob", { WorkOrderNo, TechID, templateName, locationsFilename, syncJobToNimbrel }).toBool();
}

std::vector<QString> RecordingApi::getAllOptionalJobProperties(QString jobID)
{
    return texts(call("getAllOptionalJobProperties", { jobID }));
}

PropertyDisplayInfo RecordingApi::getOptionalJobPropertyDisplayInfo(QString jobID, const QString& propName)
{
    call("getOptionalJobPropertyDisplayInfo", { jobID, propName });
    return displayInfo(propName);
}

QVariant RecordingApi::getOptionalJobProperty(QString jobID, const QString& propName)
{
    return call("getOptionalJobProperty", { jobID, propName });
}

bool RecordingApi::setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value)
{
    return call("setOptionalJobProperty", { jobID, propName, value }).toBool();
}

QStringList RecordingApi::getTeamTechIds(QString jobID)
{
    return call("getTeamTechIds", { jobID }).toStringList();
}

std::vector<long long> RecordingApi::getAllTestIDs(QString jobID)
{
    return numbers(call("getAllTestIDs", { jobID }));
}

std::vector<long long> RecordingApi::getRequiredTestIDs(QString jobID)
{
    return numbers(call("getRequiredTestIDs", { jobID }));
}

std::vector<long long> RecordingApi::getOptionalTestIDs(QString jobID)
{
    return numbers(call("getOptionalTestIDs", { jobID }));
}

int RecordingApi::getTestIndex(long long testID)
{
    return call("getTestIndex", { testID }).toInt();
}

int RecordingApi::getTestLocationIndex(long long testID)
{
    return call("getTestLocationIndex", { testID }).toInt();
}

QString RecordingApi::getTestType(QString jobID, long long testID)
{
    return call("getTestType", { jobID, testID }).toString();
}

QDateTime RecordingApi::getTestTime(QString jobID, long long testID)
{
    return call("getTestTime", { jobID, testID }).toDateTime();
}

int RecordingApi::getTestLocationsNumber(QString jobID, long long testID)
{
    return call("getTestLocationsNumber", { jobID, testID }).toInt();
}

QString RecordingApi::getTestTypeDisplayName(QString jobID, long long testID)
{
    return call("getTestTypeDisplayName", { jobID, testID }).toString();
}

QString RecordingApi::getTestDescription(QString jobID, long long testID)
{
    return call("getTestDescription", { jobID, testID }).toString();
}

QString RecordingApi::getTestSite(QString jobID, long long testID)
{
    return call("getTestSite", { jobID, testID }).toString();
}

QString RecordingApi::getTestStatus(QString jobID, long long testID)
{
    return call("getTestStatus", { jobID, testID }).toString();
}

TestRequirement::Enum RecordingApi::getTestRequired(QString jobID, long long testID)
{
    return static_cast<TestRequirement::Enum>(call("getTestRequired", { jobID, testID }).toInt());
}

QStringList RecordingApi::getTestConfiguration(QString jobID, long long testID)
{
    return call("getTestConfiguration", { jobID, testID }).toStringList();
}

QString RecordingApi::getTestGuideFile(QString jobID, long long testID)
{
    return call("getTestGuideFile", { jobID, testID }).toString();
}

std::vector<QString> RecordingApi::getAllOptionalTestProperties(QString jobID, long long testID)
{
    return texts(call("getAllOptionalTestProperties", { jobID, testID }));
}

PropertyDisplayInfo RecordingApi::getOptionalTestPropertyDisplayInfo(
    QString jobID, long long testID, const QString& propName)
{
    call("getOptionalTestPropertyDisplayInfo", { jobID, testID, propName });
    return displayInfo(propName);
}

QVariant RecordingApi::getOptionalTestProperty(QString jobID, long long testID, const QString& propName)
{
    return call("getOptionalTestProperty", { jobID, testID, propName });
}

bool RecordingApi::setOptionalTestProperty(
    QString jobID, long long testID, const QString& propName, const QVariant& value)
{
    return call("setOptionalTestProperty", { jobID, testID, propName, value }).toBool();
}

bool RecordingApi::setManualTestResult(QString jobID, long long testID, const QString& text1, const QString& text2)
{
    return call("setManualTestResult", { jobID, testID, text1, text2 }).toBool();
}

QString RecordingApi::launchTest(QString jobID, long long testID)
{
    return call("launchTest", { jobID, testID }).toString();
}

void RecordingApi::prepareForLaunchTest(QString jobID, long long testID)
{
    call("prepareForLaunchTest", { jobID, testID });
}

QString RecordingApi::exportJobData(QString jobID, QString usbRootFolder)
{
    return call("exportJobData", { jobID, usbRootFolder }).toString();
}

int RecordingApi::importJobs(QString path)
{
    return call("importJobs", { path }).toInt();
}

bool RecordingApi::exchangeCurrentJob(QString devicePath)
{
    return call("exchangeCurrentJob", { devicePath }).toBool();
}

QStringList RecordingApi::fetchJobTemplates()
{
    return call("fetchJobTemplates").toStringList();
}

QString RecordingApi::getWorkOrderLabelFromTemplate(const QString& typeName)
{
    return call("getWorkOrderLabelFromTemplate", { typeName }).toString();
}

int RecordingApi::getTemplateNumberOfTests(const QString& typeName)
{
    return call("getTemplateNumberOfTests", { typeName }).toInt();
}

QVariantMap RecordingApi::getManualTestConfiguration(QString jobID, long long testID)
{
    return call("getManualTestConfiguration", { jobID, testID }).toMap();
}

QString RecordingApi::getTestResponse(QString jobID, long long testID)
{
    return call("getTestResponse", { jobID, testID }).toString();
}

QString RecordingApi::getJobManagedByInfo(QString jobID)
{
    return call("getJobManagedByInfo", { jobID }).toString();
}

QString RecordingApi::getJobManagementState(QString jobID)
{
    return call("getJobManagementState", { jobID }).toString();
}

QString RecordingApi::getWorkOrderLabel(QString jobID)
{
    return call("getWorkOrderLabel", { jobID }).toString();
}

bool RecordingApi::isJobInCache(QString jobID) const
{
    return call("isJobInCache", { jobID }).toBool();
}

int RecordingApi::getRestApiPort()
{
    return call("getRestApiPort").toInt();
}

void RecordingApi::setRestApiPort(int port)
{
    call("setRestApiPort", { port });
}

} // namespace jobmanager_test
