#include "service/ProgramAnswer.h"

#include <gtest/gtest.h>

using namespace job_service;

namespace {

TEST(ProgramAnswerTest, aVerdictWithItsDataIsTaken)
{
    const TestOutcome outcome = programAnswer(" {\"x\":1,\"status\":\"marginal\",\"data\":{\"lossDb\":1.10}}\n");
    EXPECT_EQ(outcome.status, "marginal");
    EXPECT_EQ(outcome.data.text(), R"({"lossDb":1.10})");
    EXPECT_EQ(outcome.failure, "");
}

TEST(ProgramAnswerTest, theDataMayBeMissing)
{
    for (const char* answer : { R"({"status":"pass"})", R"({"status":"pass","data":null})" }) {
        EXPECT_EQ(programAnswer(answer).status, "pass");
        EXPECT_EQ(programAnswer(answer).data.text(), "{}");
    }
}

TEST(ProgramAnswerTest, theProgramMaySayWhyThereIsNoVerdict)
{
    const TestOutcome outcome = programAnswer(R"({"error":"The fibre is not connected.","status":"pass"})");
    EXPECT_EQ(outcome.status, "");
    EXPECT_EQ(outcome.failure, "The fibre is not connected.");
}

struct Nonsense
{
    std::string answer;
    std::string reason;
};

TEST(ProgramAnswerTest, nonsenseIsNoVerdict)
{
    for (const auto& [answer, reason] : {
             Nonsense{ "[]", "The document has to be an object." },
             Nonsense{ "{}", "status has to be a text that is not empty." },
             Nonsense{ R"({"status":""})", "status has to be a text that is not empty." },
             Nonsense{ R"({"status":1})", "status has to be a text that is not empty." },
             Nonsense{
                 R"({"status":"a\nb"})", "status has to be a text of at most 64 bytes without control characters." },
             Nonsense{ "{\"status\":\"" + std::string(65, 'x') + "\"}",
                 "status has to be a text of at most 64 bytes without control characters." },
             Nonsense{ R"({"status":"error"})", "status has to be a verdict." },
             Nonsense{ R"({"status":"pass","data":[]})", "data has to be an object." },
             Nonsense{ R"({"error":""})", "error has to be a text that is not empty." },
         }) {
        EXPECT_EQ(programAnswer(answer).status, "") << answer;
        EXPECT_EQ(programAnswer(answer).failure, "The answer of the test program makes no sense: " + reason);
    }
    for (const std::string& answer : { std::string(), std::string("pass"), std::string(R"({"status":"pass"})") + "x",
             std::string(R"({"status":"pass")"), std::string("{\"status\":\"\xFF\"}"), std::string(1000000, '[') }) {
        EXPECT_EQ(programAnswer(answer).status, "");
        EXPECT_EQ(programAnswer(answer).failure.find("The answer of the test program makes no sense: "), 0u);
    }
}

} // namespace
