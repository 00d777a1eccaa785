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

} // namespace
