#include "service/JsonTree.h"

#include <gtest/gtest.h>

using job_service::JsonTree;

namespace {

class AnyJson : public testing::TestWithParam<const char*>
{
};

TEST_P(AnyJson, comesBackAsItWas)
{
    EXPECT_EQ(JsonTree::fromText(GetParam()).text(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Values, AnyJson,
    testing::Values("null", "true", "0", "-1.50e+10", "123456789012345678901234567890", "1.10", R"("")", R"("a\"b\\")",
        R"("\u00e4\ud83d\ude00")", "[]", "{}", "[[],{}]", R"([1,"x",null])", R"({"b":1,"a":{"c":[]},"":"x"})",
        R"({"a":1,"a":2})"));

TEST(JsonTreeTest, whiteSpaceBetweenValuesIsLeftOut)
{
    EXPECT_EQ(
        JsonTree::fromText(" \n{ \"a b\" :\t[ 1 , \"x y\" , { } ,\r\n[ ] ] } ").text(), R"({"a b":[1,"x y",{},[]]})");
}

TEST(JsonTreeTest, bracketsAndCommasInsideStringsAreText)
{
    const std::string text = R"({"a,]}":"[{\",:","b":1})";
    EXPECT_EQ(JsonTree::fromText(text).text(), text);
}

TEST(JsonTreeTest, findsAMemberByItsDecodedName)
{
    const JsonTree tree = JsonTree::fromText(R"({"n\u00e4me":"v\"w"})");
    ASSERT_NE(tree.find("n\xC3\xA4me"), nullptr);
    EXPECT_EQ(tree.find("n\xC3\xA4me")->stringValue(), "v\"w");
}

TEST(JsonTreeTest, theLastOfEqualMembersCounts)
{
    const JsonTree tree = JsonTree::fromText(R"({"a":"1","a":"2"})");
    EXPECT_EQ(tree.find("a")->stringValue(), "2");
}

TEST(JsonTreeTest, findsNothingInWhatIsNoObject)
{
    EXPECT_EQ(JsonTree::fromText(R"(["a"])").find("a"), nullptr);
    EXPECT_EQ(JsonTree::fromText("1").find("a"), nullptr);
}

TEST(JsonTreeTest, setReplacesInPlaceAndLeavesTheRest)
{
    JsonTree tree = JsonTree::fromText(R"({"a":1.10,"b":2,"c":3})");
    tree.set("b", JsonTree::fromText("[4]"));
    EXPECT_EQ(tree.text(), R"({"a":1.10,"b":[4],"c":3})");
}

TEST(JsonTreeTest, setAppendsAMissingMember)
{
    JsonTree tree = JsonTree::fromText(R"({"a":1})");
    tree.set("q\"", JsonTree::fromString("x\ny"));
    EXPECT_EQ(tree.text(), R"({"a":1,"q\"":"x\ny"})");
}

TEST(JsonTreeTest, removeTakesEveryMemberOfTheName)
{
    JsonTree tree = JsonTree::fromText(R"({"a":1,"b":2,"a":3})");
    tree.remove("a");
    EXPECT_EQ(tree.text(), R"({"b":2})");
    tree.remove("z");
    EXPECT_EQ(tree.text(), R"({"b":2})");
}

TEST(JsonTreeTest, onlyAStringHasAStringValue)
{
    EXPECT_EQ(JsonTree::fromText("12").stringValue(), "");
    EXPECT_EQ(JsonTree::fromText(R"(["x"])").stringValue(), "");
}

TEST(JsonTreeTest, makesValuesOfEachKind)
{
    EXPECT_EQ(JsonTree().text(), "null");
    EXPECT_EQ(JsonTree::fromBool(true).text(), "true");
    EXPECT_EQ(JsonTree::fromBool(false).text(), "false");
    EXPECT_EQ(JsonTree::emptyObject().text(), "{}");
    EXPECT_EQ(JsonTree::emptyArray().text(), "[]");
}

} // namespace
