#include "client/ChangeCounter.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using job_client::ChangeCounter;

constexpr bool afterOutage = true;

class ChangeCounterTest : public testing::Test
{
protected:
    std::atomic<int> given{ 0 };
    ChangeCounter counter{ given };
};

TEST_F(ChangeCounterTest, countsAreGivenAsTheyCome)
{
    for (const int count : { 0, 1, 2, 17, 3, -5 })
        EXPECT_EQ(counter.answered(count, false), count);
}

TEST_F(ChangeCounterTest, withoutAnyAnswerZeroIsGiven)
{
    EXPECT_EQ(counter.unanswered(), 0);
}

TEST_F(ChangeCounterTest, withoutAnAnswerTheLastCountIsGiven)
{
    counter.answered(17, false);
    EXPECT_EQ(counter.unanswered(), 17);
    EXPECT_EQ(counter.unanswered(), 17);
}

TEST_F(ChangeCounterTest, afterAnOutageNoStepOfOneAndNoStandstillIsGiven)
{
    for (const int step : { -1, 0, 1 }) {
        ChangeCounter fresh(given);
        fresh.answered(100, false);
        EXPECT_EQ(fresh.answered(100 + step, afterOutage), 102) << step;
    }
}

TEST_F(ChangeCounterTest, afterAnOutageALargerStepIsGivenAsItIs)
{
    for (const int step : { -50, -2, 2, 50 }) {
        ChangeCounter fresh(given);
        fresh.answered(100, false);
        EXPECT_EQ(fresh.answered(100 + step, afterOutage), 100 + step) << step;
    }
}

TEST_F(ChangeCounterTest, afterTheOutageTheServicesOwnStepsFollow)
{
    counter.answered(100, false);
    const int moved = counter.answered(100, afterOutage);
    EXPECT_EQ(counter.answered(100, false), moved);
    EXPECT_EQ(counter.answered(101, false), moved + 1);
    EXPECT_EQ(counter.answered(99, false), moved - 1);
}

TEST_F(ChangeCounterTest, eachOutageMovesTheCountOnceMore)
{
    counter.answered(100, false);
    EXPECT_EQ(counter.answered(100, afterOutage), 102);
    EXPECT_EQ(counter.answered(100, afterOutage), 104);
    EXPECT_EQ(counter.unanswered(), 104);
}

TEST_F(ChangeCounterTest, theZeroOfAServiceNeverReachedIsACountGiven)
{
    counter.unanswered();
    EXPECT_EQ(counter.answered(1, afterOutage), 2);
}

TEST_F(ChangeCounterTest, theCountOfAnotherServiceIsNotGiven)
{
    counter.answered(100, false);
    ChangeCounter other(given);
    EXPECT_EQ(other.unanswered(), 0);
}

TEST_F(ChangeCounterTest, afterAnOutageTheCountDiffersAlsoFromThatOfAnotherService)
{
    counter.answered(100, false);
    ChangeCounter other(given);
    EXPECT_EQ(other.answered(101, afterOutage), 102);
}

TEST_F(ChangeCounterTest, aCountBeyondIntWrapsAround)
{
    EXPECT_EQ(counter.answered(std::int64_t{ 1 } << 32, false), 0);
    EXPECT_EQ(counter.answered((std::int64_t{ 1 } << 31) + 5, false), std::numeric_limits<int>::min() + 5);
}

TEST_F(ChangeCounterTest, theLargestCountCanBeMovedToo)
{
    const int largest = std::numeric_limits<int>::max();
    counter.answered(largest, false);
    EXPECT_EQ(counter.answered(largest, afterOutage), std::numeric_limits<int>::min() + 1);
}

} // namespace
