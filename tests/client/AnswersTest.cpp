// The readers' rules beyond those that the table of faults asks of every operation.

#include "client/Answers.h"

#include <gtest/gtest.h>

namespace {

namespace answers = job_client::answers;
using job_client::HttpOutcome;

TEST(AnswersTest, aCountIsAnyWholeNumberOf64Bits)
{
    EXPECT_EQ(answers::changeCount(R"({"changeCount": 0})"), 0);
    EXPECT_EQ(answers::changeCount(R"({"changeCount": -7})"), -7);
    EXPECT_EQ(answers::changeCount(R"({"changeCount": 9223372036854775807})"), 9223372036854775807);
}

TEST(AnswersTest, aCountIsNothingElse)
{
    for (const char* count : { "9223372036854775808", "1.0", "1e3", "\"1\"", "true", "null", "[1]", "{}" })
        EXPECT_EQ(answers::changeCount(R"({"changeCount": )" + std::string(count) + "}"), std::nullopt) << count;
}

TEST(AnswersTest, anAnswerCutAnywhereIsNone)
{
    const std::string whole = R"({"jobs": [{"id": "W-1", "archived": false, "teamTechIds": ["T1"]}]})";
    ASSERT_TRUE(answers::jobList(whole));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(answers::jobList(whole.substr(0, size))) << size;
}

TEST(AnswersTest, aJobCutAnywhereIsNone)
{
    const std::string whole = R"({"details": {"id": "W-1"}, "tests": [{"testType": "otdr"}]})";
    ASSERT_TRUE(answers::job(whole));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(answers::job(whole.substr(0, size))) << size;
}

TEST(AnswersTest, aSummaryWithoutIdSpoilsTheList)
{
    EXPECT_FALSE(answers::jobList(R"({"jobs": [{"id": "W-1"}, {"customerName": "x"}]})"));
}

TEST(AnswersTest, aSummaryWithAMemberOfTheWrongTypeSpoilsTheList)
{
    for (const char* member : { R"("customerName": 1)", R"("archived": "true")", R"("teamTechIds": ["a", 1])",
             R"("totalNumberOfRequiredTests": 4294967297)", R"("numberOfCompletedRequiredTests": 1.5)" }) {
        EXPECT_FALSE(answers::jobList(R"({"jobs": [{"id": "W-1", )" + std::string(member) + "}]}")) << member;
    }
}

TEST(AnswersTest, aSettingThatIsNoTextSpoilsTheSettings)
{
    EXPECT_FALSE(answers::settings(R"({"settings": {"groupType": "2", "other": 2}})"));
}

TEST(AnswersTest, aLaunchWithoutAMessageIsRead)
{
    const auto result = answers::launch(R"({"success": true})");
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->success);
    EXPECT_EQ(result->message, "");
}

TEST(AnswersTest, aLoginConfigurationNeedsItsTechnicianOnly)
{
    const auto config = answers::loginConfig(R"({"techId": "T7"})");
    ASSERT_TRUE(config);
    EXPECT_EQ(config->techId, "T7");
    EXPECT_FALSE(answers::loginConfig(R"({"opaqueText1": "a"})"));
}

TEST(AnswersTest, onlyTheServicesOwnWordsMakeAJobUnknown)
{
    const std::string unknown = R"({"error": {"code": "job_not_found", "message": "There is no job with this id."}})";
    const auto asked = [](long status, bool isJson, const std::string& body) {
        return answers::isUnknownJob({ HttpOutcome::Kind::Answered, status, isJson, body });
    };
    EXPECT_TRUE(asked(404, true, unknown));
    EXPECT_FALSE(asked(200, true, unknown));
    EXPECT_FALSE(asked(404, false, unknown));
    EXPECT_FALSE(asked(404, true, R"({"error": {"code": "route_not_found"}})"));
    EXPECT_FALSE(asked(404, true, R"({"error": "job_not_found"})"));
    EXPECT_FALSE(asked(404, true, ""));
    EXPECT_FALSE(answers::isUnknownJob({ HttpOutcome::Kind::NoConnection, 404, true, unknown }));
}

} // namespace
