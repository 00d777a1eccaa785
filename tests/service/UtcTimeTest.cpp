#include "service/UtcTime.h"

#include <gtest/gtest.h>

using namespace job_service;

namespace {

TEST(UtcTimeTest, aMomentHasFixedWidthWithMilliseconds)
{
    using namespace std::chrono;
    EXPECT_EQ(utcText(system_clock::time_point(milliseconds(0))), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(utcText(system_clock::time_point(milliseconds(1772352900007))), "2026-03-01T08:15:00.007Z");
    EXPECT_EQ(utcText(system_clock::time_point(milliseconds(-1))), "1969-12-31T23:59:59.999Z");
}

TEST(UtcTimeTest, nowIsWellFormed)
{
    EXPECT_TRUE(isUtcText(utcNow()));
}

struct FormCase
{
    const char* text;
    bool wellFormed;
};

class UtcForm : public testing::TestWithParam<FormCase>
{
};

TEST_P(UtcForm, isRecognised)
{
    EXPECT_EQ(isUtcText(GetParam().text), GetParam().wellFormed) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Texts, UtcForm,
    testing::Values(FormCase{ "2026-03-01T08:15:00.000Z", true }, FormCase{ "2024-02-29T23:59:59.999Z", true },
        FormCase{ "2000-02-29T00:00:00.000Z", true }, FormCase{ "2025-02-29T00:00:00.000Z", false },
        FormCase{ "2100-02-29T00:00:00.000Z", false }, FormCase{ "2026-04-31T00:00:00.000Z", false },
        FormCase{ "2026-00-01T00:00:00.000Z", false }, FormCase{ "2026-13-01T00:00:00.000Z", false },
        FormCase{ "2026-01-00T00:00:00.000Z", false }, FormCase{ "2026-01-01T24:00:00.000Z", false },
        FormCase{ "2026-01-01T00:60:00.000Z", false }, FormCase{ "2026-01-01T00:00:60.000Z", false },
        FormCase{ "2026-03-01T08:15:00Z", false }, FormCase{ "2026-03-01T08:15:00.000+01:00", false },
        FormCase{ "2026-03-01 08:15:00.000Z", false }, FormCase{ "2026-03-01T08:15:00.00xZ", false },
        FormCase{ "", false }));

struct Moment
{
    const char* text;
    const char* utc;
};

class UtcMoment : public testing::TestWithParam<Moment>
{
};

TEST_P(UtcMoment, isRead)
{
    const auto moment = utcMoment(GetParam().text);
    ASSERT_TRUE(moment);
    EXPECT_EQ(utcText(*moment), GetParam().utc);
}

INSTANTIATE_TEST_SUITE_P(Forms, UtcMoment,
    testing::Values(Moment{ "2026-03-01T08:15:00Z", "2026-03-01T08:15:00.000Z" },
        Moment{ "2026-03-01T08:15:00", "2026-03-01T08:15:00.000Z" },
        Moment{ "2026-03-01T08:15:00+01:00", "2026-03-01T07:15:00.000Z" },
        Moment{ "2026-03-01T08:15:00+0130", "2026-03-01T06:45:00.000Z" },
        Moment{ "2026-03-01T20:15:00-05", "2026-03-02T01:15:00.000Z" },
        Moment{ "2026-03-01T08:15:00.5Z", "2026-03-01T08:15:00.500Z" },
        Moment{ "2026-03-01T08:15:00,123456789+00:00", "2026-03-01T08:15:00.123Z" },
        Moment{ "1969-12-31T23:59:59Z", "1969-12-31T23:59:59.000Z" },
        Moment{ "2040-02-29T00:00:00Z", "2040-02-29T00:00:00.000Z" }));

class NoMoment : public testing::TestWithParam<const char*>
{
};

TEST_P(NoMoment, isRead)
{
    EXPECT_FALSE(utcMoment(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Forms, NoMoment,
    testing::Values("", "yesterday", "2026-03-01", "2026-03-01T08:15", "2026-02-30T08:15:00Z", "2026-03-01T24:00:00Z",
        "2026-03-01T08:15:00.", "2026-03-01T08:15:00.Z", "2026-03-01T08:15:00+1", "2026-03-01T08:15:00+01:0",
        "2026-03-01T08:15:00Zx", "2026-03-01 08:15:00"));

} // namespace
