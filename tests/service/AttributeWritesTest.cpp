// Writes of a job's attributes, over HTTP with the service as a process.

#include "tests/service/TemporaryFolder.h"
#include "tests/support/Deadline.h"
#include "tests/support/HttpRequest.h"
#include "tests/support/ServiceProcess.h"

#include <atomic>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <thread>

using namespace std::chrono_literals;
using jobmanager_test::HttpReply;
using jobmanager_test::httpRequest;
using jobmanager_test::ServiceProcess;
using jobmanager_test::stretched;
using nlohmann::json;

namespace {

/// A document of which a write has to leave every byte alone but the value it names.
constexpr const char* document =
    R"({"details":{"id":"WO-1","exact":1.10000000000000000000000000001,)"
    R"("jobManagerAttributes":{)"
    R"("text":{"label":"Text","value":"old","editable":true,"own":[1.0,1E5]},)"
    R"("textTrue":{"label":"Text","value":"","editable":"true"},)"
    R"("fixed":{"label":"Fixed","value":"old","editable":false},)"
    R"("fixedFalse":{"label":"Fixed","value":"old","editable":"false"},)"
    R"("silent":{"label":"Says nothing","value":"old"},)"
    R"("nullEditable":{"label":"Null","value":"old","editable":null},)"
    R"("length":{"label":"Length","value":"1","valueType":"double","editable":true},)"
    R"("night":{"label":"Night","value":"false","valueType":"boolean","editable":true},)"
    R"("level":{"label":"Level","value":"low","validValues":["low","high"],"editable":true},)"
    R"("code":{"label":"Code","value":"A1","regExp":"[A-Z][0-9]","editable":true},)"
    R"("unlabelled":{"value":"old","editable":true},)"
    R"("numeric":{"label":"Numeric","value":7,"editable":true},)"
    R"("reference":["no attribute"],)"
    R"("a/b":{"label":"Slash","value":"old","editable":true},)"
    R"("größe":{"label":"Größe","value":"old","editable":true}},)"
    R"("techInfo":{"techId":"T-1","more":"stays"},"contractorId":"C-1",)"
    R"("modifiedOn":"2026-03-01T08:15:00.000Z"},"tests":[]})";

std::string attribute(const std::string& name, const std::string& value)
{
    return json{ { "jobManagerAttributes", { { name, { { "value", value } } } } } }.dump();
}

class AttributeWritesTest : public testing::Test
{
protected:
    jobmanager_test::TemporaryFolder m_files;
    ServiceProcess m_service;

    void SetUp() override { start(); }

    /// Starts the service, with attribute rules if there are any.
    void start(const std::string& rules = {})
    {
        m_files.write("a.job.json", document);
        m_files.write("b.job.json", R"({"details":{"id":"bare"}})");
        std::vector<std::string> arguments{ "--load", m_files.path().string() };
        if (!rules.empty()) {
            m_files.write("rules.json", rules);
            arguments.insert(arguments.end(), { "--attribute-rules", (m_files.path() / "rules.json").string() });
        }
        m_service.kill();
        m_service.setArguments(arguments);
        ASSERT_TRUE(m_service.start()) << m_service.log();
    }
    HttpReply patch(const std::string& body, const std::string& id = "WO-1")
    {
        return httpRequest(m_service.port(), "PATCH", "/api/v1/jobs/" + id, body);
    }
    std::string text(const std::string& id = "WO-1")
    {
        return httpRequest(m_service.port(), "GET", "/api/v1/jobs/" + id).body;
    }
    json details(const std::string& id = "WO-1") { return json::parse(text(id)).at("details"); }
    std::string valueOf(const std::string& name)
    {
        return details().at("jobManagerAttributes").at(name).at("value").get<std::string>();
    }
    int changeCount()
    {
        return json::parse(httpRequest(m_service.port(), "GET", "/api/v1/change-count").body).at("changeCount");
    }
    void expectTaken(const std::string& body, int steps = 1, const std::string& id = "WO-1")
    {
        const int before = changeCount();
        const HttpReply reply = patch(body, id);
        EXPECT_EQ(reply.status, 204) << body << ' ' << reply.body;
        EXPECT_EQ(reply.body, "");
        EXPECT_EQ(changeCount(), before + steps) << body;
    }
    /// Expects a refusal that changes nothing and does not move the count.
    void expectRefused(int status, const std::string& code, const std::string& message, const std::string& body,
        const std::string& id = "WO-1")
    {
        const int before = changeCount();
        const std::string textBefore = text(id);
        const HttpReply reply = patch(body, id);
        EXPECT_EQ(reply.status, status) << body;
        EXPECT_EQ(json::parse(reply.body), (json{ { "error", { { "code", code }, { "message", message } } } })) << body;
        EXPECT_EQ(text(id), textBefore) << body;
        EXPECT_EQ(changeCount(), before) << body;
    }
};

TEST_F(AttributeWritesTest, theValueIsWrittenAndTheCountMovesByOne)
{
    expectTaken(attribute("text", "new"));
    EXPECT_EQ(valueOf("text"), "new");
}

TEST_F(AttributeWritesTest, editableAsTextIsEditable)
{
    expectTaken(attribute("textTrue", "new"));
    EXPECT_EQ(valueOf("textTrue"), "new");
}

TEST_F(AttributeWritesTest, writingTheHeldValueMovesTheCountByOneToo)
{
    expectTaken(attribute("text", "old"));
}

TEST_F(AttributeWritesTest, everyOtherByteOfTheDocumentStays)
{
    std::string expected = text();
    ASSERT_NE(expected.find("1.10000000000000000000000000001"), std::string::npos);
    expectTaken(attribute("text", "n\"e\\w \u00e4"));
    const std::string old = R"("Text","value":"old")";
    expected.replace(expected.find(old), old.size(), R"("Text","value":"n\"e\\w ä")");
    const std::string modifiedBefore = "2026-03-01T08:15:00.000Z";
    expected.replace(
        expected.find(modifiedBefore), modifiedBefore.size(), details().at("modifiedOn").get<std::string>());
    EXPECT_EQ(text(), expected);
}

TEST_F(AttributeWritesTest, theJobIsModifiedNow)
{
    expectTaken(attribute("text", "new"));
    EXPECT_GT(details().at("modifiedOn").get<std::string>(), "2026-03-01T08:15:00.000Z");
}

TEST_F(AttributeWritesTest, theEmptyValueTakesAValueAway)
{
    for (const char* name : { "text", "length", "night", "level", "code" }) {
        expectTaken(attribute(name, ""));
        EXPECT_EQ(valueOf(name), "");
    }
}

TEST_F(AttributeWritesTest, namesMayHoldASlashAndAnyLetter)
{
    expectTaken(attribute("a/b", "new"));
    EXPECT_EQ(valueOf("a/b"), "new");
    expectTaken(attribute("größe", "neu"));
    EXPECT_EQ(valueOf("größe"), "neu");
}

TEST_F(AttributeWritesTest, theTechnicianIsWrittenAndTheRestOfTechInfoStays)
{
    expectTaken(R"({"techInfo":{"techId":"T-2"}})");
    EXPECT_EQ(details().at("techInfo"), (json{ { "techId", "T-2" }, { "more", "stays" } }));
}

TEST_F(AttributeWritesTest, theContractorIsWritten)
{
    expectTaken(R"({"contractorId":"C-2"})");
    EXPECT_EQ(details().at("contractorId"), "C-2");
}

TEST_F(AttributeWritesTest, aJobWithoutTechnicianAndContractorGetsThem)
{
    expectTaken(R"({"techInfo":{"techId":"T-2"}})", 1, "bare");
    expectTaken(R"({"contractorId":"C-2"})", 1, "bare");
    EXPECT_EQ(details("bare").at("techInfo"), (json{ { "techId", "T-2" } }));
    EXPECT_EQ(details("bare").at("contractorId"), "C-2");
}

TEST_F(AttributeWritesTest, severalWritesAreOneChange)
{
    expectTaken(R"({"jobManagerAttributes":{"text":{"value":"x"},"code":{"value":"B2"}},)"
                R"("techInfo":{"techId":"T-2"},"contractorId":"C-2"})");
    EXPECT_EQ(valueOf("text"), "x");
    EXPECT_EQ(valueOf("code"), "B2");
    EXPECT_EQ(details().at("techInfo").at("techId"), "T-2");
    EXPECT_EQ(details().at("contractorId"), "C-2");
}

TEST_F(AttributeWritesTest, oneRefusedWriteRefusesTheWholeUpdate)
{
    expectRefused(409, "attribute_not_editable", "The attribute \"fixed\" is not editable.",
        R"({"contractorId":"C-2","jobManagerAttributes":{"text":{"value":"x"},"fixed":{"value":"x"}}})");
}

TEST_F(AttributeWritesTest, anAttributeThatIsNotThereIsRefused)
{
    expectRefused(404, "attribute_not_found", "The attribute \"nothing\" is not there.", attribute("nothing", "x"));
    expectRefused(404, "attribute_not_found", "The attribute \"text\" is not there.", attribute("text", "x"), "bare");
}

TEST_F(AttributeWritesTest, anAttributeThatIsNotEditableIsRefused)
{
    for (const char* name : { "fixed", "fixedFalse", "silent", "nullEditable" })
        expectRefused(409, "attribute_not_editable", "The attribute \"" + std::string(name) + "\" is not editable.",
            attribute(name, "x"));
}

TEST_F(AttributeWritesTest, whatIsNoAttributeIsRefused)
{
    for (const char* name : { "unlabelled", "numeric", "reference" })
        expectRefused(409, "attribute_not_editable", "The attribute \"" + std::string(name) + "\" is not editable.",
            attribute(name, "x"));
}

TEST_F(AttributeWritesTest, aValueOfAnotherTypeIsRefused)
{
    expectRefused(
        422, "attribute_value_invalid", "The attribute \"length\" has to be a number.", attribute("length", "12 km"));
    expectRefused(
        422, "attribute_value_invalid", "The attribute \"night\" has to be true or false.", attribute("night", "yes"));
}

TEST_F(AttributeWritesTest, aValueThatIsNoValidOneIsRefused)
{
    expectRefused(422, "attribute_value_invalid", "The attribute \"level\" has to be one of its valid values.",
        attribute("level", "medium"));
}

TEST_F(AttributeWritesTest, aValueThatDoesNotMatchThePatternIsRefused)
{
    expectRefused(
        422, "attribute_value_invalid", "The attribute \"code\" does not match its pattern.", attribute("code", "AA1"));
}

TEST_F(AttributeWritesTest, aLongNameIsToldInPartAndWholeCharacters)
{
    std::string name = "x";
    for (int i = 0; i < 100; ++i)
        name += "ä";
    std::string told = "x";
    for (int i = 0; i < 49; ++i)
        told += "ä";
    expectRefused(404, "attribute_not_found", "The attribute \"" + told + "...\" is not there.", attribute(name, "x"));
}

TEST_F(AttributeWritesTest, anUnknownJobIsRefused)
{
    const HttpReply reply = patch(attribute("text", "x"), "nobody");
    EXPECT_EQ(reply.status, 404);
    EXPECT_EQ(json::parse(reply.body).at("error").at("code"), "job_not_found");
}

TEST_F(AttributeWritesTest, anUpdateOfAnotherShapeIsRefused)
{
    const std::pair<const char*, const char*> rows[] = {
        { "{}", "The update names nothing to change." },
        { R"({"jobManagerAttributes":{}})", "The update names nothing to change." },
        { "[]", "The update has to be an object." },
        { R"({"customerName":"x"})",
            "An update takes jobManagerAttributes, techInfo and contractorId, and nothing else." },
        { R"({"jobManagerAttributes":[]})", "The member jobManagerAttributes has to be an object." },
        { R"({"jobManagerAttributes":{"text":"x"}})", "The attribute \"text\" has to be an object." },
        { R"({"jobManagerAttributes":{"text":null}})", "The attribute \"text\" has to be an object." },
        { R"({"jobManagerAttributes":{"text":{}}})", "The attribute \"text\" has to hold value and nothing else." },
        { R"({"jobManagerAttributes":{"text":{"label":"x"}}})",
            "The attribute \"text\" has to hold value and nothing else." },
        { R"({"jobManagerAttributes":{"text":{"value":"x","editable":true}}})",
            "The attribute \"text\" has to hold value and nothing else." },
        { R"({"jobManagerAttributes":{"text":{"value":7}}})", "The attribute \"text\" takes a string." },
        { R"({"techInfo":"T-2"})", "The member techInfo has to be an object." },
        { R"({"techInfo":{}})", "The member techInfo has to hold techId and nothing else." },
        { R"({"techInfo":{"techId":null}})", "The member techId takes a string." },
        { R"({"contractorId":null})", "The member contractorId takes a string." },
    };
    for (const auto& [body, message] : rows)
        expectRefused(400, "invalid_request", message, body);
}

TEST_F(AttributeWritesTest, aRuleRefusesWithItsReason)
{
    start(R"({"jobManagerAttributes":{"text":{"refuse":"Dispatch owns it."}},)"
          R"("techId":{"refuse":"Ask your team."},"contractorId":{"refuse":"It is billed."}})");
    expectRefused(409, "attribute_refused", "The attribute \"text\" stays: Dispatch owns it.", attribute("text", "x"));
    expectRefused(
        409, "attribute_refused", "The attribute \"techId\" stays: Ask your team.", R"({"techInfo":{"techId":"T-2"}})");
    expectRefused(
        409, "attribute_refused", "The attribute \"contractorId\" stays: It is billed.", R"({"contractorId":"x"})");
    expectTaken(attribute("code", "B2"));
}

TEST_F(AttributeWritesTest, anAlteredWriteMovesTheCountByTwo)
{
    start(R"({"jobManagerAttributes":{"text":{"trim":true,"upperCase":true}}})");
    expectTaken(attribute("text", " new "), 2);
    EXPECT_EQ(valueOf("text"), "NEW");
}

TEST_F(AttributeWritesTest, aWriteThatNeedsNoAlteringMovesTheCountByOne)
{
    start(R"({"jobManagerAttributes":{"text":{"trim":true,"upperCase":true}}})");
    expectTaken(attribute("text", "NEW"), 1);
    EXPECT_EQ(valueOf("text"), "NEW");
}

TEST_F(AttributeWritesTest, technicianAndContractorAreAlteredToo)
{
    start(R"({"techId":{"upperCase":true},"contractorId":{"trim":true}})");
    expectTaken(R"({"techInfo":{"techId":"t-2"}})", 2);
    expectTaken(R"({"contractorId":" C-2"})", 2);
    EXPECT_EQ(details().at("techInfo").at("techId"), "T-2");
    EXPECT_EQ(details().at("contractorId"), "C-2");
}

TEST_F(AttributeWritesTest, theAlteredValueIsWhatIsChecked)
{
    start(R"({"jobManagerAttributes":{"code":{"upperCase":true},"length":{"trim":true}}})");
    expectTaken(attribute("code", "b2"), 2);
    expectTaken(attribute("length", " 12 "), 2);
    EXPECT_EQ(valueOf("length"), "12");
}

TEST_F(AttributeWritesTest, aDelayedWriteComesLate)
{
    start(R"({"jobManagerAttributes":{"text":{"delayMs":400}}})");
    const auto begin = std::chrono::steady_clock::now();
    expectTaken(attribute("text", "new"));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 400ms);
    EXPECT_EQ(valueOf("text"), "new");
}

TEST_F(AttributeWritesTest, aDelayHoldsUpNothingElse)
{
    start(R"({"jobManagerAttributes":{"text":{"delayMs":60000}}})");
    HttpReply reply;
    std::thread writer([&] { reply = patch(attribute("text", "new")); });
    for (int i = 0; i < 10; ++i)
        expectTaken(attribute("code", "B" + std::to_string(i)));
    m_service.kill();
    writer.join();
    EXPECT_NE(reply.status, 204);
}

TEST_F(AttributeWritesTest, aDelayDoesNotHoldUpTheEndOfTheService)
{
    start(R"({"jobManagerAttributes":{"text":{"delayMs":60000}}})");
    HttpReply reply;
    std::thread writer([&] { reply = patch(attribute("text", "new")); });
    for (int i = 0; i < 10; ++i)
        changeCount();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(m_service.terminate(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, stretched(5s));
    writer.join();
    EXPECT_NE(reply.status, 204);
    start();
    EXPECT_EQ(valueOf("text"), "old");
}

TEST_F(AttributeWritesTest, rulesThatCannotBeUsedEndTheStart)
{
    m_files.write("bad.json", R"({"techId":{"lower":true}})");
    ServiceProcess other({ "--attribute-rules", (m_files.path() / "bad.json").string() });
    EXPECT_FALSE(other.start());
    EXPECT_EQ(other.waitForEnd(), 1);
    EXPECT_EQ(other.log(), "job-service: The attribute rules cannot be used: there is no rule lower of techId.\n");
}

/// What was acknowledged is there after each kill, and the count has moved for it.
TEST_F(AttributeWritesTest, killsLoseNoAcknowledgedWrite)
{
    int value = 0;
    for (int round = 0; round < 5; ++round) {
        const int countBefore = changeCount();
        const int first = value;
        std::atomic<int> acknowledged{ value };
        std::thread writer([&, first] {
            for (int next = first + 1;; ++next) {
                if (patch(attribute("length", std::to_string(next))).status != 204)
                    return;
                acknowledged = next;
            }
        });
        while (acknowledged < first + 5)
            std::this_thread::yield();
        m_service.kill();
        writer.join();
        start();
        value = std::stoi(valueOf("length"));
        EXPECT_GE(value, acknowledged) << "round " << round;
        EXPECT_LE(value, acknowledged + 1) << "round " << round;
        EXPECT_EQ(changeCount() - countBefore, value - first + 2);
    }
}

} // namespace
