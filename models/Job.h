#pragma once

#include "api/JobManagerAPIAbstraction.h"
#include "models/OptionalPropertyMap.h"
#include "models/TestList.h"

#include <memory>
#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <vector>

namespace jobmanager_ui {

class JobManagerWorker;

/// What QML sees of one job: a snapshot of the job's summary, so that bindings never touch the data interface, and
/// its tests and optional properties, which are there once the job's full data is.
///
/// The first read of a lazy member after an update that did not find the job in the cache has the worker fetch it,
/// once however many bindings ask, and answers empty. When the job has come, the members' signals go out again and
/// the reads answer. A job without a worker never fetches: it reads the data interface at once.
///
/// JobManager owns each Job by shared pointer and keeps the same object for as long as its id stays in the job
/// list. The object belongs to C++ in whatever way JavaScript came by it. Main thread only.
class Job : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Job)

    Q_PROPERTY(QString jobNumber READ jobNumber NOTIFY jobNumberChanged)
    Q_PROPERTY(QString workOrderLabel READ workOrderLabel NOTIFY workOrderLabelChanged)
    Q_PROPERTY(QString customerName READ customerName NOTIFY customerNameChanged)
    Q_PROPERTY(QString typeName READ typeName NOTIFY typeNameChanged)
    Q_PROPERTY(bool isArchived READ isArchived WRITE setIsArchived NOTIFY isArchivedChanged)
    Q_PROPERTY(int totalNumberOfRequiredTests READ totalNumberOfRequiredTests NOTIFY totalNumberOfRequiredTestsChanged)
    Q_PROPERTY(int numberOfCompletedRequiredTests READ numberOfCompletedRequiredTests NOTIFY
            numberOfCompletedRequiredTestsChanged)
    Q_PROPERTY(QAbstractListModel* tests READ tests NOTIFY testsChanged)
    Q_PROPERTY(QQmlPropertyMap* optionalProperties READ optionalProperties NOTIFY optionalPropertiesChanged)
    Q_PROPERTY(QString managedBy READ managedBy NOTIFY managedByChanged)
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    Q_PROPERTY(int totalNumberOfRequiredAttributes READ getTotalNumberOfRequiredAttributes NOTIFY
            totalNumberOfRequiredAttributesChanged)
    Q_PROPERTY(int numberOfIncompleteRequiredAttributes READ getNumberOfIncompleteRequiredAttributes NOTIFY
            numberOfIncompleteRequiredAttributesChanged)
    Q_PROPERTY(bool fetchInProgress READ fetchInProgress NOTIFY fetchInProgressChanged)
    Q_PROPERTY(QStringList teamTechIds READ teamTechIds NOTIFY teamTechIdsChanged)
    Q_PROPERTY(QStringList allDisplayableJobProperties READ allDisplayableJobProperties NOTIFY
            allDisplayableJobPropertiesChanged)
    Q_PROPERTY(QVariantMap jobPropertyDisplayInfos READ jobPropertyDisplayInfos NOTIFY jobPropertyDisplayInfosChanged)
    Q_PROPERTY(QStringList allDisplayableTestProperties READ allDisplayableTestProperties NOTIFY
            allDisplayableTestPropertiesChanged)
    Q_PROPERTY(
        QVariantMap testPropertyDisplayInfos READ testPropertyDisplayInfos NOTIFY testPropertyDisplayInfosChanged)

public:
    /// A job whose summary is read from `api` before the constructor returns. A job that `api` does not know
    /// gets what `api` answers for such a one.
    Job(std::shared_ptr<JobManagerAPIAbstraction> api, QString jobID);
    ~Job() override;

    /// The number of the work order.
    QString jobNumber() const { return m_jobNumber; }
    /// The label under which the number is shown.
    QString workOrderLabel() const { return m_workOrderLabel; }
    /// The customer's name.
    QString customerName() const { return m_customerName; }
    /// Name of the job's workflow type.
    QString typeName() const { return m_typeName; }
    /// Whether the job is archived.
    bool isArchived() const { return m_isArchived; }
    /// How many tests the job requires.
    int totalNumberOfRequiredTests() const { return m_totalNumberOfRequiredTests; }
    /// How many of the required tests are complete.
    int numberOfCompletedRequiredTests() const { return m_numberOfCompletedRequiredTests; }
    /// Who manages the job.
    QString managedBy() const { return m_managedBy; }
    /// The job's management state.
    QString state() const { return m_state; }
    /// Ids of the technicians of the job's team.
    QStringList teamTechIds() const { return m_teamTechIds; }

    /// The job's id; never changes.
    QString concreteTypeJobID() const { return m_jobID; }
    /// When the job was last modified, as the service's own text.
    QString getModifiedOn() const { return m_modifiedOn; }

    /// Asks the service to archive or to restore the job. Stores the value and emits isArchivedChanged only if
    /// the service accepts; a refusal changes and reports nothing. The value that is set already asks nobody.
    void setIsArchived(bool archived);

    /// Lazy: the job's tests, brought up to date; null while isBackgroundFetchCompleted is false. Owned by the job.
    QAbstractListModel* tests();
    /// Lazy: the job's optional properties by name, those that are not visible included; null while
    /// isBackgroundFetchCompleted is false. Built by the first read after an update, which counts the required
    /// attributes on the way and emits totalNumberOfRequiredAttributesChanged and
    /// numberOfIncompleteRequiredAttributesChanged once a name. Owned by the job, and dropped by its next update: a
    /// receiver of these signals that updates the job has the map built once more, and one that ends the job gets null.
    ///
    /// What QML writes goes to the data interface at once: see onPropertyValueChanged.
    QQmlPropertyMap* optionalProperties();
    /// Lazy: how many optional properties are both editable and visible. Builds optionalProperties, and so emits its
    /// own signal: a screen should bind to optionalProperties before it binds to this, or QML sees a binding loop.
    int getTotalNumberOfRequiredAttributes();
    /// Lazy: how many of these were empty as text when optionalProperties was built: edits are not counted before the
    /// next update. Builds optionalProperties as the other count does.
    int getNumberOfIncompleteRequiredAttributes();

    /// Lazy: the rows that the job's form has, in order: the number, customer and type if the job has them, then the
    /// visible optional properties by their orderIndex. A name that the data interface gives twice stands there twice.
    QStringList allDisplayableJobProperties();
    /// Lazy: how each of allDisplayableJobProperties is shown, by name: see propertyDisplayInfoToVariantMap.
    QVariantMap jobPropertyDisplayInfos();
    /// Lazy: the names of the optional properties of all tests, and "configuration", in no order and those that are
    /// not visible included. Built once in the life of the job: no update changes them.
    QStringList allDisplayableTestProperties();
    /// Lazy: how each of allDisplayableTestProperties is shown, by name, as the first test that has it says.
    QVariantMap testPropertyDisplayInfos();

    /// Writes the property through the data interface, in this thread. A value that it refuses is replaced in the map
    /// by the one that it holds, and optionalPropertiesChanged is emitted; the counts of required attributes stay. In
    /// any case emits optionalPropertyValueChanged at the end: whether the interface now holds an equal value. One that
    /// it took and altered is thus not accepted, and yet the map keeps what was typed.
    void onPropertyValueChanged(const QString& propertyName, const QVariant& value);

    /// Whether a fetch of the job's full data is under way. Not lazy: reading it starts no fetch.
    bool fetchInProgress() const { return m_fetchInProgress; }

    /// Groups the tests in this way.
    void sortTests(TestGroupType::Enum groupType) { m_tests.setGroupType(groupType); }
    /// The test with this id, null if there is none. Brings the tests up to date first, without regard to
    /// isBackgroundFetchCompleted.
    std::shared_ptr<Test> getTest(long long testID) { return m_tests.getTest(testID); }
    /// The worker that fetches for this job, null for none. Not owned.
    JobManagerWorker* worker() const { return m_worker; }
    /// Connects the job with the worker, both ways, and disconnects it from the one before. `worker` must not be null
    /// and must outlive all fetches of this job.
    void setWorker(JobManagerWorker* worker);
    /// Whether the lazy members answer. If not, and no fetch is under way, this starts one: it raises fetchInProgress,
    /// emits fetchInProgressChanged and then fetchJob.
    bool isBackgroundFetchCompleted();
    /// The end of a fetch of the job with this id, whether it brought anything or not; that of another job is no
    /// matter of this one. Makes what was fetched visible, emits fetchInProgressChanged, and then the signals of the
    /// lazy members: testsChanged, optionalPropertiesChanged, allDisplayableJobPropertiesChanged,
    /// jobPropertyDisplayInfosChanged, allDisplayableTestPropertiesChanged, testPropertyDisplayInfosChanged,
    /// totalNumberOfRequiredAttributesChanged, numberOfIncompleteRequiredAttributesChanged.
    void onFetchJobFinished(QString jobID);

    /// Reads the summary anew, has the lazy members read anew on their next use, and emits the signals below, each
    /// whether or not its value changed, in this order: jobNumberChanged, customerNameChanged, workOrderLabelChanged,
    /// typeNameChanged, isArchivedChanged, totalNumberOfRequiredTestsChanged, numberOfCompletedRequiredTestsChanged,
    /// managedByChanged, stateChanged, teamTechIdsChanged, testsChanged, optionalPropertiesChanged,
    /// allDisplayableJobPropertiesChanged, jobPropertyDisplayInfosChanged, allDisplayableTestPropertiesChanged,
    /// testPropertyDisplayInfosChanged, and once more managedByChanged and stateChanged.
    Q_INVOKABLE void updateDataFromAPI();

    // These ask the tests as they stand at the moment, none before the first read of `tests`: see TestList.

    /// The name of the type of the test with this index.
    Q_INVOKABLE QString getTestNamebyTestIndex(int index);
    /// What the test with this index is about.
    Q_INVOKABLE QString getTestDescriptionByTestIndex(int index);
    /// Where the test with this index is to be carried out.
    Q_INVOKABLE QString getTestSiteByTestIndex(int index);
    /// The type token of the test with this index.
    Q_INVOKABLE QString getTestTypeByTestIndex(int index);
    /// How many locations the required test with this index has, -1 for no such test.
    Q_INVOKABLE int testLocationsNumberByIndex(int index);
    /// How many tests, each location for itself, have this name of their type.
    Q_INVOKABLE int countTestsByDisplayName(QString displayName);
    /// How many of them are required and have exactly 0 locations.
    Q_INVOKABLE int testLocationsNumberByDisplayName(QString displayName);
    /// Shows all tests, whatever their status.
    Q_INVOKABLE void resetTestFilter();
    /// Ends the search for locations.
    Q_INVOKABLE void resetTestLocationSearch();

Q_SIGNALS:
    void jobNumberChanged();
    void customerNameChanged();
    void typeNameChanged();
    void workOrderLabelChanged();
    /// `job` is the sender.
    void isArchivedChanged(Job* job);
    void totalNumberOfRequiredTestsChanged();
    void numberOfCompletedRequiredTestsChanged();
    void totalNumberOfRequiredAttributesChanged();
    void numberOfIncompleteRequiredAttributesChanged();
    void testsChanged();
    void optionalPropertiesChanged();
    void allDisplayableJobPropertiesChanged();
    void jobPropertyDisplayInfosChanged();
    void allDisplayableTestPropertiesChanged();
    void testPropertyDisplayInfosChanged();
    void managedByChanged();
    void stateChanged();
    void fetchInProgressChanged();
    void teamTechIdsChanged();
    /// A test of the job has a result that it did not have before.
    void newTestResultsReceived();
    /// A property was written: whether the data interface now holds this value.
    void optionalPropertyValueChanged(bool valueAccepted);
    /// Asks the worker for the job's full data.
    void fetchJob(QString jobID);

private:
    void readSummary();
    void dropProperties();
    void emitUpdateSignals();

    QQmlPropertyMap* builtOptionalProperties();
    void buildOptionalProperties();
    void countRequiredAttribute(const QString& value);
    void showStoredValue(const QString& propertyName);
    void createJobPropertyDisplayInfos();
    std::vector<PropertyDisplayInfo> fixedRows() const;
    std::vector<PropertyDisplayInfo> optionalRows() const;
    void createTestPropertyDisplayInfos();
    QHash<QString, PropertyDisplayInfo> displayInfosOfTests() const;

    std::shared_ptr<JobManagerAPIAbstraction> m_api;
    QString m_jobID;
    QString m_jobNumber;
    QString m_workOrderLabel;
    QString m_customerName;
    QString m_typeName;
    bool m_isArchived = false;
    QString m_modifiedOn;
    int m_totalNumberOfRequiredTests = 0;
    int m_numberOfCompletedRequiredTests = 0;
    QString m_managedBy;
    QString m_state;
    QStringList m_teamTechIds;
    TestList m_tests;
    OptionalPropertyMapPointer m_optionalProperties;
    QStringList m_allDisplayableJobProperties;
    QVariantMap m_jobPropertyDisplayInfos;
    QStringList m_allDisplayableTestProperties;
    QVariantMap m_testPropertyDisplayInfos;
    int m_totalNumberOfRequiredAttributes = 0;
    int m_numberOfIncompleteRequiredAttributes = 0;
    JobManagerWorker* m_worker = nullptr;
    bool m_backgroundFetchRequired = true;
    bool m_fetchInProgress = false;
};

} // namespace jobmanager_ui
