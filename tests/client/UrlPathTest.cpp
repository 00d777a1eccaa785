#include "client/UrlPath.h"

#include <gtest/gtest.h>

namespace {

using job_client::pathSegment;

TEST(UrlPathTest, lettersDigitsAndThreeSignsStandAsTheyAre)
{
    const std::string plain = "abcxyzABCXYZ0189-_~";
    EXPECT_EQ(pathSegment(plain), plain);
}

TEST(UrlPathTest, dotsAreEncodedSoThatNoSegmentLeadsUpwards)
{
    EXPECT_EQ(pathSegment("."), "%2E");
    EXPECT_EQ(pathSegment(".."), "%2E%2E");
    EXPECT_EQ(pathSegment("../x"), "%2E%2E%2Fx");
}

TEST(UrlPathTest, everyOtherByteIsEncoded)
{
    EXPECT_EQ(pathSegment("/?#%&+ :@\"\\"), "%2F%3F%23%25%26%2B%20%3A%40%22%5C");
    EXPECT_EQ(pathSegment("\xC3\xA4\xFF"), "%C3%A4%FF");
    EXPECT_EQ(pathSegment(std::string("a\0b\r\n", 5)), "a%00b%0D%0A");
}

TEST(UrlPathTest, theEmptyTextIsTheEmptySegment)
{
    EXPECT_EQ(pathSegment(""), "");
}

} // namespace
