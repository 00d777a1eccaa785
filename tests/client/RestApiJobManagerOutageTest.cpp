// What the caller sees of an outage: last good answers, a count that moves once, calls that fail at once, two lines.

#include "client/Deadlines.h"
#include "client/RestApiJobManager.h"
#include "tests/client/Faults.h"
#include "tests/client/ProcessState.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace std::chrono_literals;
using job_client::deadlines::stretched;
using Clock = std::chrono::steady_clock;

const std::string countRoute = "GET /api/v1/change-count";
const RawReply silence{ "", {}, 0, {}, RawReply::Then::Hang };

RawReply countReply(int count)
{
    return jsonReply(200, R"({"changeCount": )" + std::to_string(count) + "}");
}

RawReply listReply(const std::string& id)
{
    return jsonReply(200, R"({"jobs": [{"id": ")" + id + R"("}]})");
}

RawReply jobReply(const std::string& id)
{
    return jsonReply(200, R"({"details": {"id": ")" + id + R"("}, "tests": []})");
}

template <typename Action> Clock::duration timeOf(Action action)
{
    const auto begun = Clock::now();
    action();
    return Clock::now() - begun;
}

class RestApiJobManagerOutageTest : public testing::Test
{
protected:
    RestApiJobManagerOutageTest() { answerWell(server); }

    static void answerWell(RawServer& which)
    {
        for (const Operation& operation : operations())
            which.reply(operation.route, operation.goodReply());
        which.reply(countRoute, countReply(40));
    }

    /// Polls as the front end does until the count has moved; its last value.
    int pollUntilMovedFrom(int count)
    {
        const auto begun = Clock::now();
        int now = count;
        while (now == count && Clock::now() - begun < 60s) {
            std::this_thread::sleep_for(20ms);
            now = client->getChangeCount();
        }
        return now;
    }

    /// What the main thread does by itself in one update, beside the poll.
    void refresh()
    {
        client->getActiveWorkorderID();
        client->getActiveWorkorderID();
        client->getSettingsListInfo();
        client->setUiGroupType("location");
        client->writeSetting("groupType", "2");
        client->getInstrumentLoginConfig();
    }

    RawServer server;
    std::unique_ptr<RestApiJobManager> client = std::make_unique<RestApiJobManager>("127.0.0.1", server.port());
};

// The count

TEST_F(RestApiJobManagerOutageTest, theCountStandsStillWhileTheServiceIsAway)
{
    EXPECT_EQ(client->getChangeCount(), 40);
    server.stop();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(client->getChangeCount(), 40);
}

TEST_F(RestApiJobManagerOutageTest, theCountMovesByAtLeastTwoAndOnceWhenTheServiceIsBack)
{
    client->getChangeCount();
    server.stop();
    client->getChangeCount();
    server.restart();
    for (const int own : { 40, 40, 41, 42 }) {
        server.reply(countRoute, countReply(own));
        EXPECT_EQ(client->getChangeCount(), own + 2);
    }
}

TEST_F(RestApiJobManagerOutageTest, aServiceThatCountedOnByOneMeanwhileMovesTheCountByTwo)
{
    client->getChangeCount();
    server.stop();
    client->getChangeCount();
    server.reply(countRoute, countReply(41));
    server.restart();
    EXPECT_EQ(client->getChangeCount(), 42);
}

TEST_F(RestApiJobManagerOutageTest, aServiceThatWasNeverReachedMovesTheCountFromZero)
{
    server.stop();
    EXPECT_EQ(client->getChangeCount(), 0);
    server.reply(countRoute, countReply(1));
    server.restart();
    EXPECT_GE(client->getChangeCount(), 2);
}

TEST_F(RestApiJobManagerOutageTest, anotherAnswerBeforeTheCountDoesNotHideTheOutage)
{
    client->getChangeCount();
    server.stop();
    client->getJobList();
    server.restart();
    client->getJobList();
    client->getActiveWorkorderID();
    EXPECT_EQ(client->getChangeCount(), 42);
    EXPECT_EQ(client->getChangeCount(), 42);
}

TEST_F(RestApiJobManagerOutageTest, aRestartThatNobodyNoticedIsNoOutage)
{
    client->getChangeCount();
    server.stop();
    server.restart();
    EXPECT_EQ(client->getChangeCount(), 40);
}

// The last good answers

TEST_F(RestApiJobManagerOutageTest, theLastAnswerIsTheOneThatStands)
{
    server.reply("GET /api/v1/jobs", listReply("old"));
    client->getJobList();
    server.reply("GET /api/v1/jobs", listReply("new"));
    client->getJobList();
    server.stop();
    ASSERT_EQ(client->getJobList().size(), 1u);
    EXPECT_EQ(client->getJobList().front().id, "new");
}

TEST_F(RestApiJobManagerOutageTest, theLastEightJobsStand)
{
    for (int i = 1; i <= 9; ++i) {
        const std::string id = "W-" + std::to_string(i);
        server.reply("GET /api/v1/jobs/" + id, jobReply(id));
        client->getJob(id);
    }
    server.stop();
    for (int i = 2; i <= 9; ++i) {
        const auto job = client->getJob("W-" + std::to_string(i));
        EXPECT_EQ(job.details.id, "W-" + std::to_string(i));
        EXPECT_TRUE(job.tests);
    }
    const auto forgotten = client->getJob("W-1");
    EXPECT_EQ(forgotten.details.id, "W-1");
    EXPECT_FALSE(forgotten.tests);
}

TEST_F(RestApiJobManagerOutageTest, aJobThatBecameUnknownIsNotRemembered)
{
    server.reply("GET /api/v1/jobs/W-1", jobReply("W-1"));
    client->getJob("W-1");
    server.reply("GET /api/v1/jobs/W-1", errorReply(404, "job_not_found"));
    EXPECT_EQ(client->getJob("W-1").details.id, "");
    server.stop();
    EXPECT_FALSE(client->getJob("W-1").tests);
}

// Hanging

TEST_F(RestApiJobManagerOutageTest, aHungServiceCostsPollingAndRefreshingNoMoreThan200Milliseconds)
{
    client->getChangeCount();
    refresh();
    server.freeze();
    const auto taken = timeOf([this] {
        for (int i = 0; i < 50; ++i) {
            client->getChangeCount();
            refresh();
        }
    });
    EXPECT_LE(taken, stretched(200));
}

TEST_F(RestApiJobManagerOutageTest, withAHungServiceAtStartUpAllThatAFrontEndAsksTakesNoSecond)
{
    server.freeze();
    const auto taken = timeOf([this] {
        client->setUiGroupType("job_order");
        EXPECT_EQ(client->getChangeCount(), 0);
        EXPECT_TRUE(client->getJobList().empty());
        refresh();
        EXPECT_EQ(client->getJob("W-1").details.id, "W-1");
    });
    EXPECT_LT(taken, stretched(1000));
}

TEST_F(RestApiJobManagerOutageTest, onceTheServiceHangsNothingButProbesIsSent)
{
    server.replyToAll(silence);
    client->getChangeCount();
    client->getActiveWorkorderID();
    const std::size_t sent = server.requests().size();
    for (const Operation& operation : operations())
        EXPECT_EQ(operation.call(*client), operation.failedResult) << operation;
    EXPECT_EQ(server.requests().size(), sent + server.count(countRoute) - 1);
}

TEST_F(RestApiJobManagerOutageTest, oneMissedDeadlineIsNotEnough)
{
    server.replyToAll(silence);
    client->getChangeCount();
    EXPECT_FALSE(isProbing());
    answerWell(server);
    EXPECT_EQ(client->getActiveWorkorderID(), "W-2");
    server.replyToAll(silence);
    client->getChangeCount();
    EXPECT_FALSE(isProbing());
}

TEST_F(RestApiJobManagerOutageTest, oneDeadlineMissedByTheListIsEnough)
{
    server.replyToAll(silence);
    client->getJobList();
    EXPECT_TRUE(probingBegins());
    EXPECT_LT(timeOf([this] { client->getChangeCount(); }), stretched(50));
}

TEST_F(RestApiJobManagerOutageTest, refusalsAreNeverTakenForHanging)
{
    server.stop();
    const auto taken = timeOf([this] {
        for (int i = 0; i < 100; ++i)
            client->getChangeCount();
    });
    EXPECT_FALSE(isProbing());
    EXPECT_LT(taken, stretched(2000));
}

TEST_F(RestApiJobManagerOutageTest, threeSecondsAfterTheServiceAllIsRead)
{
    client->getChangeCount();
    server.freeze();
    client->getChangeCount();
    client->getChangeCount();
    server.reply("GET /api/v1/jobs", listReply("missed"));
    server.thaw();
    const auto taken = timeOf([this] {
        EXPECT_EQ(pollUntilMovedFrom(40), 42);
        EXPECT_EQ(client->getJobList().front().id, "missed");
    });
    EXPECT_LE(taken, 3s);
    EXPECT_EQ(client->getChangeCount(), 42);
}

TEST_F(RestApiJobManagerOutageTest, theProbingThreadEndsWithTheOutage)
{
    server.freeze();
    client->getChangeCount();
    client->getChangeCount();
    EXPECT_TRUE(probingBegins());
    server.thaw();
    pollUntilMovedFrom(0);
    EXPECT_TRUE(probingEnds());
}

TEST_F(RestApiJobManagerOutageTest, eachOutageIsProbedAnew)
{
    client->getChangeCount();
    int count = 40;
    for (int outage = 0; outage < 3; ++outage) {
        server.freeze();
        client->getChangeCount();
        client->getChangeCount();
        EXPECT_TRUE(probingBegins());
        server.thaw();
        const int moved = pollUntilMovedFrom(count);
        EXPECT_EQ(moved, count + 2);
        count = moved;
    }
}

TEST_F(RestApiJobManagerOutageTest, destructionDoesNotWaitForAHungService)
{
    server.freeze();
    client->getChangeCount();
    client->getChangeCount();
    ASSERT_TRUE(probingBegins());
    EXPECT_LT(timeOf([this] { client.reset(); }), stretched(50));
    EXPECT_TRUE(probingEnds());
}

// The log

TEST_F(RestApiJobManagerOutageTest, oneLineTellsOfTheLossAndOneOfTheReturn)
{
    const std::string service = "job_manager: the job service at 127.0.0.1:" + std::to_string(server.port());
    testing::internal::CaptureStderr();
    client->getChangeCount();
    server.stop();
    for (int i = 0; i < 10; ++i) {
        client->getChangeCount();
        refresh();
        client->deleteJob("W-1");
    }
    server.restart();
    for (int i = 0; i < 10; ++i) {
        client->getChangeCount();
        refresh();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), service + " does not answer\n" + service + " answers again\n");
}

TEST_F(RestApiJobManagerOutageTest, aHungServiceIsToldOfInTheSameTwoLines)
{
    const std::string service = "job_manager: the job service at 127.0.0.1:" + std::to_string(server.port());
    testing::internal::CaptureStderr();
    client->getChangeCount();
    server.freeze();
    for (int i = 0; i < 10; ++i)
        client->getChangeCount();
    server.thaw();
    pollUntilMovedFrom(40);
    refresh();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), service + " does not answer\n" + service + " answers again\n");
}

TEST_F(RestApiJobManagerOutageTest, anAnswerThatCannotBeUsedIsNotLogged)
{
    server.replyToAll(errorReply(500, "internal"));
    testing::internal::CaptureStderr();
    for (int i = 0; i < 3; ++i) {
        client->getChangeCount();
        refresh();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// Another address

class AnotherService : public RestApiJobManagerOutageTest
{
protected:
    /// As the data interface does it, from a temporary client.
    void turnTo(const RawServer& target)
    {
        const RestApiJobManager temporary("127.0.0.1", target.port());
        client->serviceAddress = temporary.serviceAddress;
        client->servicePort = temporary.servicePort;
    }

    RawServer other;
};

TEST_F(AnotherService, isAskedFromNowOn)
{
    other.reply(countRoute, countReply(7));
    client->getChangeCount();
    turnTo(other);
    EXPECT_EQ(client->getChangeCount(), 7);
}

TEST_F(AnotherService, inheritsNoAnswerThatWasRemembered)
{
    for (const Operation& operation : operations())
        operation.call(*client);
    other.stop();
    turnTo(other);
    for (const Operation& operation : operations())
        EXPECT_EQ(operation.call(*client), operation.failedResult) << operation;
}

TEST_F(AnotherService, leavesNothingRememberedForTheReturnToTheFirst)
{
    for (const Operation& operation : operations())
        operation.call(*client);
    other.stop();
    server.stop();
    turnTo(other);
    client->getChangeCount();
    turnTo(server);
    for (const Operation& operation : operations())
        EXPECT_EQ(operation.call(*client), operation.failedResult) << operation;
}

TEST_F(AnotherService, doesNotHangBecauseTheFirstDid)
{
    answerWell(other);
    server.freeze();
    client->getChangeCount();
    client->getChangeCount();
    ASSERT_TRUE(probingBegins());
    turnTo(other);
    EXPECT_LT(timeOf([this] { EXPECT_EQ(client->getChangeCount(), 40); }), stretched(90));
    EXPECT_TRUE(probingEnds());
}

TEST_F(AnotherService, countsAsItDoesAfterAnOutageOfTheFirst)
{
    other.reply(countRoute, countReply(40));
    client->getChangeCount();
    server.stop();
    client->getChangeCount();
    turnTo(other);
    EXPECT_EQ(client->getChangeCount(), 40);
}

TEST_F(AnotherService, neverShowsAnAnswerOfTheFirstThatCameLate)
{
    server.freeze();
    std::string late;
    std::thread worker([&] { late = operation("getJobList").call(*client); });
    while (socketsTo(server.port()).empty())
        std::this_thread::sleep_for(1ms);
    other.stop();
    turnTo(other);
    EXPECT_EQ(client->getChangeCount(), 0);
    server.thaw();
    worker.join();

    EXPECT_EQ(late, operation("getJobList").goodResult);
    EXPECT_TRUE(client->getJobList().empty());
}

TEST_F(AnotherService, isNotBlamedForALateFailureOfTheFirst)
{
    answerWell(other);
    server.freeze();
    std::thread worker([this] { client->getJobList(); });
    while (socketsTo(server.port()).empty())
        std::this_thread::sleep_for(1ms);
    turnTo(other);
    EXPECT_EQ(client->getChangeCount(), 40);
    testing::internal::CaptureStderr();
    server.stop();
    worker.join();

    EXPECT_EQ(client->getChangeCount(), 40);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(AnotherService, underAnAddressThatIsNoneIsNeverReached)
{
    client->getChangeCount();
    client->serviceAddress = std::string("instrument.example");
    EXPECT_LT(timeOf([this] { EXPECT_EQ(client->getChangeCount(), 0); }), stretched(50));
}

} // namespace
