#include "service/HttpServer.h"

#include "tests/support/Connection.h"
#include "tests/support/Deadline.h"

#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <gtest/gtest.h>
#include <list>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>

using namespace job_service;
using namespace std::chrono_literals;
using jobmanager_test::Connection;
using jobmanager_test::HttpReply;
using jobmanager_test::stretched;

namespace {

using Clock = std::chrono::steady_clock;

const std::string getQuick = "GET /quick HTTP/1.1\r\n\r\n";
const std::string getSlow = "GET /slow HTTP/1.1\r\n\r\n";

/// A server with short deadlines and calls that the test controls.
class HttpServerTest : public testing::Test
{
protected:
    static HttpServer::Limits shortLimits()
    {
        HttpServer::Limits limits;
        limits.requestDeadline = stretched(300ms);
        limits.responseDeadline = stretched(300ms);
        limits.stopDeadline = stretched(300ms);
        limits.connections = 4;
        limits.waitingCalls = 2;
        limits.workers = 1;
        return limits;
    }

    ~HttpServerTest() override { stop(); }

    void start(const HttpServer::Limits& limits = shortLimits())
    {
        m_server = std::make_unique<HttpServer>(static_cast<unsigned short>(0), limits);
        m_server->listen([this](const HttpHead& head) { return decide(head); });
        m_thread = std::thread([this] { m_server->run(); });
    }
    void stop()
    {
        letSlowCallsEnd();
        if (!m_thread.joinable())
            return;
        m_server->stop();
        m_thread.join();
    }
    unsigned short port() const { return m_server->port(); }

    /// "/slow" waits until this is called.
    void letSlowCallsEnd()
    {
        if (!m_ended.exchange(true))
            m_end.set_value();
    }
    void waitForSlowCalls(int count)
    {
        while (m_slowCalls < count)
            std::this_thread::yield();
    }

    std::unique_ptr<HttpServer> m_server;
    std::thread m_thread;
    std::atomic<int> m_slowCalls{ 0 };

private:
    std::promise<void> m_end;
    std::shared_future<void> m_endFuture = m_end.get_future().share();
    std::atomic<bool> m_ended{ false };

    std::variant<HttpResponse, HttpCall> decide(const HttpHead& head)
    {
        if (head.target == "/quick")
            return HttpCall{ 0, true, [](const std::string&) { return HttpResponse{ 200, "\"quick\"", {} }; } };
        if (head.target == "/worker")
            return HttpCall{ 100, false, [](const std::string& body) { return HttpResponse{ 200, body, {} }; } };
        if (head.target == "/slow") {
            return HttpCall{ 0, false, [this, end = m_endFuture](const std::string&) {
                                ++m_slowCalls;
                                end.wait();
                                return HttpResponse{ 200, "\"slow\"", {} };
                            } };
        }
        if (head.target == "/huge") {
            return HttpCall{ 0, true, [](const std::string&) {
                                return HttpResponse{ 200, std::string(16 << 20, ' '), {} };
                            } };
        }
        if (head.target == "/throws")
            return HttpCall{ 0, false, [](const std::string&) -> HttpResponse { throw std::runtime_error("secret"); } };
        if (head.target == "/nothing")
            return HttpCall{ 0, true, [](const std::string&) { return HttpResponse{ 204, "", {} }; } };
        if (head.target == "/badly")
            throw std::runtime_error("secret");
        return errorResponse(404, "not_found", "No.");
    }
};

TEST_F(HttpServerTest, answersFromTheIoThreadAndFromAWorker)
{
    start();
    const HttpReply quick = Connection(port()).request(getQuick);
    EXPECT_EQ(quick.status, 200);
    EXPECT_EQ(quick.body, "\"quick\"");
    EXPECT_EQ(quick.headers.at("content-type"), "application/json");
    const HttpReply echoed = Connection(port()).request("PUT /worker HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc");
    EXPECT_EQ(echoed.status, 200);
    EXPECT_EQ(echoed.body, "abc");
}

TEST_F(HttpServerTest, aConnectionServesManyRequests)
{
    start();
    Connection connection(port());
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(connection.request("PUT /worker HTTP/1.1\r\nContent-Length: 1\r\n\r\nx").status, 200);
    EXPECT_EQ(connection.request("GET /nothing HTTP/1.1\r\n\r\n").status, 204);
    EXPECT_EQ(connection.request(getQuick).status, 200);
    EXPECT_EQ(connection.request("GET /unknown HTTP/1.1\r\n\r\n").status, 404);
    EXPECT_EQ(connection.request(getQuick).status, 200);
}

TEST_F(HttpServerTest, anAnswerWithoutContentHasNoLength)
{
    start();
    const HttpReply reply = Connection(port()).request("GET /nothing HTTP/1.1\r\n\r\n");
    EXPECT_EQ(reply.status, 204);
    EXPECT_EQ(reply.headers.count("content-length"), 0u);
    EXPECT_EQ(reply.headers.count("transfer-encoding"), 0u);
}

TEST_F(HttpServerTest, theConnectionEndsWhenTheClientWantsItTo)
{
    start();
    Connection connection(port());
    EXPECT_EQ(connection.request("GET /quick HTTP/1.1\r\nConnection: close\r\n\r\n").status, 200);
    EXPECT_TRUE(connection.waitForClose());
    Connection old(port());
    EXPECT_EQ(old.request("GET /quick HTTP/1.0\r\n\r\n").status, 200);
    EXPECT_TRUE(old.waitForClose());
}

TEST_F(HttpServerTest, pipelinedRequestsAreAnsweredInOrder)
{
    start();
    std::string bytes;
    for (int i = 0; i < 500; ++i) {
        const std::string body = std::to_string(i);
        bytes += "PUT /worker HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
        bytes += getQuick;
    }
    Connection connection(port());
    HttpReply reply = connection.request(bytes);
    for (int i = 0; i < 500; ++i) {
        ASSERT_EQ(reply.body, std::to_string(i));
        ASSERT_EQ(connection.readReply().body, "\"quick\"");
        if (i < 499)
            reply = connection.readReply();
    }
}

struct StallCase
{
    const char* name;
    const char* bytes;
};

class StalledRequest : public HttpServerTest, public testing::WithParamInterface<StallCase>
{
};

TEST_P(StalledRequest, isClosedAtItsDeadline)
{
    start();
    Connection connection(port());
    const auto begin = Clock::now();
    ASSERT_TRUE(connection.send(GetParam().bytes));
    EXPECT_TRUE(connection.waitForClose());
    EXPECT_GE(Clock::now() - begin, shortLimits().requestDeadline - 50ms);
    EXPECT_EQ(Connection(port()).request(getQuick).status, 200);
}

INSTANTIATE_TEST_SUITE_P(Bytes, StalledRequest,
    testing::Values(StallCase{ "idle", "" }, StallCase{ "halfAHead", "GET /quick HTTP/1.1\r\nX: " },
        StallCase{ "halfABody", "PUT /worker HTTP/1.1\r\nContent-Length: 10\r\n\r\nabc" },
        StallCase{ "chunksWithoutEnd", "PUT /worker HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n" },
        StallCase{ "noBodyAfterContinue", "PUT /worker HTTP/1.1\r\nContent-Length: 3\r\nExpect: 100-continue\r\n\r\n" },
        StallCase{ "idleAfterAnAnswer", "GET /quick HTTP/1.1\r\n\r\n" }),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(HttpServerTest, drippingBytesDoNotStretchTheDeadline)
{
    start();
    Connection connection(port());
    const auto begin = Clock::now();
    // A byte at a time, as fast as the peer takes them, with a pause that is short against the deadline.
    while (connection.send("x") && Clock::now() - begin < 10 * shortLimits().requestDeadline)
        std::this_thread::sleep_for(shortLimits().requestDeadline / 20);
    EXPECT_LT(Clock::now() - begin, 3 * shortLimits().requestDeadline);
}

TEST_F(HttpServerTest, theOneThatWaitsLongestMakesRoom)
{
    HttpServer::Limits limits = shortLimits();
    limits.requestDeadline = stretched(60s);
    start(limits);
    Connection first(port());
    ASSERT_EQ(first.request(getQuick).status, 200);
    Connection second(port());
    ASSERT_EQ(second.request(getQuick).status, 200);
    Connection third(port());
    ASSERT_TRUE(third.send("GET /qui"));
    Connection fourth(port());
    ASSERT_EQ(fourth.request(getQuick).status, 200);
    ASSERT_EQ(first.request(getQuick).status, 200);

    // The second has waited longest: the third has only half of a request, but began later.
    Connection fifth(port());
    EXPECT_EQ(fifth.request(getQuick).status, 200);
    EXPECT_TRUE(second.waitForClose());
    EXPECT_EQ(first.request(getQuick).status, 200);
    EXPECT_EQ(third.request("ck HTTP/1.1\r\n\r\n").status, 200);
}

TEST_F(HttpServerTest, manyIdleConnectionsKeepNobodyOut)
{
    HttpServer::Limits limits = shortLimits();
    limits.requestDeadline = stretched(60s);
    start(limits);
    std::list<Connection> idle;
    for (int i = 0; i < 64; ++i)
        idle.emplace_back(port());
    EXPECT_EQ(Connection(port()).request(getQuick).status, 200);
}

TEST_F(HttpServerTest, whenAllAreBeingAnsweredANewConnectionIsClosed)
{
    HttpServer::Limits limits = shortLimits();
    limits.connections = 2;
    start(limits);
    Connection first(port());
    Connection second(port());
    ASSERT_TRUE(first.send(getSlow));
    ASSERT_TRUE(second.send(getSlow));
    waitForSlowCalls(1);
    // The second call waits for the worker; until its request has been read, it could make room.
    for (;;) {
        Connection third(port());
        if (third.request(getQuick).status == 0)
            break;
    }
    letSlowCallsEnd();
    EXPECT_EQ(first.readReply().status, 200);
}

TEST_F(HttpServerTest, aFullQueueAnswersThatItIsBusy)
{
    HttpServer::Limits limits = shortLimits();
    limits.connections = 10;
    start(limits);
    std::list<Connection> calls;
    calls.emplace_back(port());
    ASSERT_TRUE(calls.back().send(getSlow));
    waitForSlowCalls(1);
    // Two wait in the queue. Each connection is read in the order in which it came or later, so ask until one is told.
    HttpReply busy;
    while (busy.status == 0) {
        calls.emplace_back(port(), 100ms);
        busy = calls.back().request(getSlow);
    }
    EXPECT_EQ(busy.status, 503);
    EXPECT_EQ(busy.headers.at("retry-after"), "1");
    EXPECT_NE(busy.body.find("\"busy\""), std::string::npos);
    EXPECT_EQ(calls.size(), 4u) << "one runs, two wait";
    EXPECT_EQ(Connection(port()).request(getQuick).status, 200) << "the I/O thread still answers";
    letSlowCallsEnd();
    EXPECT_EQ(calls.front().readReply().status, 200);
}

TEST_F(HttpServerTest, aLongCallDoesNotDelayWhatTheIoThreadAnswers)
{
    start();
    Connection slow(port());
    ASSERT_TRUE(slow.send(getSlow));
    waitForSlowCalls(1);
    Connection quick(port());
    const auto begin = Clock::now();
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(quick.request(getQuick).status, 200);
    EXPECT_LT(Clock::now() - begin, stretched(2s));
    letSlowCallsEnd();
    EXPECT_EQ(slow.readReply().body, "\"slow\"");
}

TEST_F(HttpServerTest, whatAHandlerThrowsStaysInside)
{
    start();
    for (const char* target : { "/throws", "/badly" }) {
        Connection connection(port());
        const std::string request = std::string("GET ") + target + " HTTP/1.1\r\n\r\n";
        testing::internal::CaptureStderr();
        const HttpReply reply = connection.request(request);
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(reply.status, 500);
        EXPECT_EQ(reply.body, R"({"error":{"code":"internal_error","message":"The service failed."}})");
        EXPECT_EQ(log, "job-service: a request failed: secret\n");
        EXPECT_EQ(connection.request(getQuick).status, 200);
    }
}

TEST_F(HttpServerTest, aBodyOverTheLimitIsRefusedAndTheConnectionCloses)
{
    start();
    for (const std::string& head : { std::string("Content-Length: 101\r\n\r\n"),
             std::string("Content-Length: 101\r\n\r\n") + std::string(101, 'x'),
             std::string("Transfer-Encoding: chunked\r\n\r\n65\r\n") + std::string(101, 'x') + "\r\n0\r\n\r\n" }) {
        Connection connection(port());
        EXPECT_EQ(connection.request("PUT /worker HTTP/1.1\r\n" + head).status, 413) << head;
        EXPECT_TRUE(connection.waitForClose());
    }
    Connection fits(port());
    EXPECT_EQ(fits.request("PUT /worker HTTP/1.1\r\nContent-Length: 100\r\n\r\n" + std::string(100, 'x')).status, 200);
}

TEST_F(HttpServerTest, whoExpectsToBeAskedForTheBodyIsAskedBeforeItComes)
{
    start();
    Connection connection(port());
    const std::string head = "PUT /worker HTTP/1.1\r\nContent-Length: 3\r\nExpect: 100-Continue\r\n\r\n";
    for (const std::string& body : { std::string("abc"), std::string("def") }) {
        const HttpReply asked = connection.request(head);
        EXPECT_EQ(asked.status, 100);
        EXPECT_EQ(asked.body, "");
        const HttpReply answer = connection.request(body);
        EXPECT_EQ(answer.status, 200);
        EXPECT_EQ(answer.body, body);
    }
}

TEST_F(HttpServerTest, whoseBodyWouldBeRefusedIsNotAskedForIt)
{
    start();
    for (const char* head :
        { "PUT /worker HTTP/1.1\r\nContent-Length: 101\r\n", "PUT /unknown HTTP/1.1\r\nContent-Length: 3\r\n" }) {
        Connection connection(port());
        EXPECT_GE(connection.request(std::string(head) + "Expect: 100-continue\r\n\r\n").status, 400) << head;
    }
}

TEST_F(HttpServerTest, anOldClientIsNotAskedForTheBody)
{
    start();
    const HttpReply answer =
        Connection(port()).request("PUT /worker HTTP/1.0\r\nContent-Length: 3\r\nExpect: 100-continue\r\n\r\nabc");
    EXPECT_EQ(answer.status, 200);
}

TEST_F(HttpServerTest, anAnswerThatNobodyReadsIsGivenUp)
{
    start();
    Connection connection(port(), 20s);
    ASSERT_TRUE(connection.send("GET /huge HTTP/1.1\r\n\r\n"));
    const auto begin = Clock::now();
    while (Clock::now() - begin < 2 * shortLimits().responseDeadline)
        EXPECT_EQ(Connection(port()).request(getQuick).status, 200);
    EXPECT_LT(connection.exchange("").size(), 16u << 20);
}

TEST_F(HttpServerTest, clientsThatVanishDoNoHarm)
{
    start();
    for (int i = 0; i < 30; ++i) {
        Connection connection(port());
        ASSERT_TRUE(connection.send(i % 2 ? "GET /huge HTTP/1.1\r\n\r\n" : "PUT /worker HTTP/1.1\r\nContent-Le"));
        const linger reset{ 1, 0 };
        if (i % 3 == 0)
            ::setsockopt(connection.descriptor(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    }
    EXPECT_EQ(Connection(port()).request(getQuick).status, 200);
}

TEST_F(HttpServerTest, stoppingEndsIdleConnectionsAtOnce)
{
    HttpServer::Limits limits = shortLimits();
    limits.requestDeadline = stretched(60s);
    limits.stopDeadline = stretched(60s);
    start(limits);
    Connection idle(port());
    ASSERT_EQ(idle.request(getQuick).status, 200);
    const auto begin = Clock::now();
    stop();
    EXPECT_LT(Clock::now() - begin, stretched(10s));
    EXPECT_TRUE(idle.waitForClose());
}

TEST_F(HttpServerTest, stoppingLetsARunningCallAnswer)
{
    HttpServer::Limits limits = shortLimits();
    limits.stopDeadline = stretched(60s);
    start(limits);
    Connection connection(port());
    ASSERT_TRUE(connection.send(getSlow));
    waitForSlowCalls(1);
    m_server->stop();
    // Once nobody can connect any more, the stop has begun.
    while (Connection(port()).isConnected()) { }
    letSlowCallsEnd();
    EXPECT_EQ(connection.readReply().body, "\"slow\"");
    stop();
}

TEST_F(HttpServerTest, stoppingDoesNotWaitForAPeerThatDoesNotRead)
{
    HttpServer::Limits limits = shortLimits();
    limits.responseDeadline = stretched(60s);
    start(limits);
    Connection connection(port(), 60s);
    ASSERT_TRUE(connection.send("GET /huge HTTP/1.1\r\n\r\n"));
    ASSERT_EQ(Connection(port()).request(getQuick).status, 200);
    const auto begin = Clock::now();
    stop();
    EXPECT_LT(Clock::now() - begin, stretched(10s));
}

TEST_F(HttpServerTest, aTakenPortIsRefused)
{
    start();
    const unsigned short taken = port();
    EXPECT_THROW(
        {
            HttpServer other(taken);
            other.listen([](const HttpHead&) { return HttpResponse(); });
        },
        PortRefused);
    EXPECT_EQ(Connection(taken).request(getQuick).status, 200);
}

TEST_F(HttpServerTest, childProcessesInheritNoSocket)
{
    start();
    Connection connection(port());
    ASSERT_EQ(connection.request(getQuick).status, 200);
    int sockets = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        struct stat status
        {
        };
        if (::fstat(descriptor, &status) != 0 || !S_ISSOCK(status.st_mode))
            continue;
        ++sockets;
        EXPECT_TRUE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC) << descriptor;
    }
    EXPECT_GE(sockets, 3) << "the listening one and both ends of the connection";
}

} // namespace
