#include "client/Prober.h"

#include "client/Deadlines.h"
#include "tests/client/ProcessState.h"
#include "tests/client/RawServer.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using job_client::Endpoint;
using job_client::Prober;
using Clock = std::chrono::steady_clock;

const std::string probeRoute = "GET /api/v1/change-count";

/// Asks the kernel about the thread that probes.
bool isBlockedInProbe(int signal)
{
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream status(task.path() / "status");
        std::string line;
        std::getline(status, line);
        if (line.find("job-probe") == std::string::npos)
            continue;
        while (std::getline(status, line) && line.rfind("SigBlk:", 0) != 0) { }
        return (std::stoull(line.substr(7), nullptr, 16) >> (signal - 1) & 1) != 0;
    }
    return false;
}

bool isBlockedHere(int signal)
{
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return sigismember(&blocked, signal) == 1;
}

class ProberTest : public testing::Test
{
protected:
    void awaitAnswer()
    {
        std::unique_lock lock(mutex);
        EXPECT_TRUE(changed.wait_for(lock, 60s, [this] { return answers > 0; }));
        answers = 0;
    }

    std::mutex mutex;
    std::condition_variable changed;
    int answers = 0;
    RawServer server;
    std::unique_ptr<Prober> prober = std::make_unique<Prober>(Endpoint{ "127.0.0.1", server.port() }, [this] {
        const std::lock_guard lock(mutex);
        ++answers;
        changed.notify_all();
    });
};

TEST_F(ProberTest, hasNoThreadUntilItIsStarted)
{
    EXPECT_FALSE(isProbing());
    EXPECT_EQ(server.connections(), 0u);
}

TEST_F(ProberTest, tellsWhenTheServiceAnswers)
{
    server.replyToAll(jsonReply(200, R"({"changeCount": 1})"));
    prober->start();
    awaitAnswer();
    EXPECT_EQ(server.count(probeRoute), 1u);
}

TEST_F(ProberTest, probesAtMostASecondApartUntilTheServiceAnswers)
{
    server.replyToAll({ "", {}, 0, {}, RawReply::Then::Hang });
    const auto begun = Clock::now();
    prober->start();
    ASSERT_TRUE(server.awaitCount(probeRoute, 3));
    EXPECT_LE(Clock::now() - begun, 3s);
    server.replyToAll(jsonReply(200, R"({"changeCount": 1})"));
    awaitAnswer();
}

TEST_F(ProberTest, aRefusalIsNoAnswer)
{
    server.stop();
    prober->start();
    {
        std::unique_lock lock(mutex);
        EXPECT_FALSE(changed.wait_for(lock, 3 * job_client::deadlines::probePeriod, [this] { return answers > 0; }));
    }
    EXPECT_TRUE(probingBegins());
    server.replyToAll(jsonReply(200, R"({"changeCount": 1})"));
    server.restart();
    awaitAnswer();
}

TEST_F(ProberTest, anErrorIsAnAnswer)
{
    server.replyToAll(errorReply(500, "internal"));
    prober->start();
    awaitAnswer();
}

TEST_F(ProberTest, itsThreadEndsWithTheAnswer)
{
    server.replyToAll(jsonReply(200, R"({"changeCount": 1})"));
    prober->start();
    awaitAnswer();
    EXPECT_TRUE(probingEnds());
}

TEST_F(ProberTest, canBeStartedForEachOutage)
{
    server.replyToAll(jsonReply(200, R"({"changeCount": 1})"));
    for (int outage = 0; outage < 3; ++outage) {
        prober->start();
        awaitAnswer();
    }
    EXPECT_EQ(server.count(probeRoute), 3u);
}

TEST_F(ProberTest, destructionEndsAProbeInProgress)
{
    server.replyToAll({ "", {}, 0, {}, RawReply::Then::Hang });
    prober->start();
    ASSERT_TRUE(server.awaitCount(probeRoute, 1));
    const auto begun = Clock::now();
    prober.reset();
    EXPECT_LT(Clock::now() - begun, job_client::deadlines::stretched(50));
    EXPECT_TRUE(probingEnds());
    EXPECT_EQ(answers, 0);
}

TEST_F(ProberTest, destructionEndsTheWaitForTheNextProbe)
{
    prober->start();
    const auto begun = Clock::now();
    prober.reset();
    EXPECT_LT(Clock::now() - begun, job_client::deadlines::stretched(50));
    EXPECT_EQ(server.connections(), 0u);
}

TEST_F(ProberTest, onceStoppedItStartsNoMore)
{
    prober->stop();
    prober->start();
    EXPECT_FALSE(isProbing());
}

TEST_F(ProberTest, signalsAreLeftToTheThreadsOfTheHost)
{
    server.replyToAll({ "", {}, 0, {}, RawReply::Then::Hang });
    prober->start();
    ASSERT_TRUE(server.awaitCount(probeRoute, 1));
    for (const int signal : { SIGTERM, SIGINT, SIGCHLD, SIGALRM, SIGUSR1 }) {
        EXPECT_TRUE(isBlockedInProbe(signal)) << signal;
        EXPECT_FALSE(isBlockedHere(signal)) << signal;
    }
}

} // namespace
