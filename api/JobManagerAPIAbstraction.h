#pragma once

#include "api/PropertyDisplayInfo.h"
#include "api/TestGroupType.h"
#include "api/TestRequirement.h"

#include <memory>
#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <string>
#include <vector>

namespace jobmanager_ui {

/// The one seam between the objects that QML sees and the place where the job data lives.
///
/// Everything crosses it as plain values. A job is named by its id (opaque, compared as a string, empty for no
/// job), a test by its job's id and its test id, which only the implementation interprets. One instance, held by
/// shared pointers, serves a whole JobManager.
///
/// Failures are return values: a failed write is false, a failed read an empty value or the one named at the
/// operation, a failed launch a non-empty status. An unknown job or test is no error. Nothing throws.
///
/// Threads: fetchJobList, fetchJob, launchTest, setCurrentJobByID, exportJobData, importJobs and
/// exchangeCurrentJob are called on the worker thread while the main thread calls any of the others through the
/// same object. The callers hold no lock.
///
/// Slow reads come in two phases. fetchJobList and fetchJob block on the worker thread and leave their result in a
/// pending store, which readers do not see; commitFetchedData, on the main thread, moves the store to where they do.
class JobManagerAPIAbstraction
{
public:
    /// Builds the production implementation, which talks to the job service. Does not connect; never null.
    static std::shared_ptr<JobManagerAPIAbstraction> createJobManagerAPI();

    virtual ~JobManagerAPIAbstraction() = default;

    /// The current change count. Any change of job data behind this interface moves it, up or down.
    virtual int getChangeCount() = 0;
    /// Forgets all cached job data: isJobListInCache and isJobInCache answer false until the next commit.
    virtual void clearCache() = 0;
    /// The time of the data's place, null where it tells none.
    virtual QDateTime getTime() = 0;

    /// True if getCurrentJobID is not empty.
    virtual bool hasCurrentJob() = 0;
    /// Id of the current job, empty if there is none.
    virtual QString getCurrentJobID() = 0;
    /// Id of the technician who is logged in.
    virtual QString getTechID() = 0;
    /// Makes the job current; the empty id clears the current job. True on success. May block.
    virtual bool setCurrentJobByID(QString jobID) = 0;

    /// Ids of all jobs, archived ones included; callers keep the order.
    virtual std::vector<QString> getAllJobIDs() = 0;
    /// The job's work order number; for an unknown job empty or the id itself, as the implementation has it.
    virtual QString getJobNumber(QString jobID) = 0;
    /// The customer's name; empty for an unknown job.
    virtual QString getCustomerName(QString jobID) = 0;
    /// Name of the job's workflow type (the template's name); empty for an unknown job.
    virtual QString getWorkflowTypeName(QString jobID) = 0;
    /// True if the job is archived. For an unknown job the implementation chooses.
    virtual bool isJobArchived(QString jobID) = 0;
    /// When the job was last modified, as the service's own text; empty for an unknown job.
    virtual QString getJobModifiedOn(QString jobID) = 0;
    /// Archives or restores the job. True on success.
    virtual bool setIsJobArchived(QString jobID, bool archived) = 0;
    /// How many tests the job requires; 0 for an unknown job.
    virtual int getTotalNumberOfRequiredTests(QString jobID) = 0;
    /// How many of the required tests are complete; 0 for an unknown job.
    virtual int getNumberOfCompletedRequiredTests(QString jobID) = 0;
    /// Deletes the job. True on success.
    virtual bool deleteJob(QString jobID) = 0;
    /// Creates a job. True on success.
    virtual bool createJob(QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename,
        bool syncJobToNimbrel) = 0;

    /// Names of the job's optional properties, visible or not.
    virtual std::vector<QString> getAllOptionalJobProperties(QString jobID) = 0;
    /// How the property is shown and edited.
    virtual PropertyDisplayInfo getOptionalJobPropertyDisplayInfo(QString jobID, const QString& propName) = 0;
    /// The property's value, a string or a number; invalid if it has none, which is a normal answer.
    virtual QVariant getOptionalJobProperty(QString jobID, const QString& propName) = 0;
    /// Writes the property. False if the value was refused.
    virtual bool setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value) = 0;
    /// Ids of the technicians of the job's team; empty for an unknown job.
    virtual QStringList getTeamTechIds(QString jobID) = 0;

    /// Ids of all tests of the job; empty for an unknown job.
    virtual std::vector<long long> getAllTestIDs(QString jobID) = 0;
    /// Ids of the required tests of the job.
    virtual std::vector<long long> getRequiredTestIDs(QString jobID) = 0;
    /// Ids of the optional tests of the job.
    virtual std::vector<long long> getOptionalTestIDs(QString jobID) = 0;
    /// Index of the test inside its job. Arithmetic on the id alone.
    virtual int getTestIndex(long long testID) = 0;
    /// Index of the location inside the test, -1 for none. Arithmetic on the id alone.
    virtual int getTestLocationIndex(long long testID) = 0;
    /// The test's type token, "manual" for a manual test; empty for an unknown test.
    virtual QString getTestType(QString jobID, long long testID) = 0;
    /// When the test ran; null for an unknown test or one without a result.
    virtual QDateTime getTestTime(QString jobID, long long testID) = 0;
    /// How many locations the test has. For an unknown test the implementation chooses.
    virtual int getTestLocationsNumber(QString jobID, long long testID) = 0;
    /// Name of the test type for display.
    virtual QString getTestTypeDisplayName(QString jobID, long long testID) = 0;
    /// What the test is about.
    virtual QString getTestDescription(QString jobID, long long testID) = 0;
    /// Where the test is to be carried out.
    virtual QString getTestSite(QString jobID, long long testID) = 0;
    /// The status token of the test or location.
    virtual QString getTestStatus(QString jobID, long long testID) = 0;
    /// How far the job asks for the test. For an unknown test the implementation chooses.
    virtual TestRequirement::Enum getTestRequired(QString jobID, long long testID) = 0;
    /// Configuration lines of the test; empty for an unknown test.
    virtual QStringList getTestConfiguration(QString jobID, long long testID) = 0;
    /// Path of the test's guide file, or empty.
    virtual QString getTestGuideFile(QString jobID, long long testID) = 0;

    /// Names of the test's optional properties, visible or not.
    virtual std::vector<QString> getAllOptionalTestProperties(QString jobID, long long testID) = 0;
    /// How the test's property is shown and edited.
    virtual PropertyDisplayInfo getOptionalTestPropertyDisplayInfo(
        QString jobID, long long testID, const QString& propName) = 0;
    /// The test property's value, a string or a number; invalid if it has none, which is a normal answer.
    virtual QVariant getOptionalTestProperty(QString jobID, long long testID, const QString& propName) = 0;
    /// Writes the test's property. False if the value was refused.
    virtual bool setOptionalTestProperty(
        QString jobID, long long testID, const QString& propName, const QVariant& value) = 0;

    /// Records the answer of a manual step; getTestResponse then gives `text1` back. True on success.
    virtual bool setManualTestResult(QString jobID, long long testID, const QString& text1, const QString& text2) = 0;
    /// Starts the test and blocks until the launch has an outcome. Worker thread only, after prepareForLaunchTest.
    /// The launch status: empty on success, else an error token with its details.
    virtual QString launchTest(QString jobID, long long testID) = 0;
    /// Gathers on the main thread what launchTest needs, just before the launch is queued.
    virtual void prepareForLaunchTest(QString jobID, long long testID) = 0;

    /// Writes the job's data below the folder. The output path, empty on failure.
    virtual QString exportJobData(QString jobID, QString usbRootFolder) = 0;
    /// Imports jobs from the path. How many were imported.
    virtual int importJobs(QString path) = 0;
    /// Exchanges the current job with the device. True on success.
    virtual bool exchangeCurrentJob(QString devicePath) = 0;

    /// Names of the job templates.
    virtual QStringList fetchJobTemplates() = 0;
    /// The work order label that the template prescribes.
    virtual QString getWorkOrderLabelFromTemplate(const QString& typeName) = 0;
    /// How many tests the template prescribes.
    virtual int getTemplateNumberOfTests(const QString& typeName) = 0;

    /// The manual test's prompt description; empty if there is none.
    virtual QVariantMap getManualTestConfiguration(QString jobID, long long testID) = 0;
    /// The manual step's recorded answer; empty if there is none.
    virtual QString getTestResponse(QString jobID, long long testID) = 0;

    /// Who manages the job; empty for an unknown job.
    virtual QString getJobManagedByInfo(QString jobID) = 0;
    /// The job's management state; empty for an unknown job.
    virtual QString getJobManagementState(QString jobID) = 0;
    /// The label under which the job's number is shown; empty for an unknown job.
    virtual QString getWorkOrderLabel(QString jobID) = 0;

    /// Tells the implementation the grouping that the user chose.
    virtual void setGroupType(TestGroupType::Enum groupType) = 0;

    /// True if the job list can be read without a fetch.
    virtual bool isJobListInCache() const = 0;
    /// True if the job's full data can be read without a fetch.
    virtual bool isJobInCache(QString jobID) const = 0;
    /// Phase one of a fetch, for one job: blocks, and leaves the result pending. The callers ignore the result.
    virtual bool fetchJob(QString jobID) = 0;
    /// Phase one of a fetch, for the job list: blocks, and leaves the result pending. The callers ignore the result.
    virtual bool fetchJobList() = 0;
    /// Phase two of a fetch, on the main thread: makes what is pending visible. True if anything was pending.
    virtual bool commitFetchedData() = 0;

    /// All settings of the front end, id to value.
    virtual QHash<QString, QString> getSettingsListInfo() = 0;
    /// Stores one setting; id and value are UTF-8.
    virtual void writeSetting(const std::string& id, const std::string& value) = 0;

    /// The port of the service in use; here, without a service, 0.
    virtual int getRestApiPort();
    /// Turns to another port of the service; here, without a service, nothing happens.
    virtual void setRestApiPort(int port);
};

} // namespace jobmanager_ui
