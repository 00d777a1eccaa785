#include "core/JobManager.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <limits>
#include <memory>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>
#include <utility>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString idA = QStringLiteral("A");
const QString idB = QStringLiteral("B");
const QString idC = QStringLiteral("C");

JobSummary archivedSummary()
{
    JobSummary summary;
    summary.archived = true;
    return summary;
}

} // namespace

/// Calls, signals of the manager and messages go into one journal. The manager is not initialized unless a test
/// does it: the worker is then not there, and a fetch ends when the test says so.
class UpdateCycleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>(m_journal);
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_manager = std::make_unique<JobManager>(m_api);
        m_recorder = std::make_unique<SignalRecorder>(*m_manager, m_journal);
    }

    void cleanup()
    {
        m_recorder.reset();
        m_manager.reset();
        m_api.reset();
        m_messages.reset();
    }

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
        connect(m_manager.get(), &JobManager::jobManagerUpdated, this, [&] { rows = m_manager->rowCount(); });
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
        m_manager->initialize();
        m_manager->findChild<QTimer*>()->stop(); // the test polls itself
        QTRY_VERIFY(!m_manager->fetchingJobList());
        m_journal.take();
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
        connect(m_manager.get(), &JobManager::currentJobChanged, this,
            [&] { movedAgain.append(m_manager->checkChangeCount(false)); });
        m_manager->checkChangeCount(false);
        QCOMPARE(movedAgain, QList<bool>{ false });
    }

    void onlyPollsTellThatTheManagerWasUpdated()
    {
        const QSignalSpy updated(m_manager.get(), &JobManager::jobManagerUpdated);
        m_api->setChangeCount(4);
        m_manager->checkChangeCount(false);
        m_manager->updateDataFromAPI(true);
        QCOMPARE(updated.count(), 0);
    }

    // updateDataFromAPI.

    void updateFetchesAListThatIsNotCached()
    {
        m_manager->updateDataFromAPI(false);
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call isJobListInCache()
debug: Starting fething job list on separate thread
emit fetchingJobListChanged()
emit fetchJobList()
call getSettingsListInfo())"));
        QCOMPARE(m_manager->fetchingJobList(), true);
    }

    void fetchFlagIsUpWhenItsSignalGoesOut()
    {
        QList<bool> seen;
        connect(m_manager.get(), &JobManager::fetchingJobListChanged, this,
            [&] { seen.append(m_manager->fetchingJobList()); });
        m_manager->updateDataFromAPI(true);
        m_manager->onFetchJobListFinished();
        QCOMPARE(seen, (QList<bool>{ true, false }));
    }

    void partialUpdateOfACachedListRebuildsAtOnce()
    {
        m_api->setJobListCached(true);
        m_manager->updateDataFromAPI(false);
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call isJobListInCache()
debug: Job list is still in cache. No need to re-fetch it
debug: Done fetching the job list
call commitFetchedData()
emit modelAboutToBeReset()
call getAllJobIDs()
call getCurrentJobID()
call hasCurrentJob()
emit currentJobChanged()
emit modelReset()
emit fetchingJobListChanged()
call getSettingsListInfo())"));
        QCOMPARE(m_manager->fetchingJobList(), false);
    }

    void updateWithoutAnArgumentIsFull()
    {
        QVERIFY(QMetaObject::invokeMethod(m_manager.get(), "updateDataFromAPI"));
        QCOMPARE(m_journal.entries().first(), QStringLiteral("call clearCache()"));
    }

    void fullUpdateDuringAFetchOnlyClearsTheCache()
    {
        m_manager->updateDataFromAPI(true);
        m_journal.take();
        m_manager->updateDataFromAPI(true);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("call clearCache()"), QStringLiteral("debug: Already fetching data") }));
        QCOMPARE(m_manager->fetchingJobList(), true);
    }

    void partialUpdateDuringAFetchDoesNothing()
    {
        m_manager->updateDataFromAPI(true);
        m_journal.take();
        m_manager->updateDataFromAPI(false);
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("debug: Already fetching data") });
    }

    void endOfAFetchCommitsRebuildsAndThenLowersTheFlag()
    {
        m_api->setJob(idA);
        m_manager->updateDataFromAPI(true);
        QList<bool> flagInsideTheReset;
        connect(m_manager.get(), &JobManager::currentJobChanged, this,
            [&] { flagInsideTheReset.append(m_manager->fetchingJobList()); });
        m_journal.take();
        m_manager->onFetchJobListFinished();
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.first(), QStringLiteral("debug: Done fetching the job list"));
        QCOMPARE(entries.at(1), QStringLiteral("call commitFetchedData()"));
        QCOMPARE(entries.at(2), QStringLiteral("emit modelAboutToBeReset()"));
        QCOMPARE(entries.at(entries.size() - 2), QStringLiteral("emit modelReset()"));
        QCOMPARE(entries.last(), QStringLiteral("emit fetchingJobListChanged()"));
        QCOMPARE(flagInsideTheReset, QList<bool>{ true });
        QCOMPARE(m_manager->fetchingJobList(), false);
    }

    // The rebuild.

    void rowsStandInTheOrderOfTheService()
    {
        rebuild({ idB, idC, idA });
        QCOMPARE(ids(), (QStringList{ idB, idC, idA }));
        QCOMPARE(m_manager->getJobIndex(*m_manager->getJob(idC)), 1);
    }

    void rebuildReadsAndEmitsInsideTheReset()
    {
        rebuild({ idA });
        const SignalRecorder jobRecorder(*m_manager->getJob(idA), m_journal, QStringLiteral("A: "));
        m_journal.take();
        rebuild({ idA, idB });
        QStringList entries = m_journal.take();
        QCOMPARE(entries.takeFirst(), QStringLiteral("emit modelAboutToBeReset()"));
        QCOMPARE(entries.takeFirst(), QStringLiteral("call getAllJobIDs()"));
        QCOMPARE(entries.takeFirst(), QStringLiteral("call getCurrentJobID()"));
        QCOMPARE(entries.takeFirst(),
            QStringLiteral("debug: void jobmanager_ui::Job::updateDataFromAPI() : updating job:  \"A\""));
        const int firstSignal = entries.indexOf(QStringLiteral("emit A: jobNumberChanged()"));
        const int secondJob = entries.indexOf(QStringLiteral("call getJobNumber(\"B\")"));
        QVERIFY(firstSignal > 0);
        QVERIFY(secondJob > firstSignal);
        QCOMPARE(entries.takeLast(), QStringLiteral("emit modelReset()"));
        QCOMPARE(entries.takeLast(), QStringLiteral("emit currentJobChanged()"));
        QCOMPARE(entries.takeLast(), QStringLiteral("call hasCurrentJob()"));
        QCOMPARE(entries.takeLast(), QStringLiteral("call isJobInCache(\"B\")"));
    }

    void newJobIsReadOnce()
    {
        m_journal.take();
        rebuild({ idA });
        QCOMPARE(m_api->count(QStringLiteral("getJobNumber")), 1);
    }

    void jobObjectsStayAcrossUpdates()
    {
        rebuild({ idA, idB });
        Job* const a = m_manager->getJob(idA);
        Job* const b = m_manager->getJob(idB);
        rebuild({ idC, idB, idA });
        QCOMPARE(m_manager->getJob(idA), a);
        QCOMPARE(m_manager->getJob(idB), b);
        QCOMPARE(m_manager->getJobIndex(*a), 2);
        QCOMPARE(m_manager->index(2, 0).data(JobManager::JobRole).value<Job*>(), a);
    }

    void keptJobTakesOverItsNewValues()
    {
        rebuild({ idA });
        m_api->setJob(idA, archivedSummary());
        rebuild({ idA });
        QCOMPARE(m_manager->getJob(idA)->isArchived(), true);
    }

    void jobThatHasLeftTheListDiesAfterTheReset()
    {
        rebuild({ idA, idB });
        const QPointer<Job> gone = m_manager->getJob(idB);
        bool aliveAtTheEndOfTheReset = false;
        connect(m_manager.get(), &JobManager::modelReset, this, [&] { aliveAtTheEndOfTheReset = !gone.isNull(); });
        m_journal.take();
        rebuild({ idA });
        QCOMPARE(aliveAtTheEndOfTheReset, true);
        QVERIFY(gone.isNull());
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.at(entries.size() - 2), QStringLiteral("emit modelReset()"));
        QCOMPARE(entries.last(), QStringLiteral("debug: Job  \"B\" deallocated"));
        QCOMPARE(m_manager->getJob(idB), nullptr);
    }

    void emptyListEmptiesTheModel()
    {
        rebuild({ idA, idB });
        rebuild({});
        QCOMPARE(m_manager->rowCount(), 0);
        QCOMPARE(m_manager->getJob(idA), nullptr);
    }

    void jobThatCannotBeReadHasARowAllTheSame()
    {
        rebuild({ QStringLiteral("unknown") });
        QCOMPARE(m_manager->rowCount(), 1);
        QCOMPARE(m_manager->index(0, 0).data(JobManager::JobSortRole), QVariant(QString()));
    }

    void rowsChangeByResetsAlone()
    {
        rebuild({ idA, idB });
        m_journal.take();
        rebuild({ idB, idC });
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.filter(QStringLiteral("emit rows")), QStringList());
        QCOMPARE(entries.filter(QStringLiteral("emit columns")), QStringList());
        QCOMPARE(entries.filter(QStringLiteral("emit layout")), QStringList());
        QCOMPARE(entries.filter(QStringLiteral("Reset")),
            (QStringList{ QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit modelReset()") }));
    }

    // The current job.

    void currentJobThatAppearsIsSignalledTwice()
    {
        m_api->setCurrentID(idA);
        watchCurrentJob();
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), idA }));
    }

    void currentJobThatStaysIsNotSignalled()
    {
        m_api->setCurrentID(idA);
        rebuild({ idA });
        Job* const current = m_manager->currentJob();
        watchCurrentJob();
        rebuild({ idB, idA });
        QCOMPARE(m_seenCurrent, QStringList());
        QCOMPARE(m_manager->currentJob(), current);
        QVERIFY(current != nullptr);
    }

    void currentJobThatChangesIsSignalledEmptyFirst()
    {
        m_api->setCurrentID(idA);
        rebuild({ idA, idB });
        m_api->setCurrentID(idB);
        watchCurrentJob();
        rebuild({ idA, idB });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), idB }));
    }

    void currentJobThatGoesIsSignalledTwice()
    {
        m_api->setCurrentID(idA);
        rebuild({ idA });
        m_api->setCurrentID(QString());
        watchCurrentJob();
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), QString() }));
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void everyRebuildWithoutACurrentJobSignalsIt()
    {
        watchCurrentJob();
        rebuild({ idA });
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), QString() }));
    }

    void currentIdOutsideTheListLeavesNoCurrentJob()
    {
        m_api->setCurrentID(idC);
        watchCurrentJob();
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, QStringList{ QString() });
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void currentJobThatGoesWithItsRowIsReleased()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        const QPointer<Job> gone = m_manager->currentJob();
        m_api->setCurrentID(QString());
        m_journal.take();
        rebuild({ idA });
        QVERIFY(gone.isNull());
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_journal.take().filter(QStringLiteral("emit dataChanged")), QStringList());
    }

    void currentJobOutsideTheListStaysWhileTheServiceNamesIt()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        const QPointer<Job> current = m_manager->currentJob();
        watchCurrentJob();
        rebuild({ idA });
        QVERIFY(!current.isNull());
        QCOMPARE(m_manager->currentJob(), current.data());
        QCOMPARE(m_seenCurrent, QStringList());
        rebuild({ idA, idB });
        QCOMPARE(m_manager->currentJob(), m_manager->getJob(idB));
        QCOMPARE(m_seenCurrent, QStringList{ idB });
        QVERIFY(current.isNull());
    }

    void currentJobIsSignalledInsideTheReset()
    {
        m_api->setCurrentID(idA);
        m_journal.take();
        rebuild({ idA });
        const QStringList entries = m_journal.take();
        QVERIFY(entries.indexOf(QStringLiteral("emit currentJobChanged()"))
            > entries.indexOf(QStringLiteral("emit modelAboutToBeReset()")));
        QVERIFY(entries.lastIndexOf(QStringLiteral("emit currentJobChanged()"))
            < entries.indexOf(QStringLiteral("emit modelReset()")));
    }

    void rowOfADroppedCurrentJobIsRefiltered()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        m_api->setAnswer(QStringLiteral("hasCurrentJob"), false);
        m_journal.take();
        rebuild({ idA, idB });
        const QStringList entries = m_journal.take();
        const int asked = entries.indexOf(QStringLiteral("call hasCurrentJob()"));
        QCOMPARE(lines(entries.mid(asked + 1)), QStringLiteral(R"(emit dataChanged(row 1, row 1, [260])
emit currentJobChanged()
emit modelReset())"));
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void droppedCurrentJobThatHasLeftTheListHasNoRow()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        m_api->setAnswer(QStringLiteral("hasCurrentJob"), false);
        m_journal.take();
        rebuild({ idA });
        QVERIFY(m_journal.contains(QStringLiteral("emit dataChanged(row -1, row -1, [260])")));
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void viewsStandADroppedCurrentJob()
    {
        m_api->keepJobListCached();
        m_api->setJobIDs({ idA, idB });
        m_api->setCurrentID(idB);
        m_manager->initialize();
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 1);
        m_api->setAnswer(QStringLiteral("hasCurrentJob"), false);
        m_api->setJobIDs({ idC, QStringLiteral("D"), idA, idB });
        m_manager->updateDataFromAPI(false);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 4);
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

    // An update asked for from inside a rebuild.

    void rebuildAskedForInsideARebuildFollowsIt()
    {
        m_api->keepJobListCached();
        m_api->setJobIDs({ idA, idB });
        bool asked = false;
        connect(m_manager.get(), &JobManager::currentJobChanged, this, [&] {
            if (!std::exchange(asked, true)) {
                m_api->setJobIDs({ idC });
                m_manager->updateDataFromAPI(false);
            }
        });
        m_manager->updateDataFromAPI(false);
        QCOMPARE(ids(), QStringList{ idC });
        QVERIFY(m_manager->getJob(idC) != nullptr);
        QCOMPARE(m_manager->getJob(idA), nullptr);
        QCOMPARE(m_manager->getJobIndex(*m_manager->getJob(idC)), 0);
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.filter(QStringLiteral("Reset")),
            (QStringList{ QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit modelReset()"),
                QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit modelReset()") }));
        QVERIFY(entries.lastIndexOf(QStringLiteral("emit fetchingJobListChanged()"))
            > entries.lastIndexOf(QStringLiteral("emit modelReset()")));
    }

    void rebuildAskedForByAJobsSignalFollowsTheRunningOne()
    {
        rebuild({ idA, idB });
        bool asked = false;
        connect(m_manager->getJob(idA), &Job::stateChanged, this, [&] {
            if (!std::exchange(asked, true)) {
                m_api->setJobIDs({ idB });
                m_manager->doUpdateDataFromAPI();
            }
        });
        const QPointer<Job> a = m_manager->getJob(idA);
        rebuild({ idA, idB });
        QCOMPARE(ids(), QStringList{ idB });
        QVERIFY(a.isNull());
    }

    void receiverThatAlwaysAsksDoesNotHoldTheThread()
    {
        m_api->keepJobListCached();
        connect(m_manager.get(), &JobManager::currentJobChanged, m_manager.get(),
            [this] { m_manager->updateDataFromAPI(false); });
        m_manager->updateDataFromAPI(false);
        const int rebuilds = m_api->count(QStringLiteral("getAllJobIDs"));
        QCOMPARE(rebuilds, 2);
        QTRY_VERIFY(m_api->count(QStringLiteral("getAllJobIDs")) > rebuilds);
    }

    void rebuildFromTheCacheLowersTheFlagOfAFetchStartedInsideIt()
    {
        m_api->setJobListCached(true);
        bool asked = false;
        connect(m_manager.get(), &JobManager::currentJobChanged, this, [&] {
            if (!std::exchange(asked, true)) {
                m_manager->updateDataFromAPI(true);
            }
        });
        QList<bool> flags;
        connect(m_manager.get(), &JobManager::fetchingJobListChanged, this,
            [&] { flags.append(m_manager->fetchingJobList()); });
        m_manager->updateDataFromAPI(false);
        QVERIFY(m_journal.contains(QStringLiteral("emit fetchJobList()")));
        QCOMPARE(flags, (QList<bool>{ true, false }));
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
            return QMetaObject::invokeMethod(m_manager.get(), "setIsQueryCountChangeInProgress", Q_ARG(bool, value));
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
    void poll() { QVERIFY(QMetaObject::invokeMethod(m_manager.get(), "queryChangeCountSlot")); }

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

    /// Notes the current job's id, empty for none, at each signal.
    void watchCurrentJob()
    {
        m_seenCurrent.clear();
        connect(m_manager.get(), &JobManager::currentJobChanged, this, [this] {
            const Job* const current = m_manager->currentJob();
            m_seenCurrent.append(current == nullptr ? QString() : current->concreteTypeJobID());
        });
    }

    /// The worker is inside its first fetch until the test releases it; the timer has not fired.
    void initializeWithABusyWorker()
    {
        m_api->hold(QStringLiteral("fetchJobList"));
        m_manager->initialize();
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJobList")));
        m_journal.take();
    }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<JobManager> m_manager;
    std::unique_ptr<SignalRecorder> m_recorder;
    QStringList m_seenCurrent;
};

QTEST_GUILESS_MAIN(UpdateCycleTest)
#include "UpdateCycleTest.moc"
