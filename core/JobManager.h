#pragma once

#include "api/JobManagerAPIAbstraction.h"
#include "models/Job.h"
#include "models/Test.h"

#include <chrono>
#include <memory>
#include <QAbstractListModel>
#include <QHash>
#include <QSortFilterProxyModel>
#include <QString>
#include <QStringList>
#include <QThread>
#include <QVariant>
#include <vector>

class QTranslator;

namespace jobmanager_ui {

class JobManagerWorker;

/// The front end's entry: a list model of all jobs with two filtered views of it, the owner of the Job objects and
/// of the background thread, and the object on which every job-level operation is called.
///
/// It mirrors the job service and decides nothing itself: it polls the service's change count twice a second and
/// rebuilds its rows when the count has moved. Rows change by model resets alone. A Job object stays the same for
/// as long as its id is in the list; one whose id has left the list is gone once the reset has ended.
///
/// All of it belongs to the main thread, the QML engine's.
class JobManager : public QAbstractListModel
{
    Q_OBJECT
    Q_DISABLE_COPY(JobManager)

    Q_PROPERTY(Job* currentJob READ currentJob NOTIFY currentJobChanged)
    Q_PROPERTY(QSortFilterProxyModel* requiredJobs READ requiredJobs NOTIFY requiredJobsChanged)
    Q_PROPERTY(QSortFilterProxyModel* archivedJobs READ archivedJobs NOTIFY archivedJobsChanged)
    Q_PROPERTY(bool isTestLaunching READ isTestLaunching NOTIFY isTestLaunchingChanged)
    Q_PROPERTY(bool isSyncInProgress READ isSyncInProgress NOTIFY isSyncInProgressChanged)
    Q_PROPERTY(
        bool isQueryChangeCountInProgress READ isQueryChangeCountInProgress NOTIFY isQueryCountChangeInProgressChanged)
    Q_PROPERTY(jobmanager_ui::TestGroupType::Enum groupType READ groupType WRITE setGroupType NOTIFY groupTypeChanged)
    Q_PROPERTY(bool useInternalKeyboard READ useInternalKeyboard CONSTANT)
    Q_PROPERTY(bool fetchingJobList READ fetchingJobList NOTIFY fetchingJobListChanged)
    Q_PROPERTY(bool settingCurrentJob READ settingCurrentJob NOTIFY settingCurrentJobChanged)
    Q_PROPERTY(bool exportingJobData READ exportingJobData NOTIFY exportingJobDataChanged)
    Q_PROPERTY(QString exportJobDataOutputPath READ exportJobDataOutputPath NOTIFY exportJobDataOutputPathChanged)
    Q_PROPERTY(bool importingJobs READ importingJobs NOTIFY importingJobsChanged)
    Q_PROPERTY(int importJobsNumberJobs READ importJobsNumberJobs NOTIFY importJobsNumberJobsChanged)
    Q_PROPERTY(bool exchangingJob READ exchangingJob NOTIFY exchangingJobChanged)
    Q_PROPERTY(bool jobExchangeStatus READ jobExchangeStatus NOTIFY jobExchangeStatusChanged)
    Q_PROPERTY(bool pauseAutomaticUpdates READ pauseAutomaticUpdates WRITE setPauseAutomaticUpdates NOTIFY
            pauseAutomaticUpdatesChanged)
    Q_PROPERTY(int restApiPort READ restApiPort WRITE setRestApiPort NOTIFY restApiPortChanged)

public:
    /// The model's roles.
    enum Roles {
        JobIDRole = Qt::UserRole + 1, ///< "jobID", the id, a QString
        JobRole, ///< "job", the Job*
        JobSortRole, ///< "jobSort", when the job was last modified, a QString: the sort key of both views
        FilterRole, ///< "filterRole", what the views filter by: "archived=true,current=false" and the like
    };

    /// A manager over the production implementation of the data interface.
    explicit JobManager(QObject* parent = nullptr);
    /// A manager over `api`, which must not be null. Asks `api` nothing and starts nothing: initialize does.
    explicit JobManager(std::shared_ptr<JobManagerAPIAbstraction> api, QObject* parent = nullptr);
    /// Waits for the request that the worker is carrying out, however long it takes; waiting requests are dropped.
    ~JobManager() override;

    /// Brings the manager to life: the worker and its thread, the first update, the views, the poll timer. To be
    /// called once by the owner. Unless the data interface has the job list at hand, the rows come later.
    Q_INVOKABLE void initialize();
    /// Starts an update: full, with everything cached forgotten and fetched again on the worker, or partial, at
    /// once and from the cache if the job list is still in it. While a fetch of the list runs, a full update only
    /// clears the cache and a partial one does nothing.
    Q_INVOKABLE void updateDataFromAPI(bool fullUpdate = true);
    /// Id of the technician who is logged in. Blocks for as long as the data interface does.
    Q_INVOKABLE QString getTechID();
    /// Asks the service to make the job current, also if it is already. False for null, else true: the request is on
    /// its way to the worker. settingCurrentJob rises and falls again when the request has ended; by then currentJob
    /// is up to date if nothing else has changed at the service. A refusal changes nothing and is not reported.
    Q_INVOKABLE bool setCurrentJob(Job* job);
    /// Asks the service to have no current job, in the way of setCurrentJob. Always true.
    Q_INVOKABLE bool unsetCurrentJob();
    /// Launches the test on the worker: emits testAboutToLaunch, raises isTestLaunching, has the data interface
    /// prepare the launch, and sends it. When it has an outcome, the test's errorMessage tells why it was refused, or
    /// is empty, and isTestLaunching falls. Does nothing for null or while another launch is under way.
    Q_INVOKABLE void launchTest(Test* test);
    /// Exports the job below the folder, which must exist; "/media" means the first USB medium mounted there, or
    /// "/media" itself if none is. Always returns an empty text: exportingJobData rises, and when the export has ended
    /// exportJobDataOutputPath has the result before exportingJobData falls. Null, no folder, or one that is not there
    /// change nothing. A second request waits for its turn, and the flag falls at the end of the first.
    Q_INVOKABLE QString exportJobData(Job* job, QString usbRootFolder);
    /// Whether the directory exists, so that an export to it can be offered.
    Q_INVOKABLE bool showExportJobSelection(QString usbRootFolder);
    /// Imports the jobs and templates from a folder or file. 0 once the import is on its way: importingJobs rises, and
    /// importJobsNumberJobs has the number before importingJobs falls. -1 if nothing of that name exists, and
    /// importJobsNumberJobs is -1 as well. The jobs themselves come with a later update.
    Q_INVOKABLE int importJobs(QString path);
    /// Whether a job or template file lies in the folder or below it. Walks the folder on the main thread, up to the
    /// first such file: meant for a tap on a medium, not for a binding.
    Q_INVOKABLE bool showImportJobButton(QString usbRootFolder);
    /// Whether a device to exchange the current job with is attached.
    Q_INVOKABLE bool showExchangeJobSelection();
    /// Exchanges the current job with the attached device. True once the request is on its way: exchangingJob rises,
    /// and jobExchangeStatus has the result before exchangingJob falls. False if there is no device.
    Q_INVOKABLE bool exchangeCurrentJob();
    /// Asks for a sync with the cloud service: isSyncInProgress rises, and falls when one has ended. A second call
    /// waits for its turn on the worker.
    Q_INVOKABLE void syncWithNimbrel();
    /// Deletes the job at the service; false for null or if the service refuses. The row goes, and the object with
    /// it, in the update that follows. Blocks for as long as the data interface does.
    Q_INVOKABLE bool deleteJob(Job* job);
    /// Creates a job with this work order number as its id, from a template and with the locations in a file, each
    /// empty for none, and makes it current. True if both were done; newJobCreated goes out once the job has a row.
    /// False for an empty number or one in use, and if the service refuses: if only to make it current, the job is
    /// there. Blocks for as long as the data interface does.
    Q_INVOKABLE bool createNewJob(QString WorkOrderNo, QString TechID, QString templateName = QString(),
        QString locationsFilename = QString(), bool syncJobToNimbrel = true);
    /// The names of the job templates. Blocks for as long as the data interface does, as the next two do.
    Q_INVOKABLE QStringList fetchJobTemplates();
    /// The label of the work order number that the template prescribes.
    Q_INVOKABLE QString getWorkOrderLabelFromTemplate(const QString& typeName);
    /// How many tests the template prescribes.
    Q_INVOKABLE int getTemplateNumberOfTests(const QString& typeName);
    /// Whether there is a job with this id, as of the last update. False for a value that is no text.
    Q_INVOKABLE bool doesJobExist(QVariant jobID);
    /// Stores a setting of the front end at the service.
    Q_INVOKABLE void writeSetting(QString settings_id, QString settings_value);
    /// Reads the settings anew and takes over the group type stored there, the default one if there is none.
    Q_INVOKABLE void updateSettingsFromDb();
    /// Changes the language of all texts to that of the locale, such as "de" or "pt_BR", to the system's for the empty
    /// code, and has the engine evaluate its texts anew. False if there is no catalogue for it: the language stays.
    Q_INVOKABLE bool setLanguage(QString languageCode);

    /// The number of jobs, whatever `parent` is.
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /// What the row answers for the role; invalid for an invalid index, a row that is gone and any other role.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Always false: nothing is written through the model.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    /// The roles above by name.
    QHash<int, QByteArray> roleNames() const override;

    /// The job that the service reports as current, null if there is none. It is in neither view.
    Job* currentJob() const { return m_currentJob.get(); }
    /// The jobs that are neither archived nor current, last modified first. Owned by this object.
    QSortFilterProxyModel* requiredJobs() { return &m_requiredJobs; }
    /// The archived jobs that are not current, last modified first. Owned by this object.
    QSortFilterProxyModel* archivedJobs() { return &m_archivedJobs; }
    /// Whether a test launch is under way.
    bool isTestLaunching() const { return m_isTestLaunching; }
    /// Whether a sync with the cloud service is under way.
    bool isSyncInProgress() const { return m_isSyncInProgress; }
    /// Always false; kept for front ends that read it.
    bool isQueryChangeCountInProgress() const { return m_isQueryChangeCountInProgress; }
    /// How the tests of all jobs are grouped.
    TestGroupType::Enum groupType() const { return m_groupType; }
    /// Tells the data interface the new grouping, stores it as a setting, groups the tests of all jobs, then emits
    /// groupTypeChanged. An unchanged value does nothing; a number outside the enum passes.
    void setGroupType(TestGroupType::Enum groupType);
    /// Always true: the front end brings up its own keyboard.
    bool useInternalKeyboard() const { return true; }
    /// Whether a fetch of the job list is under way.
    bool fetchingJobList() const { return m_fetchingJobList; }
    /// Whether a change of the current job is under way.
    bool settingCurrentJob() const { return m_settingCurrentJob; }
    /// Whether an export is under way.
    bool exportingJobData() const { return m_exportingJobData; }
    /// Where the last export went, empty if it failed.
    QString exportJobDataOutputPath() const { return m_exportJobDataOutputPath; }
    /// Whether an import is under way.
    bool importingJobs() const { return m_importingJobs; }
    /// How many jobs the last import brought.
    int importJobsNumberJobs() const { return m_importJobsNumberJobs; }
    /// Whether an exchange of the current job is under way.
    bool exchangingJob() const { return m_exchangingJob; }
    /// Whether the last exchange succeeded.
    bool jobExchangeStatus() const { return m_jobExchangeStatus; }
    /// Whether polls stand aside.
    bool pauseAutomaticUpdates() const { return m_pauseAutomaticUpdates; }
    /// Emits pauseAutomaticUpdatesChanged on a real change; on resuming, looks for missed changes at once.
    void setPauseAutomaticUpdates(bool paused);
    /// The service's port, 0 without a data interface or where it has none.
    int restApiPort() const;
    /// Turns to another port and starts a full update, also if the port is the one in use. Emits no
    /// restApiPortChanged.
    void setRestApiPort(int port);

    /// Always true: slow requests go to the worker.
    bool backgroundFetching() const { return true; }
    /// Whether the worker is inside a request or a change of the current job is under way.
    bool isBackgroundRequestInProgress() const;
    /// The job with this id, or null. Owned by this object.
    Job* getJob(QString jobID) const;
    /// The row of the job, or -1.
    int getJobIndex(const Job& job) const;
    /// Whether `job` has the id of the current job. False for null.
    bool isCurrentJob(Job* job) const;
    /// Makes the job current, the empty id none, on this thread. False for a value that is no text and for the job
    /// that is current, else true, also if the service refuses.
    bool setCurrentJobByID(QVariant jobID);
    /// Stores the flag and emits isTestLaunchingChanged, both only on a real change.
    void setIsTestLaunching(bool isTestLaunching);
    /// Stores the flag and emits isSyncInProgressChanged, both only on a real change.
    void setIsSyncInProgress(bool isSyncInProgress);
    /// Starts an update if the change count has moved, and tells whether it had. The update is partial only if
    /// that is allowed and the count has moved by exactly one, up or down.
    bool checkChangeCount(bool allowPartialUpdate);
    /// Rebuilds the rows from the data interface. All signals of it, those of the jobs included, go out inside the
    /// model's reset. Called by a receiver of one of these signals, it returns at once, and the rebuild that it
    /// asks for follows the running one.
    void doUpdateDataFromAPI();

Q_SIGNALS:
    void currentJobChanged();
    /// Never emitted.
    void requiredJobsChanged();
    /// Never emitted.
    void archivedJobsChanged();
    void isTestLaunchingChanged();
    void isSyncInProgressChanged();
    void isQueryCountChangeInProgressChanged(bool isQueryCountChangeInProgressChanged);
    void groupTypeChanged();
    void fetchingJobListChanged();
    void settingCurrentJobChanged();
    void exportingJobDataChanged();
    void exportJobDataOutputPathChanged();
    void importingJobsChanged();
    void importJobsNumberJobsChanged();
    void exchangingJobChanged();
    void jobExchangeStatusChanged();
    void pauseAutomaticUpdatesChanged();
    /// Never emitted.
    void restApiPortChanged();

    // Requests to the worker.
    void launchTestSignal(QVariant jobID, QVariant testID);
    void syncWithNimbrelSignal();
    void fetchJobList();
    void setCurrentJobOnBackgroundThread(QString jobID);
    void exportJobDataOnBackgroundThread(QString jobID, QString usbRootFolder);
    void importJobsOnBackgroundThread(QString path);
    void exchangeJobOnBackgroundThread(QString devicePath);

    /// A poll has seen a change. Where the list must be fetched first, the rows follow later.
    void jobManagerUpdated();
    /// A launch is about to begin: the front end's last moment to act before it does.
    void testAboutToLaunch(Test* test);
    /// The job just created is in the list.
    void newJobCreated(Job* job);

public Q_SLOTS:
    /// The end of a launch: shows on the test, if it is still there, what `status` says, then lowers isTestLaunching,
    /// and keeps the next poll from telling of the change that the launch was.
    void onTestLaunchFinished(QVariant jobID, QVariant testID, QString status);
    /// The end of a sync: lowers isSyncInProgress, also if another one waits.
    void onSyncFinished();
    /// Takes over what was fetched, rebuilds the rows, and only then lowers fetchingJobList: always, and with its
    /// signal, so that a fetch which a receiver has started inside a rebuild from the cache goes on without the flag.
    void onFetchJobListFinished();
    /// The end of a change of the current job: takes over what the service has changed, then lowers
    /// settingCurrentJob, also if another request waits.
    void onSetCurrentJobFinished();
    /// The end of an export: stores where it went, empty if it failed, then lowers exportingJobData.
    void onExportJobDataFinished(QString outputPath);
    /// The end of an import: stores the number of jobs, then lowers importingJobs.
    void onImportJobsFinished(int numberJobs);
    /// The end of an exchange: stores whether it succeeded, then lowers exchangingJob.
    void onExchangeJobFinished(bool status);

private Q_SLOTS:
    void queryChangeCountSlot();
    void setIsQueryCountChangeInProgress(bool isQueryChangeCountInProgress);

private:
    void initializeJobManagerWorker();
    void setUpView(QSortFilterProxyModel& view, const QString& filter);
    void sortView(QSortFilterProxyModel& view);
    QVariant filterText(Job* job) const;

    void rebuild();
    void rebuildRows(const QHash<QString, std::shared_ptr<Job>>& oldJobs);
    std::shared_ptr<Job> makeJob(const QString& jobID);
    void onOptionalPropertyValueChanged(bool valueAccepted);
    void updateCurrentJob(const QString& currentID);
    void resetCurrentJobPointer();
    void announceNewJob();
    void sortTestlistForAllJobs();
    void requestCurrentJob(const QString& jobID);
    void announceLaunch(Test* test);
    void reportLaunch(const QString& jobID, long long testID, const QString& status);
    void installTranslator(QTranslator* translator);
    void retranslateScreens();

    std::shared_ptr<JobManagerAPIAbstraction> m_api;
    QThread m_workerThread;
    JobManagerWorker* m_worker = nullptr;
    bool m_fetchingJobList = false;
    bool m_settingCurrentJob = false;
    bool m_exportingJobData = false;
    QString m_exportJobDataOutputPath;
    bool m_importingJobs = false;
    int m_importJobsNumberJobs = 0;
    bool m_exchangingJob = false;
    bool m_jobExchangeStatus = false;
    bool m_isTestLaunching = false;
    bool m_isSyncInProgress = false;
    bool m_isQueryChangeCountInProgress = false;
    TestGroupType::Enum m_groupType = TestGroupType::DEFAULT_VIEW;
    QSortFilterProxyModel m_archivedJobs;
    QSortFilterProxyModel m_requiredJobs;
    std::vector<QString> m_jobIDs;
    QHash<QString, std::shared_ptr<Job>> m_jobs;
    QHash<QString, int> m_jobRows;
    std::shared_ptr<Job> m_currentJob;
    int m_changeCount = 0;
    std::chrono::milliseconds m_queryChangeCountInterval{ 500 };
    bool m_skipNextUpdateSignal = false;
    bool m_pauseAutomaticUpdates = false;
    QString m_newJobID;
    QTranslator* m_translator = nullptr;
    QHash<QString, QString> m_settings;

    /// A rebuild is running, and another was asked for meanwhile.
    bool m_rebuilding = false;
    bool m_rebuildAgain = false;
    /// The receivers of testAboutToLaunch are being told.
    bool m_announcingLaunch = false;
};

} // namespace jobmanager_ui
