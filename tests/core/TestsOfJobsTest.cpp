#include "tests/core/ManagerFixture.h"
#include "tests/models/ScriptedTests.h"

#include <QtTest>
#include <utility>

using namespace jobmanager_test;
using namespace jobmanager_ui;

/// What the manager does for the tests of its jobs.
class TestsOfJobsTest : public ManagerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }

    void cleanup()
    {
        QCOMPARE(m_journal.take().filter(QStringLiteral("warning: ")), QStringList());
        tearDown();
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
        m_recorded->start();
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
        m_recorded->start();
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
        m_recorded->start();
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
};

QTEST_GUILESS_MAIN(TestsOfJobsTest)
#include "TestsOfJobsTest.moc"
