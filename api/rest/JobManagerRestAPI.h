#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "api/JobManagerAPIAbstraction.h"
#include "api/rest/AttributeExtractor.h"
#include "api/rest/JobManagerRestAPICache.h"
#include "client/RestApiJobManager.h"

#include <array>
#include <mutex>
#include <optional>
#include <utility>

namespace jobmanager_ui {

/// The production implementation of the data interface: reads of a cache and calls of the job service's client.
///
/// Text crosses as UTF-8. Reads answer from the cache; one that finds nothing there fetches and blocks its thread.
/// What changes jobs goes straight to the service and leaves the cache alone: the change shows through the change
/// count and a new fetch. Results of the client are taken as they come.
///
/// The cache and all reads belong to the main thread. fetchJobList and fetchJob on the worker thread only fill the
/// pending store, and no lock is held while the service is called.
class JobManagerRestAPI : public JobManagerAPIAbstraction
{
public:
    /// Takes the service's host and port, and tells the service the default grouping of tests ("job_order").
    JobManagerRestAPI(std::string host, unsigned short port);

    int getChangeCount() override;
    void clearCache() override;
    /// Always null: the service has no clock of its own.
    QDateTime getTime() override;

    bool hasCurrentJob() override;
    QString getCurrentJobID() override;
    QString getTechID() override;
    bool setCurrentJobByID(QString jobID) override;

    std::vector<QString> getAllJobIDs() override;
    /// The id itself, for every job: the service's number of a job is its id.
    QString getJobNumber(QString jobID) override;
    QString getCustomerName(QString jobID) override;
    QString getWorkflowTypeName(QString jobID) override;
    /// True for an unknown job.
    bool isJobArchived(QString jobID) override;
    QString getJobModifiedOn(QString jobID) override;
    /// A current job that is archived stops being current first, and stays so if the service then refuses.
    bool setIsJobArchived(QString jobID, bool archived) override;
    int getTotalNumberOfRequiredTests(QString jobID) override;
    int getNumberOfCompletedRequiredTests(QString jobID) override;
    bool deleteJob(QString jobID) override;
    bool createJob(QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename,
        bool syncJobToNimbrel) override;

    /// Sorted: "techId", "contractorId" if the job has one, and "attributes/" with each attribute's name.
    std::vector<QString> getAllOptionalJobProperties(QString jobID) override;
    /// A default one, without a name, where getOptionalJobProperty is invalid.
    PropertyDisplayInfo getOptionalJobPropertyDisplayInfo(QString jobID, const QString& propName) override;
    /// A text, empty for what the job does not have; invalid for a name that no job can have.
    QVariant getOptionalJobProperty(QString jobID, const QString& propName) override;
    /// Always true. Blocks until the service has taken or refused the value; the next read tells which.
    bool setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value) override;
    QStringList getTeamTechIds(QString jobID) override;

    std::vector<long long> getAllTestIDs(QString jobID) override;
    std::vector<long long> getRequiredTestIDs(QString jobID) override;
    std::vector<long long> getOptionalTestIDs(QString jobID) override;
    int getTestIndex(long long testID) override;
    int getTestLocationIndex(long long testID) override;
    QString getTestType(QString jobID, long long testID) override;
    /// The location's time, or that of a test with at most one location. A text that is no time counts as none.
    QDateTime getTestTime(QString jobID, long long testID) override;
    /// 0 for an unknown test.
    int getTestLocationsNumber(QString jobID, long long testID) override;
    QString getTestTypeDisplayName(QString jobID, long long testID) override;
    QString getTestDescription(QString jobID, long long testID) override;
    QString getTestSite(QString jobID, long long testID) override;
    /// The location's status, or that of a test with at most one location.
    QString getTestStatus(QString jobID, long long testID) override;
    /// Required for an unknown test; never undefined. The location's own word goes before the test's.
    TestRequirement::Enum getTestRequired(QString jobID, long long testID) override;
    /// The lines of the location if the id names one, else of the test.
    QStringList getTestConfiguration(QString jobID, long long testID) override;
    QString getTestGuideFile(QString jobID, long long testID) override;

    /// Sorted: "location" if the id names one, and "attributes/" with each name of the location's and the test's.
    std::vector<QString> getAllOptionalTestProperties(QString jobID, long long testID) override;
    /// Only name, label and whether it can be edited; the rest is as in a default one.
    PropertyDisplayInfo getOptionalTestPropertyDisplayInfo(
        QString jobID, long long testID, const QString& propName) override;
    /// A text, empty for what neither location nor test has; invalid for an unknown test, or a name no test can have.
    QVariant getOptionalTestProperty(QString jobID, long long testID, const QString& propName) override;
    /// Always false: the properties of tests are read-only.
    bool setOptionalTestProperty(
        QString jobID, long long testID, const QString& propName, const QVariant& value) override;

    bool setManualTestResult(QString jobID, long long testID, const QString& text1, const QString& text2) override;
    /// Launches the test or location by its index string alone, which the service looks up in its current job. Empty
    /// without a call, and a warning, if the last prepareForLaunchTest found no test, or there was none. The prepared
    /// test stays for the next launch.
    QString launchTest(QString jobID, long long testID) override;
    /// Keeps a copy of the test for launchTest, so that the worker thread reads no cache. The two take no lock: the
    /// caller is done with this one before it starts the other. Blocks if the job is not in the cache.
    void prepareForLaunchTest(QString jobID, long long testID) override;

    QString exportJobData(QString jobID, QString usbRootFolder) override;
    int importJobs(QString path) override;
    bool exchangeCurrentJob(QString devicePath) override;

    QStringList fetchJobTemplates() override;
    QString getWorkOrderLabelFromTemplate(const QString& typeName) override;
    int getTemplateNumberOfTests(const QString& typeName) override;

    /// The members of the test's configuration data; empty if that is no object.
    QVariantMap getManualTestConfiguration(QString jobID, long long testID) override;
    /// The location's answer, or that of a test with at most one location.
    QString getTestResponse(QString jobID, long long testID) override;

    QString getJobManagedByInfo(QString jobID) override;
    QString getJobManagementState(QString jobID) override;
    QString getWorkOrderLabel(QString jobID) override;

    void setGroupType(TestGroupType::Enum groupType) override;

    bool isJobListInCache() const override;
    bool isJobInCache(QString jobID) const override;
    /// Always true. A record of that id that is still pending is replaced.
    bool fetchJob(QString jobID) override;
    /// Always true. A list that is still pending is replaced.
    bool fetchJobList() override;
    /// Waits for nothing but the worker's move of a finished result. Records are filed under their own ids.
    bool commitFetchedData() override;

    QHash<QString, QString> getSettingsListInfo() override;
    void writeSetting(const std::string& id, const std::string& value) override;

    int getRestApiPort() override;
    /// Keeps `port` as it is, and gives the client its low 16 bits; what was cached from the other port is dropped.
    void setRestApiPort(int port) override;

    /// The attribute of that property name ("techId", "attributes/name"); a default one if the job does not have it.
    /// Nothing for an empty name and one that no extractor serves.
    std::optional<cdm::Attribute> getJobAttribute(const QString& jobID, const QString& name);
    /// Writes the value as text to the service, and to the cached record only if the service agrees. True if there is
    /// a record, whatever became of the write: a refused one, an empty name, one that no extractor serves.
    bool setJobAttribute(QString jobID, const QString& name, const QVariant& value);
    /// As getJobAttribute, of a test and its location ("location", "attributes/name"); nothing for an unknown test, too.
    std::optional<cdm::Attribute> getTestAttribute(const QString& jobID, long long testID, const QString& name);

    /// How many locations the test has.
    int getNumberOfTestLocations(const cdm::Test& test) const;
    /// A copy of the result data of the location that the id names, or else of a test with at most one location.
    std::optional<nlohmann::json> getResultsData(cdm::Test& test, long long testId);

private:
    /// A test, never null, and the location that the id names, if it does.
    using TestAndLocation = std::pair<cdm::Test*, cdm::TestLocation*>;

    void createJobAttributeExtractors();
    void createTestAttributeExtractors();
    /// Nothing for an unknown test.
    std::optional<TestAndLocation> findTestAndLocation(const QString& jobID, long long testID);
    /// The data that getResultsData copies; null if there is none.
    const nlohmann::json* findResultsData(cdm::Test& test, long long testID) const;
    /// The results that may answer for the id, the location's first; null for each that does not count or exist.
    std::array<const cdm::TestResults*, 2> resultsInOrder(cdm::Test& test, long long testID) const;
    cdm::TestLocation* findLocation(cdm::Test& test, long long testID) const;
    std::vector<long long> testIDsByRequirement(const QString& jobID, bool required);
    QString testText(const QString& jobID, long long testID, std::optional<std::string> cdm::Test::*text);

    RestApiJobManager m_client;
    std::string m_host;
    int m_port;
    JobManagerRestAPICache m_cache;
    QHash<QString, AttributeExtractor<cdm::CdmSouthboundJob>> m_jobAttributeExtractors;
    QHash<QString, AttributeExtractor<TestAndLocation>> m_testAttributeExtractors;
    /// Set or emptied by prepareForLaunchTest alone.
    std::optional<cdm::Test> m_testToLaunch;
    /// Guards the pending store, which is the next two fields, and nothing else.
    std::mutex m_fetchMutex;
    std::optional<std::vector<RestApiJobManager::MinimalJobInfo>> m_fetchedJobList;
    QHash<QString, cdm::CdmSouthboundJob> m_fetchedJobs;
};

} // namespace jobmanager_ui
