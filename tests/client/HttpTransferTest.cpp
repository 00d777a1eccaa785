#include "client/HttpTransfer.h"

#include "client/Deadlines.h"
#include "tests/client/ProcessState.h"
#include "tests/client/RawServer.h"

#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace std::chrono_literals;
using job_client::Endpoint;
using job_client::HttpOutcome;
using job_client::HttpRequest;
using job_client::HttpTransfer;
using Clock = std::chrono::steady_clock;
using Kind = HttpOutcome::Kind;
using Then = RawReply::Then;

constexpr std::size_t cap = 1000;
const std::chrono::milliseconds longDeadline = job_client::deadlines::stretched(5000);
const std::chrono::milliseconds shortDeadline = job_client::deadlines::stretched(90);

class HttpTransferTest : public testing::Test
{
protected:
    HttpRequest get(std::chrono::milliseconds deadline = longDeadline) const
    {
        return { "GET", "/x", std::nullopt, deadline, cap, false };
    }
    HttpRequest send(const char* method, std::chrono::milliseconds deadline = longDeadline) const
    {
        return { method, "/x", "{}", deadline, cap, false };
    }

    RawServer server;
    Endpoint endpoint{ "127.0.0.1", server.port() };
    HttpTransfer transfer;
};

TEST_F(HttpTransferTest, anAnswerComesWithStatusTypeAndBody)
{
    server.replyToAll(jsonReply(418, "{}"));
    const HttpOutcome outcome = transfer.run(endpoint, get());
    EXPECT_EQ(outcome.kind, Kind::Answered);
    EXPECT_EQ(outcome.status, 418);
    EXPECT_TRUE(outcome.isJson);
    EXPECT_EQ(outcome.body, "{}");
}

TEST_F(HttpTransferTest, theBodyOfOneAnswerIsNotInTheNext)
{
    server.replyToAll(jsonReply(200, std::string(cap, 'x')));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(transfer.run(endpoint, get()).body.size(), cap);
}

TEST_F(HttpTransferTest, aBodyOverTheCapIsUnusable)
{
    server.replyToAll(jsonReply(200, std::string(cap + 1, 'x')));
    EXPECT_EQ(transfer.run(endpoint, get()).kind, Kind::Unusable);
}

TEST_F(HttpTransferTest, aRefusedConnectionCostsNothing)
{
    server.stop();
    const auto begun = Clock::now();
    EXPECT_EQ(transfer.run(endpoint, get()).kind, Kind::NoConnection);
    EXPECT_LT(Clock::now() - begun, job_client::deadlines::stretched(50));
}

TEST_F(HttpTransferTest, aBrokenTransferIsNoConnection)
{
    server.replyToAll({ "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{", {}, 0, {}, Then::Reset });
    EXPECT_EQ(transfer.run(endpoint, get()).kind, Kind::NoConnection);
}

TEST_F(HttpTransferTest, whatIsNoHttpIsUnusable)
{
    server.replyToAll({ "220 mail ready\r\n", {}, 0, {}, Then::Close });
    EXPECT_EQ(transfer.run(endpoint, get()).kind, Kind::Unusable);
}

TEST_F(HttpTransferTest, theDeadlineIsForTheWholeExchange)
{
    server.replyToAll({ jsonReply(200, std::string(cap, 'x')).bytes, {}, 0, 5ms, Then::Hang });
    const auto begun = Clock::now();
    EXPECT_EQ(transfer.run(endpoint, get(shortDeadline)).kind, Kind::DeadlineMissed);
    const auto taken = Clock::now() - begun;
    EXPECT_GE(taken, shortDeadline - 1ms);
    EXPECT_LT(taken, shortDeadline + job_client::deadlines::stretched(50));
}

TEST_F(HttpTransferTest, aServerThatNeverAcceptsMissesTheDeadline)
{
    server.freeze();
    EXPECT_EQ(transfer.run(endpoint, get(shortDeadline)).kind, Kind::DeadlineMissed);
}

TEST_F(HttpTransferTest, afterAMissedDeadlineTheNextAnswerIsItsOwn)
{
    server.freeze();
    transfer.run(endpoint, get(shortDeadline));
    server.replyToAll(jsonReply(200, R"("new")"));
    server.thaw();
    EXPECT_EQ(transfer.run(endpoint, get()).body, R"("new")");
}

TEST_F(HttpTransferTest, onlyAddressesAreAsked)
{
    for (const char* address : { "localhost", "", "127.0.0.1@127.0.0.1", "127.0.0.1/y" })
        EXPECT_EQ(transfer.run({ address, server.port() }, get()).kind, Kind::NoConnection) << address;
    EXPECT_EQ(server.connections(), 0u);
}

TEST_F(HttpTransferTest, pathsReachTheServerAsTheyAre)
{
    HttpRequest request = get();
    request.path = "/a/../b/%2E%2E/./c//d";
    transfer.run(endpoint, request);
    EXPECT_EQ(server.count("GET /a/../b/%2E%2E/./c//d"), 1u);
}

TEST_F(HttpTransferTest, aRedirectIsNotFollowed)
{
    server.reply("GET /x", { "HTTP/1.1 302 Found\r\nLocation: /y\r\nContent-Length: 0\r\n\r\n" });
    EXPECT_EQ(transfer.run(endpoint, get()).status, 302);
    EXPECT_EQ(server.count("GET /y"), 0u);
}

TEST_F(HttpTransferTest, aCompressedAnswerIsNotUnpacked)
{
    server.replyToAll({ "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Encoding: gzip\r\n"
                        "Content-Length: 2\r\n\r\n{}" });
    EXPECT_EQ(transfer.run(endpoint, get()).body, "{}");
    EXPECT_THAT(server.requests().back(), testing::Not(testing::HasSubstr("Accept-Encoding")));
}

TEST_F(HttpTransferTest, aLargeBodyIsSentWithoutWaitingForPermission)
{
    HttpRequest request = send("POST");
    request.body = std::string(2000000, 'x');
    server.replyToAll(emptyReply(204));
    EXPECT_EQ(transfer.run(endpoint, request).status, 204);
    EXPECT_THAT(server.requests().back(), testing::Not(testing::HasSubstr("Expect:")));
}

TEST_F(HttpTransferTest, aReadIsRepeatedOnAKeptConnectionThatTurnsOutDead)
{
    server.replyToAll(jsonReply(200, "1"));
    transfer.run(endpoint, get());
    server.stop();
    server.restart();
    EXPECT_EQ(transfer.run(endpoint, get()).kind, Kind::Answered);
}

TEST_F(HttpTransferTest, theConnectionIsNotInheritedByChildren)
{
    server.replyToAll(jsonReply(200, "1"));
    transfer.run(endpoint, get());
    const auto sockets = socketsTo(server.port());
    ASSERT_EQ(sockets.size(), 1u);
    EXPECT_NE(fcntl(sockets.front(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(HttpTransferTest, cancelEndsARequestAtOnce)
{
    server.replyToAll({ "", {}, 0, {}, Then::Hang });
    std::thread canceller([this] {
        server.awaitCount("GET /x", 1);
        transfer.cancel();
    });
    const auto begun = Clock::now();
    EXPECT_EQ(transfer.run(endpoint, get(job_client::deadlines::lengthy)).kind, Kind::Unusable);
    EXPECT_LT(Clock::now() - begun, job_client::deadlines::stretched(1000));
    canceller.join();
}

TEST_F(HttpTransferTest, aRequestAfterCancelIsNotMade)
{
    transfer.cancel();
    EXPECT_EQ(transfer.run(endpoint, get()).kind, Kind::Unusable);
    EXPECT_EQ(server.connections(), 0u);
}

TEST_F(HttpTransferTest, theSignalTableStaysAsItIs)
{
    struct sigaction before = {};
    struct sigaction after = {};
    sigaction(SIGPIPE, nullptr, &before);
    server.replyToAll({ "", {}, 0, {}, Then::Reset });
    HttpRequest request = send("POST");
    request.body = std::string(8000000, 'x');
    for (int i = 0; i < 3; ++i)
        transfer.run(endpoint, request);
    sigaction(SIGPIPE, nullptr, &after);
    EXPECT_EQ(before.sa_handler, after.sa_handler);
}

struct Death
{
    std::string name;
    RawReply reply;
};

/// Every method that changes something, on a kept connection that dies without an answer in every way.
class EachWrite : public testing::TestWithParam<std::tuple<const char*, Death>>
{
};

TEST_P(EachWrite, isSentAtMostOnce)
{
    const char* const method = std::get<0>(GetParam());
    RawServer server;
    const Endpoint endpoint{ "127.0.0.1", server.port() };
    HttpTransfer transfer;
    server.reply("GET /x", jsonReply(200, "1"));
    ASSERT_EQ(transfer.run(endpoint, { "GET", "/x", std::nullopt, longDeadline, cap, false }).kind, Kind::Answered);
    server.replyToAll(std::get<1>(GetParam()).reply);

    const HttpOutcome outcome = transfer.run(endpoint, { method, "/x", "{}", longDeadline, cap, false });

    EXPECT_EQ(outcome.kind, Kind::NoConnection);
    EXPECT_EQ(server.count(std::string(method) + " /x"), 1u);
}

INSTANTIATE_TEST_SUITE_P(HttpTransfer, EachWrite,
    testing::Combine(testing::Values("POST", "PUT", "PATCH", "DELETE"),
        testing::Values(Death{ "closes", { "", {}, 0, {}, Then::Close } },
            Death{ "resets", { "", {}, 0, {}, Then::Reset } },
            Death{ "breaksOff", { "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{", {}, 0, {}, Then::Close } })),
    [](const testing::TestParamInfo<std::tuple<const char*, Death>>& testCase) {
        return std::get<0>(testCase.param) + ("_" + std::get<1>(testCase.param).name);
    });

} // namespace
