#include "tests/end_to_end/Bounds.h"
#include "tests/end_to_end/EndToEndMain.h"
#include "tests/end_to_end/FrontEnd.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/end_to_end/ServiceRelay.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/ServiceProcess.h"

#include <QHash>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

using jobmanager_test::MessageCollector;
using jobmanager_test::ServiceProcess;

namespace {

/// For waits whose length is of no matter.
int aWhile()
{
    return stretched(10000);
}

/// The sample job that has the most tests.
const QString largeJob = QStringLiteral("WO-2026-004400");
const QString smallJob = QStringLiteral("WO-2026-004711");

const std::string listRoute = "GET /api/v1/jobs";

std::string jobRoute(const QString& id)
{
    return "GET /api/v1/jobs/" + id.toStdString();
}

/// One part of a page that reads the tests of a job.
const QByteArray reader = R"(
    import QtQml 2.15
    import JobManagerUi 1.0
    QtObject {
        property QtObject job
        readonly property QtObject list: job ? job.tests : null
        property QtObject openTest
        function open(row) { openTest = list.data(list.index(row, 0), TestList.Test) }
    })";

int roleNamed(const QAbstractItemModel* model, const QByteArray& name)
{
    return model->roleNames().key(name);
}

QAbstractItemModel* listOf(const QObject& page)
{
    return page.property("list").value<QAbstractItemModel*>();
}

QObject* testAt(const QAbstractItemModel* list, int row)
{
    return list->index(row, 0).data(roleNamed(list, "test")).value<QObject*>();
}

QString statusAt(const QAbstractItemModel* list, int row)
{
    return list->index(row, 0).data(roleNamed(list, "testStatus")).toString();
}

/// The service's own name of the test or location of a row.
QString uiIndexAt(const QAbstractItemModel* list, int row)
{
    const QObject* const test = testAt(list, row);
    const int location = test->property("locationIndex").toInt();
    return test->property("testIndex").toString() + (location < 0 ? QString() : QStringLiteral("_%1").arg(location));
}

/// The objects of all rows by the ids of their tests; null for one that has gone since.
QHash<qlonglong, QPointer<QObject>> testsOf(const QAbstractItemModel* list)
{
    QHash<qlonglong, QPointer<QObject>> tests;
    for (int row = 0; row < list->rowCount(); ++row) {
        const qlonglong id = list->index(row, 0).data(roleNamed(list, "testID")).toLongLong();
        tests.insert(id, testAt(list, row));
    }
    return tests;
}

void updateAll(const FrontEnd& frontEnd, bool full)
{
    QMetaObject::invokeMethod(frontEnd.manager(), "updateDataFromAPI", Q_ARG(bool, full));
}

QStringList warningsOf(const MessageCollector& messages)
{
    return messages.messages().filter(QStringLiteral("warning: "));
}

} // namespace

/// The tests of a job in the real module and a real QML engine, over the real client and the real service.
class LiveTestsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void firstReadGivesNullAndStartsOneFetchHoweverManyBindingsAsk();
    void readingWhetherAFetchIsUnderWayStartsNone();
    void eventLoopTurnsWhileAJobIsFetched();
    void fullUpdateTakesTheTestsAwayUntilTheyAreFetchedAnew();
    void partialUpdateFetchesNothingAndKeepsTheTests();
    void jobThatLeavesTheListDuringItsFetchHarmsNothing();
    void jobThatTheServiceDropsDuringItsFetchHarmsNothing();
    void engineEndsWhileAJobIsFetched();
    void hundredUpdatesKeepEveryTestObject();
    void newResultIsAnnouncedAndChangesItsRowWithinASecond();
    void manyNewResultsInOneUpdateAreAnnouncedOnce();
    void newResultOfAJobThatIsNotOpenFetchesItNot();

private:
    void waitForRows(const FrontEnd& frontEnd);
    std::unique_ptr<QObject> openJob(FrontEnd& frontEnd, const QString& id);
    void checkThatAnotherJobOpens(FrontEnd& frontEnd);

    std::unique_ptr<ServiceProcess> m_service;
    std::unique_ptr<ServiceRelay> m_relay;
    JobServiceClient m_client{ 0 };
};

void LiveTestsTest::initTestCase()
{
    if (!networkRefusal().empty())
        QSKIP(("no network of its own, in which port 8082 is free: " + networkRefusal()).c_str());
}

void LiveTestsTest::init()
{
    m_service = std::make_unique<ServiceProcess>(std::vector<std::string>{ "--load", JOBMANAGER_SAMPLES });
    QVERIFY2(m_service->start(), m_service->log().c_str());
    m_relay = std::make_unique<ServiceRelay>(m_service->port());
    m_client = JobServiceClient(m_service->port());
}

void LiveTestsTest::cleanup()
{
    m_relay.reset();
    m_service.reset();
}

void LiveTestsTest::waitForRows(const FrontEnd& frontEnd)
{
    QVERIFY(frontEnd.manager());
    QTRY_COMPARE_WITH_TIMEOUT(FrontEnd::ids(frontEnd.jobs()), m_client.jobIds(), aWhile());
}

/// A page of the job, whose tests are there. Null if they did not come, of which the running test is told.
std::unique_ptr<QObject> LiveTestsTest::openJob(FrontEnd& frontEnd, const QString& id)
{
    auto page = frontEnd.page(reader, { { QStringLiteral("job"), QVariant::fromValue(frontEnd.job(id)) } });
    const bool came = QTest::qWaitFor([&] { return listOf(*page) != nullptr; }, aWhile());
    if (!came || listOf(*page)->rowCount() == 0) {
        QTest::qFail(qPrintable(QStringLiteral("no tests of job ") + id), __FILE__, __LINE__);
        return nullptr;
    }
    return page;
}

void LiveTestsTest::checkThatAnotherJobOpens(FrontEnd& frontEnd)
{
    const auto page = openJob(frontEnd, smallJob);
    QVERIFY(page);
    QCOMPARE(listOf(*page)->rowCount(), 9);
}

void LiveTestsTest::firstReadGivesNullAndStartsOneFetchHoweverManyBindingsAsk()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    QObject* const job = frontEnd.job(largeJob);
    QSignalSpy requests(job, SIGNAL(fetchJob(QString)));
    QCOMPARE(m_relay->count(jobRoute(largeJob)), 0);
    m_relay->hold(jobRoute(largeJob));

    std::vector<std::unique_ptr<QObject>> readers;
    for (int i = 0; i < 30; ++i) {
        readers.push_back(frontEnd.page(reader, { { QStringLiteral("job"), QVariant::fromValue(job) } }));
        QVERIFY(!listOf(*readers.back()));
    }
    QVERIFY(m_relay->awaitHeld(jobRoute(largeJob)));
    QVERIFY(job->property("fetchInProgress").toBool());
    QVERIFY(!job->property("tests").value<QObject*>());
    m_relay->release(jobRoute(largeJob));

    for (const auto& each : readers)
        QTRY_VERIFY_WITH_TIMEOUT(listOf(*each), aWhile());
    QCOMPARE(listOf(*readers.front())->rowCount(), 500);
    QCOMPARE(requests.count(), 1);
    QCOMPARE(m_relay->count(jobRoute(largeJob)), 1);
    QVERIFY(!job->property("fetchInProgress").toBool());
}

void LiveTestsTest::readingWhetherAFetchIsUnderWayStartsNone()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    QObject* const job = frontEnd.job(smallJob);
    QSignalSpy requests(job, SIGNAL(fetchJob(QString)));

    QVERIFY(!job->property("fetchInProgress").toBool());

    QCOMPARE(requests.count(), 0);
    QVERIFY(!job->property("fetchInProgress").toBool());
}

void LiveTestsTest::eventLoopTurnsWhileAJobIsFetched()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    m_relay->hold(jobRoute(largeJob));
    const auto page = frontEnd.page(reader, { { QStringLiteral("job"), QVariant::fromValue(frontEnd.job(largeJob)) } });
    QVERIFY(m_relay->awaitHeld(jobRoute(largeJob)));

    // A fetch on this thread would have ended, or given up, before a single turn.
    int turns = 0;
    QTimer eachTurn;
    connect(&eachTurn, &QTimer::timeout, this, [&turns] { ++turns; });
    eachTurn.start(0);
    QTRY_VERIFY_WITH_TIMEOUT(turns >= 100, aWhile());
    QVERIFY(frontEnd.job(largeJob)->property("fetchInProgress").toBool());
    QVERIFY(!listOf(*page));

    m_relay->release(jobRoute(largeJob));
    QTRY_VERIFY_WITH_TIMEOUT(listOf(*page), aWhile());
    QCOMPARE(m_relay->count(jobRoute(largeJob)), 1);
}

void LiveTestsTest::fullUpdateTakesTheTestsAwayUntilTheyAreFetchedAnew()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const auto page = openJob(frontEnd, smallJob);
    QVERIFY(page);
    const QAbstractItemModel* const list = listOf(*page);
    const auto tests = testsOf(list);
    const int fetches = m_relay->count(jobRoute(smallJob));
    m_relay->hold(jobRoute(smallJob));

    updateAll(frontEnd, true);
    QTRY_VERIFY_WITH_TIMEOUT(!listOf(*page), aWhile());
    m_relay->release(jobRoute(smallJob));

    QTRY_COMPARE_WITH_TIMEOUT(listOf(*page), list, aWhile());
    QCOMPARE(testsOf(list), tests);
    QCOMPARE(m_relay->count(jobRoute(smallJob)), fetches + 1);
}

void LiveTestsTest::partialUpdateFetchesNothingAndKeepsTheTests()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const auto page = openJob(frontEnd, smallJob);
    QVERIFY(page);
    QAbstractItemModel* const list = listOf(*page);
    const auto tests = testsOf(list);
    QSignalSpy rebuilds(frontEnd.jobs(), &QAbstractItemModel::modelReset);
    QSignalSpy reloads(list, &QAbstractItemModel::modelReset);
    const int listFetches = m_relay->count(listRoute);
    const int jobFetches = m_relay->count(jobRoute(smallJob));

    updateAll(frontEnd, false);

    QCOMPARE(rebuilds.count(), 1);
    QCOMPARE(reloads.count(), 1);
    QCOMPARE(listOf(*page), list);
    QCOMPARE(testsOf(list), tests);
    QCOMPARE(m_relay->count(listRoute), listFetches);
    QCOMPARE(m_relay->count(jobRoute(smallJob)), jobFetches);
}

void LiveTestsTest::jobThatLeavesTheListDuringItsFetchHarmsNothing()
{
    const MessageCollector messages;
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QPointer<QObject> job = frontEnd.job(largeJob);
    m_relay->hold(listRoute);
    m_relay->hold(jobRoute(largeJob));

    // The worker takes the list first, then the job.
    updateAll(frontEnd, true);
    QVERIFY(m_relay->awaitHeld(listRoute));
    const auto page = frontEnd.page(reader, { { QStringLiteral("job"), QVariant::fromValue(job.data()) } });
    m_client.deleteJob(largeJob);
    m_relay->release(listRoute);
    QVERIFY(m_relay->awaitHeld(jobRoute(largeJob)));
    QTRY_VERIFY_WITH_TIMEOUT(!job, aWhile());
    QVERIFY(!listOf(*page));
    m_relay->release(jobRoute(largeJob));

    checkThatAnotherJobOpens(frontEnd);
    QVERIFY(!frontEnd.job(largeJob));
    QVERIFY(!listOf(*page));
    QCOMPARE(warningsOf(messages), QStringList());
}

void LiveTestsTest::jobThatTheServiceDropsDuringItsFetchHarmsNothing()
{
    const MessageCollector messages;
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QPointer<QObject> job = frontEnd.job(largeJob);
    m_relay->hold(jobRoute(largeJob));

    const auto page = frontEnd.page(reader, { { QStringLiteral("job"), QVariant::fromValue(job.data()) } });
    QVERIFY(m_relay->awaitHeld(jobRoute(largeJob)));
    m_client.deleteJob(largeJob);
    m_relay->release(jobRoute(largeJob));

    QTRY_VERIFY_WITH_TIMEOUT(!job, aWhile());
    QVERIFY(!listOf(*page));
    checkThatAnotherJobOpens(frontEnd);
    QCOMPARE(warningsOf(messages), QStringList());
}

void LiveTestsTest::engineEndsWhileAJobIsFetched()
{
    const MessageCollector messages;
    {
        FrontEnd frontEnd;
        waitForRows(frontEnd);
        m_relay->hold(jobRoute(largeJob));
        const auto page =
            frontEnd.page(reader, { { QStringLiteral("job"), QVariant::fromValue(frontEnd.job(largeJob)) } });
        QVERIFY(m_relay->awaitHeld(jobRoute(largeJob)));
        m_relay->release(jobRoute(largeJob));
    }
    QCOMPARE(warningsOf(messages), QStringList());
}

void LiveTestsTest::hundredUpdatesKeepEveryTestObject()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const auto page = openJob(frontEnd, largeJob);
    QVERIFY(page);
    QAbstractItemModel* const list = listOf(*page);
    const auto tests = testsOf(list);
    QCOMPARE(tests.size(), 500);
    QMetaObject::invokeMethod(page.get(), "open", Q_ARG(QVariant, 42));
    const QPointer<QObject> openTest = page->property("openTest").value<QObject*>();
    QVERIFY(openTest);
    QSignalSpy reloads(list, &QAbstractItemModel::modelReset);
    QSignalSpy announced(frontEnd.job(largeJob), SIGNAL(newTestResultsReceived()));

    for (int update = 1; update <= 100; ++update) {
        m_client.setResult(largeJob, uiIndexAt(list, update * 4), QStringLiteral("run %1").arg(update));
        // Most of them at once, some as the poll finds them.
        if (update % 10 != 0)
            updateAll(frontEnd, true);
        QVERIFY(announced.count() == update || announced.wait(aWhile()));
        QCOMPARE(announced.count(), update);
        QCOMPARE(statusAt(list, update * 4), QStringLiteral("run %1").arg(update));
        frontEnd.engine().collectGarbage();
        QVERIFY(testsOf(list) == tests);
        QTRY_VERIFY_WITH_TIMEOUT(listOf(*page) == list, aWhile());
    }

    QVERIFY(reloads.count() >= 100);
    QCOMPARE(page->property("openTest").value<QObject*>(), openTest.data());
    QVERIFY(std::none_of(tests.begin(), tests.end(), [](const QPointer<QObject>& test) { return test.isNull(); }));
}

void LiveTestsTest::newResultIsAnnouncedAndChangesItsRowWithinASecond()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const auto page = openJob(frontEnd, largeJob);
    const auto otherPage = openJob(frontEnd, smallJob);
    QVERIFY(page && otherPage);
    QAbstractItemModel* const list = listOf(*page);
    QObject* const test = testAt(list, 321);
    const QDateTime before = test->property("testTime").toDateTime();
    QSignalSpy announced(frontEnd.job(largeJob), SIGNAL(newTestResultsReceived()));
    QSignalSpy announcedElsewhere(frontEnd.job(smallJob), SIGNAL(newTestResultsReceived()));
    QSignalSpy statusChanges(test, SIGNAL(testStatusChanged()));

    m_client.setResult(largeJob, uiIndexAt(list, 321), QStringLiteral("rework"));

    QVERIFY(announced.wait(stretched(1000)));
    QCOMPARE(statusAt(list, 321), QStringLiteral("rework"));
    QCOMPARE(testAt(list, 321), test);
    QCOMPARE(test->property("testStatus").toString(), QStringLiteral("rework"));
    QVERIFY(test->property("testTime").toDateTime() > before || !before.isValid());
    QCOMPARE(statusChanges.count(), 1);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announcedElsewhere.count(), 0);
}

void LiveTestsTest::manyNewResultsInOneUpdateAreAnnouncedOnce()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const auto page = openJob(frontEnd, smallJob);
    QVERIFY(page);
    const QAbstractItemModel* const list = listOf(*page);
    QSignalSpy announced(frontEnd.job(smallJob), SIGNAL(newTestResultsReceived()));
    frontEnd.manager()->setProperty("pauseAutomaticUpdates", true);

    m_client.completeJob(smallJob);
    frontEnd.manager()->setProperty("pauseAutomaticUpdates", false);

    QVERIFY(announced.wait(aWhile()));
    QTRY_VERIFY_WITH_TIMEOUT(listOf(*page) == list, aWhile());
    for (int row = 0; row < list->rowCount(); ++row)
        QCOMPARE(statusAt(list, row), QStringLiteral("Pass"));
    QCOMPARE(announced.count(), 1);
}

void LiveTestsTest::newResultOfAJobThatIsNotOpenFetchesItNot()
{
    FrontEnd frontEnd;
    waitForRows(frontEnd);
    const auto page = openJob(frontEnd, smallJob);
    QVERIFY(page);
    QSignalSpy announced(frontEnd.job(largeJob), SIGNAL(newTestResultsReceived()));
    QSignalSpy rebuilds(frontEnd.jobs(), &QAbstractItemModel::modelReset);

    m_client.setResult(largeJob, QStringLiteral("2"), QStringLiteral("rework"));

    QVERIFY(rebuilds.wait(aWhile()));
    QTRY_VERIFY_WITH_TIMEOUT(listOf(*page), aWhile());
    QCOMPARE(m_relay->count(jobRoute(largeJob)), 0);
    QCOMPARE(announced.count(), 0);
}

END_TO_END_MAIN(LiveTestsTest)

#include "LiveTestsTest.moc"
