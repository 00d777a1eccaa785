#include "core/JobManager.h"
#include "tests/models/ScriptedTests.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/SignalRecorder.h"

#include <memory>
#include <QTimer>
#include <QtTest>
#include <utility>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString idA = QStringLiteral("A");
const QString idB = QStringLiteral("B");
const QString idC = QStringLiteral("C");

} // namespace

/// What the manager does for the tests of its jobs. Calls, signals and messages go into one journal. The manager is
/// not initialized unless a test does it: the jobs then have no worker.
class TestsOfJobsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>(m_journal);
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_manager = std::make_unique<JobManager>(m_api);
    }

    void cleanup()
    {
        QCOMPARE(m_journal.take().filter(QStringLiteral("warning: ")), QStringList());
        m_manager.reset();
        m_api.reset();
        m_messages.reset();
    }

    void jobsHaveNoWorkerBeforeThereIsOne()
    {
        rebuild({ idA });
        QCOMPARE(m_manager->getJob(idA)->worker(), nullptr);
        QVERIFY(m_manager->getJob(idA)->tests() != nullptr);
    }

    void oldAndNewJobsGetTheWorkerOnce()
    {
        rebuild({ idA });
        initialize();
        rebuild({ idA, idB });
        JobManagerWorker* const worker = m_manager->getJob(idA)->worker();
        QVERIFY(worker != nullptr);
        QCOMPARE(m_manager->getJob(idB)->worker(), worker);
        rebuild({ idA, idB });
        QCOMPARE(m_manager->getJob(idA)->worker(), worker);
        // Connected twice, the request would arrive twice.
        QCOMPARE(m_manager->getJob(idA)->tests(), nullptr);
        QTRY_VERIFY(m_manager->getJob(idA)->tests() != nullptr);
        QCOMPARE(m_journal.take().count(QStringLiteral("call fetchJob(\"A\") on worker")), 1);
    }

    void firstReadsGiveNullAndStartOneFetchOnTheWorker()
    {
        setTests(*m_api, idA, testsAt({ QStringLiteral("x") }));
        initialize();
        rebuild({ idA, idB });
        Job* const job = m_manager->getJob(idA);
        for (int reader = 0; reader < 5; ++reader) {
            QCOMPARE(job->tests(), nullptr);
        }
        QTRY_VERIFY(job->tests() != nullptr);
        QCOMPARE(job->tests()->rowCount(), 1);
        QCOMPARE(m_api->count(QStringLiteral("fetchJob")), 1);
        QVERIFY(m_journal.contains(QStringLiteral("call fetchJob(\"A\") on worker")));
    }

    void jobRemovedDuringItsFetchHarmsNothing()
    {
        initialize();
        rebuild({ idA, idB });
        m_api->hold(QStringLiteral("fetchJob"));
        QCOMPARE(m_manager->getJob(idA)->tests(), nullptr);
        QCOMPARE(m_manager->getJob(idB)->tests(), nullptr);
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJob")));
        rebuild({ idB });
        m_api->release(QStringLiteral("fetchJob"));
        QTRY_VERIFY(m_manager->getJob(idB)->tests() != nullptr);
        QCOMPARE(ids(), QStringList{ idB });
    }

    void openTestsStayTheSameObjectsAcrossUpdates()
    {
        setTests(*m_api, idA, testsAt({ QStringLiteral("x"), QStringLiteral("y") }));
        rebuild({ idA });
        Job* const job = m_manager->getJob(idA);
        const std::shared_ptr<Test> x = job->getTest(0);
        for (int round = 0; round < 100; ++round) {
            rebuild({ idA });
            QVERIFY(job->tests() != nullptr);
        }
        QCOMPARE(m_manager->getJob(idA)->getTest(0), x);
    }

    void everyRebuildGroupsTheTestsInsideTheReset()
    {
        m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION);
        rebuild({ idA });
        auto* const tests = m_manager->getJob(idA)->tests();
        m_journal.take();
        const SignalRecorder recorder(*tests, m_journal, QStringLiteral("tests: "));
        m_manager->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QVERIFY(m_journal.take().contains(QStringLiteral("emit tests: sectionsChanged()")));
        rebuild({ idA, idB });
        QVERIFY(!m_journal.take().contains(QStringLiteral("emit tests: sectionsChanged()")));
        // Grouped by the rebuild already: the group type is the one that the manager has.
        const SignalRecorder newRecorder(*m_manager->getJob(idB)->tests(), m_journal, QStringLiteral("new: "));
        m_journal.take();
        m_manager->getJob(idB)->sortTests(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void regroupingFromInsideARebuildPassesOverJobsThatAreNotThereYet()
    {
        rebuild({ idA, idB });
        connect(m_manager->getJob(idA), &Job::stateChanged, this,
            [&] { m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION); });
        rebuild({ idC, idA, idB });
        QCOMPARE(ids(), (QStringList{ idC, idA, idB }));
        m_journal.take();
        for (const QString& jobID : { idA, idB, idC }) {
            Job* const job = m_manager->getJob(jobID);
            const SignalRecorder recorder(*job->tests(), m_journal);
            m_journal.take();
            job->sortTests(TestGroupType::GROUPBY_LOCATION);
            QCOMPARE(m_journal.take(), QStringList());
        }
    }

    void rebuildFromARegroupedListIsStood()
    {
        rebuild({ idA, idB, idC });
        bool rebuilt = false;
        connect(m_manager->getJob(idA)->tests(), &QAbstractItemModel::modelReset, this, [&] {
            if (!std::exchange(rebuilt, true)) {
                rebuild({ idC });
            }
        });
        m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(rebuilt, true);
        QCOMPARE(ids(), QStringList{ idC });
    }

private:
    void rebuild(const std::vector<QString>& jobIDs)
    {
        m_api->setJobIDs(jobIDs);
        m_manager->doUpdateDataFromAPI();
    }

    QStringList ids() const
    {
        QStringList result;
        for (int row = 0; row < m_manager->rowCount(); ++row) {
            result.append(m_manager->index(row, 0).data(JobManager::JobIDRole).toString());
        }
        return result;
    }

    /// The worker runs and has fetched the list; the test polls itself.
    void initialize()
    {
        m_manager->initialize();
        m_manager->findChild<QTimer*>()->stop();
        QTRY_VERIFY(!m_manager->fetchingJobList());
        m_journal.take();
    }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<JobManager> m_manager;
};

QTEST_GUILESS_MAIN(TestsOfJobsTest)
#include "TestsOfJobsTest.moc"
