// The operations of the REST implementation that only convert, call the client and pass its result on.

#include "tests/api/rest/OnStandIn.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"
#include "tests/support/MessageCollector.h"

#include <functional>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

using Request = std::function<bool(JobManagerRestAPI&)>;
using Texts = std::vector<std::string>;
Q_DECLARE_METATYPE(Request)
Q_DECLARE_METATYPE(Texts)

namespace {

const QString job = QStringLiteral("Größe 光");

void answerWithActiveJob(const std::string& id)
{
    ClientAnswers answers;
    answers.activeWorkorderID = id;
    StandInClient::setAnswers(answers);
}

} // namespace

class PassedOnRequestsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void requestIsOneCallWithTextsAsUtf8_data();
    void requestIsOneCallWithTextsAsUtf8();
    void resultIsTheClients_data();
    void resultIsTheClients();
    void requestRunsOnTheCallersThread();
    void requestLeavesTheCacheAlone_data();
    void requestLeavesTheCacheAlone();

    void exportGivesTheClientsPath_data();
    void exportGivesTheClientsPath();
    void importGivesTheClientsNumber();

    void archivingTheCurrentJobClearsItFirst_data();
    void archivingTheCurrentJobClearsItFirst();
    void archivingAnotherJobLeavesTheCurrentOne();
    void archivingGoesOnIfTheCurrentJobCannotBeCleared();
    void archivingThatFailsLeavesTheCurrentJobCleared();
    void archivingReachesTheCurrentJobByTheVirtualOperations();
    void restoringDoesNotLookAtTheCurrentJob();

    void manualResultIsLoggedAsFourItems();
    void manualResultIsLoggedBeforeItIsSent();
    void manualResultNamesTestOrLocation_data();
    void manualResultNamesTestOrLocation();
    void manualResultShowsOnlyAfterAFetch();
};

void PassedOnRequestsTest::init()
{
    StandInClient::reset();
}

namespace {

/// Each request that is one call of the client with a success as its result.
void addRequests()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<QByteArray>("operation");
    QTest::addColumn<Texts>("arguments");
    const auto row = [](const char* name, const Request& request, const char* operation, const Texts& arguments) {
        QTest::newRow(name) << request << QByteArray(operation) << arguments;
    };
    row("create, with sync",
        [](JobManagerRestAPI& api) {
            return api.createJob(QStringLiteral("№ 1"), QStringLiteral("téch"), QStringLiteral("fiber groß"),
                QStringLiteral("/media/光.csv"), true);
        },
        "newJob", { "№ 1", "téch", "fiber groß", "/media/光.csv", "true" });
    row("create, without sync and without optional texts",
        [](JobManagerRestAPI& api) {
            return api.createJob(QStringLiteral("1"), QStringLiteral("t"), QString(), QString(), false);
        },
        "newJob", { "1", "t", "", "", "false" });
    row("delete", [](JobManagerRestAPI& api) { return api.deleteJob(job); }, "deleteJob", { job.toStdString() });
    row("set current", [](JobManagerRestAPI& api) { return api.setCurrentJobByID(job); }, "setActiveWorkorderID",
        { job.toStdString() });
    row("clear current", [](JobManagerRestAPI& api) { return api.setCurrentJobByID(QString()); },
        "setActiveWorkorderID", { "" });
    row("restore", [](JobManagerRestAPI& api) { return api.setIsJobArchived(job, false); }, "restoreJob",
        { job.toStdString() });
    row("exchange", [](JobManagerRestAPI& api) { return api.exchangeCurrentJob(QStringLiteral("/dev/qzx ü")); },
        "exchangeCurrentJob", { "/dev/qzx ü", "" });
    row("manual result",
        [](JobManagerRestAPI& api) {
            return api.setManualTestResult(job, idOf(2, 1), QStringLiteral("größer"), QStringLiteral("光"));
        },
        "setManualTestResponse", { "größer", "光", "2_1" });
}

} // namespace

void PassedOnRequestsTest::requestIsOneCallWithTextsAsUtf8_data()
{
    addRequests();
}

void PassedOnRequestsTest::requestIsOneCallWithTextsAsUtf8()
{
    QFETCH(Request, request);
    QFETCH(QByteArray, operation);
    QFETCH(Texts, arguments);
    OnStandIn api;
    const MessageCollector recorder;
    request(*api);
    QCOMPARE(StandInClient::operations(), Texts{ operation.toStdString() });
    QCOMPARE(StandInClient::calls().front().arguments, arguments);
}

void PassedOnRequestsTest::resultIsTheClients_data()
{
    addRequests();
}

void PassedOnRequestsTest::resultIsTheClients()
{
    QFETCH(Request, request);
    QFETCH(QByteArray, operation);
    OnStandIn api;
    const MessageCollector recorder;
    for (const bool success : { true, false }) {
        ClientAnswers answers;
        answers.success[operation.toStdString()] = success;
        StandInClient::setAnswers(answers);
        QCOMPARE(request(*api), success);
    }
}

void PassedOnRequestsTest::requestRunsOnTheCallersThread()
{
    OnStandIn api;
    std::thread worker([&api] {
        api->setCurrentJobByID(job);
        api->exportJobData(job, QStringLiteral("/media/usb"));
        api->importJobs(QStringLiteral("/media/usb"));
        api->exchangeCurrentJob(QStringLiteral("/dev/qzx"));
    });
    const std::thread::id workerId = worker.get_id();
    worker.join();
    const std::vector<ClientCall> calls = StandInClient::calls();
    QCOMPARE(static_cast<int>(calls.size()), 4);
    for (const ClientCall& call : calls)
        QVERIFY2(call.thread == workerId, call.operation.c_str());
}

void PassedOnRequestsTest::requestLeavesTheCacheAlone_data()
{
    addRequests();
    const auto row = [](const char* name, const Request& request) {
        QTest::newRow(name) << request << QByteArray() << Texts();
    };
    row("archive", [](JobManagerRestAPI& api) { return api.setIsJobArchived(job, true); });
    row("export",
        [](JobManagerRestAPI& api) { return !api.exportJobData(job, QStringLiteral("/media/usb")).isEmpty(); });
    row("import", [](JobManagerRestAPI& api) { return api.importJobs(QStringLiteral("/media/usb")) == 3; });
    row("launch", [](JobManagerRestAPI& api) {
        api.prepareForLaunchTest(job, idOf(2));
        return api.launchTest(job, idOf(2)).isEmpty();
    });
}

void PassedOnRequestsTest::requestLeavesTheCacheAlone()
{
    QFETCH(Request, request);
    ClientAnswers answers;
    answers.jobList = { summaryOf(job.toStdString()) };
    answers.jobs[job.toStdString()] = jobOf(job.toStdString(), { { testOf("2") } });
    answers.exportPath = "/media/usb/J.job.json";
    answers.importedJobs = 3;
    answers.launchResult = { true, {} };
    StandInClient::setAnswers(answers);
    OnStandIn api;
    const MessageCollector recorder;
    const std::vector<QString> jobs = api->getAllJobIDs();
    const std::vector<long long> tests = api->getAllTestIDs(job);
    QVERIFY(request(*api));
    QVERIFY(api->isJobListInCache());
    QVERIFY(api->isJobInCache(job));
    StandInClient::forgetCalls();
    QCOMPARE(api->getAllJobIDs(), jobs);
    QCOMPARE(api->getAllTestIDs(job), tests);
    QVERIFY(StandInClient::calls().empty());
}

void PassedOnRequestsTest::exportGivesTheClientsPath_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("output");
    QTest::newRow("ASCII") << QByteArray("/media/usb/J.job.json") << QStringLiteral("/media/usb/J.job.json");
    QTest::newRow("failure") << QByteArray() << QString();
    QTest::newRow("bytes beyond ASCII are no UTF-8") << QByteArray("/media/\xc3\xbc") << QStringLiteral("/media/Ã¼");
}

void PassedOnRequestsTest::exportGivesTheClientsPath()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, output);
    ClientAnswers answers;
    answers.exportPath = path.toStdString();
    StandInClient::setAnswers(answers);
    OnStandIn api;
    QCOMPARE(api->exportJobData(job, QStringLiteral("/media/größe")), output);
    QCOMPARE(StandInClient::operations(), Texts{ "exportJobData" });
    QCOMPARE(StandInClient::calls().front().arguments, (Texts{ job.toStdString(), "/media/größe" }));
}

void PassedOnRequestsTest::importGivesTheClientsNumber()
{
    ClientAnswers answers;
    answers.importedJobs = 3;
    StandInClient::setAnswers(answers);
    OnStandIn api;
    QCOMPARE(api->importJobs(QStringLiteral("/media/größe")), 3);
    QCOMPARE(StandInClient::operations(), Texts{ "importJobs" });
    QCOMPARE(StandInClient::calls().front().arguments, Texts{ "/media/größe" });
}

void PassedOnRequestsTest::archivingTheCurrentJobClearsItFirst_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("a job") << job;
    QTest::newRow("no job, and none is current") << QString();
}

void PassedOnRequestsTest::archivingTheCurrentJobClearsItFirst()
{
    QFETCH(QString, id);
    answerWithActiveJob(id.toStdString());
    OnStandIn api;
    QVERIFY(api->setIsJobArchived(id, true));
    QCOMPARE(StandInClient::operations(), (Texts{ "getActiveWorkorderID", "setActiveWorkorderID", "archiveJob" }));
    QCOMPARE(StandInClient::calls("setActiveWorkorderID").front().arguments, Texts{ "" });
    QCOMPARE(StandInClient::calls("archiveJob").front().arguments, Texts{ id.toStdString() });
}

void PassedOnRequestsTest::archivingAnotherJobLeavesTheCurrentOne()
{
    answerWithActiveJob("another");
    OnStandIn api;
    QVERIFY(api->setIsJobArchived(job, true));
    QCOMPARE(StandInClient::operations(), (Texts{ "getActiveWorkorderID", "archiveJob" }));
}

void PassedOnRequestsTest::archivingGoesOnIfTheCurrentJobCannotBeCleared()
{
    ClientAnswers answers;
    answers.activeWorkorderID = job.toStdString();
    answers.success["setActiveWorkorderID"] = false;
    StandInClient::setAnswers(answers);
    OnStandIn api;
    QVERIFY(api->setIsJobArchived(job, true));
    QCOMPARE(StandInClient::operations().back(), std::string("archiveJob"));
}

void PassedOnRequestsTest::archivingThatFailsLeavesTheCurrentJobCleared()
{
    ClientAnswers answers;
    answers.activeWorkorderID = job.toStdString();
    answers.success["archiveJob"] = false;
    StandInClient::setAnswers(answers);
    OnStandIn api;
    QVERIFY(!api->setIsJobArchived(job, true));
    QCOMPARE(StandInClient::operations(), (Texts{ "getActiveWorkorderID", "setActiveWorkorderID", "archiveJob" }));
}

void PassedOnRequestsTest::archivingReachesTheCurrentJobByTheVirtualOperations()
{
    class WithJob : public JobManagerRestAPI
    {
    public:
        using JobManagerRestAPI::JobManagerRestAPI;
        QString getCurrentJobID() override { return job; }
        bool setCurrentJobByID(QString jobID) override
        {
            cleared = jobID.isNull();
            return false;
        }
        bool cleared = false;
    };
    WithJob api("host", 1);
    StandInClient::forgetCalls();
    QVERIFY(api.setIsJobArchived(job, true));
    QVERIFY(api.cleared);
    QCOMPARE(StandInClient::operations(), Texts{ "archiveJob" });
}

void PassedOnRequestsTest::restoringDoesNotLookAtTheCurrentJob()
{
    answerWithActiveJob(job.toStdString());
    OnStandIn api;
    QVERIFY(api->setIsJobArchived(job, false));
    QCOMPARE(StandInClient::operations(), Texts{ "restoreJob" });
}

void PassedOnRequestsTest::manualResultIsLoggedAsFourItems()
{
    OnStandIn api;
    const MessageCollector recorder;
    api->setManualTestResult(job, idOf(2), QStringLiteral("yes"), QString());
    QCOMPARE(recorder.messages(),
        QStringList(QStringLiteral("debug: JobManagerRestAPI setting manual test result to: \"yes\" ,  \"\"")));
}

void PassedOnRequestsTest::manualResultIsLoggedBeforeItIsSent()
{
    OnStandIn api;
    MessageCollector recorder;
    StandInClient::setHook(
        [&recorder](const ClientCall& call) { recorder.journal().add(QString::fromStdString(call.operation)); });
    api->setManualTestResult(job, idOf(2), QStringLiteral("yes"), QString());
    QCOMPARE(recorder.messages(),
        (QStringList{ QStringLiteral("debug: JobManagerRestAPI setting manual test result to: \"yes\" ,  \"\""),
            QStringLiteral("setManualTestResponse") }));
}

void PassedOnRequestsTest::manualResultNamesTestOrLocation_data()
{
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<QByteArray>("uiIndex");
    QTest::newRow("test") << idOf(2) << QByteArray("2");
    QTest::newRow("location") << idOf(2, 1) << QByteArray("2_1");
    QTest::newRow("negative id") << -1LL << QByteArray();
}

void PassedOnRequestsTest::manualResultNamesTestOrLocation()
{
    QFETCH(qlonglong, id);
    QFETCH(QByteArray, uiIndex);
    OnStandIn api;
    const MessageCollector recorder;
    api->setManualTestResult(QStringLiteral("no job at all"), id, QStringLiteral("yes"), QString());
    QCOMPARE(StandInClient::operations(), Texts{ "setManualTestResponse" });
    QCOMPARE(StandInClient::calls().front().arguments, (Texts{ "yes", "", uiIndex.toStdString() }));
}

void PassedOnRequestsTest::manualResultShowsOnlyAfterAFetch()
{
    const auto answerWithResponse = [](const std::string& response) {
        cdm::Test test = testOf("2");
        test.results.emplace().response = response;
        ClientAnswers answers;
        answers.jobs[job.toStdString()] = jobOf(job.toStdString(), { { test } });
        StandInClient::setAnswers(answers);
    };
    answerWithResponse("old");
    OnStandIn api;
    const MessageCollector recorder;
    QCOMPARE(api->getTestResponse(job, idOf(2)), QStringLiteral("old"));
    api->setManualTestResult(job, idOf(2), QStringLiteral("new"), QString());
    answerWithResponse("new");
    QCOMPARE(api->getTestResponse(job, idOf(2)), QStringLiteral("old"));
    api->fetchJob(job);
    api->commitFetchedData();
    QCOMPARE(api->getTestResponse(job, idOf(2)), QStringLiteral("new"));
}

QTEST_GUILESS_MAIN(PassedOnRequestsTest)
#include "PassedOnRequestsTest.moc"
