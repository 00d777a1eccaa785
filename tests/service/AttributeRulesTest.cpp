#include "service/AttributeRules.h"

#include "tests/service/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace job_service;
using Target = AttributeWrite::Target;

namespace {

TEST(AttributeRules, eachRuleIsRead)
{
    const AttributeRules rules = AttributeRules::fromText(
        R"({"jobManagerAttributes":{"a":{"refuse":"Not now.","trim":true,"upperCase":true,"delayMs":1500}}})");
    const AttributeRule& rule = rules.ruleFor({ Target::Attribute, "a", "" });
    EXPECT_EQ(rule.refusal, "Not now.");
    EXPECT_TRUE(rule.trim);
    EXPECT_TRUE(rule.upperCase);
    EXPECT_EQ(rule.delay, std::chrono::milliseconds(1500));
}

TEST(AttributeRules, anAttributeWithoutARuleIsLeftAlone)
{
    const AttributeRules rules = AttributeRules::fromText(R"({"jobManagerAttributes":{"a":{"upperCase":true}}})");
    const AttributeRule& rule = rules.ruleFor({ Target::Attribute, "b", "" });
    EXPECT_FALSE(rule.refusal);
    EXPECT_EQ(rule.normalised(" x "), " x ");
    EXPECT_EQ(rule.delay.count(), 0);
}

TEST(AttributeRules, anAttributeCalledLikeAFieldIsNotTheField)
{
    const AttributeRules rules = AttributeRules::fromText(
        R"({"jobManagerAttributes":{"techId":{"trim":true}},"techId":{"upperCase":true},"contractorId":{"delayMs":1}})");
    EXPECT_TRUE(rules.ruleFor({ Target::Attribute, "techId", "" }).trim);
    EXPECT_FALSE(rules.ruleFor({ Target::Attribute, "techId", "" }).upperCase);
    EXPECT_TRUE(rules.ruleFor({ Target::TechId, "techId", "" }).upperCase);
    EXPECT_EQ(rules.ruleFor({ Target::ContractorId, "contractorId", "" }).delay.count(), 1);
    EXPECT_EQ(rules.ruleFor({ Target::Attribute, "contractorId", "" }).delay.count(), 0);
}

struct NormalisedRow
{
    const char* name;
    bool trim;
    bool upperCase;
    const char* value;
    const char* normalised;
};

void PrintTo(const NormalisedRow& row, std::ostream* stream)
{
    *stream << row.name;
}

class Normalised : public testing::TestWithParam<NormalisedRow>
{
};

TEST_P(Normalised, isTheFormThatIsKept)
{
    AttributeRule rule;
    rule.trim = GetParam().trim;
    rule.upperCase = GetParam().upperCase;
    EXPECT_EQ(rule.normalised(GetParam().value), GetParam().normalised);
}

INSTANTIATE_TEST_SUITE_P(Rows, Normalised,
    testing::Values(NormalisedRow{ "untouched", false, false, " a ", " a " },
        NormalisedRow{ "trimmed", true, false, " \t a b \r\n", "a b" },
        NormalisedRow{ "trimmedOfWideBlanks", true, false, "\u3000a\u3000", "a" },
        NormalisedRow{ "onlyBlanks", true, false, " \t ", "" }, NormalisedRow{ "empty", true, true, "", "" },
        NormalisedRow{ "capitals", false, true, " ab1 ", " AB1 " },
        NormalisedRow{ "capitalsOfOtherScripts", false, true, "größe жук 機櫃", "GRÖßE ЖУК 機櫃" },
        NormalisedRow{ "both", true, true, " ab ", "AB" }),
    [](const auto& row) { return std::string(row.param.name); });

struct RefusedRow
{
    const char* name;
    const char* text;
    const char* reason;
};

void PrintTo(const RefusedRow& row, std::ostream* stream)
{
    *stream << row.name;
}

class RefusedRules : public testing::TestWithParam<RefusedRow>
{
};

TEST_P(RefusedRules, tellWhatIsWrong)
{
    try {
        AttributeRules::fromText(GetParam().text);
        FAIL() << "taken";
    } catch (const AttributeRulesRefused& refused) {
        EXPECT_NE(std::string(refused.what()).find(GetParam().reason), std::string::npos) << refused.what();
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, RefusedRules,
    testing::Values(RefusedRow{ "noJson", "{", "line 1" }, RefusedRow{ "array", "[]", "the file has to be an object." },
        RefusedRow{ "otherMember", R"({"attributes":{}})", "there is nothing called attributes." },
        RefusedRow{
            "attributesNoObject", R"({"jobManagerAttributes":[]})", "jobManagerAttributes has to be an object." },
        RefusedRow{ "ruleNoObject", R"({"techId":true})", "techId has to be an object." },
        RefusedRow{ "otherRule", R"({"techId":{"lower":true}})", "there is no rule lower of techId." },
        RefusedRow{ "refuseNoSentence", R"({"techId":{"refuse":true}})", "refuse of techId has to be a sentence." },
        RefusedRow{ "trimNoBoolean", R"({"techId":{"trim":1}})", "trim of techId has to be true or false." },
        RefusedRow{
            "upperCaseNoBoolean", R"({"techId":{"upperCase":"x"}})", "upperCase of techId has to be true or false." },
        RefusedRow{ "negativeDelay", R"({"techId":{"delayMs":-1}})", "delayMs of techId has to be a number" },
        RefusedRow{ "delayTooLong", R"({"techId":{"delayMs":60001}})", "delayMs of techId has to be a number" },
        RefusedRow{ "delayNoWholeNumber", R"({"techId":{"delayMs":1.5}})", "delayMs of techId has to be a number" }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(AttributeRules, aFileIsRead)
{
    jobmanager_test::TemporaryFolder folder;
    folder.write("rules.json", R"({"techId":{"trim":true}})");
    EXPECT_TRUE(AttributeRules::fromFile(folder.path() / "rules.json").ruleFor({ Target::TechId, "techId", "" }).trim);
}

TEST(AttributeRules, aMissingFileIsTold)
{
    EXPECT_THROW(AttributeRules::fromFile("/nonexistent/rules.json"), AttributeRulesRefused);
    EXPECT_THROW(AttributeRules::fromFile("/"), AttributeRulesRefused);
}

} // namespace
