#include "api/rest/JobManagerRestAPICache.h"

#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"
#include "tests/support/MessageCollector.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString jobId = QStringLiteral("J");

ClientAnswers answersWithList(const std::vector<RestApiJobManager::MinimalJobInfo>& jobs)
{
    ClientAnswers answers;
    answers.jobList = jobs;
    return answers;
}

} // namespace

class JobManagerRestAPICacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void freshCacheHoldsNothing();
    void firstReadFetchesTheListOnce_data();
    void firstReadFetchesTheListOnce();
    void fetchOfTheListIsLogged();
    void listKeepsTheServicesOrder();
    void repeatedIdStandsTwiceAndTheLaterSummaryWins();
    void summaryKeepsAllItsFields();
    void idsAreUtf8();
    void unknownJobHasNoSummaryAndIsWarnedOf();
    void newListReplacesTheOldOne();
    void emptyListIsValid();
    void newListLeavesTheRecords();

    void recordIsFiledUnderItsOwnId();
    void recordReplacesTheOneOfItsId();
    void recordLeavesTheListAlone();
    void missingRecordIsFetchedOnceAndFiledUnderTheAskedId();
    void unknownJobGetsADefaultRecordAndIsNotAskedForAgain();
    void fetchOfARecordIsLogged();
    void heldRecordIsReadWithoutFetch();

    void testIsFoundByItsIndexString_data();
    void testIsFoundByItsIndexString();
    void firstOfTwoTestsWithTheSameIndexIsFound();
    void firstIsFoundAfterAnAttributeWasPatched();
    void committedRecordIsSearchedAnew();
    void recordFetchedAfterClearIsSearchedAnew();
    void lookupInAManyTimesLongerListTakesNoLonger();
    void jobsWithTheSameIndexStringsAreToldApart();
    void otherJobsKeepTheirTestsWhenOneIsReplaced();
    void jobWithoutTestsHasNone();
    void missingTestIsNoMessage();
    void readOfATestFetchesItsJob();
    void locationIsFoundByItsPosition_data();
    void locationIsFoundByItsPosition();
    void testWithoutLocationsHasNoLocation();
    void noTestConfigurationIsHeldAndNoneIsFetched();

    void clearForgetsListAndRecords();
    void afterClearTheListIsFetchedBeforeItIsRead();
    void clearLogsWhatItForgets();
    void clearOfAnEmptyCacheLogsEmptyLists();
};

void JobManagerRestAPICacheTest::init()
{
    StandInClient::reset();
}

/// A client and a cache on it, the client's construction forgotten.
struct Cached
{
    Cached() { StandInClient::forgetCalls(); }

    RestApiJobManager client{ "host", 1 };
    JobManagerRestAPICache cache{ client };
};

/// Nanoseconds of processor time that a lookup takes among that many tests: the least of several rounds.
double lookupTime(int tests)
{
    std::vector<cdm::Test> records;
    for (int test = 0; test < tests; ++test)
        records.push_back(testOf(std::to_string(test)));
    Cached cached;
    cached.cache.addToCache(jobOf("J", records));
    constexpr int lookups = 10000;
    std::clock_t least = std::numeric_limits<std::clock_t>::max();
    for (int round = 0; round < 5; ++round) {
        const std::clock_t start = std::clock();
        for (int lookup = 0; lookup < lookups; ++lookup)
            cached.cache.getCdmTest(jobId, idOf(lookup % tests));
        least = std::min(least, std::clock() - start);
    }
    return 1e9 * static_cast<double>(std::max<std::clock_t>(least, 1)) / CLOCKS_PER_SEC / lookups;
}

void JobManagerRestAPICacheTest::freshCacheHoldsNothing()
{
    Cached fresh;
    QVERIFY(!fresh.cache.isJobListFetched());
    QVERIFY(!fresh.cache.isJobCached(jobId));
    QVERIFY(!fresh.cache.isJobCached(QString()));
    QCOMPARE(fresh.cache.getListOfCachedJobs(), QList<QString>());
    QCOMPARE(fresh.cache.getListOfCachedJobConfigs(), QList<QString>());
    QVERIFY(StandInClient::calls().empty());
}

void JobManagerRestAPICacheTest::firstReadFetchesTheListOnce_data()
{
    QTest::addColumn<int>("jobs");
    QTest::newRow("empty list") << 0;
    QTest::newRow("two jobs") << 2;
}

void JobManagerRestAPICacheTest::firstReadFetchesTheListOnce()
{
    QFETCH(int, jobs);
    StandInClient::setAnswers(answersWithList({ static_cast<std::size_t>(jobs), summaryOf("J") }));
    Cached fresh;
    const MessageCollector recorder;
    QCOMPARE(static_cast<int>(fresh.cache.getJobList().size()), jobs);
    QVERIFY(fresh.cache.isJobListFetched());
    fresh.cache.getJobList();
    fresh.cache.getMinimalJobInfo(jobId);
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJobList" });
}

void JobManagerRestAPICacheTest::fetchOfTheListIsLogged()
{
    Cached fresh;
    const MessageCollector recorder;
    fresh.cache.getJobList();
    fresh.cache.getJobList();
    QCOMPARE(recorder.messages(), QStringList(QStringLiteral("debug: JobManagerRestAPICache: fetching job list")));
}

void JobManagerRestAPICacheTest::listKeepsTheServicesOrder()
{
    Cached cached;
    cached.cache.addToCache(std::vector{ summaryOf("b"), summaryOf("c"), summaryOf("a") });
    const std::vector<QString> expected{ QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("a") };
    QCOMPARE(cached.cache.getJobList(), expected);
    QVERIFY(StandInClient::calls().empty());
}

void JobManagerRestAPICacheTest::repeatedIdStandsTwiceAndTheLaterSummaryWins()
{
    Cached cached;
    RestApiJobManager::MinimalJobInfo first = summaryOf("J");
    first.customerName = "first";
    RestApiJobManager::MinimalJobInfo second = summaryOf("J");
    second.customerName = "second";
    cached.cache.addToCache(std::vector{ first, second });
    QCOMPARE(cached.cache.getJobList(), (std::vector<QString>{ jobId, jobId }));
    QCOMPARE(cached.cache.getMinimalJobInfo(jobId)->customerName, std::string("second"));
}

void JobManagerRestAPICacheTest::summaryKeepsAllItsFields()
{
    Cached cached;
    cached.cache.addToCache(std::vector{ RestApiJobManager::MinimalJobInfo{ "J", "label", "workflow", "customer",
        "2026-03-01T08:15:00.000Z", "manager", "state", { "tech1", "tech2" }, true, 12, 7 } });
    const RestApiJobManager::MinimalJobInfo* const info = cached.cache.getMinimalJobInfo(jobId);
    QVERIFY(info);
    QCOMPARE(info->id, std::string("J"));
    QCOMPARE(info->workOrderLabel, std::string("label"));
    QCOMPARE(info->workflowTypeName, std::string("workflow"));
    QCOMPARE(info->customerName, std::string("customer"));
    QCOMPARE(info->modifiedOn, std::string("2026-03-01T08:15:00.000Z"));
    QCOMPARE(info->managedByInfo, std::string("manager"));
    QCOMPARE(info->managementState, std::string("state"));
    QCOMPARE(info->teamTechIds, (std::vector<std::string>{ "tech1", "tech2" }));
    QCOMPARE(info->archived, true);
    QCOMPARE(info->totalNumberOfRequiredTests, 12);
    QCOMPARE(info->numberOfCompletedRequiredTests, 7);
}

void JobManagerRestAPICacheTest::idsAreUtf8()
{
    const QString id = QStringLiteral("Auftrag Größe 光");
    ClientAnswers answers = answersWithList({ summaryOf(id.toStdString()) });
    answers.jobs[id.toStdString()] = jobOf(id.toStdString(), { { testOf("0") } });
    StandInClient::setAnswers(answers);
    Cached cached;
    QCOMPARE(cached.cache.getJobList(), std::vector<QString>{ id });
    QVERIFY(cached.cache.getMinimalJobInfo(id));
    QVERIFY(cached.cache.getCdmTest(id, idOf(0)));
    QCOMPARE(StandInClient::calls("getJob").at(0).arguments.at(0), id.toStdString());
    cached.cache.clear();
    cached.cache.addToCache(answers.jobs[id.toStdString()]);
    QVERIFY(cached.cache.isJobCached(id));
}

void JobManagerRestAPICacheTest::unknownJobHasNoSummaryAndIsWarnedOf()
{
    Cached cached;
    cached.cache.addToCache(std::vector{ summaryOf("J") });
    const MessageCollector recorder;
    QVERIFY(!cached.cache.getMinimalJobInfo(QStringLiteral("nope")));
    QCOMPARE(
        recorder.messages(), QStringList(QStringLiteral("warning: Failed to get minimal job info for:  \"nope\"")));
}

void JobManagerRestAPICacheTest::newListReplacesTheOldOne()
{
    Cached cached;
    cached.cache.addToCache(std::vector{ summaryOf("old"), summaryOf("J") });
    cached.cache.addToCache(std::vector{ summaryOf("new") });
    QCOMPARE(cached.cache.getJobList(), std::vector<QString>{ QStringLiteral("new") });
    const MessageCollector recorder;
    QVERIFY(!cached.cache.getMinimalJobInfo(QStringLiteral("old")));
    QVERIFY(cached.cache.getMinimalJobInfo(QStringLiteral("new")));
}

void JobManagerRestAPICacheTest::emptyListIsValid()
{
    Cached cached;
    cached.cache.addToCache(std::vector<RestApiJobManager::MinimalJobInfo>());
    QVERIFY(cached.cache.isJobListFetched());
    QVERIFY(cached.cache.getJobList().empty());
    QVERIFY(StandInClient::calls().empty());
}

void JobManagerRestAPICacheTest::newListLeavesTheRecords()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J"));
    cached.cache.addToCache(std::vector{ summaryOf("other") });
    QVERIFY(cached.cache.isJobCached(jobId));
    QVERIFY(!cached.cache.isJobCached(QStringLiteral("other")));
}

void JobManagerRestAPICacheTest::recordIsFiledUnderItsOwnId()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("4") } }));
    QCOMPARE(cached.cache.getListOfCachedJobs(), QList<QString>{ jobId });
    QCOMPARE(cached.cache.getCdmJob(jobId)->tests->at(0).uiIndex.value(), std::string("4"));
    cached.cache.addToCache(cdm::CdmSouthboundJob());
    QVERIFY(cached.cache.isJobCached(QString()));
    QVERIFY(StandInClient::calls().empty());
}

void JobManagerRestAPICacheTest::recordReplacesTheOneOfItsId()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("4"), testOf("5") } }));
    cached.cache.addToCache(jobOf("J"));
    QCOMPARE(cached.cache.getListOfCachedJobs(), QList<QString>{ jobId });
    QVERIFY(!cached.cache.getCdmJob(jobId)->tests);
}

void JobManagerRestAPICacheTest::recordLeavesTheListAlone()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J"));
    QVERIFY(!cached.cache.isJobListFetched());
    cached.cache.addToCache(std::vector{ summaryOf("listed") });
    cached.cache.addToCache(jobOf("K"));
    QVERIFY(cached.cache.isJobListFetched());
    QCOMPARE(cached.cache.getJobList(), std::vector<QString>{ QStringLiteral("listed") });
}

void JobManagerRestAPICacheTest::missingRecordIsFetchedOnceAndFiledUnderTheAskedId()
{
    ClientAnswers answers;
    answers.jobs["J"] = jobOf("its own id");
    StandInClient::setAnswers(answers);
    Cached cached;
    const cdm::CdmSouthboundJob* const job = cached.cache.getCdmJob(jobId);
    QVERIFY(job);
    QCOMPARE(job->details.id, std::string("its own id"));
    QCOMPARE(cached.cache.getListOfCachedJobs(), QList<QString>{ jobId });
    QCOMPARE(cached.cache.getCdmJob(jobId), job);
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJob" });
    QCOMPARE(StandInClient::calls().at(0).arguments, std::vector<std::string>{ "J" });
}

void JobManagerRestAPICacheTest::unknownJobGetsADefaultRecordAndIsNotAskedForAgain()
{
    Cached cached;
    const cdm::CdmSouthboundJob* const job = cached.cache.getCdmJob(jobId);
    QVERIFY(job);
    QCOMPARE(job->details.id, std::string());
    QVERIFY(!job->tests);
    QVERIFY(cached.cache.isJobCached(jobId));
    QVERIFY(cached.cache.getCdmJob(jobId));
    QCOMPARE(static_cast<int>(StandInClient::calls("getJob").size()), 1);
}

void JobManagerRestAPICacheTest::fetchOfARecordIsLogged()
{
    Cached cached;
    const MessageCollector recorder;
    cached.cache.fetchJobIfRequired(jobId);
    cached.cache.fetchJobIfRequired(jobId);
    QCOMPARE(recorder.messages(), QStringList(QStringLiteral("debug: JobManagerRestAPICache: fetching job:  \"J\"")));
}

void JobManagerRestAPICacheTest::heldRecordIsReadWithoutFetch()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("0") } }));
    const MessageCollector recorder;
    cached.cache.fetchJobIfRequired(jobId);
    QVERIFY(cached.cache.getCdmJob(jobId));
    QVERIFY(cached.cache.getCdmTest(jobId, idOf(0)));
    QVERIFY(StandInClient::calls().empty());
    QCOMPARE(recorder.messages(), QStringList());
}

void JobManagerRestAPICacheTest::testIsFoundByItsIndexString_data()
{
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<int>("position");
    QTest::newRow("by the index string, not the position") << idOf(7) << 0;
    QTest::newRow("the location plays no role") << idOf(7, 3) << 0;
    QTest::newRow("another test") << idOf(0) << 3;
    QTest::newRow("negative id: the empty index string") << -1LL << 2;
    QTest::newRow("negative id with a location likewise") << idOf(-5, 2) << 2;
    QTest::newRow("position of the test without index string") << idOf(1) << -1;
    QTest::newRow("unknown") << idOf(99) << -1;
    QTest::newRow("other spelling of a known number") << idOf(8) << -1;
}

void JobManagerRestAPICacheTest::testIsFoundByItsIndexString()
{
    QFETCH(qlonglong, id);
    QFETCH(int, position);
    Cached cached;
    cached.cache.addToCache(
        jobOf("J", { { testOf("7"), testOf(std::nullopt), testOf(""), testOf("0"), testOf("08"), testOf("8_0") } }));
    const cdm::Test* const test = cached.cache.getCdmTest(jobId, id);
    const auto& tests = *cached.cache.getCdmJob(jobId)->tests;
    QCOMPARE(test, position < 0 ? nullptr : &tests[static_cast<std::size_t>(position)]);
}

void JobManagerRestAPICacheTest::firstOfTwoTestsWithTheSameIndexIsFound()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("1"), testOf("2"), testOf("2") } }));
    QCOMPARE(cached.cache.getCdmTest(jobId, idOf(2)), &cached.cache.getCdmJob(jobId)->tests->at(1));
}

void JobManagerRestAPICacheTest::firstIsFoundAfterAnAttributeWasPatched()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("1"), testOf("2"), testOf("2") } }));
    QVERIFY(cached.cache.getCdmTest(jobId, idOf(2)));
    cdm::CdmSouthboundJob* const record = cached.cache.getCdmJob(jobId);
    record->details.contractorId = "patched";
    record->tests->at(1).attributes.emplace().setAttribute("patched", cdm::Attribute());
    const cdm::Test* const test = cached.cache.getCdmTest(jobId, idOf(2));
    QCOMPARE(test, &record->tests->at(1));
    QVERIFY(test->attributes);
}

void JobManagerRestAPICacheTest::committedRecordIsSearchedAnew()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("1"), testOf("2") } }));
    QVERIFY(cached.cache.getCdmTest(jobId, idOf(2)));
    cached.cache.addToCache(jobOf("J", { { testOf("2"), testOf("3") } }));
    QCOMPARE(cached.cache.getCdmTest(jobId, idOf(2)), &cached.cache.getCdmJob(jobId)->tests->at(0));
    QCOMPARE(cached.cache.getCdmTest(jobId, idOf(3)), &cached.cache.getCdmJob(jobId)->tests->at(1));
    QVERIFY(!cached.cache.getCdmTest(jobId, idOf(1)));
}

void JobManagerRestAPICacheTest::recordFetchedAfterClearIsSearchedAnew()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("1"), testOf("2") } }));
    QVERIFY(cached.cache.getCdmTest(jobId, idOf(2)));
    ClientAnswers answers;
    answers.jobs["J"] = jobOf("J", { { testOf("2") } });
    StandInClient::setAnswers(answers);
    cached.cache.clear();
    QCOMPARE(cached.cache.getCdmTest(jobId, idOf(2)), &cached.cache.getCdmJob(jobId)->tests->at(0));
    QVERIFY(!cached.cache.getCdmTest(jobId, idOf(1)));
}

void JobManagerRestAPICacheTest::lookupInAManyTimesLongerListTakesNoLonger()
{
    const double few = lookupTime(100);
    const double many = lookupTime(10000);
    // A search through the list would take a hundred times as long. Misses of the processor's caches are allowed for.
    QVERIFY2(many < 15 * few, qPrintable(QStringLiteral("%1 ns, then %2 ns").arg(few).arg(many)));
}

void JobManagerRestAPICacheTest::jobsWithTheSameIndexStringsAreToldApart()
{
    Cached cached;
    const QString other = QStringLiteral("K");
    cached.cache.addToCache(jobOf("J", { { testOf("1"), testOf("2") } }));
    cached.cache.addToCache(jobOf("K", { { testOf("2"), testOf("1") } }));
    QCOMPARE(cached.cache.getCdmTest(jobId, idOf(1)), &cached.cache.getCdmJob(jobId)->tests->at(0));
    QCOMPARE(cached.cache.getCdmTest(other, idOf(1)), &cached.cache.getCdmJob(other)->tests->at(1));
}

void JobManagerRestAPICacheTest::otherJobsKeepTheirTestsWhenOneIsReplaced()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("1") } }));
    cached.cache.addToCache(jobOf("K", { { testOf("1") } }));
    QVERIFY(cached.cache.getCdmTest(jobId, idOf(1)));
    cached.cache.addToCache(jobOf("K"));
    QCOMPARE(cached.cache.getCdmTest(jobId, idOf(1)), &cached.cache.getCdmJob(jobId)->tests->at(0));
    QVERIFY(!cached.cache.getCdmTest(QStringLiteral("K"), idOf(1)));
}

void JobManagerRestAPICacheTest::jobWithoutTestsHasNone()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J"));
    QVERIFY(!cached.cache.getCdmTest(jobId, idOf(0)));
    cached.cache.addToCache(jobOf("J", std::vector<cdm::Test>()));
    QVERIFY(!cached.cache.getCdmTest(jobId, idOf(0)));
}

void JobManagerRestAPICacheTest::missingTestIsNoMessage()
{
    Cached cached;
    cached.cache.addToCache(jobOf("J", { { testOf("1") } }));
    const MessageCollector recorder;
    QVERIFY(!cached.cache.getCdmTest(jobId, idOf(2)));
    QCOMPARE(recorder.messages(), QStringList());
}

void JobManagerRestAPICacheTest::readOfATestFetchesItsJob()
{
    ClientAnswers answers;
    answers.jobs["J"] = jobOf("J", { { testOf("1") } });
    StandInClient::setAnswers(answers);
    Cached cached;
    QVERIFY(cached.cache.getCdmTest(jobId, idOf(1)));
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJob" });
}

void JobManagerRestAPICacheTest::locationIsFoundByItsPosition_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("location");
    QTest::newRow("first, whatever its index string") << 0 << QByteArray("first");
    QTest::newRow("last") << 1 << QByteArray("last");
    QTest::newRow("the size") << 2 << QByteArray();
    QTest::newRow("its index string's number") << 5 << QByteArray();
    QTest::newRow("-1") << -1 << QByteArray();
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << QByteArray();
}

void JobManagerRestAPICacheTest::locationIsFoundByItsPosition()
{
    QFETCH(int, index);
    QFETCH(QByteArray, location);
    cdm::Test test = testOf("0");
    test.testLocations = { locationOf("0_5"), locationOf("0_0") };
    test.testLocations->at(0).location = "first";
    test.testLocations->at(1).location = "last";
    const Cached cached;
    const cdm::TestLocation* const found = cached.cache.getCdmTestLocation(test, index);
    QCOMPARE(found != nullptr, !location.isNull());
    if (found)
        QCOMPARE(QByteArray::fromStdString(found->location), location);
}

void JobManagerRestAPICacheTest::testWithoutLocationsHasNoLocation()
{
    const Cached cached;
    cdm::Test test = testOf("0");
    QVERIFY(!cached.cache.getCdmTestLocation(test, 0));
    test.testLocations.emplace();
    QVERIFY(!cached.cache.getCdmTestLocation(test, 0));
}

void JobManagerRestAPICacheTest::noTestConfigurationIsHeldAndNoneIsFetched()
{
    Cached cached;
    QVERIFY(!cached.cache.getCdmTestConfigs(jobId, idOf(0)));
    cached.cache.addToCache(jobOf("J", { { testOf("0") } }));
    QVERIFY(!cached.cache.getCdmTestConfigs(jobId, idOf(0)));
    QVERIFY(StandInClient::calls().empty());
}

void JobManagerRestAPICacheTest::clearForgetsListAndRecords()
{
    Cached cached;
    cached.cache.addToCache(std::vector{ summaryOf("J") });
    cached.cache.addToCache(jobOf("J"));
    cached.cache.clear();
    QVERIFY(!cached.cache.isJobListFetched());
    QVERIFY(!cached.cache.isJobCached(jobId));
    QCOMPARE(cached.cache.getListOfCachedJobs(), QList<QString>());
}

void JobManagerRestAPICacheTest::afterClearTheListIsFetchedBeforeItIsRead()
{
    StandInClient::setAnswers(answersWithList({ summaryOf("new") }));
    Cached cached;
    cached.cache.addToCache(std::vector{ summaryOf("old") });
    cached.cache.clear();
    const MessageCollector recorder;
    QVERIFY(!cached.cache.getMinimalJobInfo(QStringLiteral("old")));
    QVERIFY(cached.cache.getMinimalJobInfo(QStringLiteral("new")));
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJobList" });
}

void JobManagerRestAPICacheTest::clearLogsWhatItForgets()
{
    Cached cached;
    cached.cache.addToCache(std::vector{ summaryOf("J") });
    cached.cache.addToCache(jobOf("J"));
    cached.cache.addToCache(jobOf("K"));
    // The two keys come in the order of the hash.
    const QList<QString> keys = cached.cache.getListOfCachedJobs();
    const MessageCollector recorder;
    cached.cache.clear();
    const QStringList expected{
        QStringLiteral("debug: Cache content: "),
        QStringLiteral("debug:   -> Is job list cached:  true"),
        QStringLiteral("debug:   -> Cached CdmJobs:  (\"%1\", \"%2\")").arg(keys.at(0), keys.at(1)),
        QStringLiteral("debug:   -> Cached test configurations:  ()"),
        QStringLiteral("debug: Clearing cache"),
    };
    QCOMPARE(recorder.messages(), expected);
}

void JobManagerRestAPICacheTest::clearOfAnEmptyCacheLogsEmptyLists()
{
    Cached cached;
    const MessageCollector recorder;
    cached.cache.clear();
    const QStringList expected{
        QStringLiteral("debug: Cache content: "),
        QStringLiteral("debug:   -> Is job list cached:  false"),
        QStringLiteral("debug:   -> Cached CdmJobs:  ()"),
        QStringLiteral("debug:   -> Cached test configurations:  ()"),
        QStringLiteral("debug: Clearing cache"),
    };
    QCOMPARE(recorder.messages(), expected);
}

QTEST_GUILESS_MAIN(JobManagerRestAPICacheTest)
#include "JobManagerRestAPICacheTest.moc"
