#include "tests/core/RecordedManager.h"

#include <QRegularExpression>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString idA = QStringLiteral("A");
const QString idB = QStringLiteral("B");

} // namespace

/// Asking for another current job: two jobs, of which "A" is current where a test says so.
class CurrentJobTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_front = std::make_unique<RecordedManager>();
        m_front->rebuild({ idA, idB });
        m_front->take();
    }

    void cleanup() { m_front.reset(); }

    // The request.

    void requestRaisesTheFlagAndGoesToTheWorker()
    {
        QCOMPARE(m_front->manager.setCurrentJob(job(idB)), true);
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit settingCurrentJobChanged()
emit setCurrentJobOnBackgroundThread("B"))"));
        QCOMPARE(m_front->manager.settingCurrentJob(), true);
        QCOMPARE(m_front->manager.currentJob(), nullptr);
    }

    void noJobIsRefusedAndAsksNobody()
    {
        QCOMPARE(m_front->manager.setCurrentJob(nullptr), false);
        QCOMPARE(m_front->take(), QString());
        QCOMPARE(m_front->manager.settingCurrentJob(), false);
    }

    void currentJobIsAskedForAllTheSame()
    {
        makeCurrent(idA);
        QCOMPARE(m_front->manager.setCurrentJob(job(idA)), true);
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit settingCurrentJobChanged()
emit setCurrentJobOnBackgroundThread("A"))"));
    }

    void givingUpSendsANullText()
    {
        makeCurrent(idA);
        QString sent = idA;
        connect(&m_front->manager, &JobManager::setCurrentJobOnBackgroundThread, this,
            [&](const QString& jobID) { sent = jobID; });
        QCOMPARE(m_front->manager.unsetCurrentJob(), true);
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit settingCurrentJobChanged()
emit setCurrentJobOnBackgroundThread(""))"));
        QVERIFY(sent.isNull());
        QCOMPARE(m_front->manager.settingCurrentJob(), true);
    }

    void flagIsUpWhenItsSignalAndTheRequestGoOut()
    {
        QList<bool> seen;
        const auto note = [&] { seen.append(m_front->manager.settingCurrentJob()); };
        connect(&m_front->manager, &JobManager::settingCurrentJobChanged, this, note);
        connect(&m_front->manager, &JobManager::setCurrentJobOnBackgroundThread, this, note);
        m_front->manager.setCurrentJob(job(idA));
        QCOMPARE(seen, (QList<bool>{ true, true }));
    }

    // The end of a request.

    void countThatMovedByOneIsTakenOverFromTheCacheBeforeTheFlagFalls()
    {
        m_front->api->setJobListCached(true);
        m_front->manager.setCurrentJob(job(idB));
        serviceMakesCurrent(idB, 1);
        m_front->take();
        m_front->manager.onSetCurrentJobFinished();
        QCOMPARE(withoutJobs(m_front->api->journal().take()), QStringLiteral(R"(call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  1
call isJobListInCache()
debug: Job list is still in cache. No need to re-fetch it
debug: Done fetching the job list
call commitFetchedData()
emit modelAboutToBeReset()
call getAllJobIDs()
call getCurrentJobID()
emit currentJobChanged()
call hasCurrentJob()
emit currentJobChanged()
emit modelReset()
emit fetchingJobListChanged()
call getSettingsListInfo()
emit settingCurrentJobChanged())"));
        QCOMPARE(m_front->manager.currentJob(), job(idB));
        QCOMPARE(m_front->manager.settingCurrentJob(), false);
    }

    void flagIsUpDuringTheUpdateAndDownInItsSignal()
    {
        m_front->api->setJobListCached(true);
        m_front->manager.setCurrentJob(job(idB));
        serviceMakesCurrent(idB, 1);
        QList<bool> duringTheUpdate;
        QList<bool> atTheSignal;
        connect(&m_front->manager, &JobManager::modelReset, this,
            [&] { duringTheUpdate.append(m_front->manager.settingCurrentJob()); });
        connect(&m_front->manager, &JobManager::settingCurrentJobChanged, this,
            [&] { atTheSignal.append(m_front->manager.settingCurrentJob()); });
        m_front->manager.onSetCurrentJobFinished();
        QCOMPARE(duringTheUpdate, QList<bool>{ true });
        QCOMPARE(atTheSignal, QList<bool>{ false });
    }

    void countThatMovedByMoreIsFetched()
    {
        m_front->api->setJobListCached(true);
        m_front->manager.setCurrentJob(job(idB));
        serviceMakesCurrent(idB, 2);
        m_front->take();
        m_front->manager.onSetCurrentJobFinished();
        QCOMPARE(m_front->take(), QStringLiteral(R"(call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  2
call clearCache()
call isJobListInCache()
debug: Starting fething job list on separate thread
emit fetchingJobListChanged()
emit fetchJobList()
call getSettingsListInfo()
emit settingCurrentJobChanged())"));
        QCOMPARE(m_front->manager.currentJob(), nullptr);
        m_front->manager.onFetchJobListFinished();
        QCOMPARE(m_front->manager.currentJob(), job(idB));
    }

    void countThatDidNotMoveChangesNothing()
    {
        makeCurrent(idA);
        m_front->manager.setCurrentJob(job(idB));
        m_front->take();
        m_front->manager.onSetCurrentJobFinished();
        QCOMPARE(m_front->take(), QStringLiteral(R"(call getChangeCount()
emit settingCurrentJobChanged())"));
        QCOMPARE(m_front->manager.currentJob(), job(idA));
        QCOMPARE(m_front->manager.settingCurrentJob(), false);
    }

    void firstEndOfTwoRequestsLowersTheFlag()
    {
        m_front->manager.setCurrentJob(job(idA));
        m_front->manager.setCurrentJob(job(idB));
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit settingCurrentJobChanged()
emit setCurrentJobOnBackgroundThread("A")
emit settingCurrentJobChanged()
emit setCurrentJobOnBackgroundThread("B"))"));
        m_front->manager.onSetCurrentJobFinished();
        QCOMPARE(m_front->manager.settingCurrentJob(), false);
        m_front->manager.onSetCurrentJobFinished();
        QCOMPARE(m_front->manager.settingCurrentJob(), false);
        QCOMPARE(m_front->take(), QStringLiteral(R"(call getChangeCount()
emit settingCurrentJobChanged()
call getChangeCount()
emit settingCurrentJobChanged())"));
    }

    void endOfARequestTellsNoUpdateOfTheManager()
    {
        m_front->api->setJobListCached(true);
        serviceMakesCurrent(idB, 1);
        m_front->manager.onSetCurrentJobFinished();
        QVERIFY(!m_front->api->journal().contains(QStringLiteral("emit jobManagerUpdated()")));
    }

    // Through the worker.

    void requestRunsOnTheWorkerAndItsEndComesBack()
    {
        m_front->start();
        m_front->api->setAnswer(QStringLiteral("setCurrentJobByID"), true);
        m_front->api->hold(QStringLiteral("setCurrentJobByID"));
        m_front->manager.setCurrentJob(job(idB));
        QVERIFY(m_front->api->waitUntilHeld(QStringLiteral("setCurrentJobByID")));
        QVERIFY(m_front->api->journal().contains(QStringLiteral("call setCurrentJobByID(\"B\") on worker")));
        QCOMPARE(m_front->manager.settingCurrentJob(), true);
        serviceMakesCurrent(idB, 1);
        m_front->api->release(QStringLiteral("setCurrentJobByID"));
        QTRY_VERIFY(!m_front->manager.settingCurrentJob());
        QCOMPARE(m_front->manager.currentJob(), job(idB));
        QCOMPARE(m_front->api->count(QStringLiteral("clearCache")), 0);
        QCOMPARE(m_front->api->count(QStringLiteral("fetchJobList")), 0);
    }

    void requestsReachTheWorkerInTheirOrder()
    {
        m_front->start();
        m_front->manager.setCurrentJob(job(idB));
        m_front->manager.setCurrentJob(job(idA));
        m_front->manager.unsetCurrentJob();
        QVERIFY(m_front->api->journal().waitFor(QStringLiteral("call setCurrentJobByID(\"\") on worker")));
        QCOMPARE(m_front->api->journal().take().filter(QStringLiteral("on worker")),
            (QStringList{ QStringLiteral("call setCurrentJobByID(\"B\") on worker"),
                QStringLiteral("call setCurrentJobByID(\"A\") on worker"),
                QStringLiteral("call setCurrentJobByID(\"\") on worker") }));
    }

    void flagRisesAndFallsWhereThereIsNothingToGiveUp()
    {
        m_front->start();
        QList<bool> seen;
        connect(&m_front->manager, &JobManager::settingCurrentJobChanged, this,
            [&] { seen.append(m_front->manager.settingCurrentJob()); });
        QCOMPARE(m_front->manager.unsetCurrentJob(), true);
        QTRY_COMPARE(seen, (QList<bool>{ true, false }));
    }

    void refusedRequestLeavesEverythingAsItIs()
    {
        m_front->start();
        makeCurrent(idA);
        m_front->api->setAnswer(QStringLiteral("setCurrentJobByID"), false);
        m_front->manager.setCurrentJob(job(idB));
        QTRY_VERIFY(!m_front->manager.settingCurrentJob());
        QCOMPARE(m_front->manager.currentJob(), job(idA));
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit settingCurrentJobChanged()
emit setCurrentJobOnBackgroundThread("B")
call setCurrentJobByID("B") on worker
call getChangeCount()
emit settingCurrentJobChanged())"));
    }

    void pollStandsAsideUntilTheEndOfTheRequestHasArrived()
    {
        m_front->start();
        m_front->manager.setCurrentJob(job(idB));
        QVERIFY(m_front->waitUntilAnswered(QStringLiteral("setCurrentJobByID(\"B\")")));
        // The worker rests again; its answer is not delivered yet.
        QCOMPARE(m_front->manager.isBackgroundRequestInProgress(), true);
        m_front->take();
        m_front->poll();
        QCOMPARE(m_front->take(), QStringLiteral("debug: Query request ignored because a request is in progress"));
        QTRY_VERIFY(!m_front->manager.settingCurrentJob());
        QCOMPARE(m_front->manager.isBackgroundRequestInProgress(), false);
        m_front->take();
        m_front->poll();
        QCOMPARE(m_front->take(), QStringLiteral("call getChangeCount()"));
    }

    void flagWithoutAWorkerHoldsNoPollBack()
    {
        m_front->manager.setCurrentJob(job(idB));
        QCOMPARE(m_front->manager.isBackgroundRequestInProgress(), false);
    }

    void jobThatGoesDuringTheRequestHarmsNothing()
    {
        m_front->start();
        m_front->api->hold(QStringLiteral("setCurrentJobByID"));
        m_front->manager.setCurrentJob(job(idB));
        QVERIFY(m_front->api->waitUntilHeld(QStringLiteral("setCurrentJobByID")));
        m_front->rebuild({ idA });
        m_front->api->release(QStringLiteral("setCurrentJobByID"));
        QTRY_VERIFY(!m_front->manager.settingCurrentJob());
        QCOMPARE(m_front->ids(), QStringList{ idA });
    }

    // At once, by id.

    void idIsSetOnThisThread()
    {
        m_front->api->setAnswer(QStringLiteral("setCurrentJobByID"), true);
        QCOMPARE(m_front->manager.setCurrentJobByID(idB), true);
        QCOMPARE(m_front->take(), QStringLiteral(R"(call setCurrentJobByID("B")
call getChangeCount())"));
        QCOMPARE(m_front->manager.settingCurrentJob(), false);
    }

    void idThatTheServiceRefusesIsTrueAllTheSame()
    {
        makeCurrent(idA);
        m_front->api->setAnswer(QStringLiteral("setCurrentJobByID"), false);
        QCOMPARE(m_front->manager.setCurrentJobByID(idB), true);
        QCOMPARE(m_front->take(), QStringLiteral("call setCurrentJobByID(\"B\")"));
        QCOMPARE(m_front->manager.currentJob(), job(idA));
    }

    void idOfTheCurrentJobIsSkipped()
    {
        makeCurrent(idA);
        QCOMPARE(m_front->manager.setCurrentJobByID(idA), false);
        QCOMPARE(m_front->take(), QStringLiteral("debug: Trying to change the active job to the same one. Skipping"));
    }

    void noIdIsNotTheSameAsNoCurrentJob()
    {
        m_front->api->setAnswer(QStringLiteral("setCurrentJobByID"), true);
        QCOMPARE(m_front->manager.setCurrentJobByID(QString()), true);
        QCOMPARE(m_front->take(), QStringLiteral(R"(call setCurrentJobByID("")
call getChangeCount())"));
    }

    void valueThatIsNoTextIsNoId_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("list") << QVariant(QVariantList{ idA });
        QTest::newRow("map") << QVariant(QVariantMap{ { idA, idA } });
        QTest::newRow("nothing") << QVariant();
    }

    void valueThatIsNoTextIsNoId()
    {
        QFETCH(QVariant, value);
        QCOMPARE(m_front->manager.setCurrentJobByID(value), false);
        QCOMPARE(m_front->take(),
            QStringLiteral("debug: Invalid type sent to  bool jobmanager_ui::JobManager::setCurrentJobByID(QVariant)"));
    }

    void valueThatReadsAsATextIsAnId_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("call");
        QTest::newRow("text") << QVariant(idB) << "call setCurrentJobByID(\"B\")";
        QTest::newRow("number") << QVariant(7) << "call setCurrentJobByID(\"7\")";
        QTest::newRow("bytes") << QVariant(QByteArray("B")) << "call setCurrentJobByID(\"B\")";
        QTest::newRow("no job") << QVariant(QString()) << "call setCurrentJobByID(\"\")";
    }

    void valueThatReadsAsATextIsAnId()
    {
        QFETCH(QVariant, value);
        makeCurrent(idA);
        QCOMPARE(m_front->manager.setCurrentJobByID(value), true);
        QTEST(m_front->take(), "call");
    }

    void stepOfTheCountDecidesWhatAnIdBrings_data()
    {
        QTest::addColumn<int>("newCount");
        QTest::addColumn<int>("cleared");
        QTest::addColumn<int>("rebuilt");
        QTest::newRow("not moved") << 10 << 0 << 0;
        QTest::newRow("one up") << 11 << 0 << 1;
        QTest::newRow("one down") << 9 << 0 << 1;
        QTest::newRow("two up") << 12 << 1 << 1;
    }

    void stepOfTheCountDecidesWhatAnIdBrings()
    {
        QFETCH(int, newCount);
        m_front->api->keepJobListCached();
        m_front->api->setChangeCount(10);
        m_front->manager.checkChangeCount(false);
        m_front->api->setAnswer(QStringLiteral("setCurrentJobByID"), true);
        serviceMakesCurrent(idB, newCount);
        m_front->take();
        m_front->manager.setCurrentJobByID(idB);
        QTEST(m_front->api->count(QStringLiteral("clearCache")), "cleared");
        QTEST(m_front->api->count(QStringLiteral("getAllJobIDs")), "rebuilt");
        QCOMPARE(m_front->manager.currentJob() == job(idB), newCount != 10);
    }

private:
    Job* job(const QString& jobID) const { return m_front->manager.getJob(jobID); }

    /// The service and the manager agree on the current job.
    void makeCurrent(const QString& jobID)
    {
        m_front->api->setCurrentID(jobID);
        m_front->rebuild({ idA, idB });
        m_front->take();
    }

    void serviceMakesCurrent(const QString& jobID, int newCount)
    {
        m_front->api->setCurrentID(jobID);
        m_front->api->setChangeCount(newCount);
    }

    /// The entries without what each job reads and says in a rebuild.
    static QString withoutJobs(QStringList entries)
    {
        const QRegularExpression ofAJob(QStringLiteral("updating job|^call \\w+\\(\"[AB]\"\\)$"));
        for (const QString& entry : entries.filter(ofAJob)) {
            entries.removeOne(entry);
        }
        return lines(entries);
    }

    std::unique_ptr<RecordedManager> m_front;
};

QTEST_GUILESS_MAIN(CurrentJobTest)
#include "CurrentJobTest.moc"
