#include "client/ServiceConnection.h"

#include "client/Deadlines.h"
#include "client/Requests.h"
#include "tests/client/ProcessState.h"
#include "tests/client/RawServer.h"

#include <gtest/gtest.h>

namespace {

namespace requests = job_client::requests;
using job_client::HttpOutcome;
using job_client::ServiceConnection;
using Kind = HttpOutcome::Kind;

const std::string countRoute = "GET /api/v1/change-count";

RawReply countReply(int count)
{
    return jsonReply(200, R"({"changeCount": )" + std::to_string(count) + "}");
}

class ServiceConnectionTest : public testing::Test
{
protected:
    ServiceConnectionTest() { server.reply(countRoute, countReply(40)); }

    void makeItHang()
    {
        server.freeze();
        service->exchange(requests::activeJob());
        service->exchange(requests::activeJob());
    }

    RawServer server;
    std::atomic<int> given{ 0 };
    std::unique_ptr<ServiceConnection> service =
        std::make_unique<ServiceConnection>(job_client::Endpoint{ "127.0.0.1", server.port() }, given);
};

TEST_F(ServiceConnectionTest, whileTheServiceHangsNothingIsAsked)
{
    makeItHang();
    EXPECT_EQ(service->exchange(requests::jobList()).kind, Kind::NotAsked);
    EXPECT_EQ(service->exchange(requests::deleteJob("W-1")).kind, Kind::NotAsked);
}

TEST_F(ServiceConnectionTest, afterAProbeItIsAskedAgain)
{
    makeItHang();
    server.thaw();
    EXPECT_TRUE(probingEnds());
    EXPECT_EQ(service->exchange(requests::activeJob()).kind, Kind::Answered);
}

TEST_F(ServiceConnectionTest, theProbesOwnAnswerIsNotTheOneThatTellsOfTheOutage)
{
    EXPECT_EQ(service->changeCount(), 40);
    makeItHang();
    server.thaw();
    EXPECT_TRUE(probingEnds());
    EXPECT_EQ(service->changeCount(), 42);
    EXPECT_EQ(service->changeCount(), 42);
}

TEST_F(ServiceConnectionTest, aCountThatCannotBeReadLeavesTheOutageUntold)
{
    service->changeCount();
    server.stop();
    service->changeCount();
    server.restart();
    server.reply(countRoute, jsonReply(200, "{}"));
    EXPECT_EQ(service->changeCount(), 40);
    server.reply(countRoute, countReply(40));
    EXPECT_EQ(service->changeCount(), 42);
}

TEST_F(ServiceConnectionTest, theCountGivenIsKnownToTheNextConnection)
{
    service->changeCount();
    EXPECT_EQ(given, 40);
    server.stop();
    ServiceConnection next({ "127.0.0.1", server.port() }, given);
    next.exchange(requests::jobList());
    server.restart();
    EXPECT_EQ(next.changeCount(), 42);
}

TEST_F(ServiceConnectionTest, onceRetiredItNeitherProbesNorLogs)
{
    service->retire();
    testing::internal::CaptureStderr();
    makeItHang();
    server.thaw();
    EXPECT_FALSE(isProbing());
    service.reset();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ServiceConnectionTest, retiringEndsTheProbing)
{
    makeItHang();
    EXPECT_TRUE(probingBegins());
    service->retire();
    EXPECT_TRUE(probingEnds());
}

} // namespace
