// Preparing a launch on the main thread, and the launch itself, which reads no cache.

#include "tests/api/rest/WithTest.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>
#include <thread>

using namespace jobmanager_test;
using namespace jobmanager_ui;

using Texts = std::vector<std::string>;

namespace {

const QString unprepared = QStringLiteral(
    "warning: m_testToLaunch is empty. Make sure prepareForLaunchTest was called before calling launchTest");

cdm::Test testOfType(const std::string& type, const std::string& uiIndex = "2")
{
    cdm::Test test = testOf(uiIndex);
    test.testType = type;
    return test;
}

/// Makes `result` the answer of each launch, and leaves the job as it is.
void answerLaunchWith(bool success, const std::string& message)
{
    ClientAnswers answers;
    answers.jobs[job.toStdString()] = jobOf(job.toStdString(), { { testOfType("otdr") } });
    answers.launchResult = { success, message };
    StandInClient::setAnswers(answers);
}

/// Test 2 of the job, prepared for its launch; the calls until then are forgotten.
class Prepared : public WithTest
{
public:
    Prepared() : WithTest(testOfType("otdr"))
    {
        (*this)->prepareForLaunchTest(job, idOf(2));
        StandInClient::forgetCalls();
    }
};

} // namespace

class PreparedLaunchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { StandInClient::reset(); }

    void launchWithoutPreparationOnlyWarns();
    void preparationForAnUnknownTestEmptiesAnEarlierOne();
    void preparationForAnUnknownJobEmptiesAnEarlierOne();
    void preparationOfAJobAtHandAsksNothing();
    void preparationFetchesAJobThatIsNotAtHand();
    void idOfALocationPreparesItsTest();

    void launchNamesTestOrLocation_data();
    void launchNamesTestOrLocation();
    void launchDoesNotUseTheJob();
    void launchReadsNoCache();
    void launchIsOfTheTestAsItWasWhenPrepared();
    void launchRunsOnTheCallersThread();
    void launchIsLoggedOnceItHasAnOutcome();
    void preparationServesEveryLaunchThatFollows();

    void acceptedLaunchGivesNothing_data();
    void acceptedLaunchGivesNothing();
    void refusedLaunchGivesTheServicesMessage_data();
    void refusedLaunchGivesTheServicesMessage();
};

void PreparedLaunchTest::launchWithoutPreparationOnlyWarns()
{
    WithTest api(testOfType("otdr"));
    StandInClient::forgetCalls();
    const MessageCollector recorder;
    QVERIFY(api->launchTest(job, idOf(2)).isNull());
    QCOMPARE(StandInClient::operations(), Texts());
    QCOMPARE(recorder.messages(), QStringList(unprepared));
}

void PreparedLaunchTest::preparationForAnUnknownTestEmptiesAnEarlierOne()
{
    Prepared api;
    const MessageCollector recorder;
    api->prepareForLaunchTest(job, idOf(3));
    QVERIFY(api->launchTest(job, idOf(2)).isNull());
    QCOMPARE(StandInClient::operations(), Texts());
    QCOMPARE(recorder.messages(), QStringList(unprepared));
}

void PreparedLaunchTest::preparationForAnUnknownJobEmptiesAnEarlierOne()
{
    Prepared api;
    MessageCollector recorder;
    api->prepareForLaunchTest(QStringLiteral("no job"), idOf(2));
    recorder.take();
    StandInClient::forgetCalls();
    QVERIFY(api->launchTest(QStringLiteral("no job"), idOf(2)).isNull());
    QCOMPARE(StandInClient::operations(), Texts());
    QCOMPARE(recorder.messages(), QStringList(unprepared));
}

void PreparedLaunchTest::preparationOfAJobAtHandAsksNothing()
{
    WithTest api(testOfType("otdr"));
    StandInClient::forgetCalls();
    const MessageCollector recorder;
    api->prepareForLaunchTest(job, idOf(2));
    QCOMPARE(StandInClient::operations(), Texts());
    QCOMPARE(recorder.messages(), QStringList());
}

void PreparedLaunchTest::preparationFetchesAJobThatIsNotAtHand()
{
    answerLaunchWith(false, "ERROR_POWER");
    OnStandIn api;
    const MessageCollector recorder;
    api->prepareForLaunchTest(job, idOf(2));
    QCOMPARE(StandInClient::operations(), Texts{ "getJob" });
    QVERIFY(StandInClient::calls().front().thread == std::this_thread::get_id());
    QCOMPARE(api->launchTest(job, idOf(2)), QStringLiteral("ERROR_POWER"));
}

void PreparedLaunchTest::idOfALocationPreparesItsTest()
{
    WithTest api(testOfType("otdr"));
    const MessageCollector recorder;
    api->prepareForLaunchTest(job, idOf(2, 1));
    api->launchTest(job, idOf(2, 1));
    QCOMPARE(recorder.messages(), QStringList(QStringLiteral("debug: Launching test:  otdr , uiIndex= 2_1")));
}

void PreparedLaunchTest::launchNamesTestOrLocation_data()
{
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<QByteArray>("uiIndex");
    QTest::newRow("test") << idOf(2) << QByteArray("2");
    QTest::newRow("location") << idOf(2, 1) << QByteArray("2_1");
    QTest::newRow("negative id") << -1LL << QByteArray();
}

void PreparedLaunchTest::launchNamesTestOrLocation()
{
    QFETCH(qlonglong, id);
    QFETCH(QByteArray, uiIndex);
    Prepared api;
    const MessageCollector recorder;
    api->launchTest(job, id);
    QCOMPARE(StandInClient::operations(), Texts{ "launchTest" });
    QCOMPARE(StandInClient::calls().front().arguments, Texts{ uiIndex.toStdString() });
}

void PreparedLaunchTest::launchDoesNotUseTheJob()
{
    Prepared api;
    const MessageCollector recorder;
    api->launchTest(QStringLiteral("no job at all"), idOf(2));
    QCOMPARE(StandInClient::operations(), Texts{ "launchTest" });
    QCOMPARE(StandInClient::calls().front().arguments, Texts{ "2" });
}

void PreparedLaunchTest::launchReadsNoCache()
{
    Prepared api;
    MessageCollector recorder;
    api->clearCache();
    recorder.take();
    api->launchTest(job, idOf(2));
    QCOMPARE(StandInClient::operations(), Texts{ "launchTest" });
    QCOMPARE(recorder.messages(), QStringList(QStringLiteral("debug: Launching test:  otdr , uiIndex= 2")));
}

void PreparedLaunchTest::launchIsOfTheTestAsItWasWhenPrepared()
{
    Prepared api;
    MessageCollector recorder;
    answerWithTests({ testOfType("manual") });
    api->fetchJob(job);
    api->commitFetchedData();
    QCOMPARE(api->getTestType(job, idOf(2)), QStringLiteral("manual"));
    recorder.take();
    api->launchTest(job, idOf(2));
    QCOMPARE(recorder.messages(), QStringList(QStringLiteral("debug: Launching test:  otdr , uiIndex= 2")));
}

void PreparedLaunchTest::launchRunsOnTheCallersThread()
{
    Prepared api;
    const MessageCollector recorder;
    std::thread worker([&api] { api->launchTest(job, idOf(2)); });
    const std::thread::id workerId = worker.get_id();
    worker.join();
    QCOMPARE(StandInClient::operations(), Texts{ "launchTest" });
    QVERIFY(StandInClient::calls().front().thread == workerId);
}

void PreparedLaunchTest::launchIsLoggedOnceItHasAnOutcome()
{
    Prepared api;
    MessageCollector recorder;
    StandInClient::setHook(
        [&recorder](const ClientCall& call) { recorder.journal().add(QString::fromStdString(call.operation)); });
    api->launchTest(job, idOf(2));
    QCOMPARE(recorder.messages(),
        (QStringList{ QStringLiteral("launchTest"), QStringLiteral("debug: Launching test:  otdr , uiIndex= 2") }));
}

void PreparedLaunchTest::preparationServesEveryLaunchThatFollows()
{
    Prepared api;
    answerLaunchWith(false, "ERROR_POWER");
    const MessageCollector recorder;
    QCOMPARE(api->launchTest(job, idOf(2)), QStringLiteral("ERROR_POWER"));
    QCOMPARE(api->launchTest(job, idOf(2)), QStringLiteral("ERROR_POWER"));
    QCOMPARE(StandInClient::operations(), (Texts{ "launchTest", "launchTest" }));
}

void PreparedLaunchTest::acceptedLaunchGivesNothing_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("no message") << QByteArray();
    QTest::newRow("message") << QByteArray("started");
    QTest::newRow("error token all the same") << QByteArray("ERROR_POWER");
}

void PreparedLaunchTest::acceptedLaunchGivesNothing()
{
    QFETCH(QByteArray, message);
    Prepared api;
    answerLaunchWith(true, message.toStdString());
    const MessageCollector recorder;
    QVERIFY(api->launchTest(job, idOf(2)).isNull());
}

void PreparedLaunchTest::refusedLaunchGivesTheServicesMessage_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QString>("status");
    QTest::newRow("token") << QByteArray("ERROR_POWER") << QStringLiteral("ERROR_POWER");
    QTest::newRow("token with fields") << QByteArray("ERROR_SOLUTION_VERSION^3.1^otdr")
                                       << QStringLiteral("ERROR_SOLUTION_VERSION^3.1^otdr");
    QTest::newRow("UTF-8") << QByteArray("ERROR_CUSTOM_FATAL^Größe 光")
                           << QStringLiteral("ERROR_CUSTOM_FATAL^Größe 光");
    QTest::newRow("only up to a NUL") << QByteArray("ERROR_POWER\0^more", 17) << QStringLiteral("ERROR_POWER");
    QTest::newRow("token of a newer service") << QByteArray("ERROR_TIDE^high") << QStringLiteral("ERROR_TIDE^high");
    QTest::newRow("nothing") << QByteArray() << QString();
}

void PreparedLaunchTest::refusedLaunchGivesTheServicesMessage()
{
    QFETCH(QByteArray, message);
    QFETCH(QString, status);
    Prepared api;
    answerLaunchWith(false, message.toStdString());
    const MessageCollector recorder;
    QCOMPARE(api->launchTest(job, idOf(2)), status);
}

QTEST_GUILESS_MAIN(PreparedLaunchTest)
#include "PreparedLaunchTest.moc"
