#include "tests/core/ManagerFixture.h"

#include <limits>
#include <QSignalSpy>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

/// When the manager asks for the change count, and what it makes of the answer.
class PollTest : public ManagerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // The poll.

    void pollWithoutAChangeOnlyAsksForTheCount()
    {
        poll();
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call getChangeCount()") });
    }

    void pollThatFindsAChangeUpdatesInFullAndTellsSo()
    {
        m_api->setChangeCount(7);
        poll();
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  7
call clearCache()
call isJobListInCache()
debug: Starting fething job list on separate thread
emit fetchingJobListChanged()
emit fetchJobList()
call getSettingsListInfo()
emit jobManagerUpdated())"));
    }

    void pollIsIgnoredWhileTheWorkerIsBusy()
    {
        initializeWithABusyWorker();
        poll();
        QCOMPARE(m_journal.take(),
            QStringList{ QStringLiteral("debug: Query request ignored because a request is in progress") });
        m_api->release(QStringLiteral("fetchJobList"));
    }

    void busyWorkerIsNamedBeforeAPauseIs()
    {
        initializeWithABusyWorker();
        m_manager->setPauseAutomaticUpdates(true);
        m_journal.take();
        poll();
        QCOMPARE(m_journal.take(),
            QStringList{ QStringLiteral("debug: Query request ignored because a request is in progress") });
        m_api->release(QStringLiteral("fetchJobList"));
    }

    void pausedPollIsSilent()
    {
        m_manager->setPauseAutomaticUpdates(true);
        m_api->setChangeCount(1);
        m_journal.take();
        poll();
        QCOMPARE(m_journal.take(), QStringList());
    }

    void changeDuringAFetchIsTakenAsSeenAndClearsTheCache()
    {
        m_manager->updateDataFromAPI(true);
        m_api->setChangeCount(3);
        m_journal.take();
        poll();
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  3
call clearCache()
debug: Already fetching data
emit jobManagerUpdated())"));
        poll();
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call getChangeCount()") });
    }

    void managerUpdatedGoesOutBeforeTheRowsAreRebuilt()
    {
        m_api->setJob(idA);
        m_api->setChangeCount(1);
        int rows = -1;
        const QObject receiver;
        connect(m_manager, &JobManager::jobManagerUpdated, &receiver, [&] { rows = m_manager->rowCount(); });
        poll();
        QCOMPARE(rows, 0);
        m_manager->onFetchJobListFinished();
        QCOMPARE(m_manager->rowCount(), 1);
    }

    void oneStepFoundByAPollIsStillAFullUpdate()
    {
        m_api->keepJobListCached();
        m_api->setChangeCount(1);
        poll();
        QCOMPARE(m_api->count(QStringLiteral("clearCache")), 1);
    }

    void wholePathOfAPollGoesThroughTheWorker()
    {
        m_recorded->start();
        m_api->setChangeCount(5);
        poll();
        QTRY_VERIFY(!m_manager->fetchingJobList());
        QStringList entries = m_journal.take();
        QVERIFY(entries.indexOf(QStringLiteral("call fetchJobList() on worker"))
            > entries.indexOf(QStringLiteral("emit fetchJobList()")));
        QVERIFY(entries.indexOf(QStringLiteral("call fetchJobList() on worker"))
            < entries.indexOf(QStringLiteral("debug: Done fetching the job list")));
        QVERIFY(entries.removeOne(QStringLiteral("call fetchJobList() on worker")));
        QCOMPARE(lines(entries), QStringLiteral(R"(call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  5
call clearCache()
call isJobListInCache()
debug: Starting fething job list on separate thread
emit fetchingJobListChanged()
emit fetchJobList()
call getSettingsListInfo()
emit jobManagerUpdated()
debug: Done fetching the job list
call commitFetchedData()
emit modelAboutToBeReset()
call getAllJobIDs()
call getCurrentJobID()
call hasCurrentJob()
emit currentJobChanged()
emit modelReset()
emit fetchingJobListChanged())"));
    }

    void countAtTheStartIsNoChange()
    {
        m_api->setChangeCount(12);
        m_manager->initialize();
        m_journal.take();
        QCOMPARE(m_manager->checkChangeCount(false), false);
    }

    // checkChangeCount.

    void stepOfTheCountDecidesTheKindOfUpdate_data()
    {
        QTest::addColumn<int>("oldCount");
        QTest::addColumn<int>("newCount");
        QTest::addColumn<bool>("allowPartial");
        QTest::addColumn<bool>("full");
        QTest::newRow("one up, partial allowed") << 10 << 11 << true << false;
        QTest::newRow("one down, partial allowed") << 10 << 9 << true << false;
        QTest::newRow("two up, partial allowed") << 10 << 12 << true << true;
        QTest::newRow("two down, partial allowed") << 10 << 8 << true << true;
        QTest::newRow("one up, full wanted") << 10 << 11 << false << true;
        QTest::newRow("one down, full wanted") << 10 << 9 << false << true;
        QTest::newRow("two up, full wanted") << 10 << 12 << false << true;
        QTest::newRow("from end to end of the range")
            << std::numeric_limits<int>::min() << std::numeric_limits<int>::max() << true << true;
    }

    void stepOfTheCountDecidesTheKindOfUpdate()
    {
        QFETCH(int, oldCount);
        QFETCH(int, newCount);
        QFETCH(bool, allowPartial);
        QFETCH(bool, full);
        m_api->keepJobListCached();
        m_api->setChangeCount(oldCount);
        m_manager->checkChangeCount(false);
        m_api->setChangeCount(newCount);
        m_journal.take();
        QCOMPARE(m_manager->checkChangeCount(allowPartial), true);
        QCOMPARE(m_api->count(QStringLiteral("clearCache")), full ? 1 : 0);
        QCOMPARE(m_api->count(QStringLiteral("getAllJobIDs")), 1);
    }

    void unmovedCountStartsNothing_data()
    {
        QTest::addColumn<bool>("allowPartial");
        QTest::newRow("partial allowed") << true;
        QTest::newRow("full wanted") << false;
    }

    void unmovedCountStartsNothing()
    {
        QFETCH(bool, allowPartial);
        QCOMPARE(m_manager->checkChangeCount(allowPartial), false);
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call getChangeCount()") });
    }

    void countIsStoredBeforeTheUpdate()
    {
        m_api->keepJobListCached();
        m_api->setChangeCount(4);
        QList<bool> movedAgain;
        const QObject receiver;
        connect(m_manager, &JobManager::currentJobChanged, &receiver,
            [&] { movedAgain.append(m_manager->checkChangeCount(false)); });
        m_manager->checkChangeCount(false);
        QCOMPARE(movedAgain, QList<bool>{ false });
    }

    void onlyPollsTellThatTheManagerWasUpdated()
    {
        const QSignalSpy updated(m_manager, &JobManager::jobManagerUpdated);
        m_api->setChangeCount(4);
        m_manager->checkChangeCount(false);
        m_manager->updateDataFromAPI(true);
        QCOMPARE(updated.count(), 0);
    }

    // A written property.

    void acceptedWriteTakesItsOwnStepAsSeen_data()
    {
        QTest::addColumn<int>("newCount");
        QTest::addColumn<bool>("seen");
        QTest::newRow("one up") << 11 << true;
        QTest::newRow("one down") << 9 << true;
        QTest::newRow("two up") << 12 << false;
        QTest::newRow("two down") << 8 << false;
    }

    void acceptedWriteTakesItsOwnStepAsSeen()
    {
        QFETCH(int, newCount);
        QFETCH(bool, seen);
        m_api->setChangeCount(10);
        m_manager->checkChangeCount(false);
        rebuild({ idA });
        m_api->setChangeCount(newCount);
        Q_EMIT m_manager->getJob(idA)->optionalPropertyValueChanged(true);
        QCOMPARE(m_manager->checkChangeCount(false), !seen);
    }

    void refusedWriteAsksNothing()
    {
        rebuild({ idA });
        m_journal.take();
        Q_EMIT m_manager->getJob(idA)->optionalPropertyValueChanged(false);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void writeIsHandledOnceHoweverOftenTheJobWasKept()
    {
        rebuild({ idA });
        rebuild({ idA });
        rebuild({ idA });
        m_journal.take();
        Q_EMIT m_manager->getJob(idA)->optionalPropertyValueChanged(true);
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call getChangeCount()") });
    }

    // Pausing.

    void pauseIsSignalledOnARealChangeOnly()
    {
        QVERIFY(m_manager->setProperty("pauseAutomaticUpdates", true));
        m_manager->setPauseAutomaticUpdates(true);
        QCOMPARE(m_manager->pauseAutomaticUpdates(), true);
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("emit pauseAutomaticUpdatesChanged()") });
    }

    void resumingUpdatesInFullAtOnceAndWithoutTellingSo()
    {
        m_api->keepJobListCached();
        m_manager->setPauseAutomaticUpdates(true);
        m_api->setChangeCount(1);
        m_api->setJob(idA);
        m_journal.take();
        m_manager->setPauseAutomaticUpdates(false);
        QCOMPARE(m_manager->rowCount(), 1);
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.at(0), QStringLiteral("emit pauseAutomaticUpdatesChanged()"));
        QCOMPARE(entries.at(1), QStringLiteral("call getChangeCount()"));
        QVERIFY(entries.contains(QStringLiteral("call clearCache()")));
        QVERIFY(!entries.contains(QStringLiteral("emit jobManagerUpdated()")));
    }

    // The property that nothing sets.

    void queryFlagIsSignalledOnARealChangeWithItsValue()
    {
        const auto set = [this](bool value) {
            return QMetaObject::invokeMethod(m_manager, "setIsQueryCountChangeInProgress", Q_ARG(bool, value));
        };
        QVERIFY(set(false));
        QVERIFY(set(true));
        QVERIFY(set(true));
        QCOMPARE(m_manager->isQueryChangeCountInProgress(), true);
        QVERIFY(set(false));
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit isQueryCountChangeInProgressChanged(true)"),
                QStringLiteral("emit isQueryCountChangeInProgressChanged(false)") }));
    }

private:
    /// The worker is inside its first fetch until the test releases it; the timer has not fired.
    void initializeWithABusyWorker()
    {
        m_api->hold(QStringLiteral("fetchJobList"));
        m_manager->initialize();
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJobList")));
        m_journal.take();
    }
};

QTEST_GUILESS_MAIN(PollTest)
#include "PollTest.moc"
