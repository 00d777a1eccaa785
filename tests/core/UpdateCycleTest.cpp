#include "tests/core/ManagerFixture.h"

#include <QPointer>
#include <QtTest>
#include <utility>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

JobSummary archivedSummary()
{
    JobSummary summary;
    summary.archived = true;
    return summary;
}

} // namespace

/// How an update fetches the list and rebuilds the rows.
class UpdateCycleTest : public ManagerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

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
        const QObject receiver;
        connect(m_manager, &JobManager::fetchingJobListChanged, &receiver,
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
        QVERIFY(QMetaObject::invokeMethod(m_manager, "updateDataFromAPI"));
        QCOMPARE(m_journal.entries().constFirst(), QStringLiteral("call clearCache()"));
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
        const QObject receiver;
        connect(m_manager, &JobManager::currentJobChanged, &receiver,
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
        const QObject receiver;
        connect(m_manager, &JobManager::modelReset, &receiver, [&] { aliveAtTheEndOfTheReset = !gone.isNull(); });
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

    // An update asked for from inside a rebuild.

    void rebuildAskedForInsideARebuildFollowsIt()
    {
        m_api->keepJobListCached();
        m_api->setJobIDs({ idA, idB });
        bool asked = false;
        const QObject receiver;
        connect(m_manager, &JobManager::currentJobChanged, &receiver, [&] {
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
        connect(m_manager, &JobManager::currentJobChanged, m_manager, [this] { m_manager->updateDataFromAPI(false); });
        m_manager->updateDataFromAPI(false);
        const int rebuilds = m_api->count(QStringLiteral("getAllJobIDs"));
        QCOMPARE(rebuilds, 2);
        QTRY_VERIFY(m_api->count(QStringLiteral("getAllJobIDs")) > rebuilds);
    }

    void rebuildFromTheCacheLowersTheFlagOfAFetchStartedInsideIt()
    {
        m_api->setJobListCached(true);
        bool asked = false;
        QList<bool> flags;
        const QObject receiver;
        connect(m_manager, &JobManager::currentJobChanged, &receiver, [&] {
            if (!std::exchange(asked, true)) {
                m_manager->updateDataFromAPI(true);
            }
        });
        connect(m_manager, &JobManager::fetchingJobListChanged, &receiver,
            [&] { flags.append(m_manager->fetchingJobList()); });
        m_manager->updateDataFromAPI(false);
        QVERIFY(m_journal.contains(QStringLiteral("emit fetchJobList()")));
        QCOMPARE(flags, (QList<bool>{ true, false }));
    }
};

QTEST_GUILESS_MAIN(UpdateCycleTest)
#include "UpdateCycleTest.moc"
