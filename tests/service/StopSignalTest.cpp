#include "service/StopSignal.h"

#include "tests/support/Deadline.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <thread>

using job_service::StopSignal;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

TEST(StopSignalTest, aSignalThatIsNotRaisedIsWaitedForInVain)
{
    const StopSignal signal;
    EXPECT_FALSE(signal.isRaised());
    const auto begin = Clock::now();
    EXPECT_FALSE(signal.waitFor(30ms));
    EXPECT_GE(Clock::now() - begin, 30ms);
    EXPECT_FALSE(signal.waitFor(-5ms));
}

TEST(StopSignalTest, raisingEndsEveryWaitAndStays)
{
    StopSignal signal;
    bool seen = false;
    std::thread waiting([&] { seen = signal.waitFor(24h); });
    signal.raise();
    waiting.join();
    EXPECT_TRUE(seen);
    signal.raise();
    EXPECT_TRUE(signal.waitFor(24h));
    EXPECT_TRUE(signal.isRaised());
}

TEST(StopSignalTest, itsDescriptorTurnsReadable)
{
    StopSignal signal;
    pollfd waiting{ signal.descriptor(), POLLIN, 0 };
    EXPECT_EQ(::poll(&waiting, 1, 0), 0);
    signal.raise();
    EXPECT_EQ(::poll(&waiting, 1, 0), 1);
}

} // namespace
