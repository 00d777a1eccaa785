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
    EXPECT_FALSE(line.help);
    EXPECT_FALSE(line.version);
}

TEST(CommandLineTest, everyOptionIsRead)
{
    const CommandLine line = parseCommandLine({ "--port", "0", "--data", "/d", "--load", "a", "--load=b", "--generate",
        "jobs=1000,tests=50", "--tech-id=t=1", "--attribute-rules", "r.json", "--help", "--version" });
    EXPECT_EQ(line.port, 0);
    EXPECT_EQ(line.data, "/d");
    EXPECT_EQ(line.load, (std::vector<std::filesystem::path>{ "a", "b" }));
    EXPECT_EQ(line.generate->jobs, 1000u);
    EXPECT_EQ(line.generate->tests, 50u);
    EXPECT_EQ(line.techId, "t=1");
    EXPECT_EQ(line.attributeRules, "r.json");
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
        Arguments{ "--generate", "jobs=1000001" }));

TEST(CommandLineTest, theUsageNamesEveryOption)
{
    const std::string usage = usageText();
    for (const char* option :
        { "--port", "--data", "--load", "--generate", "--tech-id", "--attribute-rules", "--help", "--version" })
        EXPECT_NE(usage.find(option), std::string::npos) << option;
}

} // namespace
