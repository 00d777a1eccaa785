#include "core/JobManager.h"
#include "core/JobManagerWorker.h"
#include "tests/core/RecordedManager.h"
#include "tests/support/FlatView.h"
#include "tests/support/ManagerValues.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <algorithm>
#include <memory>
#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

JobSummary modified(const QString& modifiedOn, bool archived = false)
{
    JobSummary summary;
    summary.modifiedOn = modifiedOn;
    summary.archived = archived;
    return summary;
}

/// Tells how urgently the thread runs that fetches the job list.
class PriorityApi : public RecordingApi
{
public:
    bool fetchJobList() override
    {
        journal().add(QStringLiteral("priority %1").arg(QThread::currentThread()->priority()));
        return RecordingApi::fetchJobList();
    }
};

} // namespace

class JobManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_manager = std::make_unique<JobManager>(m_api);
    }

    void cleanup()
    {
        m_manager.reset();
        m_api.reset();
        m_messages.reset();
    }

    // The class as QML sees it.

    void propertiesStandInOrder()
    {
        QCOMPARE(propertyLines(JobManager::staticMetaObject), QStringLiteral(R"(Job* currentJob currentJobChanged
QSortFilterProxyModel* requiredJobs requiredJobsChanged
QSortFilterProxyModel* archivedJobs archivedJobsChanged
bool isTestLaunching isTestLaunchingChanged
bool isSyncInProgress isSyncInProgressChanged
bool isQueryChangeCountInProgress isQueryCountChangeInProgressChanged
jobmanager_ui::TestGroupType::Enum groupType groupTypeChanged writable
bool useInternalKeyboard constant
bool fetchingJobList fetchingJobListChanged
bool settingCurrentJob settingCurrentJobChanged
bool exportingJobData exportingJobDataChanged
QString exportJobDataOutputPath exportJobDataOutputPathChanged
bool importingJobs importingJobsChanged
int importJobsNumberJobs importJobsNumberJobsChanged
bool exchangingJob exchangingJobChanged
bool jobExchangeStatus jobExchangeStatusChanged
bool pauseAutomaticUpdates pauseAutomaticUpdatesChanged writable
int restApiPort restApiPortChanged writable)"));
    }

    void signalsSlotsAndInvokablesStandInOrder()
    {
        QCOMPARE(methodLines(JobManager::staticMetaObject), QStringLiteral(R"(signal currentJobChanged()
signal requiredJobsChanged()
signal archivedJobsChanged()
signal isTestLaunchingChanged()
signal isSyncInProgressChanged()
signal isQueryCountChangeInProgressChanged(bool)
signal groupTypeChanged()
signal fetchingJobListChanged()
signal settingCurrentJobChanged()
signal exportingJobDataChanged()
signal exportJobDataOutputPathChanged()
signal importingJobsChanged()
signal importJobsNumberJobsChanged()
signal exchangingJobChanged()
signal jobExchangeStatusChanged()
signal pauseAutomaticUpdatesChanged()
signal restApiPortChanged()
signal launchTestSignal(QVariant,QVariant)
signal syncWithNimbrelSignal()
signal fetchJobList()
signal setCurrentJobOnBackgroundThread(QString)
signal exportJobDataOnBackgroundThread(QString,QString)
signal importJobsOnBackgroundThread(QString)
signal exchangeJobOnBackgroundThread(QString)
signal jobManagerUpdated()
signal testAboutToLaunch(Test*)
signal newJobCreated(Job*)
slot onTestLaunchFinished(QVariant,QVariant,QString)
slot onSyncFinished()
slot onFetchJobListFinished()
slot onSetCurrentJobFinished()
slot onExportJobDataFinished(QString)
slot onImportJobsFinished(int)
slot onExchangeJobFinished(bool)
slot private queryChangeCountSlot()
slot private setIsQueryCountChangeInProgress(bool)
method initialize()
method updateDataFromAPI(bool)
method updateDataFromAPI()
method getTechID()
method setCurrentJob(Job*)
method unsetCurrentJob()
method launchTest(Test*)
method exportJobData(Job*,QString)
method showExportJobSelection(QString)
method importJobs(QString)
method showImportJobButton(QString)
method showExchangeJobSelection()
method exchangeCurrentJob()
method syncWithNimbrel()
method deleteJob(Job*)
method createNewJob(QString,QString,QString,QString,bool)
method createNewJob(QString,QString,QString,QString)
method createNewJob(QString,QString,QString)
method createNewJob(QString,QString)
method fetchJobTemplates()
method getWorkOrderLabelFromTemplate(QString)
method getTemplateNumberOfTests(QString)
method doesJobExist(QVariant)
method writeSetting(QString,QString)
method updateSettingsFromDb()
method setLanguage(QString))"));
    }

    void rolesHaveTheirNumbersAndNames()
    {
        QCOMPARE(m_manager->roleNames(),
            (QHash<int, QByteArray>{ { 257, "jobID" }, { 258, "job" }, { 259, "jobSort" }, { 260, "filterRole" } }));
    }

    // As built.

    void builtManagerAsksNobodyAndIsEmpty()
    {
        QCOMPARE(m_journal.take(), QStringList());
        QCOMPARE(m_messages->take(), QStringList());
        QCOMPARE(m_manager->rowCount(), 0);
        QCOMPARE(m_manager->requiredJobs()->sourceModel(), nullptr);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 0);
        QCOMPARE(m_manager->archivedJobs()->sourceModel(), nullptr);
        QCOMPARE(m_manager->archivedJobs()->rowCount(), 0);
        QVERIFY(m_manager->findChildren<QTimer*>().isEmpty());
    }

    void builtManagerHasDefaults_data()
    {
        addValuesOfAnUnusedManager();
        QTest::newRow("fetchingJobList") << QVariant(false);
    }

    void builtManagerHasDefaults()
    {
        QFETCH(QVariant, value);
        QCOMPARE(m_manager->property(QTest::currentDataTag()), value);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void builtManagerHasNoCurrentJobAndTheDefaultGrouping()
    {
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_manager->groupType(), TestGroupType::DEFAULT_VIEW);
        QCOMPARE(m_manager->backgroundFetching(), true);
        QCOMPARE(m_manager->isBackgroundRequestInProgress(), false);
    }

    void viewsAreTheManagersOwn()
    {
        QCOMPARE(m_manager->property("requiredJobs").value<QSortFilterProxyModel*>(), m_manager->requiredJobs());
        QCOMPARE(m_manager->property("archivedJobs").value<QSortFilterProxyModel*>(), m_manager->archivedJobs());
        QVERIFY(m_manager->requiredJobs() != m_manager->archivedJobs());
    }

    void managerWithoutAnInterfaceComesFromTheFactory()
    {
        QObject owner;
        const JobManager manager(&owner);
        QCOMPARE(manager.parent(), &owner);
        QCOMPARE(manager.restApiPort(), 0);
    }

    // The model.

    void rowCountDoesNotDependOnTheParent()
    {
        fill({ QStringLiteral("A"), QStringLiteral("B") });
        QCOMPARE(m_manager->rowCount(), 2);
        QCOMPARE(m_manager->rowCount(m_manager->index(0, 0)), 2);
    }

    void setDataChangesNothing()
    {
        fill({ QStringLiteral("A") });
        const QSignalSpy changed(m_manager.get(), &JobManager::dataChanged);
        QCOMPARE(m_manager->setData(m_manager->index(0, 0), QStringLiteral("B"), JobManager::JobIDRole), false);
        QCOMPARE(m_manager->setData(QModelIndex(), QStringLiteral("B")), false);
        QCOMPARE(rowIDs(*m_manager), QStringList{ QStringLiteral("A") });
        QCOMPARE(changed.count(), 0);
    }

    void dataAnswersTheRoles()
    {
        m_api->setJob(QStringLiteral("A"), modified(QStringLiteral("2024-01-01")));
        fill({ QStringLiteral("A") });
        const QModelIndex index = m_manager->index(0, 0);
        QCOMPARE(index.data(257), QVariant(QStringLiteral("A")));
        QCOMPARE(index.data(258).value<Job*>(), m_manager->getJob(QStringLiteral("A")));
        QVERIFY(index.data(258).value<Job*>() != nullptr);
        QCOMPARE(index.data(259), QVariant(QStringLiteral("2024-01-01")));
        QCOMPARE(index.data(260), QVariant(QStringLiteral("archived=false,current=false")));
    }

    void dataAsksTheInterfaceNothing()
    {
        fill({ QStringLiteral("A") });
        m_journal.take();
        for (int role = 257; role <= 260; ++role) {
            m_manager->index(0, 0).data(role);
        }
        QCOMPARE(m_journal.take(), QStringList());
    }

    void filterTextTellsArchivedAndCurrent_data()
    {
        QTest::addColumn<bool>("archived");
        QTest::addColumn<bool>("current");
        QTest::addColumn<QString>("text");
        QTest::newRow("neither") << false << false << QStringLiteral("archived=false,current=false");
        QTest::newRow("archived") << true << false << QStringLiteral("archived=true,current=false");
        QTest::newRow("current") << false << true << QStringLiteral("archived=false,current=true");
        QTest::newRow("both") << true << true << QStringLiteral("archived=true,current=true");
    }

    void filterTextTellsArchivedAndCurrent()
    {
        QFETCH(bool, archived);
        QFETCH(bool, current);
        QFETCH(QString, text);
        m_api->setJob(QStringLiteral("A"), modified(QString(), archived));
        m_api->setCurrentID(current ? QStringLiteral("A") : QString());
        fill({ QStringLiteral("A") });
        QCOMPARE(m_manager->index(0, 0).data(260).toString(), text);
    }

    void otherRolesAreInvalid_data()
    {
        QTest::addColumn<int>("role");
        QTest::newRow("display") << int(Qt::DisplayRole);
        QTest::newRow("256") << 256;
        QTest::newRow("261") << 261;
    }

    void otherRolesAreInvalid()
    {
        QFETCH(int, role);
        fill({ QStringLiteral("A") });
        QCOMPARE(m_manager->index(0, 0).data(role), QVariant());
    }

    void invalidIndexAndRowThatHasGoneAreInvalidWithoutAMessage()
    {
        fill({ QStringLiteral("A"), QStringLiteral("B") });
        const QModelIndex gone = m_manager->index(1, 0);
        fill({ QStringLiteral("A") });
        m_messages->take();
        QCOMPARE(m_manager->data(gone, 257), QVariant());
        QCOMPARE(m_manager->data(gone, 258), QVariant());
        QCOMPARE(m_manager->data(QModelIndex(), 257), QVariant());
        QCOMPARE(m_messages->take(), QStringList());
    }

    void modelKeepsQtsRules()
    {
        m_api->keepJobListCached();
        fill({ QStringLiteral("A"), QStringLiteral("B") });
        m_manager->initialize();
        FlatView jobs(*m_manager);
        FlatView required(*m_manager->requiredJobs());
        const QAbstractItemModelTester jobsTester(&jobs, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QAbstractItemModelTester viewTester(&required, QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_api->setJobIDs({ QStringLiteral("C"), QStringLiteral("B"), QStringLiteral("D") });
        m_manager->updateDataFromAPI(false);
        m_api->setJobIDs({});
        m_manager->updateDataFromAPI(false);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 0);
    }

    // Looking up.

    void getJobGivesNullForAnUnknownId()
    {
        fill({ QStringLiteral("A") });
        QCOMPARE(m_manager->getJob(QStringLiteral("A"))->concreteTypeJobID(), QStringLiteral("A"));
        QCOMPARE(m_manager->getJob(QStringLiteral("B")), nullptr);
        QCOMPARE(m_manager->getJob(QString()), nullptr);
    }

    void getJobIndexGivesTheRowOrMinusOne()
    {
        fill({ QStringLiteral("A"), QStringLiteral("B") });
        const Job stranger(m_api, QStringLiteral("C"));
        QCOMPARE(m_manager->getJobIndex(*m_manager->getJob(QStringLiteral("A"))), 0);
        QCOMPARE(m_manager->getJobIndex(*m_manager->getJob(QStringLiteral("B"))), 1);
        QCOMPARE(m_manager->getJobIndex(stranger), -1);
    }

    void isCurrentJobComparesIds()
    {
        m_api->setCurrentID(QStringLiteral("A"));
        fill({ QStringLiteral("A"), QStringLiteral("B") });
        Job twin(m_api, QStringLiteral("A"));
        QCOMPARE(m_manager->isCurrentJob(m_manager->getJob(QStringLiteral("A"))), true);
        QCOMPARE(m_manager->isCurrentJob(&twin), true);
        QCOMPARE(m_manager->isCurrentJob(m_manager->getJob(QStringLiteral("B"))), false);
        QCOMPARE(m_manager->isCurrentJob(nullptr), false);
    }

    void isCurrentJobIsFalseWithoutACurrentJob()
    {
        fill({ QStringLiteral("A") });
        QCOMPARE(m_manager->isCurrentJob(m_manager->getJob(QStringLiteral("A"))), false);
    }

    // initialize.

    void initializeWorksInOrder()
    {
        m_api->hold(QStringLiteral("fetchJobList"));
        const SignalRecorder manager(*m_manager, m_journal);
        const SignalRecorder archived(*m_manager->archivedJobs(), m_journal, QStringLiteral("archived: "));
        const SignalRecorder required(*m_manager->requiredJobs(), m_journal, QStringLiteral("required: "));
        m_manager->initialize();
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJobList")));
        QStringList entries = m_journal.take();
        const QStringList wanted{ QStringLiteral("call getChangeCount()"), QStringLiteral("call clearCache()"),
            QStringLiteral("call isJobListInCache()"), QStringLiteral("emit fetchingJobListChanged()"),
            QStringLiteral("emit fetchJobList()"), QStringLiteral("call getSettingsListInfo()"),
            QStringLiteral("emit archived: sourceModelChanged()"),
            QStringLiteral("emit required: sourceModelChanged()"), QStringLiteral("call fetchJobList() on worker") };
        entries.erase(std::remove_if(entries.begin(), entries.end(),
                          [&](const QString& entry) { return !wanted.contains(entry); }),
            entries.end());
        QCOMPARE(lines(entries), lines(wanted));
        m_api->release(QStringLiteral("fetchJobList"));
    }

    void firstRowsArriveAfterInitializeHasReturned()
    {
        m_api->setJob(QStringLiteral("A"));
        m_manager->initialize();
        QCOMPARE(m_manager->rowCount(), 0);
        QCOMPARE(m_manager->fetchingJobList(), true);
        QTRY_COMPARE(m_manager->rowCount(), 1);
        QCOMPARE(m_manager->fetchingJobList(), false);
    }

    void cachedListFillsTheModelInsideInitialize()
    {
        m_api->keepJobListCached();
        m_api->setJob(QStringLiteral("A"));
        m_manager->initialize();
        QCOMPARE(m_manager->rowCount(), 1);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 1);
        QCOMPARE(m_api->count(QStringLiteral("fetchJobList")), 0);
    }

    void initializeStartsARepeatingTimerOfHalfASecond()
    {
        m_manager->initialize();
        const auto timers = m_manager->findChildren<QTimer*>();
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.first()->interval(), 500);
        QCOMPARE(timers.first()->isSingleShot(), false);
        QCOMPARE(timers.first()->isActive(), true);
    }

    void timerPolls()
    {
        m_api->keepJobListCached();
        m_manager->initialize();
        m_journal.take();
        QTRY_VERIFY(m_api->count(QStringLiteral("getChangeCount")) >= 2);
    }

    void workersThreadInheritsItsPriority()
    {
        const auto api = std::make_shared<PriorityApi>();
        JobManager manager(api);
        manager.initialize();
        QVERIFY(api->journal().waitFor(QStringLiteral("priority %1").arg(QThread::InheritPriority)));
    }

    void viewsAreSetUp()
    {
        m_manager->initialize();
        for (const QSortFilterProxyModel* view : { m_manager->archivedJobs(), m_manager->requiredJobs() }) {
            QCOMPARE(view->sourceModel(), m_manager.get());
            QCOMPARE(view->filterRole(), 260);
            QCOMPARE(view->sortRole(), 259);
            QCOMPARE(view->sortColumn(), 0);
            QCOMPARE(view->sortOrder(), Qt::DescendingOrder);
        }
        QCOMPARE(m_manager->archivedJobs()->filterRegExp(),
            QRegExp(QStringLiteral("archived=true,current=false"), Qt::CaseSensitive, QRegExp::FixedString));
        QCOMPARE(m_manager->requiredJobs()->filterRegExp(),
            QRegExp(QStringLiteral("archived=false,current=false"), Qt::CaseSensitive, QRegExp::FixedString));
    }

    void viewsFilterAndSortByText()
    {
        m_api->keepJobListCached();
        m_api->setJob(QStringLiteral("old"), modified(QStringLiteral("2024-01-02")));
        m_api->setJob(QStringLiteral("new"), modified(QStringLiteral("2024-03-01")));
        m_api->setJob(QStringLiteral("nine"), modified(QStringLiteral("9")));
        m_api->setJob(QStringLiteral("none"), modified(QString()));
        m_api->setJob(QStringLiteral("done"), modified(QStringLiteral("2023-01-01"), true));
        m_api->setJob(QStringLiteral("done2"), modified(QStringLiteral("2023-05-01"), true));
        m_api->setJob(QStringLiteral("current"), modified(QStringLiteral("2025-01-01")));
        m_api->setCurrentID(QStringLiteral("current"));
        m_manager->initialize();
        QCOMPARE(rowIDs(*m_manager->requiredJobs()),
            (QStringList{
                QStringLiteral("nine"), QStringLiteral("new"), QStringLiteral("old"), QStringLiteral("none") }));
        QCOMPARE(rowIDs(*m_manager->archivedJobs()), (QStringList{ QStringLiteral("done2"), QStringLiteral("done") }));
    }

    void jobThatIsArchivedAndCurrentIsInNeitherView()
    {
        m_api->keepJobListCached();
        m_api->setJob(QStringLiteral("A"), modified(QString(), true));
        m_api->setCurrentID(QStringLiteral("A"));
        m_manager->initialize();
        QCOMPARE(m_manager->rowCount(), 1);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 0);
        QCOMPARE(m_manager->archivedJobs()->rowCount(), 0);
    }

    void viewsFollowAJobFromOneToTheOther()
    {
        m_api->keepJobListCached();
        m_api->setJob(QStringLiteral("A"));
        m_manager->initialize();
        QCOMPARE(rowIDs(*m_manager->requiredJobs()), QStringList{ QStringLiteral("A") });
        m_api->setJob(QStringLiteral("A"), modified(QString(), true));
        m_manager->updateDataFromAPI(false);
        QCOMPARE(rowIDs(*m_manager->requiredJobs()), QStringList());
        QCOMPARE(rowIDs(*m_manager->archivedJobs()), QStringList{ QStringLiteral("A") });
    }

    // The port.

    void portComesFromTheInterface()
    {
        m_api->setAnswer(QStringLiteral("getRestApiPort"), 8083);
        QCOMPARE(m_manager->property("restApiPort"), QVariant(8083));
    }

    void settingThePortForcesAFullUpdate()
    {
        const SignalRecorder recorder(*m_manager, m_journal);
        QVERIFY(m_manager->setProperty("restApiPort", 8090));
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call setRestApiPort(8090)
call clearCache()
call isJobListInCache()
emit fetchingJobListChanged()
emit fetchJobList()
call getSettingsListInfo())"));
        QCOMPARE(m_messages->take().first(), QStringLiteral("debug: jobmanager-ui: Setting rest api port to  8090"));
    }

    void settingThePortInUseRefreshesAllTheSameAndSignalsNothing()
    {
        m_api->keepJobListCached();
        m_api->setAnswer(QStringLiteral("getRestApiPort"), 8082);
        const QSignalSpy changed(m_manager.get(), &JobManager::restApiPortChanged);
        m_manager->setRestApiPort(8082);
        QCOMPARE(m_api->count(QStringLiteral("setRestApiPort")), 1);
        QCOMPARE(m_api->count(QStringLiteral("clearCache")), 1);
        QCOMPARE(m_api->count(QStringLiteral("getAllJobIDs")), 1);
        QCOMPARE(changed.count(), 0);
    }

    void portWithoutAnInterfaceIsZeroAndCannotBeSet()
    {
        JobManager manager(std::shared_ptr<JobManagerAPIAbstraction>(), nullptr);
        m_messages->take();
        QCOMPARE(manager.restApiPort(), 0);
        manager.setRestApiPort(8082);
        QCOMPARE(m_messages->take(), QStringList());
    }

    // The end.

    void managerThatWasNeverInitializedEndsQuietly()
    {
        m_manager.reset();
        QCOMPARE(m_journal.take(), QStringList());
        QCOMPARE(m_messages->take(), QStringList());
    }

    void jobsEndWithTheManager()
    {
        fill({ QStringLiteral("A") });
        const QPointer<Job> job = m_manager->getJob(QStringLiteral("A"));
        m_manager.reset();
        QVERIFY(job.isNull());
    }

    void interfaceIsReleasedWithTheManager()
    {
        fill({ QStringLiteral("A") });
        m_manager->initialize();
        QVERIFY(m_api.use_count() > 1);
        m_manager.reset();
        QCOMPARE(m_api.use_count(), 1L);
    }

    void timerAndViewsEndWithTheManager()
    {
        m_manager->initialize();
        const QPointer<QTimer> timer = m_manager->findChild<QTimer*>();
        const QPointer<QSortFilterProxyModel> view = m_manager->requiredJobs();
        m_manager.reset();
        QVERIFY(timer.isNull());
        QVERIFY(view.isNull());
    }

private:
    /// Lets the manager take over these jobs at once.
    void fill(const std::vector<QString>& jobIDs)
    {
        m_api->setJobIDs(jobIDs);
        m_manager->doUpdateDataFromAPI();
    }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<JobManager> m_manager;
};

QTEST_GUILESS_MAIN(JobManagerTest)
#include "JobManagerTest.moc"
