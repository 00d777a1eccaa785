#include "core/JobManager.h"
#include "core/JobManagerWorker.h"
#include "tests/support/ConcreteMockApi.h"
#include "tests/support/Deadline.h"
#include "tests/support/FlatView.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/SignalRecorder.h"

#include <atomic>
#include <memory>
#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>
#include <thread>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// The ids of the rows in the order of the alphabet: the data interface gives the jobs in none, and the views have
/// nothing to sort by, since no job has a time of its last change.
QStringList sortedIDs(const QAbstractItemModel& model)
{
    QStringList ids;
    for (int row = 0; row < model.rowCount(); ++row) {
        ids.append(model.index(row, 0).data(JobManager::JobIDRole).toString());
    }
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

/// Tells on which thread a launch runs.
class WatchedApi : public ConcreteMockApi
{
public:
    QString launchTest(QString jobID, long long testID) override
    {
        launchedOn = std::this_thread::get_id();
        return ConcreteMockApi::launchTest(jobID, testID);
    }

    std::atomic<std::thread::id> launchedOn{ std::this_thread::get_id() };
};

} // namespace

/// JobManager over a data interface that has everything at hand.
class JobManagerOverMockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<WatchedApi>();
        m_manager = std::make_unique<JobManager>(m_api);
    }

    void cleanup()
    {
        m_manager.reset();
        m_api.reset();
        m_messages.reset();
    }

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
        QCOMPARE(sortedIDs(*m_manager), with(emptyJobs(), job123()));
        QCOMPARE(m_manager->currentJob(), nullptr);
        QVERIFY(!m_manager->fetchingJobList());
        QCOMPARE(m_manager->groupType(), TestGroupType::DEFAULT_VIEW);
    }

    void initializeResetsOnceAndNeverRaisesTheFetchFlag()
    {
        Journal journal;
        SignalRecorder recorder(*m_manager, journal);
        QVector<bool> flags;
        connect(m_manager.get(), &JobManager::fetchingJobListChanged, this,
            [&] { flags.append(m_manager->fetchingJobList()); });
        m_manager->initialize();
        QCOMPARE(lines(journal.take()), QStringLiteral(R"(emit modelAboutToBeReset()
emit currentJobChanged()
emit modelReset()
emit fetchingJobListChanged())"));
        QCOMPARE(flags, QVector<bool>{ false });
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
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
        m_manager->checkChangeCount(false);
        m_api->deleteJob(QStringLiteral("JOB1"));
        m_manager->checkChangeCount(false);
        m_api->createJob(QStringLiteral("NEW"), {}, {}, {}, true);
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->rowCount(), 20);
    }

    // The views.

    void viewsPartTheJobs()
    {
        m_manager->initialize();
        QCOMPARE(sortedIDs(*m_manager->requiredJobs()),
            with(emptyJobs(), { QStringLiteral("JOB1"), QStringLiteral("JOB2") }));
        QCOMPARE(sortedIDs(*m_manager->archivedJobs()), QStringList{ QStringLiteral("JOB3") });
    }

    void jobsWithoutATimeKeepTheirOrderInTheView()
    {
        m_manager->initialize();
        QStringList expected;
        for (int row = 0; row < m_manager->rowCount(); ++row) {
            const QString id = m_manager->index(row, 0).data(JobManager::JobIDRole).toString();
            if (id != QLatin1String("JOB3")) {
                expected.append(id);
            }
        }
        QStringList shown;
        for (int row = 0; row < m_manager->requiredJobs()->rowCount(); ++row) {
            shown.append(m_manager->requiredJobs()->index(row, 0).data(JobManager::JobIDRole).toString());
        }
        QCOMPARE(shown, expected);
    }

    void archivedJobChangesTheView()
    {
        m_manager->initialize();
        m_manager->getJob(QStringLiteral("JOB1"))->setIsArchived(true);
        QVERIFY(m_manager->checkChangeCount(false));
        QCOMPARE(sortedIDs(*m_manager->requiredJobs()), with(emptyJobs(), { QStringLiteral("JOB2") }));
        QCOMPARE(
            sortedIDs(*m_manager->archivedJobs()), (QStringList{ QStringLiteral("JOB1"), QStringLiteral("JOB3") }));
    }

    // The current job.

    void currentJobIsInNeitherView()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
        QVERIFY(m_manager->checkChangeCount(false));
        QCOMPARE(m_manager->currentJob(), m_manager->getJob(QStringLiteral("JOB1")));
        QCOMPARE(sortedIDs(*m_manager->requiredJobs()), with(emptyJobs(), { QStringLiteral("JOB2") }));
        QCOMPARE(sortedIDs(*m_manager->archivedJobs()), QStringList{ QStringLiteral("JOB3") });
    }

    void archivedCurrentJobIsInNeitherView()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(QStringLiteral("JOB3"));
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->currentJob(), m_manager->getJob(QStringLiteral("JOB3")));
        QCOMPARE(m_manager->archivedJobs()->rowCount(), 0);
    }

    void clearedCurrentJobIsInItsViewAgain()
    {
        m_manager->initialize();
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
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
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
        m_manager->checkChangeCount(false);
        m_api->deleteJob(QStringLiteral("JOB1"));
        m_manager->checkChangeCount(false);
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_manager->getJob(QStringLiteral("JOB1")), nullptr);
        QCOMPARE(m_manager->rowCount(), 19);
    }

    // Updates.

    void createdJobJoinsAndTheOthersStayTheSameObjects()
    {
        m_manager->initialize();
        Job* const kept = m_manager->getJob(QStringLiteral("JOB2"));
        m_api->createJob(QStringLiteral("WO-7"), {}, {}, {}, true);
        QVERIFY(m_manager->checkChangeCount(false));
        QCOMPARE(m_manager->rowCount(), 21);
        QCOMPARE(m_manager->getJob(QStringLiteral("WO-7"))->jobNumber(), QStringLiteral("WO-7"));
        QCOMPARE(m_manager->getJob(QStringLiteral("JOB2")), kept);
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
        m_api->deleteJob(QStringLiteral("JOB2"));
        QVERIFY(updated.wait(static_cast<int>(stretched(std::chrono::seconds(10)).count())));
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
        Job* const job = m_manager->getJob(QStringLiteral("JOB1"));
        QSignalSpy jobRequests(job, &Job::fetchJob);
        m_manager->updateDataFromAPI(true);
        m_manager->updateDataFromAPI(false);
        QVERIFY(job->tests() != nullptr);
        QVERIFY(!job->fetchInProgress());
        QCOMPARE(requests.count(), 0);
        QCOMPARE(jobRequests.count(), 0);
    }

    void groupTypeOutlivesAnUpdate()
    {
        m_manager->initialize();
        m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_api->getSettingsListInfo(),
            (QHash<QString, QString>{ { QStringLiteral("groupType"), QStringLiteral("2") } }));
        m_manager->updateDataFromAPI(true);
        QCOMPARE(m_manager->groupType(), TestGroupType::GROUPBY_LOCATION);
    }

    // The launch.

    void launchFailsOnTheWorkerWhileThisThreadGoesOn()
    {
        m_manager->initialize();
        JobManagerWorker* const worker = m_manager->getJob(QStringLiteral("JOB1"))->worker();
        QVariantList outcome;
        const QObject receiver;
        connect(worker, &JobManagerWorker::testLaunchFinished, &receiver,
            [&](const QVariant& jobID, const QVariant& testID, const QString& status) {
                outcome = { jobID, testID, status };
            });
        const int bound = static_cast<int>(stretched(std::chrono::seconds(10)).count());
        Q_EMIT m_manager->launchTestSignal(QStringLiteral("JOB1"), 2);
        QTRY_VERIFY_WITH_TIMEOUT(m_manager->isBackgroundRequestInProgress(), bound);
        QCOMPARE(m_manager->getJob(QStringLiteral("JOB1"))->tests()->rowCount(), 15);
        QTRY_VERIFY_WITH_TIMEOUT(!outcome.isEmpty(), bound);
        QCOMPARE(outcome, (QVariantList{ QStringLiteral("JOB1"), 2, QStringLiteral("ERROR_OPTION^someMadeUpOption") }));
        QVERIFY(m_api->launchedOn.load() != std::this_thread::get_id());
    }

private:
    static QStringList job123() { return { QStringLiteral("JOB1"), QStringLiteral("JOB2"), QStringLiteral("JOB3") }; }

    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<WatchedApi> m_api;
    std::unique_ptr<JobManager> m_manager;
};

QTEST_GUILESS_MAIN(JobManagerOverMockTest)
#include "JobManagerOverMockTest.moc"
