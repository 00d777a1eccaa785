// What each operation sends and gives while the service is well.

#include "client/RestApiJobManager.h"

#include "tests/client/Operations.h"
#include "tests/client/ProcessState.h"
#include "tests/client/RawServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

std::string caseName(const testing::TestParamInfo<Operation>& info)
{
    return info.param.name;
}

std::string bodyOf(const std::string& request)
{
    return request.substr(request.find("\r\n\r\n") + 4);
}

class EachOperation : public testing::TestWithParam<Operation>
{
protected:
    EachOperation() { server.reply(GetParam().route, GetParam().goodReply()); }

    RawServer server;
    RestApiJobManager client{ "127.0.0.1", server.port() };
};

TEST_P(EachOperation, givesWhatTheServiceAnswers)
{
    EXPECT_EQ(GetParam().call(client), GetParam().goodResult);
}

TEST_P(EachOperation, sendsExactlyItsRequest)
{
    GetParam().call(client);

    std::string expected = GetParam().route + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port())
        + "\r\nAccept: application/json\r\n";
    if (!GetParam().body.empty()) {
        expected += "Content-Type: application/json\r\nContent-Length: " + std::to_string(GetParam().body.size())
            + "\r\n\r\n" + GetParam().body;
    } else if (GetParam().route.substr(0, 5) == "POST ") {
        expected += "Content-Length: 0\r\n\r\n";
    } else {
        expected += "\r\n";
    }
    EXPECT_EQ(server.requests(), std::vector<std::string>{ expected });
}

INSTANTIATE_TEST_SUITE_P(RestApiJobManager, EachOperation, testing::ValuesIn(operations()), caseName);

class RestApiJobManagerTest : public testing::Test
{
protected:
    RawServer server;
    RestApiJobManager client{ "127.0.0.1", server.port() };
};

TEST_F(RestApiJobManagerTest, theConstructorKeepsAddressAndPort)
{
    EXPECT_EQ(std::string(client.serviceAddress), "127.0.0.1");
    EXPECT_EQ(client.servicePort, server.port());
}

TEST_F(RestApiJobManagerTest, constructionStartsAndConnectsNothing)
{
    const auto threads = threadNames();
    const RestApiJobManager another("127.0.0.1", server.port());
    EXPECT_EQ(threadNames(), threads);
    EXPECT_EQ(server.connections(), 0u);
}

TEST_F(RestApiJobManagerTest, callsOfAWellServiceStartNoThread)
{
    client.getChangeCount(); // libcurl itself is set up
    const auto threads = threadNames();
    for (const Operation& operation : operations()) {
        server.reply(operation.route, operation.goodReply());
        operation.call(client);
    }
    EXPECT_EQ(threadNames(), threads);
}

TEST_F(RestApiJobManagerTest, readsKeepTheirConnection)
{
    server.reply("GET /api/v1/change-count", jsonReply(200, R"({"changeCount": 1})"));
    for (int i = 0; i < 5; ++i)
        client.getChangeCount();
    EXPECT_EQ(server.count("GET /api/v1/change-count"), 5u);
    EXPECT_EQ(server.connections(), 1u);
}

TEST_F(RestApiJobManagerTest, anUnknownJobGivesADefaultRecord)
{
    server.replyToAll(errorReply(404, "job_not_found"));
    const auto job = client.getJob("W-9");
    EXPECT_EQ(job.details.id, "");
    EXPECT_FALSE(job.tests);
    EXPECT_EQ(job.cdmVersion, "2.2");
    EXPECT_NE(job.details.timestamp.value, "");
}

TEST_F(RestApiJobManagerTest, theEmptyIdClearsTheCurrentJob)
{
    server.reply("PUT /api/v1/active-job", emptyReply(204));
    EXPECT_TRUE(client.setActiveWorkorderID(""));
    EXPECT_EQ(bodyOf(server.requests().back()), R"({"id":""})");
}

TEST_F(RestApiJobManagerTest, newJobPassesOnThatNothingIsToBeSynced)
{
    server.reply("POST /api/v1/jobs", jsonReply(201, R"({"id": "W-3"})"));
    EXPECT_TRUE(client.newJob("W-3", "T7", "", "", false));
    EXPECT_EQ(bodyOf(server.requests().back()),
        R"({"workOrderNo":"W-3","techId":"T7","templateName":"","locationsFilename":"","syncToNimbrel":false})");
}

TEST_F(RestApiJobManagerTest, bytesThatAreNoTextAreReplacedInABody)
{
    server.reply("PUT /api/v1/active-job", emptyReply(204));
    client.setActiveWorkorderID("a\xFF");
    EXPECT_EQ(bodyOf(server.requests().back()), "{\"id\":\"a\xEF\xBF\xBD\"}");
}

TEST_F(RestApiJobManagerTest, aSuccessfulLaunchIsToldWithItsMessage)
{
    server.reply("POST /api/v1/launches", jsonReply(200, R"({"success": true, "message": "started"})"));
    const auto result = client.launchTest("0");
    EXPECT_TRUE(result.success);
    EXPECT_EQ(result.message, "started");
}

TEST_F(RestApiJobManagerTest, aFailedLaunchNeverHasAnEmptyMessage)
{
    server.reply("POST /api/v1/launches", jsonReply(200, R"({"success": false, "message": ""})"));
    const auto result = client.launchTest("0");
    EXPECT_FALSE(result.success);
    EXPECT_EQ(result.message, "ERROR_CAN_LAUNCH_FAILED_TO_RUN");
}

TEST_F(RestApiJobManagerTest, anEmptyJobListIsAnAnswer)
{
    server.reply("GET /api/v1/jobs", jsonReply(200, R"({"jobs": [{"id": "W-1"}]})"));
    EXPECT_EQ(client.getJobList().size(), 1u);
    server.reply("GET /api/v1/jobs", jsonReply(200, R"({"jobs": []})"));
    EXPECT_TRUE(client.getJobList().empty());
}

TEST_F(RestApiJobManagerTest, theEnvironmentsProxyIsNotAsked)
{
    const RawServer proxy;
    const std::string address = "http://127.0.0.1:" + std::to_string(proxy.port());
    server.reply("GET /api/v1/change-count", jsonReply(200, R"({"changeCount": 12})"));
    setenv("http_proxy", address.c_str(), 1);
    setenv("ALL_PROXY", address.c_str(), 1);
    EXPECT_EQ(client.getChangeCount(), 12);
    unsetenv("http_proxy");
    unsetenv("ALL_PROXY");
    EXPECT_EQ(proxy.connections(), 0u);
}

TEST_F(RestApiJobManagerTest, localhostIsAskedWithoutALookUp)
{
    server.reply("GET /api/v1/change-count", jsonReply(200, R"({"changeCount": 12})"));
    const RestApiJobManager local("localhost", server.port());
    EXPECT_EQ(local.getChangeCount(), 12);
    EXPECT_THAT(server.requests().back(), HasSubstr("\r\nHost: 127.0.0.1:"));
}

} // namespace
