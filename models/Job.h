#pragma once

#include "api/JobManagerAPIAbstraction.h"

#include <memory>
#include <QObject>
#include <QString>
#include <QStringList>

namespace jobmanager_ui {

/// What QML sees of one job: a snapshot of the job's summary, so that bindings never touch the data interface.
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
    Q_PROPERTY(QString managedBy READ managedBy NOTIFY managedByChanged)
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    Q_PROPERTY(QStringList teamTechIds READ teamTechIds NOTIFY teamTechIdsChanged)

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

    /// Reads the summary anew and emits the signals below, each whether or not its value changed, in this order:
    /// jobNumberChanged, customerNameChanged, workOrderLabelChanged, typeNameChanged, isArchivedChanged,
    /// totalNumberOfRequiredTestsChanged, numberOfCompletedRequiredTestsChanged, managedByChanged, stateChanged,
    /// teamTechIdsChanged, testsChanged, optionalPropertiesChanged, allDisplayableJobPropertiesChanged,
    /// jobPropertyDisplayInfosChanged, allDisplayableTestPropertiesChanged, testPropertyDisplayInfosChanged, and
    /// once more managedByChanged and stateChanged.
    Q_INVOKABLE void updateDataFromAPI();

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
    /// A property was written: whether the value was accepted.
    void optionalPropertyValueChanged(bool valueAccepted);
    /// Asks the worker for the job's full data.
    void fetchJob(QString jobID);

private:
    void readSummary();
    void emitSummarySignals();

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
};

} // namespace jobmanager_ui
