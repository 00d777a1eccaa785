#include "core/JobManagerWorker.h"
#include "models/Job.h"
#include "tests/models/ScriptedTests.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/SignalRecorder.h"

#include <memory>
#include <QThread>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString id = QStringLiteral("J");

} // namespace

/// Calls and the job's signals go into one journal. The worker is on a thread that runs only where a test starts it:
/// before that, a fetch ends when the test says so.
class JobLazyMembersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<RecordingApi>(m_journal);
        setTests(*m_api, id, testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        m_thread = std::make_unique<QThread>();
        m_worker = std::make_unique<JobManagerWorker>(m_api);
        m_worker->moveToThread(m_thread.get());
        m_job = std::make_unique<Job>(m_api, id);
        m_recorder = std::make_unique<SignalRecorder>(*m_job, m_journal);
        m_journal.take();
    }

    void cleanup()
    {
        m_thread->quit();
        m_thread->wait();
        QCOMPARE(m_messages->take().filter(QStringLiteral("warning: ")), QStringList());
        m_recorder.reset();
        m_job.reset();
        m_worker.reset();
        m_thread.reset();
        m_api.reset();
        m_messages.reset();
    }

    // Without a worker.

    void jobWithoutAWorkerGivesItsTestsAtOnce()
    {
        QCOMPARE(m_job->worker(), nullptr);
        QCOMPARE(m_job->isBackgroundFetchCompleted(), true);
        QAbstractListModel* const tests = m_job->tests();
        QVERIFY(tests != nullptr);
        QCOMPARE(tests->rowCount(), 2);
        QCOMPARE(m_job->fetchInProgress(), false);
        QCOMPARE(m_journal.take().filter(QStringLiteral("emit ")), QStringList());
    }

    void testsAreNotReadBeforeSomebodyAsks()
    {
        m_job->updateDataFromAPI();
        m_job->sortTests(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_api->count(QStringLiteral("getAllTestIDs")), 0);
    }

    void allTestsOfTheJobAreRead()
    {
        m_job->tests();
        m_job->tests();
        QCOMPARE(m_api->count(QStringLiteral("getAllTestIDs")), 1);
        QVERIFY(m_journal.contains(QStringLiteral("call getAllTestIDs(\"J\")")));
    }

    void updateHasTheTestsReadAnew()
    {
        QAbstractListModel* const tests = m_job->tests();
        m_job->updateDataFromAPI();
        setTests(*m_api, id, testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") }));
        QCOMPARE(tests->rowCount(), 2);
        QCOMPARE(m_job->tests(), tests);
        QCOMPARE(tests->rowCount(), 3);
    }

    void testsArePublishedAsOneListModel()
    {
        QCOMPARE(m_job->property("tests").value<QAbstractListModel*>(), m_job->tests());
        QVERIFY(qobject_cast<TestList*>(m_job->property("tests").value<QObject*>()) != nullptr);
    }

    // The gate.

    void jobInTheCacheIsReady()
    {
        setCached(true);
        m_job->setWorker(m_worker.get());
        m_job->updateDataFromAPI();
        m_journal.take();
        QVERIFY(m_job->tests() != nullptr);
        QVERIFY(m_job->isBackgroundFetchCompleted());
        QCOMPARE(emitted(), QStringList());
    }

    void twoReadsStartOneFetchAndGiveNull()
    {
        waitForAFetch();
        QCOMPARE(m_job->tests(), nullptr);
        QCOMPARE(m_job->property("tests").value<QAbstractListModel*>(), nullptr);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit fetchInProgressChanged()"), QStringLiteral("emit fetchJob(\"J\")") }));
        QCOMPARE(m_job->fetchInProgress(), true);
    }

    void readFromInsideTheRisingFlagsSignalStartsNoSecondFetch()
    {
        waitForAFetch();
        QAbstractListModel* seen = nullptr;
        const QObject receiver;
        connect(m_job.get(), &Job::fetchInProgressChanged, &receiver, [&] { seen = m_job->tests(); });
        QCOMPARE(m_job->tests(), nullptr);
        QCOMPARE(seen, nullptr);
        QCOMPARE(emitted(),
            (QStringList{ QStringLiteral("emit fetchInProgressChanged()"), QStringLiteral("emit fetchJob(\"J\")") }));
    }

    void flagIsUpWhenItsSignalGoesOut()
    {
        waitForAFetch();
        QList<bool> seen;
        const QObject receiver;
        connect(m_job.get(), &Job::fetchInProgressChanged, &receiver, [&] { seen.append(m_job->fetchInProgress()); });
        m_job->isBackgroundFetchCompleted();
        m_job->onFetchJobFinished(id);
        QCOMPARE(seen, (QList<bool>{ true, false }));
    }

    void readingTheFlagStartsNoFetch()
    {
        waitForAFetch();
        QCOMPARE(m_job->fetchInProgress(), false);
        QCOMPARE(m_job->property("fetchInProgress"), QVariant(false));
        QCOMPARE(m_journal.take(), QStringList());
    }

    void invokablesAskTheTestsAsTheyStandAndStartNoFetch_data()
    {
        QTest::addColumn<QVariant>("argument");
        QTest::addColumn<QVariant>("answer");
        QTest::newRow("getTestNamebyTestIndex") << QVariant(0) << QVariant(QString());
        QTest::newRow("getTestDescriptionByTestIndex") << QVariant(0) << QVariant(QString());
        QTest::newRow("getTestSiteByTestIndex") << QVariant(0) << QVariant(QString());
        QTest::newRow("getTestTypeByTestIndex") << QVariant(0) << QVariant(QString());
        QTest::newRow("testLocationsNumberByIndex") << QVariant(0) << QVariant(-1);
        QTest::newRow("countTestsByDisplayName") << QVariant(QString()) << QVariant(0);
        QTest::newRow("testLocationsNumberByDisplayName") << QVariant(QString()) << QVariant(0);
    }

    void invokablesAskTheTestsAsTheyStandAndStartNoFetch()
    {
        QFETCH(QVariant, argument);
        waitForAFetch();
        QTEST(invoke(QTest::currentDataTag(), argument), "answer");
        QCOMPARE(m_journal.take(), QStringList());
    }

    void resetsAndSortingStartNoFetch()
    {
        waitForAFetch();
        m_job->resetTestFilter();
        m_job->resetTestLocationSearch();
        m_job->sortTests(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void getTestDoesNotGoThroughTheGate()
    {
        waitForAFetch();
        QCOMPARE(m_job->getTest(1)->location(), QStringLiteral("B"));
        QCOMPARE(emitted(), QStringList());
        QCOMPARE(m_job->fetchInProgress(), false);
    }

    // The end of a fetch.

    void finishedFetchCommitsAndThenSignalsInOrder()
    {
        waitForAFetch();
        m_job->tests();
        m_journal.take();
        Q_EMIT m_worker->fetchJobFinished(id);
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call commitFetchedData()
emit fetchInProgressChanged()
emit testsChanged()
emit optionalPropertiesChanged()
emit allDisplayableJobPropertiesChanged()
emit jobPropertyDisplayInfosChanged()
emit allDisplayableTestPropertiesChanged()
emit testPropertyDisplayInfosChanged()
emit totalNumberOfRequiredAttributesChanged()
emit numberOfIncompleteRequiredAttributesChanged())"));
        QCOMPARE(m_job->fetchInProgress(), false);
        QCOMPARE(m_job->tests()->rowCount(), 2);
    }

    void fetchOfAnotherJobChangesNothing()
    {
        waitForAFetch();
        m_job->tests();
        m_journal.take();
        Q_EMIT m_worker->fetchJobFinished(QStringLiteral("j"));
        Q_EMIT m_worker->fetchJobFinished(QString());
        QCOMPARE(m_journal.take(), QStringList());
        QCOMPARE(m_job->fetchInProgress(), true);
        QCOMPARE(m_job->tests(), nullptr);
    }

    void fetchThatBroughtNothingCountsAsDone()
    {
        waitForAFetch();
        setTests(*m_api, id, {});
        m_job->tests();
        m_job->onFetchJobFinished(id);
        QVERIFY(m_job->tests() != nullptr);
        QCOMPARE(m_job->tests()->rowCount(), 0);
    }

    void bindingOnTheTestsGetsThemWithTheirSignal()
    {
        waitForAFetch();
        m_job->tests();
        QList<bool> seen;
        const QObject receiver;
        connect(m_job.get(), &Job::testsChanged, &receiver, [&] { seen.append(m_job->tests() != nullptr); });
        m_job->onFetchJobFinished(id);
        QCOMPARE(seen, QList<bool>{ true });
    }

    void readerOfTheFlagsSignalComesTooEarlyAndStartsASecondFetch()
    {
        waitForAFetch();
        m_job->tests();
        m_journal.take();
        connect(m_job.get(), &Job::fetchInProgressChanged, this, [&] { m_job->tests(); });
        m_job->onFetchJobFinished(id);
        QCOMPARE(emitted().mid(0, 4),
            (QStringList{ QStringLiteral("emit fetchInProgressChanged()"),
                QStringLiteral("emit fetchInProgressChanged()"), QStringLiteral("emit fetchJob(\"J\")"),
                QStringLiteral("emit testsChanged()") }));
    }

    // Updates meanwhile.

    void updateThatDoesNotFindTheJobHoldsTheTestsBackAgain()
    {
        setCached(true);
        m_job->setWorker(m_worker.get());
        m_job->updateDataFromAPI();
        QVERIFY(m_job->tests() != nullptr);
        setCached(false);
        m_job->updateDataFromAPI();
        m_journal.take();
        QCOMPARE(m_job->tests(), nullptr);
        QCOMPARE(emitted().constLast(), QStringLiteral("emit fetchJob(\"J\")"));
    }

    void updateDuringAFetchStartsNoSecondOne()
    {
        waitForAFetch();
        m_job->tests();
        m_job->updateDataFromAPI();
        QCOMPARE(m_job->fetchInProgress(), true);
        m_journal.take();
        QCOMPARE(m_job->tests(), nullptr);
        QCOMPARE(m_journal.take(), QStringList());
        m_job->onFetchJobFinished(id);
        QVERIFY(m_job->tests() != nullptr);
    }

    void updateDuringAFetchThatFindsTheJobLetsItsTestsOut()
    {
        waitForAFetch();
        m_job->tests();
        setCached(true);
        m_job->updateDataFromAPI();
        QVERIFY(m_job->tests() != nullptr);
        QCOMPARE(m_job->fetchInProgress(), true);
    }

    void hundredUpdatesKeepEveryTest()
    {
        waitForAFetch();
        m_job->tests();
        m_job->onFetchJobFinished(id);
        const std::shared_ptr<Test> a = m_job->getTest(0);
        const std::shared_ptr<Test> b = m_job->getTest(1);
        for (int round = 0; round < 100; ++round) {
            m_job->updateDataFromAPI();
            QCOMPARE(m_job->tests(), nullptr);
            m_job->onFetchJobFinished(id);
            QVERIFY(m_job->tests() != nullptr);
        }
        QCOMPARE(m_job->getTest(0), a);
        QCOMPARE(m_job->getTest(1), b);
    }

    // The worker.

    void fetchRunsOnTheWorkerAndItsEndComesBack()
    {
        waitForAFetch();
        m_thread->start();
        QCOMPARE(m_job->tests(), nullptr);
        QCOMPARE(m_job->tests(), nullptr);
        QTRY_VERIFY(!m_job->fetchInProgress());
        const QStringList entries = m_journal.entries();
        QCOMPARE(entries.count(QStringLiteral("call fetchJob(\"J\") on worker")), 1);
        QVERIFY(entries.indexOf(QStringLiteral("call fetchJob(\"J\") on worker"))
            < entries.indexOf(QStringLiteral("call commitFetchedData()")));
        QCOMPARE(m_job->tests()->rowCount(), 2);
    }

    void jobThatEndsDuringItsFetchHarmsNothing()
    {
        waitForAFetch();
        Job other(m_api, QStringLiteral("other"));
        other.setWorker(m_worker.get());
        m_api->hold(QStringLiteral("fetchJob"));
        m_thread->start();
        m_job->tests();
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJob")));
        other.tests();
        m_recorder.reset();
        m_job.reset();
        m_api->release(QStringLiteral("fetchJob"));
        QTRY_VERIFY(!other.fetchInProgress());
        QCOMPARE(m_api->count(QStringLiteral("commitFetchedData")), 1);
    }

    void everyJobHearsOfEachFetchAndTakesItsOwn()
    {
        waitForAFetch();
        Job other(m_api, QStringLiteral("other"));
        other.setWorker(m_worker.get());
        other.tests();
        m_job->tests();
        Q_EMIT m_worker->fetchJobFinished(QStringLiteral("other"));
        QCOMPARE(other.fetchInProgress(), false);
        QCOMPARE(m_job->fetchInProgress(), true);
    }

    void sameWorkerAgainIsConnectedOnce()
    {
        waitForAFetch();
        m_job->setWorker(m_worker.get());
        m_job->tests();
        oneFetchArrivesAndComesBack();
    }

    void newWorkerTakesTheOldOnesPlace()
    {
        waitForAFetch();
        JobManagerWorker second(m_api);
        second.moveToThread(m_thread.get());
        m_job->setWorker(&second);
        QCOMPARE(m_job->worker(), &second);
        m_job->tests();
        Q_EMIT m_worker->fetchJobFinished(id);
        QCOMPARE(m_job->fetchInProgress(), true);
        oneFetchArrivesAndComesBack();
    }

    // Forwarders.

    void invokablesForwardToTheTests_data()
    {
        QTest::addColumn<QVariant>("argument");
        QTest::addColumn<QVariant>("answer");
        QTest::newRow("getTestNamebyTestIndex") << QVariant(4) << QVariant(QStringLiteral("OTDR"));
        QTest::newRow("getTestDescriptionByTestIndex") << QVariant(4) << QVariant(QStringLiteral("what"));
        QTest::newRow("getTestSiteByTestIndex") << QVariant(4) << QVariant(QStringLiteral("where"));
        QTest::newRow("getTestTypeByTestIndex") << QVariant(4) << QVariant(QStringLiteral("otdr-1"));
        QTest::newRow("testLocationsNumberByIndex") << QVariant(4) << QVariant(5);
        QTest::newRow("countTestsByDisplayName") << QVariant(QStringLiteral("OTDR")) << QVariant(3);
        QTest::newRow("testLocationsNumberByDisplayName") << QVariant(QStringLiteral("OTDR")) << QVariant(2);
    }

    void invokablesForwardToTheTests()
    {
        QFETCH(QVariant, argument);
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D") });
        for (std::size_t named = 0; named < 3; ++named) {
            tests[named].displayName = QStringLiteral("OTDR");
        }
        tests[0].index = 4;
        tests[0].description = QStringLiteral("what");
        tests[0].site = QStringLiteral("where");
        tests[0].type = QStringLiteral("otdr-1");
        tests[0].locationsNumber = 5;
        setTests(*m_api, id, tests);
        m_job->tests();
        QTEST(invoke(QTest::currentDataTag(), argument), "answer");
    }

    void resetsEndFilterAndSearch()
    {
        auto* const tests = qobject_cast<TestList*>(m_job->tests());
        tests->setTestFilter(TestList::TESTFILTER_COMPLETED);
        tests->setSearchRegExpStr(QStringLiteral("A"));
        QCOMPARE(tests->rowCount(), 0);
        QVERIFY(QMetaObject::invokeMethod(m_job.get(), "resetTestFilter"));
        QCOMPARE(tests->getTestFilter(), TestList::TESTFILTER_ALL);
        QCOMPARE(tests->rowCount(), 1);
        QVERIFY(QMetaObject::invokeMethod(m_job.get(), "resetTestLocationSearch"));
        QCOMPARE(tests->getSearchRegExpStr(), QString());
        QCOMPARE(tests->rowCount(), 2);
    }

    void sortTestsGroupsTheTests()
    {
        auto* const tests = qobject_cast<TestList*>(m_job->tests());
        m_job->sortTests(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(tests->getSection(1), QStringLiteral("B"));
    }

    void getTestIsThatOfTheList()
    {
        QCOMPARE(m_job->getTest(1).get(), m_job->tests()->index(1, 0).data(TestList::Test).value<Test*>());
        QCOMPARE(m_job->getTest(9), nullptr);
    }

    void newResultsAreForwarded()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        m_job->tests();
        tests[1].time = minute(1);
        setTests(*m_api, id, tests);
        m_job->updateDataFromAPI();
        m_journal.take();
        m_job->tests();
        QCOMPARE(emitted(), QStringList{ QStringLiteral("emit newTestResultsReceived()") });
    }

private:
    void setCached(bool cached) { m_api->setAnswer(QStringLiteral("isJobInCache"), cached); }

    /// The job has its worker, is not in the cache, and nobody has asked for its tests.
    void waitForAFetch()
    {
        m_job->setWorker(m_worker.get());
        m_journal.take();
    }

    /// Lets the worker do what it was asked for since the test began.
    void oneFetchArrivesAndComesBack()
    {
        m_thread->start();
        QTRY_VERIFY(!m_job->fetchInProgress());
        m_thread->quit();
        m_thread->wait();
        QCOMPARE(m_api->count(QStringLiteral("fetchJob")), 1);
        QCOMPARE(m_api->count(QStringLiteral("commitFetchedData")), 1);
    }

    /// What the invokable of that name gives for its one argument, in its own type.
    QVariant invoke(const char* name, const QVariant& argument)
    {
        const QMetaObject* const meta = m_job->metaObject();
        const int method = meta->indexOfMethod(
            QMetaObject::normalizedSignature((QByteArray(name) + '(' + argument.typeName() + ')').constData()));
        QVariant result(meta->method(method).returnType(), nullptr);
        const bool invoked =
            meta->method(method).invoke(m_job.get(), QGenericReturnArgument(result.typeName(), result.data()),
                QGenericArgument(argument.typeName(), argument.constData()));
        return invoked ? result : QVariant();
    }

    /// The job's signals since the journal was emptied last.
    QStringList emitted() { return m_journal.take().filter(QRegularExpression(QStringLiteral("^emit "))); }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<QThread> m_thread;
    std::unique_ptr<JobManagerWorker> m_worker;
    std::unique_ptr<Job> m_job;
    std::unique_ptr<SignalRecorder> m_recorder;
};

QTEST_GUILESS_MAIN(JobLazyMembersTest)
#include "JobLazyMembersTest.moc"
