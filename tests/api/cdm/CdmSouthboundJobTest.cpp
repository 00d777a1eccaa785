#include "api/cdm/CdmSouthboundJob.h"

#include <gtest/gtest.h>
#include <type_traits>

using cdm::CdmSouthboundJob;

namespace {

/// Longer than any string that is kept in place, so that moving it moves memory.
const std::string longText(100, 'x');

CdmSouthboundJob jobWithOpaqueContent()
{
    CdmSouthboundJob job;
    job.details.id = longText;
    job.details.opaqueValue = { 1, 2, 3 };
    job.details.opaqueMap = { { "key", longText } };
    job.details.opaqueBlock.emplace().opaqueText10 = "ten";
    job.details.opaqueNested.emplace().opaqueInner.emplace().opaqueText3 = "inner";
    job.details.opaqueEntry = cdm::TextEntry{ "one", "two", "three" };
    job.details.opaqueAttributeList.emplace().emplace_back().value = "value";
    job.opaqueJson = nlohmann::json::parse(R"({"deep": [1, 2]})");
    job.instrument.emplace().modules.emplace().emplace_back().swOptions.emplace().emplace_back().opaqueText3 = "option";
    cdm::Test& test = job.tests.emplace().emplace_back();
    test.opaqueValue2 = { 7 };
    test.opaqueTextList = { "a", "b" };
    test.testLocations.emplace().emplace_back().opaqueMap["map"] = "entry";
    test.results.emplace().opaqueValue3 = { 9 };
    return job;
}

void expectOpaqueContent(const CdmSouthboundJob& job)
{
    EXPECT_EQ(job.details.id, longText);
    EXPECT_EQ(job.details.opaqueValue[2], 3);
    EXPECT_EQ(job.details.opaqueMap->at("key"), longText);
    EXPECT_EQ(job.details.opaqueBlock->opaqueText10, "ten");
    EXPECT_EQ(job.details.opaqueNested->opaqueInner->opaqueText3, "inner");
    EXPECT_EQ(job.details.opaqueEntry->opaqueText3, "three");
    EXPECT_EQ(job.details.opaqueAttributeList->at(0).value, "value");
    EXPECT_EQ(job.opaqueJson->at("deep").at(1), 2);
    EXPECT_EQ(job.instrument->modules->at(0).swOptions->at(0).opaqueText3, "option");
    const cdm::Test& test = job.tests->at(0);
    EXPECT_EQ(test.opaqueValue2[0], 7);
    EXPECT_EQ(test.opaqueTextList->at(1), "b");
    EXPECT_EQ(test.testLocations->at(0).opaqueMap.at("map"), "entry");
    EXPECT_EQ(test.results->opaqueValue3[0], 9);
}

} // namespace

TEST(CdmSouthboundJob, startsWithoutContent)
{
    const CdmSouthboundJob job;
    EXPECT_FALSE(job.tests);
    EXPECT_FALSE(job.instrument);
    EXPECT_FALSE(job.opaqueJson);
    EXPECT_FALSE(job.opaqueTimestamp);
    EXPECT_EQ(job.cdmVersion, "2.2");
    EXPECT_EQ(job.details.id, "");
    EXPECT_FALSE(job.details.timestamp.value.empty());
    EXPECT_FALSE(job.details.techInfo);
    EXPECT_FALSE(job.details.contractorId);
    EXPECT_FALSE(job.details.attributes);
}

TEST(CdmSouthboundJob, plainValuesStartAsZero)
{
    EXPECT_EQ(cdm::JobDetails().opaqueValue, (std::array<unsigned char, 16>{}));
    EXPECT_EQ(cdm::Test().opaqueValue1, (std::array<unsigned char, 16>{}));
    EXPECT_EQ(cdm::Test().opaqueValue2, (std::array<unsigned char, 8>{}));
    EXPECT_EQ(cdm::TestLocation().opaqueValue, (std::array<unsigned char, 16>{}));
    EXPECT_EQ(cdm::TestResults().opaqueValue1, (std::array<unsigned char, 8>{}));
    EXPECT_EQ(cdm::TestResults().opaqueValue2, (std::array<unsigned char, 16>{}));
    EXPECT_EQ(cdm::TestResults().opaqueValue3, (std::array<unsigned char, 8>{}));
}

TEST(CdmSouthboundJob, copyIsDeep)
{
    CdmSouthboundJob original = jobWithOpaqueContent();
    const CdmSouthboundJob copy = original;
    original.tests->at(0).testLocations->at(0).opaqueMap.clear();
    original.details.opaqueMap->clear();
    original.opaqueJson->clear();
    expectOpaqueContent(copy);
}

TEST(CdmSouthboundJob, moveKeepsContentAndEmptiesTheSource)
{
    CdmSouthboundJob original = jobWithOpaqueContent();
    const CdmSouthboundJob target = std::move(original);
    expectOpaqueContent(target);
    EXPECT_EQ(original.details.id, ""); // NOLINT(bugprone-use-after-move): what remains is promised
    EXPECT_TRUE(original.tests->empty()); // NOLINT(bugprone-use-after-move)
}

TEST(CdmSouthboundJob, listsOfTestsGrowByMoving)
{
    static_assert(std::is_nothrow_move_constructible_v<cdm::Test>);
    static_assert(std::is_nothrow_move_constructible_v<cdm::TestLocation>);
    std::vector<cdm::Test> tests(1);
    tests[0].testType = longText;
    const char* const memory = tests[0].testType.data();
    tests.reserve(tests.capacity() + 1);
    EXPECT_EQ(tests[0].testType.data(), memory);
}
