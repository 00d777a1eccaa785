// Answering manual steps over HTTP.

#include "tests/service/LaunchFixture.h"

using namespace jobmanager_test;

namespace {

class ManualAnswerTest : public LaunchFixture
{
protected:
    void SetUp() override
    {
        m_tests = json::parse(R"([{"testType":"manual","configurationData":{"prompt":"?","type":"yesNo"}},
            {"testType":"manual","configurationData":{"prompt":"?","type":"text"},
                "testLocations":[{"location":"A"},{"location":"B"}]},
            {"testType":"otdr"}])");
        start({ "--start-seconds", "0", "--run-seconds", "86400" });
    }
    HttpReply answer(const std::string& uiIndex, const std::string& text1, const std::string& text2 = {})
    {
        return call(
            "POST", "/manual-responses", json{ { "uiIndex", uiIndex }, { "text1", text1 }, { "text2", text2 } }.dump());
    }
    /// Expects an answer that is taken, and moves the count by one.
    void expectTaken(const std::string& uiIndex, const std::string& text1, const std::string& text2 = {})
    {
        const int before = changeCount();
        EXPECT_EQ(answer(uiIndex, text1, text2).status, 204);
        EXPECT_EQ(changeCount(), before + 1);
    }
    void expectRefused(int status, const std::string& code, const HttpReply& reply)
    {
        EXPECT_EQ(reply.status, status) << reply.body;
        EXPECT_EQ(json::parse(reply.body).at("error").at("code"), code);
    }
    json answered(const std::string& pointer)
    {
        json recorded = results(pointer);
        EXPECT_GT(recorded.at("time").get<std::string>().size(), 0u);
        recorded.erase("time");
        return recorded;
    }
};

TEST_F(ManualAnswerTest, theAnswerIsTheResponseOfTheTest)
{
    expectTaken("0", "yes");
    EXPECT_EQ(answered("/tests/0"), (json{ { "status", "pass" }, { "response", "yes" } }));
}

TEST_F(ManualAnswerTest, theAnswerOfALocationIsItsOwn)
{
    expectTaken("1_1", "no");
    EXPECT_EQ(answered("/tests/1/testLocations/1"), (json{ { "status", "pass" }, { "response", "no" } }))
        << "which is a text here";
    EXPECT_EQ(results("/tests/1/testLocations/0"), json());
    EXPECT_EQ(results("/tests/1"), json());
}

TEST_F(ManualAnswerTest, noToAYesOrNoFails)
{
    for (const char* no : { "no", "No", "NO" }) {
        expectTaken("0", no);
        EXPECT_EQ(answered("/tests/0"), (json{ { "status", "fail" }, { "response", no } }));
    }
    expectTaken("0", "not yet");
    EXPECT_EQ(answered("/tests/0").at("status"), "pass");
}

TEST_F(ManualAnswerTest, theEmptyAnswerOpensTheStepAgain)
{
    expectTaken("0", "yes");
    expectTaken("0", "");
    EXPECT_EQ(answered("/tests/0"), (json{ { "status", "" }, { "response", "" } }));
}

TEST_F(ManualAnswerTest, anyTextIsKeptToTheLetter)
{
    for (const std::string& text : { std::string("a\nb\r\n\tc"), std::string("\"quoted\" \\ </script>"),
             std::string("\u306F\u3044 \U0001F600"), std::string("nul\0inside", 10), std::string(10000, 'x') }) {
        expectTaken("0", text, text);
        EXPECT_EQ(answered("/tests/0").at("response"), text);
        EXPECT_EQ(answered("/tests/0").at("responseNote"), text);
    }
    expectTaken("0", "yes");
    EXPECT_FALSE(answered("/tests/0").contains("responseNote"));
}

TEST_F(ManualAnswerTest, otherMembersOfTheResultsStay)
{
    ASSERT_EQ(call("PUT", "/jobs/a/tests/0/results",
                  R"({"status":"pass","time":"t","data":{"ijm_additionalTest":true},"x":1})")
                  .status,
        204);
    expectTaken("0", "no");
    EXPECT_EQ(answered("/tests/0"),
        (json{
            { "status", "fail" }, { "response", "no" }, { "data", { { "ijm_additionalTest", true } } }, { "x", 1 } }));
}

TEST_F(ManualAnswerTest, answersAreTakenWhileATestRuns)
{
    EXPECT_EQ(launch("2"), started);
    expectTaken("0", "yes");
}

TEST_F(ManualAnswerTest, whatCannotBeAnsweredIsRefused)
{
    const int before = changeCount();
    expectRefused(409, "not_manual", answer("2", "yes"));
    for (const char* uiIndex : { "3", "0_0", "1_2", "", "x", "_1" })
        expectRefused(404, "test_not_found", answer(uiIndex, "yes"));
    expectRefused(400, "invalid_request", call("POST", "/manual-responses", R"({"uiIndex":"0"})"));
    expectRefused(400, "invalid_request", call("POST", "/manual-responses", R"({"uiIndex":0,"text1":"yes"})"));
    expectRefused(
        400, "invalid_request", call("POST", "/manual-responses", R"({"uiIndex":"0","text1":"a","text2":1})"));
    EXPECT_EQ(changeCount(), before);
    EXPECT_EQ(call("PUT", "/active-job", R"({"id":""})").status, 204);
    expectRefused(409, "no_active_job", answer("0", "yes"));
}

} // namespace
