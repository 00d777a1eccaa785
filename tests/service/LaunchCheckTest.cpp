#include "service/LaunchCheck.h"

#include "service/Instrument.h"
#include "service/LaunchStatus.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace job_service;
using nlohmann::json;

namespace {

/// An instrument that has a little of everything.
Instrument instrument()
{
    return Instrument::fromText(R"({"platformVersion":"24.2","options":["OTDR","PON"],
        "modules":[{"name":"Optical","version":"3.4"},{"name":"Copper","version":"1","ready":false}],
        "configurationFiles":["sm.cfg"],"availablePower":20})");
}

struct Case
{
    const char* name;
    const char* requirements;
    const char* status;
};

void PrintTo(const Case& row, std::ostream* stream)
{
    *stream << row.name;
}

class LaunchObstacle : public testing::TestWithParam<Case>
{
};

TEST_P(LaunchObstacle, isToldByItsStatus)
{
    const json test{ { "testType", "otdr" }, { "requirements", json::parse(GetParam().requirements) } };
    EXPECT_EQ(launchObstacle(instrument(), test), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Needs, LaunchObstacle,
    testing::Values(Case{ "null", "null", "" }, Case{ "none", "{}", "" },
        Case{ "allMet", R"({"fieldmate":false,"platformVersion":"24.2.0","options":["PON","OTDR"],
            "modules":[{"name":"Optical","version":"3.4"}],"configurationFiles":["sm.cfg"],"power":20})",
            "" },
        Case{ "olderIsEnough", R"({"platformVersion":"9","modules":[{"name":"Optical","version":"3.3.9"}]})", "" },
        Case{ "fieldmate", R"({"fieldmate":true})", "ERROR_REQUIRES_FIELDMATE" },
        Case{ "platformVersion", R"({"platformVersion":"24.10"})", "ERROR_PLATFORM_VERSION^24.10" },
        Case{ "option", R"({"options":["OTDR","5G NR"]})", "ERROR_OPTION^5G NR" },
        Case{ "optionsAreExact", R"({"options":["otdr"]})", "ERROR_OPTION^otdr" },
        Case{ "module", R"({"modules":[{"name":"Optical"},{"name":"Radio 5G"}]})", "ERROR_MODULE^Radio 5G" },
        Case{ "solutionVersion", R"({"modules":[{"name":"Optical","version":"3.4.1"}]})",
            "ERROR_SOLUTION_VERSION^3.4.1^Optical" },
        Case{ "moduleNotReady", R"({"modules":[{"name":"Copper","version":"1"}]})", "ERROR_UNKNOWN^Copper" },
        Case{ "versionBeforeReadiness", R"({"modules":[{"name":"Copper","version":"2"}]})",
            "ERROR_SOLUTION_VERSION^2^Copper" },
        Case{ "configurationFile", R"({"configurationFiles":["sm.cfg","mm/50.cfg"]})",
            "ERROR_CONFIGURATION_FILE^mm/50.cfg" },
        Case{ "power", R"({"power":20.5})", "ERROR_POWER" },
        Case{ "noObject", "[]", "ERROR_INVALID_TEST_CONFIGURATION^requirements has to be an object." },
        Case{ "noVersion", R"({"platformVersion":"new"})",
            "ERROR_INVALID_TEST_CONFIGURATION^requirements/platformVersion has to be a version such as \"24.2.1\"." },
        Case{ "noList", R"({"options":"OTDR"})",
            "ERROR_INVALID_TEST_CONFIGURATION^requirements/options has to be a list." },
        Case{ "noModule", R"({"modules":[{"version":"1"}]})",
            "ERROR_INVALID_TEST_CONFIGURATION^requirements/modules/0/name has to be a text that is not empty." },
        Case{ "separatorInANeed", R"({"options":["A^B"]})", "ERROR_OPTION^A\u02C6B" },
        Case{ "unknownNeedsMeanNothing", R"({"antigravity":1})", "" }),
    [](const auto& row) { return std::string(row.param.name); });

/// Of several obstacles, the first in the documented order is told.
TEST(LaunchCheckTest, theObstaclesHaveTheirOrder)
{
    json needs = json::parse(R"({"fieldmate":true,"platformVersion":"99","options":["X"],"modules":[{"name":"X"}],
        "configurationFiles":["X"],"power":99})");
    Instrument limited = instrument();
    limited.testTypes = { "opm" };
    limited.fault = "Too hot.";
    json test{ { "testType", "otdr" }, { "requirements", needs } };
    const auto expectThen = [&](const char* status, auto remove) {
        EXPECT_EQ(launchObstacle(limited, test), status);
        remove();
    };
    const auto removeNeed = [&](const char* name) { return [&, name] { test["requirements"].erase(name); }; };
    expectThen("ERROR_CUSTOM_FATAL^Too hot.", [&] { limited.fault.clear(); });
    expectThen("ERROR_TEST_NOT_FOUND", [&] { limited.testTypes.reset(); });
    expectThen("ERROR_REQUIRES_FIELDMATE", removeNeed("fieldmate"));
    expectThen("ERROR_PLATFORM_VERSION^99", removeNeed("platformVersion"));
    expectThen("ERROR_OPTION^X", removeNeed("options"));
    expectThen("ERROR_MODULE^X", removeNeed("modules"));
    expectThen("ERROR_CONFIGURATION_FILE^X", removeNeed("configurationFiles"));
    expectThen("ERROR_POWER", removeNeed("power"));
    EXPECT_EQ(launchObstacle(limited, test), "");
}

TEST(LaunchCheckTest, anInstrumentWithoutALimitHasPowerForAll)
{
    Instrument unlimited = instrument();
    unlimited.availablePower.reset();
    EXPECT_EQ(launchObstacle(unlimited, json::parse(R"({"testType":"x","requirements":{"power":1e9}})")), "");
}

TEST(LaunchCheckTest, theSeparatorIsReplacedInEveryParameter)
{
    EXPECT_EQ(launch_status::solutionVersion("1^2", "M^"), "ERROR_SOLUTION_VERSION^1\u02C62^M\u02C6");
    EXPECT_EQ(launch_status::customNonfatal("^"), "ERROR_CUSTOM_NONFATAL^\u02C6");
}

} // namespace
