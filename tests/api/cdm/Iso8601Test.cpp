#include "api/cdm/Iso8601.h"

#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>

namespace {

/// Sets the time zone of the process for one test.
class Iso8601Test : public testing::Test
{
protected:
    static void setTimeZone(const char* zone)
    {
        setenv("TZ", zone, 1);
        tzset();
    }

    void TearDown() override
    {
        unsetenv("TZ");
        tzset();
    }
};

/// The seconds that a text stands for, offset included.
std::time_t secondsOf(const std::string& text)
{
    std::tm parts{};
    const char* end = strptime(text.c_str(), "%FT%T%z", &parts);
    EXPECT_TRUE(end != nullptr && *end == '\0') << text;
    const long offset = parts.tm_gmtoff;
    return timegm(&parts) - offset;
}

} // namespace

TEST_F(Iso8601Test, defaultIsTheTimeOfConstruction)
{
    const std::time_t before = std::time(nullptr);
    const cdm::Iso8601 now;
    const std::time_t after = std::time(nullptr);
    EXPECT_GE(secondsOf(now.value), before);
    EXPECT_LE(secondsOf(now.value), after);
}

TEST_F(Iso8601Test, defaultCarriesTheOffsetOfTheLocalZone)
{
    setTimeZone("ABC-5:30");
    EXPECT_THAT(cdm::Iso8601().value, testing::MatchesRegex("....-..-..T..:..:..\\+0530"));
    setTimeZone("ABC+3");
    EXPECT_THAT(cdm::Iso8601().value, testing::EndsWith("-0300"));
}

TEST_F(Iso8601Test, textIsKeptAsItIs)
{
    EXPECT_EQ(cdm::Iso8601("no time at all").value, "no time at all");
}
