#include "service/AttributeCheck.h"

#include "service/Pattern.h"

#include <gtest/gtest.h>

using namespace job_service;

namespace {

struct Row
{
    const char* name;
    /// JSON text of the members beside label and value.
    const char* description;
    const char* value;
    /// Empty if the value is taken.
    const char* fault;
};

void PrintTo(const Row& row, std::ostream* stream)
{
    *stream << row.name;
}

class AttributeCheck : public testing::TestWithParam<Row>
{
};

TEST_P(AttributeCheck, takesOrRefusesTheValue)
{
    nlohmann::json content = nlohmann::json::parse(GetParam().description);
    content["label"] = "";
    content["value"] = "";
    EXPECT_EQ(valueFault(content.get<cdm::Attribute>(), GetParam().value).value_or(""), GetParam().fault);
}

constexpr const char* number = R"({"valueType":"number"})";
constexpr const char* boolean = R"({"valueType":"boolean"})";
constexpr const char* booleanOrUnknown = R"({"valueType":"boolean","validValues":["unknown"]})";
constexpr const char* choice = R"({"validValues":["low","high"]})";
constexpr const char* pattern = R"({"regExp":"[A-Z]{2}[0-9]+"})";
constexpr const char* noNumber = "has to be a number.";
constexpr const char* noChoice = "has to be one of its valid values.";
constexpr const char* noMatch = "does not match its pattern.";

INSTANTIATE_TEST_SUITE_P(Rows, AttributeCheck,
    testing::Values(Row{ "undescribed", "{}", "anything at all", "" },
        Row{ "string", R"({"valueType":"string"})", "12a", "" },
        Row{ "unknownType", R"({"valueType":"moment"})", "12a", "" }, Row{ "wholeNumber", number, "12", "" },
        Row{ "negativeNumber", number, "-0.5", "" }, Row{ "exponent", number, "1.5e-3", "" },
        Row{ "double", R"({"valueType":"double"})", "1.5", "" },
        Row{ "doubleText", R"({"valueType":"double"})", "abc", noNumber }, Row{ "unit", number, "12 m", noNumber },
        Row{ "blankBefore", number, " 12", noNumber }, Row{ "blankAfter", number, "12 ", noNumber },
        Row{ "comma", number, "1,5", noNumber }, Row{ "hexadecimal", number, "0x10", noNumber },
        Row{ "infinite", number, "inf", noNumber }, Row{ "notANumber", number, "nan", noNumber },
        Row{ "outOfRange", number, "1e999", noNumber }, Row{ "minusAlone", number, "-", noNumber },
        Row{ "true", boolean, "true", "" }, Row{ "false", boolean, "false", "" },
        Row{ "yes", boolean, "yes", "has to be true or false." },
        Row{ "trueInCapitals", boolean, "TRUE", "has to be true or false." },
        Row{ "booleanTrueBesideValidValues", booleanOrUnknown, "true", "" },
        Row{ "booleanValidValue", booleanOrUnknown, "unknown", "" },
        Row{ "booleanOther", booleanOrUnknown, "maybe", noChoice }, Row{ "validValue", choice, "high", "" },
        Row{ "invalidValue", choice, "medium", noChoice }, Row{ "validValueInCapitals", choice, "HIGH", noChoice },
        Row{ "noValidValues", R"({"validValues":[]})", "x", "" },
        Row{ "validValueThatIsNoNumber", R"({"valueType":"number","validValues":["a"]})", "a", noNumber },
        Row{ "match", pattern, "AB12", "" }, Row{ "matchOfAPart", pattern, "xAB12", noMatch },
        Row{ "matchWithMoreBehind", pattern, "AB12x", noMatch },
        Row{ "matchWithANewlineBehind", pattern, "AB12\n", noMatch },
        Row{ "validValueBesideThePattern", R"({"validValues":["ab"],"regExp":"[A-Z]+"})", "ab", noMatch },
        Row{ "longerAlternativeLast", R"({"regExp":"a|ab"})", "ab", "" },
        Row{ "anchored", R"({"regExp":"^[0-9]{3}$"})", "123", "" },
        Row{ "characterNotByte", R"({"regExp":".{3}"})", "größe", noMatch },
        Row{ "charactersNotBytes", R"({"regExp":".{5}"})", "größe", "" },
        Row{ "dotForANewline", R"({"regExp":"a.b"})", "a\nb", "" },
        Row{ "letterOfAnyScript", R"({"regExp":"\\w+"})", "Größe機櫃", "" },
        Row{ "emptyPattern", R"({"regExp":""})", "x", "" }, Row{ "patternThatIsNone", R"({"regExp":"[A-"})", "x", "" },
        Row{ "emptyNumber", number, "", "" }, Row{ "emptyBoolean", boolean, "", "" },
        Row{ "emptyChoice", choice, "", "" }, Row{ "emptyForAPattern", pattern, "", "" }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Pattern, oneThatTakesForEverIsGivenUp)
{
    EXPECT_EQ(matchWhole("(a+)+[bc]", std::string(60, 'a')), PatternMatch::TooCostly);
    EXPECT_EQ(valueFault({ "", "", {}, true, "(a+)+[bc]", {}, {}, {} }, std::string(60, 'a')),
        "cannot be compared with its pattern: that takes too long.");
}

TEST(Pattern, oneThatIsHugeOrNestedBeyondMeasureIsNone)
{
    EXPECT_EQ(matchWhole(std::string(100000, 'a'), "a"), PatternMatch::NoPattern);
    EXPECT_EQ(matchWhole(std::string(8000, '(') + std::string(8000, ')'), "a"), PatternMatch::NoPattern);
    EXPECT_EQ(matchWhole("((((a{1000}){1000}){1000}){1000})", "a"), PatternMatch::NoPattern);
}

TEST(Pattern, aLongTextIsNoDanger)
{
    EXPECT_EQ(matchWhole("[a-z]*", std::string(1000000, 'a')), PatternMatch::Yes);
    EXPECT_EQ(matchWhole("[a-z]*", std::string(1000000, 'a') + "1"), PatternMatch::No);
}

} // namespace
