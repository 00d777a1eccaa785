#include "core/JobManagerWorker.h"
#include "tests/core/MockFrontFixture.h"
#include "tests/core/RecordedManager.h"
#include "tests/support/Deadline.h"
#include "tests/support/FlatView.h"
#include "tests/support/SignalRecorder.h"

#include <atomic>
#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <thread>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// In the order of the alphabet: the data interface gives the jobs in none, and the views have nothing to sort by,
/// since no job has a time of its last change.
QStringList sortedIDs(const QAbstractItemModel& model)
{
    QStringList ids = rowIDs(model);
    ids.sort();
    return ids;
}

QStringList emptyJobs()
{
    QStringList ids;
    for (int number = 3; number <= 19; ++number) {
        ids.append(QStringLiteral("JOB_EMPTY_%1").arg(number));
    }
    ids.sort();
    return ids;
}

QStringList with(QStringList ids, const QStringList& more)
{
    ids.append(more);
    ids.sort();
    return ids;
}

} // namespace

/// The manager and the jobs over the mock: the start, the views, the current job, updates and requests.
class JobsOverMockTest : public MockFrontFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // The start.

    void managerIsEmptyBeforeInitialize()
    {
        QCOMPARE(m_manager->rowCount(), 0);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 0);
        QCOMPARE(m_manager->archivedJobs()->rowCount(), 0);
    }

    void initializeFillsTheModelBeforeItReturns()
    {
        m_manager->initialize();
        QCOMPARE(sortedIDs(*m_manager), with(emptyJobs(), { idJob1, idJob2, idJob3 }));
        QCOMPARE(m_manager->currentJob(), nullptr);
        QVERIFY(!m_manager->fetchingJobList());
        QCOMPARE(m_manager->groupType(), TestGroupType::DEFAULT_VIEW);
    }

    void initializeResetsOnceAndNeverRaisesTheFetchFlag()
    {
        Journal journal;
        SignalRecorder recorder(*m_manager, journal);
        QVector<bool> flags;
        const QObject receiver;
        connect(m_manager.get(), &JobManager::fetchingJobListChanged, &receiver,
            [&] { flags.append(m_manager->fetchingJobList()); });
        m_manager->initialize();
        QCOMPARE(lines(journal.take()), QStringLiteral(R"(emit modelAboutToBeReset()
emit currentJobChanged()
emit modelReset()
emit fetchingJobListChanged())"));
        QCOMPARE(flags, QVector<bool>{ false });
    }

    void summaryOfAJobIsShown()
    {
        m_manager->initialize();
        const Job& shown = job(idJob1);
        QCOMPARE(shown.jobNumber(), idJob1);
        QCOMPARE(shown.workOrderLabel(), QStringLiteral("Ticket"));
        QCOMPARE(shown.customerName(), QStringLiteral("Customer 1"));
        QCOMPARE(shown.typeName(), QStringLiteral("test typeName"));
        QCOMPARE(shown.managedBy(), QStringLiteral("inst"));
        QCOMPARE(shown.state(), QStringLiteral("conflict"));
        QCOMPARE(shown.isArchived(), false);
        QCOMPARE(shown.totalNumberOfRequiredTests(), 13);
        QCOMPARE(shown.numberOfCompletedRequiredTests(), 12);
        QCOMPARE(shown.teamTechIds(), QStringList());
    }

    void everyJobHasItsNumberAndTheWorker()
    {
        m_manager->initialize();
        for (int row = 0; row < 20; ++row) {
            const QModelIndex index = m_manager->index(row, 0);
            Job* const job = index.data(JobManager::JobRole).value<Job*>();
            QVERIFY(job != nullptr);
            QCOMPARE(job->jobNumber(), index.data(JobManager::JobIDRole).toString());
            QVERIFY(job->worker() != nullptr);
        }
    }

    void modelAndViewsAreConsistentThroughoutTheWrites()
    {
        FlatView jobs(*m_manager);
        FlatView required(*m_manager->requiredJobs());
        const QAbstractItemModelTester ofJobs(&jobs, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QAbstractItemModelTester ofView(&required, QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_manager->initialize();
        m_api->setCurrentJobByID(idJob1);
        m_manager->checkChangeCount(false);
        m_api->deleteJob(idJob1);
        m_manager->checkChangeCount(false);
        m_api->createJob(QStringLiteral("NEW"), {}, {}, {}, true);
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->rowCount(), 20);
    }

    // The views.

    void viewsPartTheJobs()
    {
        m_manager->initialize();
        QCOMPARE(sortedIDs(*m_manager->requiredJobs()), with(emptyJobs(), { idJob1, idJob2 }));
        QCOMPARE(sortedIDs(*m_manager->archivedJobs()), QStringList{ idJob3 });
    }

    void jobsWithoutATimeKeepTheirOrderInTheView()
    {
        m_manager->initialize();
        QStringList expected = rowIDs(*m_manager);
        expected.removeOne(idJob3);
        QCOMPARE(rowIDs(*m_manager->requiredJobs()), expected);
    }

    void archivedJobChangesTheView()
    {
        m_manager->initialize();
        job(idJob1).setIsArchived(true);
        QVERIFY(m_manager->checkChangeCount(false));
        QCOMPARE(sortedIDs(*m_manager->requiredJobs()), with(emptyJobs(), { idJob2 }));
        QCOMPARE(sortedIDs(*m_manager->archivedJobs()), (QStringList{ idJob1, idJob3 }));
    }

    // The current job.

    void currentJobIsInNeitherView()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(idJob1);
        QVERIFY(m_manager->checkChangeCount(false));
        QCOMPARE(m_manager->currentJob(), m_manager->getJob(idJob1));
        QCOMPARE(sortedIDs(*m_manager->requiredJobs()), with(emptyJobs(), { idJob2 }));
        QCOMPARE(sortedIDs(*m_manager->archivedJobs()), QStringList{ idJob3 });
    }

    void archivedCurrentJobIsInNeitherView()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(idJob3);
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->currentJob(), m_manager->getJob(idJob3));
        QCOMPARE(m_manager->archivedJobs()->rowCount(), 0);
    }

    void clearedCurrentJobIsInItsViewAgain()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(idJob1);
        m_manager->checkChangeCount(false);
        m_api->setCurrentJobByID(QString());
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 19);
    }

    void unknownCurrentJobIsNone()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(QStringLiteral("unknown"));
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 19);
    }

    void deletedCurrentJobIsGone()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(idJob1);
        m_manager->checkChangeCount(false);
        m_api->deleteJob(idJob1);
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_manager->getJob(idJob1), nullptr);
        QCOMPARE(m_manager->rowCount(), 19);
    }

    // Updates.

    void createdJobJoinsAndTheOthersStayTheSameObjects()
    {
        m_manager->initialize();
        Job* const kept = m_manager->getJob(idJob2);
        m_api->createJob(QStringLiteral("WO-7"), {}, {}, {}, true);
        QVERIFY(m_manager->checkChangeCount(false));
        QCOMPARE(m_manager->rowCount(), 21);
        QCOMPARE(m_manager->getJob(QStringLiteral("WO-7"))->jobNumber(), QStringLiteral("WO-7"));
        QCOMPARE(m_manager->getJob(idJob2), kept);
    }

    void refusedWriteUpdatesNothing()
    {
        m_manager->initialize();
        m_api->deleteJob(QStringLiteral("unknown"));
        QSignalSpy reset(m_manager.get(), &QAbstractItemModel::modelReset);
        QVERIFY(!m_manager->checkChangeCount(false));
        QCOMPARE(reset.count(), 0);
    }

    void pollBringsAChange()
    {
        m_manager->initialize();
        QSignalSpy updated(m_manager.get(), &JobManager::jobManagerUpdated);
        m_api->deleteJob(idJob2);
        QVERIFY(updated.wait(bound()));
        QCOMPARE(m_manager->rowCount(), 19);
        QCOMPARE(updated.count(), 1);
    }

    void portIsNoneAndSettingItRefreshes()
    {
        m_manager->initialize();
        QSignalSpy reset(m_manager.get(), &QAbstractItemModel::modelReset);
        QSignalSpy changed(m_manager.get(), &JobManager::restApiPortChanged);
        m_manager->setRestApiPort(9000);
        QCOMPARE(m_manager->restApiPort(), 0);
        QCOMPARE(reset.count(), 1);
        QCOMPARE(changed.count(), 0);
    }

    void nothingIsEverAskedOfTheWorker()
    {
        QSignalSpy requests(m_manager.get(), &JobManager::fetchJobList);
        m_manager->initialize();
        QSignalSpy jobRequests(&job(idJob1), &Job::fetchJob);
        m_manager->updateDataFromAPI(true);
        m_manager->updateDataFromAPI(false);
        QVERIFY(job(idJob1).tests() != nullptr);
        QVERIFY(!job(idJob1).fetchInProgress());
        QCOMPARE(requests.count(), 0);
        QCOMPARE(jobRequests.count(), 0);
    }

    void pausedManagerLooksForMissedChangesWhenItGoesOn()
    {
        m_manager->initialize();
        m_manager->setPauseAutomaticUpdates(true);
        m_api->deleteJob(idJob2);
        QVERIFY(QMetaObject::invokeMethod(m_manager.get(), "queryChangeCountSlot"));
        QCOMPARE(m_manager->rowCount(), 20);
        m_manager->setPauseAutomaticUpdates(false);
        QCOMPARE(m_manager->rowCount(), 19);
    }

    void groupTypeIsASettingAndOutlivesAnUpdate()
    {
        m_manager->initialize();
        m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_api->getSettingsListInfo(),
            (QHash<QString, QString>{ { QStringLiteral("groupType"), QStringLiteral("2") } }));
        m_manager->updateDataFromAPI(true);
        QCOMPARE(m_manager->groupType(), TestGroupType::GROUPBY_LOCATION);
    }

    void settingThatIsStoredIsReadBack()
    {
        m_manager->initialize();
        m_manager->writeSetting(QStringLiteral("groupType"), QStringLiteral("3"));
        m_manager->updateSettingsFromDb();
        QCOMPARE(m_manager->groupType(), TestGroupType::GROUPBY_TEST_NAME);
    }

    // Requests.

    void jobIsMadeCurrentAndNoLonger()
    {
        m_manager->initialize();
        QVERIFY(m_manager->setCurrentJob(&job(idJob2)));
        QVERIFY(m_manager->settingCurrentJob());
        QTRY_VERIFY_WITH_TIMEOUT(!m_manager->settingCurrentJob(), bound());
        QCOMPARE(m_manager->currentJob(), &job(idJob2));
        QVERIFY(m_manager->unsetCurrentJob());
        QTRY_VERIFY_WITH_TIMEOUT(!m_manager->settingCurrentJob(), bound());
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_api->getChangeCount(), 2);
    }

    void newJobIsCurrentAndAnnounced()
    {
        m_manager->initialize();
        QStringList announced;
        const QObject receiver;
        connect(m_manager.get(), &JobManager::newJobCreated, &receiver,
            [&](Job* created) { announced.append(created->jobNumber()); });
        const QString number = QStringLiteral("WO-7");
        QVERIFY(m_manager->createNewJob(number, QStringLiteral("tech"), m_manager->fetchJobTemplates().first()));
        QCOMPARE(announced, QStringList{ number });
        QCOMPARE(m_manager->currentJob(), &job(number));
        QVERIFY(m_manager->doesJobExist(number));
        QVERIFY(!m_manager->createNewJob(number, QString()));
    }

    void templatesAreTold()
    {
        m_manager->initialize();
        QCOMPARE(m_manager->fetchJobTemplates().size(), 3);
        QCOMPARE(m_manager->getWorkOrderLabelFromTemplate(QStringLiteral("MockTemplate1")),
            QStringLiteral("MockWorkOrderLabel"));
        QCOMPARE(m_manager->getTemplateNumberOfTests(QStringLiteral("MockTemplate1")), 1);
        QCOMPARE(m_manager->getTechID(), QString());
    }

    void deletedJobLosesItsRowAtOnce()
    {
        m_manager->initialize();
        QVERIFY(m_manager->deleteJob(&job(idJob2)));
        QVERIFY(!m_manager->doesJobExist(idJob2));
        QCOMPARE(m_manager->rowCount(), 19);
    }

    void exportFails()
    {
        m_manager->initialize();
        const QTemporaryDir medium;
        m_manager->exportJobData(&job(idJob1), medium.path());
        QVERIFY(m_manager->exportingJobData());
        QTRY_VERIFY_WITH_TIMEOUT(!m_manager->exportingJobData(), bound());
        QCOMPARE(m_manager->exportJobDataOutputPath(), QString());
    }

    void importBringsNothing()
    {
        m_manager->initialize();
        const QTemporaryDir medium;
        QCOMPARE(m_manager->importJobs(medium.path()), 0);
        QVERIFY(m_manager->importingJobs());
        QTRY_VERIFY_WITH_TIMEOUT(!m_manager->importingJobs(), bound());
        QCOMPARE(m_manager->importJobsNumberJobs(), 0);
        QCOMPARE(m_manager->rowCount(), 20);
    }

    void launchFailsOnTheWorkerWhileThisThreadGoesOn()
    {
        m_manager->initialize();
        const std::shared_ptr<Test> test = job(idJob1).getTest(2);
        std::atomic<std::thread::id> launchedOn{ std::this_thread::get_id() };
        connect(
            job(idJob1).worker(), &JobManagerWorker::testLaunchFinished, job(idJob1).worker(),
            [&] { launchedOn = std::this_thread::get_id(); }, Qt::DirectConnection);
        m_manager->launchTest(test.get());
        QTRY_VERIFY_WITH_TIMEOUT(m_manager->isBackgroundRequestInProgress(), bound());
        QCOMPARE(testsOf(idJob1).rowCount(), 15);
        QVERIFY(m_manager->isTestLaunching());
        QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), bound());
        QCOMPARE(test->errorMessage(), QStringLiteral("Missing option someMadeUpOption"));
        QCOMPARE(test->errorSeverity(), 0);
        QCOMPARE(test->testStatus(), QStringLiteral("pass"));
        QVERIFY(launchedOn.load() != std::this_thread::get_id());
    }

private:
    static int bound() { return static_cast<int>(stretched(std::chrono::seconds(10)).count()); }
};

QTEST_GUILESS_MAIN(JobsOverMockTest)
#include "JobsOverMockTest.moc"
