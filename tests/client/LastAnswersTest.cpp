#include "client/LastAnswers.h"

#include <gtest/gtest.h>

namespace {

using job_client::LastAnswers;

constexpr std::size_t mebibyte = 1024 * 1024;

class LastAnswersTest : public testing::Test
{
protected:
    std::string found(const std::string& path)
    {
        const auto answer = answers.find(path);
        return answer ? *answer : "nothing";
    }
    void keepJobs(int first, int last)
    {
        for (int i = first; i <= last; ++i)
            answers.keepJob("/jobs/" + std::to_string(i), std::to_string(i));
    }

    LastAnswers answers;
};

TEST_F(LastAnswersTest, nothingIsKnownAtFirst)
{
    EXPECT_EQ(answers.find("/jobs"), nullptr);
}

TEST_F(LastAnswersTest, theLastAnswerReplacesTheOneBefore)
{
    answers.keep("/jobs", "old");
    answers.keep("/jobs", "new");
    answers.keep("/settings", "other");
    EXPECT_EQ(found("/jobs"), "new");
    EXPECT_EQ(found("/settings"), "other");
}

TEST_F(LastAnswersTest, anAnswerInUseOutlivesItsReplacement)
{
    answers.keep("/jobs", "old");
    const auto inUse = answers.find("/jobs");
    answers.keep("/jobs", "new");
    EXPECT_EQ(*inUse, "old");
}

TEST_F(LastAnswersTest, theLastAnswerOfAJobReplacesTheOneBefore)
{
    answers.keepJob("/jobs/1", "old");
    answers.keepJob("/jobs/1", "new");
    EXPECT_EQ(found("/jobs/1"), "new");
}

TEST_F(LastAnswersTest, theLastEightJobsAreKept)
{
    keepJobs(1, 9);
    EXPECT_EQ(found("/jobs/1"), "nothing");
    for (int i = 2; i <= 9; ++i)
        EXPECT_EQ(found("/jobs/" + std::to_string(i)), std::to_string(i));
}

TEST_F(LastAnswersTest, aJobReadFromHereStaysLonger)
{
    keepJobs(1, 8);
    EXPECT_EQ(found("/jobs/1"), "1");
    keepJobs(9, 9);
    EXPECT_EQ(found("/jobs/1"), "1");
    EXPECT_EQ(found("/jobs/2"), "nothing");
}

TEST_F(LastAnswersTest, jobsDoNotPushOutTheOtherAnswers)
{
    answers.keep("/jobs", "list");
    keepJobs(1, 20);
    EXPECT_EQ(found("/jobs"), "list");
}

TEST_F(LastAnswersTest, jobsTogetherStayBelow64Mebibytes)
{
    answers.keepJob("/jobs/1", std::string(30 * mebibyte, 'x'));
    answers.keepJob("/jobs/2", std::string(30 * mebibyte, 'x'));
    answers.keepJob("/jobs/3", "small");
    EXPECT_NE(found("/jobs/1"), "nothing");
    answers.keepJob("/jobs/4", std::string(10 * mebibyte, 'x'));
    EXPECT_EQ(found("/jobs/2"), "nothing");
    EXPECT_NE(found("/jobs/1"), "nothing");
    EXPECT_EQ(found("/jobs/3"), "small");
}

TEST_F(LastAnswersTest, theBytesOfAReplacedJobCountNoMore)
{
    for (int i = 0; i < 5; ++i)
        answers.keepJob("/jobs/1", std::string(30 * mebibyte, 'x'));
    keepJobs(2, 3);
    EXPECT_NE(found("/jobs/1"), "nothing");
}

TEST_F(LastAnswersTest, aForgottenJobIsGone)
{
    keepJobs(1, 2);
    answers.forgetJob("/jobs/1");
    answers.forgetJob("/jobs/7");
    EXPECT_EQ(found("/jobs/1"), "nothing");
    EXPECT_EQ(found("/jobs/2"), "2");
}

} // namespace
