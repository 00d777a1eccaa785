#include "service/UrlPath.h"

#include <gtest/gtest.h>

using namespace job_service;

namespace {

using Segments = std::vector<std::string>;

TEST(RequestUrlPathTest, segmentsAreDecodedOneByOne)
{
    EXPECT_EQ(pathSegments("/api/v1/jobs/a%2Fb%20c%2e").value(), (Segments{ "api", "v1", "jobs", "a/b c." }));
    EXPECT_EQ(pathSegments("/%C3%BC").value(), (Segments{ "\xC3\xBC" }));
}

TEST(RequestUrlPathTest, theQueryIsLeftOut)
{
    EXPECT_EQ(pathSegments("/jobs?x=/%zz").value(), (Segments{ "jobs" }));
}

TEST(RequestUrlPathTest, emptySegmentsCount)
{
    EXPECT_EQ(pathSegments("/").value(), (Segments{ "" }));
    EXPECT_EQ(pathSegments("//jobs/").value(), (Segments{ "", "jobs", "" }));
}

class BadPath : public testing::TestWithParam<const char*>
{
};

TEST_P(BadPath, isRefused)
{
    EXPECT_FALSE(pathSegments(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Targets, BadPath,
    testing::Values("", "jobs", "*", "http://127.0.0.1/jobs", "/%", "/%4", "/%zz", "/%4g", "/a%00b", "/%C0%AF",
        "/%E0%80%AF", "/%ED%A0%80", "/%F4%90%80%80", "/%FF", "/%C3", "/\xC3("));

TEST(RequestUrlPathTest, theLimitsOfUtf8Hold)
{
    EXPECT_TRUE(isUtf8("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
    EXPECT_FALSE(isUtf8("\x80"));
    EXPECT_FALSE(isUtf8("\xC1\xBF"));
    EXPECT_FALSE(isUtf8("\xF5\x80\x80\x80"));
}

} // namespace
