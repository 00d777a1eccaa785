// Each status that a launch can be refused with, over HTTP.

#include "tests/service/LaunchFixture.h"

using namespace jobmanager_test;

namespace {

struct RefusalCase
{
    const char* status;
    /// Of the test that is launched.
    const char* requirements;
    /// Merged into an instrument that has nothing but a version.
    const char* instrument = "{}";
};

void PrintTo(const RefusalCase& row, std::ostream* stream)
{
    *stream << row.status;
}

class LaunchRefusal : public LaunchFixture, public testing::WithParamInterface<RefusalCase>
{
};

TEST_P(LaunchRefusal, isToldAndLeavesNoTrace)
{
    json instrument{ { "platformVersion", "24.2" } };
    instrument.update(json::parse(GetParam().instrument));
    m_tests[0]["requirements"] = json::parse(GetParam().requirements);
    start({ "--instrument", m_files.write("instrument.json", instrument.dump()).string(), "--start-seconds", "0",
        "--run-seconds", "0" });
    const int before = changeCount();
    EXPECT_EQ(launch("0"), refused(GetParam().status));
    EXPECT_EQ(results("/tests/0"), json());
    EXPECT_EQ(changeCount(), before);
    EXPECT_NE(launch("0"), busy) << "nothing is left in the way";
}

INSTANTIATE_TEST_SUITE_P(Statuses, LaunchRefusal,
    testing::Values(RefusalCase{ "ERROR_OPTION^OTDR-SM", R"({"options":["OTDR-SM"]})" },
        RefusalCase{ "ERROR_POWER", R"({"power":25})", R"({"availablePower":24.9})" },
        RefusalCase{ "ERROR_MODULE^Optical 4100", R"({"modules":[{"name":"Optical 4100"}]})" },
        RefusalCase{ "ERROR_SOLUTION_VERSION^3.5^Optical 4100",
            R"({"modules":[{"name":"Optical 4100","version":"3.5"}]})",
            R"({"modules":[{"name":"Optical 4100","version":"3.4.9"}]})" },
        RefusalCase{ "ERROR_PLATFORM_VERSION^24.3", R"({"platformVersion":"24.3"})" },
        RefusalCase{ "ERROR_REQUIRES_FIELDMATE", R"({"fieldmate":true})" },
        RefusalCase{ "ERROR_TEST_NOT_FOUND", "{}", R"({"testTypes":["opm"]})" },
        RefusalCase{ "ERROR_UNKNOWN^Optical 4100", R"({"modules":[{"name":"Optical 4100"}]})",
            R"({"modules":[{"name":"Optical 4100","version":"3","ready":false}]})" },
        RefusalCase{ "ERROR_CUSTOM_FATAL^The instrument is too hot. Let it cool down.", "{}",
            R"({"fault":"The instrument is too hot. Let it cool down."})" },
        RefusalCase{ "ERROR_CONFIGURATION_FILE^otdr/fttx.cfg", R"({"configurationFiles":["otdr/fttx.cfg"]})" },
        RefusalCase{ "ERROR_INVALID_TEST_CONFIGURATION^requirements/power has to be a number that is not negative.",
            R"({"power":"much"})" }));

using LaunchRefusalTest = LaunchFixture;

TEST_F(LaunchRefusalTest, whatTheInstrumentOffersIsEnough)
{
    m_tests[0]["requirements"] = json::parse(R"({"options":["OTDR-SM"],"platformVersion":"24.2",
        "modules":[{"name":"Optical 4100","version":"3.4"}],"configurationFiles":["otdr/fttx.cfg"],"power":25})");
    start({});
    EXPECT_EQ(launch("0"), started) << "by the standard instrument";
}

TEST_F(LaunchRefusalTest, aLocationNeedsWhatItsTestNeeds)
{
    m_tests[1]["requirements"] = json::parse(R"({"fieldmate":true})");
    start({});
    EXPECT_EQ(launch("1_1"), refused("ERROR_REQUIRES_FIELDMATE"));
}

TEST_F(LaunchRefusalTest, aManualStepIsAnsweredInstead)
{
    m_tests[0]["testType"] = "manual";
    start({});
    EXPECT_EQ(launch("0"),
        refused("ERROR_CUSTOM_NONFATAL^This is a manual step. Answer its question instead of launching it."));
}

TEST_F(LaunchRefusalTest, anInstrumentThatCannotBeReadStopsTheStart)
{
    m_service.setArguments({ "--instrument", m_files.write("i.json", "{}").string() });
    EXPECT_FALSE(m_service.start());
    EXPECT_EQ(m_service.waitForEnd(), 1);
    EXPECT_TRUE(logTells("The description of the instrument cannot be used: platformVersion has to be a text"));
}

} // namespace
