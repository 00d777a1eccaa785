// What acts on jobs, over the real client and a server that answers to the byte: what is sent, what an answer means,
// and what becomes of a write whose answer is lost.

#include "api/rest/JobManagerRestAPI.h"

#include "tests/api/rest/Records.h"
#include "tests/client/RawServer.h"
#include "tests/support/MessageCollector.h"

#include <functional>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

using Request = std::function<bool(JobManagerRestAPI&)>;
using Requests = std::vector<std::string>;
Q_DECLARE_METATYPE(Request)
Q_DECLARE_METATYPE(RawReply)

namespace {

const QString job = QStringLiteral("J");
const QString lost = QStringLiteral("ERROR_CAN_LAUNCH_FAILED_TO_RUN");
const char* const launchRoute = "POST /api/v1/launches";
const char* const countRoute = "GET /api/v1/change-count";
const char* const activeRoute = "GET /api/v1/active-job";

RawReply activeJobReply(const std::string& id)
{
    return jsonReply(200, R"({"id": ")" + id + R"("})");
}

/// The request's line and its body, without what is the same in all of them.
std::string gist(const std::string& request)
{
    const std::string line = request.substr(0, request.find(" HTTP/1.1"));
    const std::string body = request.substr(request.find("\r\n\r\n") + 4);
    return body.empty() ? line : line + " " + body;
}

} // namespace

class RequestsOnTheWireTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void requestIsSentAsTheServiceReadsIt_data();
    void requestIsSentAsTheServiceReadsIt();
    void refusedRequestIsFalse_data();
    void refusedRequestIsFalse();
    void archivingTheCurrentJobClearsItFirst();

    void requestWithALostAnswerIsFalseAndNotRepeated_data();
    void requestWithALostAnswerIsFalseAndNotRepeated();
    void readingAfterALostAnswerShowsTheTruth();
    void lostAnswerMovesTheChangeCountByMoreThanAChange();

    void launchStatusIsTheServicesAnswer_data();
    void launchStatusIsTheServicesAnswer();
    void launchThatTheServiceDoesNotAnswerHasFailedToRun_data();
    void launchThatTheServiceDoesNotAnswerHasFailedToRun();
    void launchHoldsUpNoOtherRequest();

private:
    /// The requests since the last call, as gists.
    Requests sent();

    std::unique_ptr<RawServer> m_server;
    std::unique_ptr<JobManagerRestAPI> m_api;
    std::unique_ptr<MessageCollector> m_messages;
    std::size_t m_seen = 0;
};

/// The job with test 2, prepared for its launch, behind a server that accepts nothing yet.
void RequestsOnTheWireTest::init()
{
    m_messages = std::make_unique<MessageCollector>();
    m_server = std::make_unique<RawServer>();
    m_server->reply("GET /api/v1/jobs/J",
        jsonReply(200, R"({"details": {"id": "J"}, "tests": [{"testType": "otdr", "uiIndex": "2"}]})"));
    m_api = std::make_unique<JobManagerRestAPI>("127.0.0.1", m_server->port());
    m_api->prepareForLaunchTest(job, idOf(2));
    m_seen = m_server->requests().size();
}

void RequestsOnTheWireTest::cleanup()
{
    m_api.reset();
    m_server.reset();
    m_messages.reset();
}

Requests RequestsOnTheWireTest::sent()
{
    Requests gists;
    const Requests all = m_server->requests();
    for (std::size_t i = m_seen; i < all.size(); ++i)
        gists.push_back(gist(all[i]));
    m_seen = all.size();
    return gists;
}

namespace {

/// Each request that changes jobs and answers with its success, and how it stands on the wire.
void addRequests()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<RawReply>("accepted");
    const auto row = [](const char* name, const Request& request, const char* route, const char* body,
                         const RawReply& accepted = emptyReply(204)) {
        QTest::newRow(name) << request << QByteArray(route) << QByteArray(body) << accepted;
    };
    row(
        "set current", [](JobManagerRestAPI& api) { return api.setCurrentJobByID(QStringLiteral("Größe \"1\"")); },
        "PUT /api/v1/active-job", R"({"id":"Größe \"1\""})");
    row(
        "clear current", [](JobManagerRestAPI& api) { return api.setCurrentJobByID(QString()); },
        "PUT /api/v1/active-job", R"({"id":""})");
    row(
        "create from a template",
        [](JobManagerRestAPI& api) {
            return api.createJob(QStringLiteral("N\n1"), QStringLiteral("téch"), QStringLiteral("fiber groß"),
                QStringLiteral("光.txt"), true);
        },
        "POST /api/v1/jobs",
        R"({"workOrderNo":"N\n1","techId":"téch","templateName":"fiber groß","locationsFilename":"光.txt",)"
        R"("syncToNimbrel":true})",
        jsonReply(201, R"({"id": "N\n1"})"));
    row(
        "create bare",
        [](JobManagerRestAPI& api) {
            return api.createJob(QStringLiteral("1"), QStringLiteral("t"), QString(), QString(), false);
        },
        "POST /api/v1/jobs",
        R"({"workOrderNo":"1","techId":"t","templateName":"","locationsFilename":"","syncToNimbrel":false})",
        jsonReply(201, R"({"id": "1"})"));
    row(
        "delete", [](JobManagerRestAPI& api) { return api.deleteJob(QStringLiteral("a/ü")); },
        "DELETE /api/v1/jobs/a%2F%C3%BC", "");
    row(
        "archive", [](JobManagerRestAPI& api) { return api.setIsJobArchived(QStringLiteral("a/ü"), true); },
        "POST /api/v1/jobs/a%2F%C3%BC/archive", "");
    row(
        "restore", [](JobManagerRestAPI& api) { return api.setIsJobArchived(QStringLiteral("a/ü"), false); },
        "POST /api/v1/jobs/a%2F%C3%BC/restore", "");
    row(
        "manual result",
        [](JobManagerRestAPI& api) {
            return api.setManualTestResult(QStringLiteral("no job"), idOf(2, 1), QStringLiteral("größer"), QString());
        },
        "POST /api/v1/manual-responses", R"({"uiIndex":"2_1","text1":"größer","text2":""})");
}

} // namespace

void RequestsOnTheWireTest::requestIsSentAsTheServiceReadsIt_data()
{
    addRequests();
}

void RequestsOnTheWireTest::requestIsSentAsTheServiceReadsIt()
{
    QFETCH(Request, request);
    QFETCH(QByteArray, route);
    QFETCH(QByteArray, body);
    QFETCH(RawReply, accepted);
    m_server->reply(route.toStdString(), accepted);
    QVERIFY(request(*m_api));
    const std::string expected = body.isEmpty() ? route.toStdString() : (route + ' ' + body).toStdString();
    QCOMPARE(sent().back(), expected);
    QCOMPARE(m_server->count(route.toStdString()), std::size_t(1));
}

void RequestsOnTheWireTest::refusedRequestIsFalse_data()
{
    addRequests();
}

void RequestsOnTheWireTest::refusedRequestIsFalse()
{
    QFETCH(Request, request);
    QFETCH(QByteArray, route);
    m_server->reply(route.toStdString(), errorReply(409, "conflict"));
    QVERIFY(!request(*m_api));
    QCOMPARE(m_server->count(route.toStdString()), std::size_t(1));
}

void RequestsOnTheWireTest::archivingTheCurrentJobClearsItFirst()
{
    m_server->reply(activeRoute, activeJobReply("J"));
    m_server->reply("PUT /api/v1/active-job", emptyReply(204));
    m_server->reply("POST /api/v1/jobs/J/archive", emptyReply(204));
    QVERIFY(m_api->setIsJobArchived(job, true));
    QCOMPARE(sent(),
        (Requests{ "GET /api/v1/active-job", R"(PUT /api/v1/active-job {"id":""})", "POST /api/v1/jobs/J/archive" }));
}

void RequestsOnTheWireTest::requestWithALostAnswerIsFalseAndNotRepeated_data()
{
    addRequests();
}

void RequestsOnTheWireTest::requestWithALostAnswerIsFalseAndNotRepeated()
{
    QFETCH(Request, request);
    QFETCH(QByteArray, route);
    m_server->reply(route.toStdString(), { "", {}, 0, {}, RawReply::Then::Close });
    QVERIFY(!request(*m_api));
    // What is read next comes behind anything that was sent once more.
    m_api->getChangeCount();
    QCOMPARE(m_server->count(route.toStdString()), std::size_t(1));
}

void RequestsOnTheWireTest::readingAfterALostAnswerShowsTheTruth()
{
    m_server->reply(activeRoute, activeJobReply("before"));
    QCOMPARE(m_api->getCurrentJobID(), QStringLiteral("before"));
    m_server->reply("PUT /api/v1/active-job", { "", {}, 0, {}, RawReply::Then::Close });
    QVERIFY(!m_api->setCurrentJobByID(QStringLiteral("after")));
    // The service had done it all the same.
    m_server->reply(activeRoute, activeJobReply("after"));
    QCOMPARE(m_api->getCurrentJobID(), QStringLiteral("after"));
}

void RequestsOnTheWireTest::lostAnswerMovesTheChangeCountByMoreThanAChange()
{
    m_server->reply(countRoute, jsonReply(200, R"({"changeCount": 40})"));
    QCOMPARE(m_api->getChangeCount(), 40);
    m_server->reply("PUT /api/v1/active-job", { "", {}, 0, {}, RawReply::Then::Close });
    m_api->setCurrentJobByID(job);
    m_server->reply(countRoute, jsonReply(200, R"({"changeCount": 41})"));
    QVERIFY(std::abs(m_api->getChangeCount() - 40) > 1);
}

void RequestsOnTheWireTest::launchStatusIsTheServicesAnswer_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("status");
    QTest::newRow("accepted") << QByteArray(R"({"success": true})") << QString();
    QTest::newRow("accepted with a message")
        << QByteArray(R"({"success": true, "message": "ERROR_POWER"})") << QString();
    QTest::newRow("refused") << QByteArray(R"({"success": false, "message": "ERROR_OPTION^Größe 光"})")
                             << QStringLiteral("ERROR_OPTION^Größe 光");
    QTest::newRow("refused with a NUL") << QByteArray(R"({"success": false, "message": "ERROR_POWER\u0000more"})")
                                        << QStringLiteral("ERROR_POWER");
    QTest::newRow("refused without a reason") << QByteArray(R"({"success": false, "message": ""})") << lost;
}

void RequestsOnTheWireTest::launchStatusIsTheServicesAnswer()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, status);
    m_server->reply(launchRoute, jsonReply(200, answer.toStdString()));
    QCOMPARE(m_api->launchTest(job, idOf(2, 1)), status);
    QCOMPARE(sent(), Requests{ R"(POST /api/v1/launches {"uiIndex":"2_1"})" });
}

void RequestsOnTheWireTest::launchThatTheServiceDoesNotAnswerHasFailedToRun_data()
{
    using Then = RawReply::Then;
    QTest::addColumn<RawReply>("reply");
    QTest::newRow("closed without an answer") << RawReply{ "", {}, 0, {}, Then::Close };
    QTest::newRow("reset without an answer") << RawReply{ "", {}, 0, {}, Then::Reset };
    QTest::newRow("half an answer") << RawReply{
        "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 17\r\n\r\n{\"success\": tr", {}, 0, {},
        Then::Close
    };
    QTest::newRow("no success in it") << jsonReply(200, R"({"message": "ERROR_POWER"})");
    QTest::newRow("error of the service") << errorReply(500, "internal_error");
}

void RequestsOnTheWireTest::launchThatTheServiceDoesNotAnswerHasFailedToRun()
{
    QFETCH(RawReply, reply);
    m_server->reply(launchRoute, reply);
    QCOMPARE(m_api->launchTest(job, idOf(2)), lost);
    m_api->getChangeCount();
    QCOMPARE(m_server->count(launchRoute), std::size_t(1));

    m_server->stop();
    QCOMPARE(m_api->launchTest(job, idOf(2)), lost);
}

void RequestsOnTheWireTest::launchHoldsUpNoOtherRequest()
{
    m_server->reply(launchRoute, { "", {}, 0, {}, RawReply::Then::Hang });
    m_server->reply(countRoute, jsonReply(200, R"({"changeCount": 40})"));
    std::thread worker([this] { m_api->launchTest(job, idOf(2)); });
    const bool launching = m_server->awaitCount(launchRoute, 1);
    const int count = m_api->getChangeCount();
    m_server->stop();
    worker.join();
    QVERIFY(launching);
    QCOMPARE(count, 40);
}

QTEST_GUILESS_MAIN(RequestsOnTheWireTest)
#include "RequestsOnTheWireTest.moc"
