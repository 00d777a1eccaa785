#include "client/TransferPool.h"

#include "client/Deadlines.h"
#include "tests/client/ProcessState.h"
#include "tests/client/RawServer.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

using job_client::Endpoint;
using job_client::HttpOutcome;
using job_client::HttpRequest;
using job_client::TransferPool;

class TransferPoolTest : public testing::Test
{
protected:
    HttpOutcome get(const std::string& path)
    {
        const HttpRequest request{ "GET", path, std::nullopt, job_client::deadlines::ordinary, 1000, false };
        return pool.run({ "127.0.0.1", server.port() }, request);
    }
    /// Requests for paths that are answered only when the server is thawed, one thread each.
    void getAtOnce(int count)
    {
        server.freeze();
        std::vector<std::thread> threads;
        std::atomic<int> answered{ 0 };
        for (int i = 0; i < count; ++i)
            threads.emplace_back(
                [&, i] { answered += get("/" + std::to_string(i)).body == std::to_string(i) ? 1 : 0; });
        server.thaw();
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(answered, count);
    }

    RawServer server;
    TransferPool pool;
};

TEST_F(TransferPoolTest, requestsOneAfterTheOtherShareAConnection)
{
    for (int i = 0; i < 5; ++i)
        get("/x");
    EXPECT_EQ(server.connections(), 1u);
}

TEST_F(TransferPoolTest, requestsAtTheSameTimeGetTheirOwnAnswers)
{
    for (int i = 0; i < 20; ++i)
        server.reply("GET /" + std::to_string(i), jsonReply(200, std::to_string(i)));
    getAtOnce(20);
    getAtOnce(20);
}

TEST_F(TransferPoolTest, noMoreThanFourConnectionsAreKept)
{
    for (int i = 0; i < 12; ++i)
        server.reply("GET /" + std::to_string(i), jsonReply(200, std::to_string(i)));
    getAtOnce(12);
    EXPECT_LE(socketsTo(server.port()).size(), 4u);
}

} // namespace
