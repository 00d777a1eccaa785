// The two-phase fetch of the REST implementation: what the worker thread fetches, and when readers see it.

#include "tests/api/rest/OnStandIn.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"
#include "tests/support/Deadline.h"
#include "tests/support/MessageCollector.h"

#include <atomic>
#include <future>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString job = QStringLiteral("J");

/// Runs on a thread of its own and waits for its end.
template <typename Function> std::thread::id runOnWorker(Function function)
{
    std::thread worker(function);
    const std::thread::id id = worker.get_id();
    worker.join();
    return id;
}

RestApiJobManager::MinimalJobInfo summaryOf(const std::string& id, const std::string& customer)
{
    RestApiJobManager::MinimalJobInfo info = jobmanager_test::summaryOf(id);
    info.customerName = customer;
    return info;
}

cdm::CdmSouthboundJob jobWithType(const std::string& id, const std::string& testType)
{
    cdm::Test test = testOf("0");
    test.testType = testType;
    return jobOf(id, { { test } });
}

/// Lists one job and gives its record, both marked with `mark`.
void answerWith(const std::string& mark)
{
    ClientAnswers answers;
    answers.jobList = { summaryOf("J", mark) };
    answers.jobs["J"] = jobWithType("J", mark);
    StandInClient::setAnswers(answers);
}

QString text(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

class TwoPhaseFetchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fetchedListIsSeenAfterTheCommit();
    void fetchedJobIsSeenAfterTheCommit();
    void readersSeeTheOldDataUntilTheCommit();
    void fetchCallsTheServiceOnItsThreadAndCommitNever();
    void missingDataIsFetchedOnTheReadersThread();
    void fetchNamesTheJobAsUtf8();
    void commitWithNothingPendingIsFalse();
    void commitTellsThatSomethingWasPending_data();
    void commitTellsThatSomethingWasPending();
    void commitAppliesOnce();
    void laterListReplacesAPendingOne();
    void laterRecordReplacesAPendingOneOfTheSameJob();
    void laterRecordReplacesAPendingOneOfTheSameRequestWhateverItsId();
    void recordsOfSeveralJobsAreCommittedTogether();
    void emptyListIsCommittedAsAList();
    void recordIsCommittedUnderItsOwnId();
    void defaultRecordLeavesTheAskedJobUncached();
    void recordsOfTwoRequestsWithOneIdAreOneRecord();
    void clearCacheDoesNotTouchWhatIsPending();
    void newPortDoesNotTouchWhatIsPending();
    void commitLeavesWhatWasNotFetched();
    void noLockIsHeldDuringAServiceCall_data();
    void noLockIsHeldDuringAServiceCall();
    void fetchWhileTheMainThreadReads();

private:
    /// Keeps the log of fetches and clears off the terminal.
    std::optional<MessageCollector> m_recorder;
};

void TwoPhaseFetchTest::init()
{
    StandInClient::reset();
    m_recorder.emplace();
}

void TwoPhaseFetchTest::cleanup()
{
    m_recorder.reset();
}

void TwoPhaseFetchTest::fetchedListIsSeenAfterTheCommit()
{
    answerWith("new");
    OnStandIn api;
    bool fetched = false;
    runOnWorker([&] { fetched = api->fetchJobList(); });
    QVERIFY(fetched);
    QVERIFY(!api->isJobListInCache());
    QVERIFY(api->commitFetchedData());
    QVERIFY(api->isJobListInCache());
    QCOMPARE(api->getAllJobIDs(), std::vector<QString>{ job });
    QCOMPARE(api->getCustomerName(job), text("new"));
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJobList" });
}

void TwoPhaseFetchTest::fetchedJobIsSeenAfterTheCommit()
{
    answerWith("new");
    OnStandIn api;
    bool fetched = false;
    runOnWorker([&] { fetched = api->fetchJob(job); });
    QVERIFY(fetched);
    QVERIFY(!api->isJobInCache(job));
    QVERIFY(api->commitFetchedData());
    QVERIFY(api->isJobInCache(job));
    QCOMPARE(api->getTestType(job, idOf(0)), text("new"));
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJob" });
}

void TwoPhaseFetchTest::readersSeeTheOldDataUntilTheCommit()
{
    answerWith("old");
    OnStandIn api;
    QCOMPARE(api->getCustomerName(job), text("old"));
    QCOMPARE(api->getTestType(job, idOf(0)), text("old"));
    answerWith("new");
    runOnWorker([&] {
        api->fetchJobList();
        api->fetchJob(job);
    });
    QCOMPARE(api->getCustomerName(job), text("old"));
    QCOMPARE(api->getTestType(job, idOf(0)), text("old"));
    QVERIFY(api->commitFetchedData());
    QCOMPARE(api->getCustomerName(job), text("new"));
    QCOMPARE(api->getTestType(job, idOf(0)), text("new"));
}

void TwoPhaseFetchTest::fetchCallsTheServiceOnItsThreadAndCommitNever()
{
    OnStandIn api;
    const std::thread::id worker = runOnWorker([&] {
        api->fetchJobList();
        api->fetchJob(job);
    });
    api->commitFetchedData();
    const std::vector<ClientCall> calls = StandInClient::calls();
    QCOMPARE(StandInClient::operations(), (std::vector<std::string>{ "getJobList", "getJob" }));
    QVERIFY(calls.at(0).thread == worker);
    QVERIFY(calls.at(1).thread == worker);
}

void TwoPhaseFetchTest::missingDataIsFetchedOnTheReadersThread()
{
    answerWith("new");
    OnStandIn api;
    QCOMPARE(api->getCustomerName(job), text("new"));
    QCOMPARE(api->getTestType(job, idOf(0)), text("new"));
    QCOMPARE(StandInClient::operations(), (std::vector<std::string>{ "getJobList", "getJob" }));
    for (const ClientCall& call : StandInClient::calls())
        QVERIFY(call.thread == std::this_thread::get_id());
    QVERIFY(!api->commitFetchedData());
}

void TwoPhaseFetchTest::fetchNamesTheJobAsUtf8()
{
    OnStandIn api;
    api->fetchJob(QStringLiteral("Größe 光"));
    QCOMPARE(StandInClient::calls().front().arguments, std::vector<std::string>{ "Größe 光" });
}

void TwoPhaseFetchTest::commitWithNothingPendingIsFalse()
{
    answerWith("old");
    OnStandIn api;
    QVERIFY(!api->commitFetchedData());
    QVERIFY(!api->isJobListInCache());
    api->getAllJobIDs();
    api->getAllTestIDs(job);
    QVERIFY(!api->commitFetchedData());
    QVERIFY(api->isJobListInCache());
    QVERIFY(api->isJobInCache(job));
}

void TwoPhaseFetchTest::commitTellsThatSomethingWasPending_data()
{
    QTest::addColumn<bool>("list");
    QTest::addColumn<bool>("record");
    QTest::newRow("list") << true << false;
    QTest::newRow("record") << false << true;
    QTest::newRow("both") << true << true;
}

void TwoPhaseFetchTest::commitTellsThatSomethingWasPending()
{
    QFETCH(bool, list);
    QFETCH(bool, record);
    answerWith("new");
    OnStandIn api;
    if (list)
        api->fetchJobList();
    if (record)
        api->fetchJob(job);
    QVERIFY(api->commitFetchedData());
    QCOMPARE(api->isJobListInCache(), list);
    QCOMPARE(api->isJobInCache(job), record);
}

void TwoPhaseFetchTest::commitAppliesOnce()
{
    answerWith("new");
    OnStandIn api;
    api->fetchJobList();
    api->fetchJob(job);
    QVERIFY(api->commitFetchedData());
    QVERIFY(!api->commitFetchedData());
    api->clearCache();
    QVERIFY(!api->commitFetchedData());
    QVERIFY(!api->isJobListInCache());
    QVERIFY(!api->isJobInCache(job));
}

void TwoPhaseFetchTest::laterListReplacesAPendingOne()
{
    OnStandIn api;
    answerWith("first");
    api->fetchJobList();
    ClientAnswers answers;
    answers.jobList = { summaryOf("K", "second") };
    StandInClient::setAnswers(answers);
    api->fetchJobList();
    QVERIFY(api->commitFetchedData());
    QCOMPARE(api->getAllJobIDs(), std::vector<QString>{ QStringLiteral("K") });
    QVERIFY(!api->commitFetchedData());
}

void TwoPhaseFetchTest::laterRecordReplacesAPendingOneOfTheSameJob()
{
    OnStandIn api;
    answerWith("first");
    api->fetchJob(job);
    answerWith("second");
    api->fetchJob(job);
    QVERIFY(api->commitFetchedData());
    QCOMPARE(api->getTestType(job, idOf(0)), text("second"));
    QVERIFY(!api->commitFetchedData());
}

void TwoPhaseFetchTest::laterRecordReplacesAPendingOneOfTheSameRequestWhateverItsId()
{
    OnStandIn api;
    for (const char* own : { "first", "second" }) {
        ClientAnswers answers;
        answers.jobs["J"] = jobWithType(own, "type");
        StandInClient::setAnswers(answers);
        api->fetchJob(job);
    }
    QVERIFY(api->commitFetchedData());
    QVERIFY(!api->isJobInCache(text("first")));
    QVERIFY(api->isJobInCache(text("second")));
}

void TwoPhaseFetchTest::recordsOfSeveralJobsAreCommittedTogether()
{
    ClientAnswers answers;
    answers.jobs["J"] = jobWithType("J", "of J");
    answers.jobs["K"] = jobWithType("K", "of K");
    StandInClient::setAnswers(answers);
    OnStandIn api;
    api->fetchJob(job);
    api->fetchJob(QStringLiteral("K"));
    QVERIFY(api->commitFetchedData());
    QCOMPARE(api->getTestType(job, idOf(0)), text("of J"));
    QCOMPARE(api->getTestType(QStringLiteral("K"), idOf(0)), text("of K"));
    QCOMPARE(StandInClient::operations(), (std::vector<std::string>{ "getJob", "getJob" }));
}

void TwoPhaseFetchTest::emptyListIsCommittedAsAList()
{
    answerWith("old");
    OnStandIn api;
    api->getAllJobIDs();
    StandInClient::setAnswers(ClientAnswers());
    api->fetchJobList();
    QVERIFY(api->commitFetchedData());
    QVERIFY(api->isJobListInCache());
    QVERIFY(api->getAllJobIDs().empty());
}

void TwoPhaseFetchTest::recordIsCommittedUnderItsOwnId()
{
    ClientAnswers answers;
    answers.jobs["asked"] = jobWithType("own", "type");
    StandInClient::setAnswers(answers);
    OnStandIn api;
    api->fetchJob(QStringLiteral("asked"));
    QVERIFY(api->commitFetchedData());
    QVERIFY(!api->isJobInCache(QStringLiteral("asked")));
    QVERIFY(api->isJobInCache(QStringLiteral("own")));
}

void TwoPhaseFetchTest::defaultRecordLeavesTheAskedJobUncached()
{
    OnStandIn api;
    api->fetchJob(job);
    QVERIFY(api->commitFetchedData());
    QVERIFY(!api->isJobInCache(job));
    QVERIFY(api->isJobInCache(QString()));
    StandInClient::forgetCalls();
    // The next read of the job asks the service again.
    api->getAllTestIDs(job);
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJob" });
    QVERIFY(api->isJobInCache(job));
}

void TwoPhaseFetchTest::recordsOfTwoRequestsWithOneIdAreOneRecord()
{
    ClientAnswers answers;
    answers.jobs["a"] = jobWithType("own", "type");
    answers.jobs["b"] = jobWithType("own", "type");
    StandInClient::setAnswers(answers);
    OnStandIn api;
    api->fetchJob(QStringLiteral("a"));
    api->fetchJob(QStringLiteral("b"));
    QVERIFY(api->commitFetchedData());
    QVERIFY(!api->isJobInCache(QStringLiteral("a")));
    QVERIFY(!api->isJobInCache(QStringLiteral("b")));
    QCOMPARE(api->getTestType(QStringLiteral("own"), idOf(0)), text("type"));
}

void TwoPhaseFetchTest::clearCacheDoesNotTouchWhatIsPending()
{
    answerWith("new");
    OnStandIn api;
    api->fetchJobList();
    api->fetchJob(job);
    api->clearCache();
    QVERIFY(!api->isJobListInCache());
    QVERIFY(api->commitFetchedData());
    QVERIFY(api->isJobListInCache());
    QVERIFY(api->isJobInCache(job));
}

void TwoPhaseFetchTest::newPortDoesNotTouchWhatIsPending()
{
    answerWith("new");
    OnStandIn api;
    api->fetchJob(job);
    api->setRestApiPort(9000);
    QVERIFY(api->commitFetchedData());
    QVERIFY(api->isJobInCache(job));
}

void TwoPhaseFetchTest::commitLeavesWhatWasNotFetched()
{
    answerWith("old");
    OnStandIn api;
    api->getAllJobIDs();
    api->getAllTestIDs(job);
    ClientAnswers answers;
    answers.jobs["K"] = jobWithType("K", "of K");
    StandInClient::setAnswers(answers);
    api->fetchJob(QStringLiteral("K"));
    api->commitFetchedData();
    QCOMPARE(api->getAllJobIDs(), std::vector<QString>{ job });
    QCOMPARE(api->getTestType(job, idOf(0)), text("old"));
}

void TwoPhaseFetchTest::noLockIsHeldDuringAServiceCall_data()
{
    QTest::addColumn<bool>("list");
    QTest::newRow("job list") << true;
    QTest::newRow("job") << false;
}

void TwoPhaseFetchTest::noLockIsHeldDuringAServiceCall()
{
    QFETCH(bool, list);
    OnStandIn api;
    std::promise<void> entered;
    std::promise<void> answer;
    StandInClient::setHook([&, answered = answer.get_future().share()](const ClientCall&) {
        entered.set_value();
        answered.wait();
    });
    std::thread worker([&] { list ? api->fetchJobList() : api->fetchJob(job); });
    entered.get_future().wait();

    // On a third thread, so that a lock held by the worker is a failure and not a hang.
    std::future<bool> commit = std::async(std::launch::async, [&] { return api->commitFetchedData(); });
    const bool inTime = commit.wait_for(stretched(std::chrono::seconds(5))) == std::future_status::ready;
    answer.set_value();
    worker.join();
    QVERIFY(inTime);
    QVERIFY(!commit.get());
    StandInClient::setHook(nullptr);
    QVERIFY(api->commitFetchedData());
}

void TwoPhaseFetchTest::fetchWhileTheMainThreadReads()
{
    answerWith("0");
    OnStandIn api;
    api->getAllJobIDs();
    api->getAllTestIDs(job);
    constexpr int rounds = 200;
    std::atomic<bool> finished = false;
    std::thread worker([&] {
        for (int round = 1; round <= rounds; ++round) {
            answerWith(std::to_string(round));
            api->fetchJobList();
            api->fetchJob(job);
        }
        finished = true;
    });
    int listSeen = 0;
    int jobSeen = 0;
    bool forward = true;
    while (!finished) {
        api->commitFetchedData();
        const int list = api->getCustomerName(job).toInt();
        const int record = api->getTestType(job, idOf(0)).toInt();
        forward = forward && list >= listSeen && record >= jobSeen;
        listSeen = list;
        jobSeen = record;
    }
    worker.join();
    QVERIFY(forward);
    api->commitFetchedData();
    QCOMPARE(api->getCustomerName(job).toInt(), rounds);
    QCOMPARE(api->getTestType(job, idOf(0)).toInt(), rounds);
}

QTEST_GUILESS_MAIN(TwoPhaseFetchTest)
#include "TwoPhaseFetchTest.moc"
