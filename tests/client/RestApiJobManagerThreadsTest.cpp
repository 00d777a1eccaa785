// Calls of several threads at once.

#include "client/Deadlines.h"
#include "client/RestApiJobManager.h"
#include "tests/client/Operations.h"
#include "tests/client/ProcessState.h"
#include "tests/client/RawServer.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

const std::string countRoute = "GET /api/v1/change-count";

class RestApiJobManagerThreadsTest : public testing::Test
{
protected:
    RestApiJobManagerThreadsTest() { answerWell(server); }

    static void answerWell(RawServer& which)
    {
        for (const Operation& operation : operations())
            which.reply(operation.route, operation.goodReply());
    }

    RawServer server;
    RestApiJobManager client{ "127.0.0.1", server.port() };
};

TEST_F(RestApiJobManagerThreadsTest, aLongLaunchNeverDelaysTheChangeCount)
{
    server.reply("POST /api/v1/launches", { "", {}, 0, {}, RawReply::Then::Hang });
    std::thread worker([this] { EXPECT_FALSE(client.launchTest("2").success); });
    ASSERT_TRUE(server.awaitCount("POST /api/v1/launches", 1));
    for (int i = 0; i < 50; ++i) {
        const auto begun = Clock::now();
        EXPECT_EQ(client.getChangeCount(), 12);
        EXPECT_LT(Clock::now() - begun, job_client::deadlines::small);
    }
    server.stop();
    worker.join();
}

TEST_F(RestApiJobManagerThreadsTest, everyOperationMayBeCalledFromEveryThread)
{
    std::vector<std::thread> threads;
    for (std::size_t first = 0; first < 6; ++first) {
        threads.emplace_back([this, first] {
            for (std::size_t i = 0; i < 2 * operations().size(); ++i) {
                const Operation& operation = operations()[(first * 5 + i) % operations().size()];
                EXPECT_EQ(operation.call(client), operation.goodResult) << operation;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(RestApiJobManagerThreadsTest, theEndpointMayBeAssignedWhileCallsAreUnderWay)
{
    RawServer other;
    answerWell(other);
    std::atomic<bool> done{ false };
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([this, &done] {
            while (!done) {
                EXPECT_EQ(operation("getJobList").call(client), operation("getJobList").goodResult);
                EXPECT_EQ(operation("getChangeCount").call(client), "12");
            }
        });
    }
    for (int i = 0; i < 200; ++i) {
        const RestApiJobManager temporary("127.0.0.1", i % 2 == 0 ? other.port() : server.port());
        client.serviceAddress = temporary.serviceAddress;
        client.servicePort = temporary.servicePort;
        client.getChangeCount();
    }
    done = true;
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(RestApiJobManagerThreadsTest, anOutageSeenByManyThreadsIsOneOutage)
{
    client.getChangeCount();
    testing::internal::CaptureStderr();
    server.freeze();
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i)
        threads.emplace_back([this] { client.getActiveWorkorderID(); });
    for (std::thread& thread : threads)
        thread.join();
    server.thaw();
    int count = 12;
    while (count == 12)
        count = client.getChangeCount();
    const std::string log = testing::internal::GetCapturedStderr();

    EXPECT_EQ(count, 14);
    EXPECT_EQ(client.getChangeCount(), 14);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2) << log;
}

TEST_F(RestApiJobManagerThreadsTest, aServiceThatComesAndGoesLeavesTheClientWell)
{
    std::atomic<bool> done{ false };
    std::vector<std::thread> threads;
    for (const char* name : { "getChangeCount", "getActiveWorkorderID", "getJobList", "deleteJob" }) {
        threads.emplace_back([this, &done, name] {
            while (!done)
                operation(name).call(client);
        });
    }
    testing::internal::CaptureStderr();
    for (int i = 0; i < 5; ++i) {
        server.freeze();
        while (!isProbing())
            std::this_thread::sleep_for(1ms);
        server.thaw();
        EXPECT_TRUE(probingEnds());
        server.stop();
        server.restart();
    }
    done = true;
    for (std::thread& thread : threads)
        thread.join();
    testing::internal::GetCapturedStderr();

    EXPECT_EQ(operation("getJobList").call(client), operation("getJobList").goodResult);
    const int count = client.getChangeCount();
    EXPECT_EQ(client.getChangeCount(), count);
}

} // namespace
