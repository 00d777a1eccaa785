#include "service/DottedVersion.h"

#include <gtest/gtest.h>

using job_service::DottedVersion;

namespace {

bool less(const char* left, const char* right)
{
    return *DottedVersion::fromText(left) < *DottedVersion::fromText(right);
}

TEST(DottedVersionTest, versionsCompareNumberByNumber)
{
    EXPECT_TRUE(less("1.9", "1.10"));
    EXPECT_FALSE(less("1.10", "1.9"));
    EXPECT_TRUE(less("1.2", "1.2.1"));
    EXPECT_TRUE(less("9", "10.0"));
    EXPECT_TRUE(less("0", "0.0.1"));
}

TEST(DottedVersionTest, noughtsAtTheEndAndTheBeginningMeanNothing)
{
    for (const char* same : { "24.2", "24.2.0", "24.02", "024.2.0.0" }) {
        EXPECT_FALSE(less(same, "24.2")) << same;
        EXPECT_FALSE(less("24.2", same)) << same;
    }
}

TEST(DottedVersionTest, whatIsNoVersionIsRefused)
{
    for (const char* text : { "", ".", "1.", ".1", "1..2", "v1", "1.x", "-1", "1 ", "1.2.3.4.5.6.7.8.9", "1234567890" })
        EXPECT_FALSE(DottedVersion::fromText(text)) << text;
    EXPECT_TRUE(DottedVersion::fromText("1.2.3.4.5.6.7.8"));
    EXPECT_TRUE(DottedVersion::fromText("999999999"));
}

} // namespace
