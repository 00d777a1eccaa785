#pragma once

#include "api/JobManagerAPIAbstraction.h"
#include "tests/support/Journal.h"

#include <map>
#include <set>
#include <thread>

namespace jobmanager_test {

/// The summary of one job as RecordingApi gives it.
struct JobSummary
{
    QString workOrderLabel = {};
    QString customerName = {};
    QString typeName = {};
    bool archived = false;
    QString modifiedOn = {};
    int requiredTests = 0;
    int completedTests = 0;
    QString managedBy = {};
    QString state = {};
    QStringList team = {};
};

/// A data interface for tests: writes each call into a journal as `call name(arguments)`, with " on worker" behind
/// it when another thread than the creator's made it, and answers by a script. Safe for concurrent use.
///
/// The cache works as the interface promises: a list counts as cached from the commit of a fetch to clearCache.
class RecordingApi : public jobmanager_ui::JobManagerAPIAbstraction
{
public:
    /// Records into a journal of its own.
    RecordingApi();
    /// Records into `journal`, which must outlive this object.
    explicit RecordingApi(Journal& journal);

    /// The journal in use.
    Journal& journal() { return m_journal; }
    /// The calls in the journal by name alone, in order.
    QStringList calls() const;
    /// How often the operation was called since the journal was emptied.
    int count(const QString& operation) const;

    /// Answers each call of the operation with `value`. The operation is a name, or, more strongly, a call with its
    /// arguments: `getJobNumber("7")`.
    void setAnswer(const QString& operation, const QVariant& value);
    /// Answers both kinds of display info of that property with `info`, under its own name.
    void setDisplayInfo(const jobmanager_ui::PropertyDisplayInfo& info);
    /// Adds the job at the end of the list, or replaces its summary. Its number is its id.
    void setJob(const QString& jobID, const JobSummary& summary = {});
    /// Takes the job out of the list.
    void removeJob(const QString& jobID);
    /// The order of the list, and what is in it.
    void setJobIDs(const std::vector<QString>& jobIDs);
    /// The current job; empty for none.
    void setCurrentID(const QString& jobID);
    void setChangeCount(int count);
    /// As if the list had been fetched and committed.
    void setJobListCached(bool cached);
    /// The list counts as cached whatever happens, as with an implementation that holds its data itself.
    void keepJobListCached();
    void setSettings(const QHash<QString, QString>& settings);

    /// Lets calls of the operation, from any thread, wait inside it until released. A call that nobody releases
    /// goes on after a while, so that a test that fails before it does so still ends.
    void hold(const QString& operation);
    /// Ends the wait of the calls inside and of those to come.
    void release(const QString& operation);
    /// Blocks until a call waits inside the operation; false if none came in time.
    bool waitUntilHeld(const QString& operation);

    int getChangeCount() override;
    void clearCache() override;
    QDateTime getTime() override;
    bool hasCurrentJob() override;
    QString getCurrentJobID() override;
    QString getTechID() override;
    bool setCurrentJobByID(QString jobID) override;
    std::vector<QString> getAllJobIDs() override;
    QString getJobNumber(QString jobID) override;
    QString getCustomerName(QString jobID) override;
    QString getWorkflowTypeName(QString jobID) override;
    bool isJobArchived(QString jobID) override;
    QString getJobModifiedOn(QString jobID) override;
    bool setIsJobArchived(QString jobID, bool archived) override;
    int getTotalNumberOfRequiredTests(QString jobID) override;
    int getNumberOfCompletedRequiredTests(QString jobID) override;
    bool deleteJob(QString jobID) override;
    bool createJob(QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename,
        bool syncJobToNimbrel) override;
    std::vector<QString> getAllOptionalJobProperties(QString jobID) override;
    jobmanager_ui::PropertyDisplayInfo getOptionalJobPropertyDisplayInfo(
        QString jobID, const QString& propName) override;
    QVariant getOptionalJobProperty(QString jobID, const QString& propName) override;
    bool setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value) override;
    QStringList getTeamTechIds(QString jobID) override;
    std::vector<long long> getAllTestIDs(QString jobID) override;
    std::vector<long long> getRequiredTestIDs(QString jobID) override;
    std::vector<long long> getOptionalTestIDs(QString jobID) override;
    int getTestIndex(long long testID) override;
    int getTestLocationIndex(long long testID) override;
    QString getTestType(QString jobID, long long testID) override;
    QDateTime getTestTime(QString jobID, long long testID) override;
    int getTestLocationsNumber(QString jobID, long long testID) override;
    QString getTestTypeDisplayName(QString jobID, long long testID) override;
    QString getTestDescription(QString jobID, long long testID) override;
    QString getTestSite(QString jobID, long long testID) override;
    QString getTestStatus(QString jobID, long long testID) override;
    jobmanager_ui::TestRequirement::Enum getTestRequired(QString jobID, long long testID) override;
    QStringList getTestConfiguration(QString jobID, long long testID) override;
    QString getTestGuideFile(QString jobID, long long testID) override;
    std::vector<QString> getAllOptionalTestProperties(QString jobID, long long testID) override;
    jobmanager_ui::PropertyDisplayInfo getOptionalTestPropertyDisplayInfo(
        QString jobID, long long testID, const QString& propName) override;
    QVariant getOptionalTestProperty(QString jobID, long long testID, const QString& propName) override;
    bool setOptionalTestProperty(
        QString jobID, long long testID, const QString& propName, const QVariant& value) override;
    bool setManualTestResult(QString jobID, long long testID, const QString& text1, const QString& text2) override;
    QString launchTest(QString jobID, long long testID) override;
    void prepareForLaunchTest(QString jobID, long long testID) override;
    QString exportJobData(QString jobID, QString usbRootFolder) override;
    int importJobs(QString path) override;
    bool exchangeCurrentJob(QString devicePath) override;
    QStringList fetchJobTemplates() override;
    QString getWorkOrderLabelFromTemplate(const QString& typeName) override;
    int getTemplateNumberOfTests(const QString& typeName) override;
    QVariantMap getManualTestConfiguration(QString jobID, long long testID) override;
    QString getTestResponse(QString jobID, long long testID) override;
    QString getJobManagedByInfo(QString jobID) override;
    QString getJobManagementState(QString jobID) override;
    QString getWorkOrderLabel(QString jobID) override;
    void setGroupType(jobmanager_ui::TestGroupType::Enum groupType) override;
    bool isJobListInCache() const override;
    bool isJobInCache(QString jobID) const override;
    bool fetchJob(QString jobID) override;
    bool fetchJobList() override;
    bool commitFetchedData() override;
    QHash<QString, QString> getSettingsListInfo() override;
    void writeSetting(const std::string& id, const std::string& value) override;
    int getRestApiPort() override;
    void setRestApiPort(int port) override;

private:
    /// Records the call, waits inside it if it is held, and gives its scripted answer, invalid if there is none.
    QVariant call(const char* operation, const QVariantList& arguments = {}) const;
    /// The display info of that property: the scripted one, or a default one with its name.
    jobmanager_ui::PropertyDisplayInfo displayInfo(const QString& propName) const;
    std::vector<QString> texts(const QVariant& answer) const;
    std::vector<long long> numbers(const QVariant& answer) const;

    Journal m_ownJournal;
    Journal& m_journal;
    const std::thread::id m_creator;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::map<QString, QVariant> m_answers;
    std::map<QString, jobmanager_ui::PropertyDisplayInfo> m_displayInfos;
    std::set<QString> m_held;
    mutable std::set<QString> m_waiting;
    std::vector<QString> m_jobIDs;
    QString m_currentID;
    int m_changeCount = 0;
    bool m_jobListCached = false;
    bool m_alwaysCached = false;
    bool m_pending = false;
    QHash<QString, QString> m_settings;
};

} // namespace jobmanager_test
