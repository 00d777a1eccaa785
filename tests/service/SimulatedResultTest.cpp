#include "service/SimulatedResult.h"

#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

using namespace job_service;
using nlohmann::json;

namespace {

TestToRun testToRun(const std::string& jobId, const std::string& uiIndex, const json& test = { { "testType", "otdr" } })
{
    return { jobId, {}, uiIndex, JsonTree::fromText(test.dump()), {} };
}

std::string textOf(const TestOutcome& outcome)
{
    return outcome.status + outcome.data.text();
}

TEST(SimulatedResultTest, theSameLaunchGivesTheSameResult)
{
    for (std::uint32_t seed = 0; seed < 100; ++seed)
        EXPECT_EQ(textOf(simulatedOutcome(seed, testToRun("WO-1", "2_1"))),
            textOf(simulatedOutcome(seed, testToRun("WO-1", "2_1"))));
}

/// A changed simulation shows here: results of different machines would not be comparable.
TEST(SimulatedResultTest, theResultIsThatOfEveryOtherMachine)
{
    EXPECT_EQ(textOf(simulatedOutcome(0, testToRun("WO-1", "0"))),
        R"(fail{"lengthKm":24.3,"lossDb":5.5,"marginDb":-4.6,"returnLossDb":38.2,"run":1,"simulated":true})");
}

TEST(SimulatedResultTest, seedJobIndexTypeAndRunMakeTheDifference)
{
    const json again{ { "testType", "otdr" }, { "results", { { "data", { { "run", 1 } } } } } };
    std::set<std::string> different;
    different.insert(textOf(simulatedOutcome(0, testToRun("WO-1", "0"))));
    different.insert(textOf(simulatedOutcome(1, testToRun("WO-1", "0"))));
    different.insert(textOf(simulatedOutcome(0, testToRun("WO-2", "0"))));
    different.insert(textOf(simulatedOutcome(0, testToRun("WO-1", "1"))));
    different.insert(textOf(simulatedOutcome(0, testToRun("WO-1", "0", { { "testType", "olts" } }))));
    different.insert(textOf(simulatedOutcome(0, testToRun("WO-1", "0", again))));
    EXPECT_EQ(different.size(), 6u);
}

TEST(SimulatedResultTest, theRunsAreCounted)
{
    const auto runOf = [](const json& results) {
        const json test{ { "testType", "otdr" }, { "results", results } };
        return json::parse(simulatedOutcome(0, testToRun("a", "0", test)).data.text()).at("run");
    };
    EXPECT_EQ(runOf(nullptr), 1);
    EXPECT_EQ(runOf({ { "data", { { "run", 1 } } } }), 2);
    EXPECT_EQ(runOf({ { "data", { { "run", 41 } } } }), 42);
    for (const json& run : { json(-1), json("1"), json(1.5), json(1e300), json(18446744073709551615u), json(nullptr) })
        EXPECT_EQ(runOf({ { "data", { { "run", run } } } }), 1) << run;
    EXPECT_EQ(runOf({ { "data", 3 } }), 1);
}

TEST(SimulatedResultTest, theRunsOfALocationAreItsOwn)
{
    TestToRun test = testToRun("a", "0_0", { { "testType", "otdr" }, { "results", { { "data", { { "run", 5 } } } } } });
    test.location = JsonTree::fromText(R"({"location":"A","results":{"data":{"run":1}}})");
    EXPECT_EQ(json::parse(simulatedOutcome(0, test).data.text()).at("run"), 2);
}

TEST(SimulatedResultTest, aboutOneInSevenFails)
{
    std::map<std::string, int> count;
    for (std::uint32_t seed = 0; seed < 1000; ++seed)
        ++count[simulatedOutcome(seed, testToRun("a", "0")).status];
    EXPECT_EQ(count.size(), 2u);
    EXPECT_GT(count["fail"], 90);
    EXPECT_LT(count["fail"], 200);
}

TEST(SimulatedResultTest, theMarginAgreesWithTheVerdict)
{
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        for (const char* type : { "otdr", "ponPower", "y1564Config", "docsis", "splice", "dslSync", "" }) {
            const TestOutcome outcome = simulatedOutcome(seed, testToRun("a", "0", { { "testType", type } }));
            const json data = json::parse(outcome.data.text());
            EXPECT_EQ(data.at("marginDb").get<double>() > 0, outcome.status == "pass") << data;
            EXPECT_EQ(data.size(), 6u) << data;
            EXPECT_EQ(data.at("simulated"), true);
        }
    }
}

TEST(SimulatedResultTest, theFiguresFitTheTest)
{
    const auto dataOf = [](const char* type) {
        return json::parse(simulatedOutcome(0, testToRun("a", "0", { { "testType", type } })).data.text());
    };
    EXPECT_TRUE(dataOf("otdr").contains("lengthKm"));
    EXPECT_TRUE(dataOf("ponPower").contains("levelDbm"));
    EXPECT_TRUE(dataOf("rfc2544").contains("throughputMbps"));
    EXPECT_TRUE(dataOf("coaxLevels").contains("merDb"));
    EXPECT_TRUE(dataOf("copperDmm").contains("resistanceOhm"));
}

} // namespace
