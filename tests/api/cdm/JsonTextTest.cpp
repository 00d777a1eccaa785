#include "api/cdm/JsonText.h"

#include "CompleteJobDocument.h"

#include <gtest/gtest.h>

using namespace std::string_literals;
using nlohmann::json;

namespace {

/// The sentence with which a text is refused; empty, and a failure of the test, if it is not.
std::string refusal(std::string_view text)
{
    cdm::DocumentError error{ "/left/over", "left over" };
    const auto value = cdm::parseJson(text, error);
    EXPECT_FALSE(value.has_value()) << text.substr(0, 80);
    EXPECT_EQ(error.path, "");
    return value ? std::string() : error.message;
}

json accepted(std::string_view text)
{
    cdm::DocumentError error;
    const auto value = cdm::parseJson(text, error);
    EXPECT_TRUE(value.has_value()) << text.substr(0, 80) << ": " << error.message;
    return value.value_or(json());
}

std::string nested(std::size_t depth, const std::string& open, const std::string& close)
{
    std::string text;
    for (std::size_t i = 0; i < depth; ++i)
        text += open;
    text += "1";
    for (std::size_t i = 0; i < depth; ++i)
        text += close;
    return text;
}

} // namespace

TEST(JsonText, everyKindOfValueIsRead)
{
    EXPECT_EQ(
        accepted(" {\"a\": [1, -2.5, true, null, \"\\u00e4\"]}\n"), json({ { "a", { 1, -2.5, true, nullptr, "ä" } } }));
    EXPECT_EQ(accepted("7"), json(7));
    EXPECT_EQ(accepted("\"\""), json(""));
}

TEST(JsonText, lastOfTwoEqualKeysWins)
{
    EXPECT_EQ(accepted(R"({"a": 1, "b": 2, "a": 3})"), json({ { "a", 3 }, { "b", 2 } }));
}

TEST(JsonText, nestingUpToTheLimitIsRead)
{
    accepted(nested(cdm::maximumJsonDepth, "[", "]"));
    accepted(nested(cdm::maximumJsonDepth, "{\"a\":", "}"));
}

TEST(JsonText, deeperNestingIsRefusedWhereItBegins)
{
    for (const std::size_t depth : { std::size_t(65), std::size_t(1025), std::size_t(100000) }) {
        EXPECT_EQ(refusal(nested(depth, "[", "]")), "The text is nested deeper than 64 levels at line 1, column 65.");
        EXPECT_EQ(
            refusal(nested(depth, "\n{\"a\":", "}")), "The text is nested deeper than 64 levels at line 66, column 1.");
    }
}

TEST(JsonText, nestingThatIsNeverClosedIsRefused)
{
    EXPECT_EQ(refusal(std::string(1000000, '[')), "The text is nested deeper than 64 levels at line 1, column 65.");
}

TEST(JsonText, bracketsSideBySideOrInsideStringsAreNoNesting)
{
    std::string siblings = "[";
    for (int i = 0; i < 1000; ++i)
        siblings += "[{}],";
    accepted(siblings + "1]");
    const std::string brackets(1000, '[');
    EXPECT_EQ(accepted("[\"" + brackets + "\"]").at(0), brackets);
    EXPECT_EQ(accepted("[\"\\\"" + brackets + "\"]").at(0), "\"" + brackets);
    EXPECT_EQ(accepted("[\"\\\\\", \"" + brackets + "\"]").at(1), brackets);
}

TEST(JsonText, nestingBehindAnEscapedBackslashIsSeen)
{
    EXPECT_EQ(refusal("[\"\\\\\"," + nested(64, "[", "]") + "]"),
        "The text is nested deeper than 64 levels at line 1, column 70.");
}

TEST(JsonText, errorsNameLineAndColumn)
{
    EXPECT_EQ(refusal("{\"a\": 1,\n  x}"), "The text is no JSON at line 2, column 3.");
    EXPECT_EQ(refusal("{\"a\": 1\n\n"), "The text is no JSON at line 3, column 1.");
    EXPECT_EQ(refusal(""), "The text is no JSON at line 1, column 1.");
}

TEST(JsonText, textThatIsNoJsonIsRefused)
{
    for (const char* text : { "   ", "{", "[1,]", "{\"a\":1,}", "{a:1}", "{'a':1}", "NaN", "[Infinity]", "[-Infinity]",
             "nul", "True", "01", "+1", ".5", "1.", "0x10", "\"a", "\"\t\"", "\"\\x\"", "\"\\ud800\"",
             "\"\\udc00\\ud800\"", "// c\n1", "[1] [2]", "{} x", "1 2", "]" }) {
        EXPECT_EQ(refusal(text).rfind("The text is no JSON at line ", 0), 0U) << text;
    }
}

TEST(JsonText, numberOutOfRangeIsRefused)
{
    EXPECT_EQ(refusal("[1e999]"), "The text holds a number that is out of range.");
}

TEST(JsonText, byteOrderMarkIsRefused)
{
    EXPECT_EQ(refusal("\xEF\xBB\xBF{}"), "The text begins with a byte order mark.");
}

TEST(JsonText, whatFollowsANulIsNotIgnored)
{
    EXPECT_EQ(refusal("{}\0garbage"s), "The text holds a NUL at line 1, column 3.");
    EXPECT_EQ(refusal("{}\0"s), "The text holds a NUL at line 1, column 3.");
    EXPECT_EQ(refusal("[\"a\0b\"]"s), "The text holds a NUL at line 1, column 4.");
}

TEST(JsonText, invalidUtf8IsRefused)
{
    for (const char* bytes : { "\xFF", "\xC0\xAF", "\xE4", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80" })
        EXPECT_EQ(refusal("[\"" + std::string(bytes) + "\"]").rfind("The text is no JSON at line 1, column ", 0), 0U)
            << bytes;
}

TEST(JsonText, documentCutAnywhereIsRefused)
{
    const std::string text = completeJobDocument().dump();
    for (std::size_t length = 0; length < text.size(); ++length)
        ASSERT_NE(refusal(std::string_view(text).substr(0, length)), "") << length;
    EXPECT_EQ(accepted(text), completeJobDocument());
}

TEST(JsonText, writesCompactUtf8)
{
    EXPECT_EQ(cdm::dumpJson({ { "b", { 1, nullptr } }, { "a", "ä\n" } }), "{\"a\":\"ä\\n\",\"b\":[1,null]}");
}

TEST(JsonText, bytesThatAreNotUtf8AreReplacedOnWriting)
{
    EXPECT_EQ(cdm::dumpJson("a\xFF"), "\"a\xEF\xBF\xBD\"");
}
