#include "service/CommandLine.h"

#include <gtest/gtest.h>

using namespace job_service;

namespace {

using Arguments = std::vector<std::string>;

TEST(CommandLineTest, withoutArgumentsTheDefaultsHold)
{
    const CommandLine line = parseCommandLine({});
    EXPECT_EQ(line.port, 8082);
    EXPECT_TRUE(line.data.empty());
    EXPECT_TRUE(line.load.empty());
    EXPECT_FALSE(line.generate);
    EXPECT_EQ(line.techId, "");
    EXPECT_TRUE(line.attributeRules.empty());
    EXPECT_EQ(line.mediaRoots, std::vector<std::filesystem::path>{ "/media" });
    EXPECT_FALSE(line.help);
    EXPECT_FALSE(line.version);
}

TEST(CommandLineTest, everyOptionIsRead)
{
    const CommandLine line = parseCommandLine({ "--port", "0", "--data", "/d", "--load", "a", "--load=b", "--generate",
        "jobs=1000,tests=50", "--tech-id=t=1", "--attribute-rules", "r.json", "--test-command", "/p",
        "--test-argument=-x", "--test-argument", "", "--test-seconds", "2", "--instrument", "i.json", "--templates",
        "t", "--start-seconds", "0.25", "--run-seconds=86400", "--seed=4294967295", "--media-root", "/a",
        "--media-root=b", "--help", "--version" });
    EXPECT_EQ(line.port, 0);
    EXPECT_EQ(line.data, "/d");
    EXPECT_EQ(line.load, (std::vector<std::filesystem::path>{ "a", "b" }));
    EXPECT_EQ(line.generate->jobs, 1000u);
    EXPECT_EQ(line.generate->tests, 50u);
    EXPECT_EQ(line.techId, "t=1");
    EXPECT_EQ(line.attributeRules, "r.json");
    EXPECT_EQ(line.templates, "t");
    EXPECT_EQ(line.tests.program.program, "/p");
    EXPECT_EQ(line.tests.program.arguments, (Arguments{ "-x", "" }));
    EXPECT_EQ(line.tests.program.longestRun, std::chrono::seconds(2));
    EXPECT_EQ(line.tests.instrument, "i.json");
    EXPECT_EQ(line.tests.simulation.startDuration, std::chrono::milliseconds(250));
    EXPECT_EQ(line.tests.simulation.runDuration, std::chrono::hours(24));
    EXPECT_EQ(line.tests.simulation.seed, 4294967295u);
    EXPECT_EQ(line.mediaRoots, (std::vector<std::filesystem::path>{ "/a", "b" }));
    EXPECT_TRUE(line.help);
    EXPECT_TRUE(line.version);
}

TEST(CommandLineTest, theTechnicianMayBeEmpty)
{
    EXPECT_EQ(parseCommandLine({ "--tech-id=" }).techId, "");
}

class BadArguments : public testing::TestWithParam<Arguments>
{
};

TEST_P(BadArguments, areAUsageError)
{
    EXPECT_THROW(parseCommandLine(GetParam()), UsageError);
}

INSTANTIATE_TEST_SUITE_P(Lines, BadArguments,
    testing::Values(Arguments{ "--prot", "1" }, Arguments{ "stray" }, Arguments{ "--port" }, Arguments{ "--port", "" },
        Arguments{ "--port", "65536" }, Arguments{ "--port", "-1" }, Arguments{ "--port", "80x" },
        Arguments{ "--data=" }, Arguments{ "--data", "" }, Arguments{ "--load=" }, Arguments{ "--attribute-rules=" },
        Arguments{ "--help=yes" }, Arguments{ "--generate", "jobs" }, Arguments{ "--generate", "jobs=" },
        Arguments{ "--generate", "jobs=1,tests=-1" }, Arguments{ "--generate", "rows=1" },
        Arguments{ "--generate", "jobs=1000001" }, Arguments{ "--instrument=" }, Arguments{ "--test-command=" },
        Arguments{ "--test-argument" }, Arguments{ "--test-seconds", "x" }, Arguments{ "--templates=" },
        Arguments{ "--seed", "-1" }, Arguments{ "--seed", "4294967296" }, Arguments{ "--seed=" },
        Arguments{ "--run-seconds", "-0.1" }, Arguments{ "--run-seconds", "86400.5" },
        Arguments{ "--run-seconds", "nan" }, Arguments{ "--run-seconds", "1s" }, Arguments{ "--start-seconds=" }));

TEST(CommandLineTest, theUsageNamesEveryOption)
{
    const std::string usage = usageText();
    for (const char* option : { "--port", "--data", "--load", "--generate", "--tech-id", "--attribute-rules",
             "--instrument", "--test-command", "--test-argument", "--test-seconds", "--templates", "--start-seconds",
             "--run-seconds", "--seed", "--help", "--version" })
        EXPECT_NE(usage.find(option), std::string::npos) << option;
}

} // namespace
