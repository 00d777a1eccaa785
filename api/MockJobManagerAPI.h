#pragma once

#include "api/JobManagerAPIAbstraction.h"

namespace jobmanager_ui {

/// The data interface over twenty fixed jobs in memory, made to exercise a front end without the job service: long
/// names, tests of every requirement, manual steps, a job with a hidden property, an archived job, empty jobs, and a
/// launch that always fails. Handed to JobManager's constructor; the factory never builds it.
///
/// A test id is the test's position in its job. Each accepted write moves the change count by 1, a refused one does
/// not. Everything counts as cached, so that no fetch ever starts. Nothing is saved.
///
/// The settings are left to the class that derives from this one: getSettingsListInfo and writeSetting stay pure.
///
/// Threads: no locks. Of what runs on the worker thread, setCurrentJobByID alone writes anything.
class MockJobManagerAPI : public JobManagerAPIAbstraction
{
    Q_DISABLE_COPY(MockJobManagerAPI)

public:
    /// One test of a job.
    struct MockTest
    {
        /// What the lists of required and of optional tests call it; no key.
        long long id = 0;
        /// The type token, also shown as its name.
        QString type;
        /// When it ran, as ISO 8601 text.
        QString time;
        /// What it is about.
        QString description;
        /// Where it is to be carried out.
        QString site;
        /// The status token; "none" alone means not done.
        QString status;
        /// The recorded answer of a manual step.
        QString response;
        /// What the description of a manual step's prompt starts from.
        QVariantMap manualConfiguration;
        /// How far the job asks for it.
        TestRequirement::Enum required = TestRequirement::TEST_UNDEFINED;
        /// Its configuration lines, separated by line feeds.
        QString configuration;
        /// Room for further text; not used.
        QString extraText;
        /// Property values by name.
        QHash<QString, QVariant> optionalProperties;
    };

    /// One job. A test in `requiredTests` or `optionalTests` is the same object as its entry in `tests`.
    struct MockJobInfo
    {
        /// The number of the work order, always the job's id.
        QString jobNumber;
        /// The label under which the number is shown.
        QString workOrderLabel;
        /// The customer's name.
        QString customerName;
        /// Name of the job's workflow type.
        QString workflowTypeName;
        /// The technician that the job was created for.
        QString techID;
        /// Ids of the technicians of the job's team.
        QStringList teamTechIds;
        /// Who manages the job.
        QString managedBy;
        /// The job's management state.
        QString managementState;
        /// Whether the job is archived.
        bool isArchived = false;
        /// Property values by name.
        QHash<QString, QVariant> optionalProperties;
        /// The tests that count for the job's progress.
        std::vector<std::shared_ptr<MockTest>> requiredTests;
        /// The tests that may be left out.
        std::vector<std::shared_ptr<MockTest>> optionalTests;
        /// All tests; the position is the test id.
        std::vector<std::shared_ptr<MockTest>> tests;
    };

    /// Holds the twenty jobs, none of them current, at change count 0.
    MockJobManagerAPI();

    int getChangeCount() override;
    void clearCache() override;
    QDateTime getTime() override;
    bool hasCurrentJob() override;
    QString getCurrentJobID() override;
    QString getTechID() override;
    /// Always true, also for an id that no job has.
    bool setCurrentJobByID(QString jobID) override;
    /// In no order.
    std::vector<QString> getAllJobIDs() override;
    QString getJobNumber(QString jobID) override;
    QString getCustomerName(QString jobID) override;
    QString getWorkflowTypeName(QString jobID) override;
    bool isJobArchived(QString jobID) override;
    /// Always empty.
    QString getJobModifiedOn(QString jobID) override;
    bool setIsJobArchived(QString jobID, bool archived) override;
    int getTotalNumberOfRequiredTests(QString jobID) override;
    int getNumberOfCompletedRequiredTests(QString jobID) override;
    bool deleteJob(QString jobID) override;
    /// The new job has no tests. False if there is a job with this number; it stays as it was.
    bool createJob(QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename,
        bool syncJobToNimbrel) override;
    std::vector<QString> getAllOptionalJobProperties(QString jobID) override;
    PropertyDisplayInfo getOptionalJobPropertyDisplayInfo(QString jobID, const QString& propName) override;
    QVariant getOptionalJobProperty(QString jobID, const QString& propName) override;
    /// Stores any value, but only under a name that the job has already.
    bool setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value) override;
    QStringList getTeamTechIds(QString jobID) override;
    std::vector<long long> getAllTestIDs(QString jobID) override;
    /// The ids that the tests carry, which differ from their positions in "JOB3".
    std::vector<long long> getRequiredTestIDs(QString jobID) override;
    /// The ids that the tests carry.
    std::vector<long long> getOptionalTestIDs(QString jobID) override;
    int getTestIndex(long long testID) override;
    /// Always -1.
    int getTestLocationIndex(long long testID) override;
    QString getTestType(QString jobID, long long testID) override;
    QDateTime getTestTime(QString jobID, long long testID) override;
    /// Always -1.
    int getTestLocationsNumber(QString jobID, long long testID) override;
    /// What getTestType answers.
    QString getTestTypeDisplayName(QString jobID, long long testID) override;
    QString getTestDescription(QString jobID, long long testID) override;
    QString getTestSite(QString jobID, long long testID) override;
    QString getTestStatus(QString jobID, long long testID) override;
    TestRequirement::Enum getTestRequired(QString jobID, long long testID) override;
    QStringList getTestConfiguration(QString jobID, long long testID) override;
    /// Always null.
    QString getTestGuideFile(QString jobID, long long testID) override;
    std::vector<QString> getAllOptionalTestProperties(QString jobID, long long testID) override;
    PropertyDisplayInfo getOptionalTestPropertyDisplayInfo(
        QString jobID, long long testID, const QString& propName) override;
    QVariant getOptionalTestProperty(QString jobID, long long testID, const QString& propName) override;
    /// Stores any value, but only under a name that the test has already.
    bool setOptionalTestProperty(
        QString jobID, long long testID, const QString& propName, const QVariant& value) override;
    /// Stores `text1`; the test's status stays.
    bool setManualTestResult(QString jobID, long long testID, const QString& text1, const QString& text2) override;
    /// Blocks for 2 seconds, then fails for want of a made-up option. Touches no data.
    QString launchTest(QString jobID, long long testID) override;
    void prepareForLaunchTest(QString jobID, long long testID) override;
    /// Always fails: null.
    QString exportJobData(QString jobID, QString usbRootFolder) override;
    /// Always 0.
    int importJobs(QString path) override;
    /// Always true; nothing happens.
    bool exchangeCurrentJob(QString devicePath) override;
    QStringList fetchJobTemplates() override;
    QString getWorkOrderLabelFromTemplate(const QString& typeName) override;
    int getTemplateNumberOfTests(const QString& typeName) override;
    /// The same prompt for every test there is, manual or not.
    QVariantMap getManualTestConfiguration(QString jobID, long long testID) override;
    QString getTestResponse(QString jobID, long long testID) override;
    QString getJobManagedByInfo(QString jobID) override;
    QString getJobManagementState(QString jobID) override;
    QString getWorkOrderLabel(QString jobID) override;
    /// Without effect on the order of the tests.
    void setGroupType(TestGroupType::Enum groupType) override;
    /// Always true.
    bool isJobListInCache() const override;
    /// Always true, also for an unknown job.
    bool isJobInCache(QString jobID) const override;
    /// Always false: there is nothing to fetch.
    bool fetchJob(QString jobID) override;
    /// Always false: there is nothing to fetch.
    bool fetchJobList() override;
    /// Always false: nothing is ever pending.
    bool commitFetchedData() override;

private:
    const MockJobInfo* findJob(const QString& jobID) const;
    MockJobInfo* findJob(const QString& jobID);
    std::shared_ptr<MockTest> findTest(const QString& jobID, long long testID) const;
    template <typename Value> Value jobField(const QString& jobID, Value MockJobInfo::*field) const;
    template <typename Value> Value testField(const QString& jobID, long long testID, Value MockTest::*field) const;
    bool replace(QHash<QString, QVariant>& properties, const QString& propName, const QVariant& value);

    QString m_currentJobID;
    QString m_techID;
    QHash<QString, MockJobInfo> m_jobs;
    int m_changeCount = 0;
    TestGroupType::Enum m_groupType = TestGroupType::NONE;
};

} // namespace jobmanager_ui
