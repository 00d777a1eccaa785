#include "client/ServiceHealth.h"

#include <gtest/gtest.h>

namespace {

using job_client::ServiceHealth;
using News = ServiceHealth::News;

class ServiceHealthTest : public testing::Test
{
protected:
    News answeredNow() { return health.answered(health.now()); }

    ServiceHealth health;
};

TEST_F(ServiceHealthTest, aNewServiceIsWell)
{
    EXPECT_FALSE(health.isHanging());
    EXPECT_FALSE(health.takePastOutage());
    EXPECT_EQ(answeredNow(), News::None);
}

TEST_F(ServiceHealthTest, theFirstFailureIsNewsAndTheNextOnesAreNot)
{
    EXPECT_EQ(health.disconnected(), News::Lost);
    EXPECT_EQ(health.disconnected(), News::None);
    EXPECT_EQ(health.deadlineMissed(false), News::None);
}

TEST_F(ServiceHealthTest, theFirstAnswerAfterFailuresIsNewsAndTheNextOnesAreNot)
{
    health.disconnected();
    EXPECT_EQ(answeredNow(), News::Back);
    EXPECT_EQ(answeredNow(), News::None);
}

TEST_F(ServiceHealthTest, refusalsNeverMakeItHang)
{
    for (int i = 0; i < 10; ++i)
        health.disconnected();
    EXPECT_FALSE(health.isHanging());
}

TEST_F(ServiceHealthTest, twoDeadlinesMissedInARowMakeItHang)
{
    EXPECT_EQ(health.deadlineMissed(false), News::Lost);
    EXPECT_FALSE(health.isHanging());
    health.deadlineMissed(false);
    EXPECT_TRUE(health.isHanging());
}

TEST_F(ServiceHealthTest, anAnswerInBetweenEndsTheRow)
{
    health.deadlineMissed(false);
    answeredNow();
    health.deadlineMissed(false);
    EXPECT_FALSE(health.isHanging());
}

TEST_F(ServiceHealthTest, aRefusalInBetweenDoesNotEndTheRow)
{
    health.deadlineMissed(false);
    health.disconnected();
    health.deadlineMissed(false);
    EXPECT_TRUE(health.isHanging());
}

TEST_F(ServiceHealthTest, oneMissThatIsEnoughMakesItHang)
{
    health.deadlineMissed(true);
    EXPECT_TRUE(health.isHanging());
}

TEST_F(ServiceHealthTest, onlyAProbeEndsTheHanging)
{
    health.deadlineMissed(true);
    EXPECT_EQ(answeredNow(), News::None);
    EXPECT_TRUE(health.isHanging());
    EXPECT_EQ(health.probeAnswered(), News::Back);
    EXPECT_FALSE(health.isHanging());
}

TEST_F(ServiceHealthTest, afterAProbeTwoMissesAreNeededAgain)
{
    health.deadlineMissed(true);
    health.probeAnswered();
    health.deadlineMissed(false);
    EXPECT_FALSE(health.isHanging());
    health.deadlineMissed(false);
    EXPECT_TRUE(health.isHanging());
}

TEST_F(ServiceHealthTest, withoutProbesTheNextMissMakesItHangAgain)
{
    health.deadlineMissed(false);
    health.deadlineMissed(false);
    health.probeImpossible();
    EXPECT_FALSE(health.isHanging());
    health.deadlineMissed(false);
    EXPECT_TRUE(health.isHanging());
}

TEST_F(ServiceHealthTest, anAnswerToACallBegunBeforeTheLossIsNoSignOfLife)
{
    const auto begun = health.now();
    health.disconnected();
    EXPECT_EQ(health.answered(begun), News::None);
    EXPECT_FALSE(health.takePastOutage());
    EXPECT_EQ(answeredNow(), News::Back);
}

TEST_F(ServiceHealthTest, anOutageIsTakenOnceAndOnlyWhenItIsOver)
{
    health.disconnected();
    EXPECT_FALSE(health.takePastOutage());
    health.disconnected();
    answeredNow();
    EXPECT_TRUE(health.takePastOutage());
    EXPECT_FALSE(health.takePastOutage());
}

TEST_F(ServiceHealthTest, anOutageThatAProbeEndedIsTakenToo)
{
    health.deadlineMissed(true);
    EXPECT_FALSE(health.takePastOutage());
    health.probeAnswered();
    EXPECT_TRUE(health.takePastOutage());
}

TEST_F(ServiceHealthTest, outagesThatNobodyAskedAboutAreTakenAsOne)
{
    health.disconnected();
    answeredNow();
    health.disconnected();
    answeredNow();
    EXPECT_TRUE(health.takePastOutage());
    EXPECT_FALSE(health.takePastOutage());
}

} // namespace
