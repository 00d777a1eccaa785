#include "service/JobMerge.h"

#include "service/JsonTree.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <vector>

using namespace job_service;
using nlohmann::json;

namespace {

json results(const std::string& status, const std::string& time)
{
    return { { "status", status }, { "time", time } };
}

json test(const std::string& type, const json& itsResults = nullptr)
{
    json value{ { "testType", type } };
    if (!itsResults.is_null())
        value["results"] = itsResults;
    return value;
}

json location(const std::string& name, const json& itsResults = nullptr)
{
    json value{ { "location", name } };
    if (!itsResults.is_null())
        value["results"] = itsResults;
    return value;
}

json job(const std::vector<json>& tests)
{
    return { { "details", { { "id", "a" } } }, { "tests", json(tests) } };
}

const json early = results("fail", "2026-03-01T08:00:00Z");
const json late = results("pass", "2026-03-01T10:00:00+01:00"); // 09:00 UTC

class JobMergeTest : public testing::Test
{
protected:
    bool m_changed = false;

    /// The job after the merge.
    json merged(const json& ours, const json& theirs)
    {
        JsonTree tree = JsonTree::fromText(ours.dump());
        m_changed = mergeJob(tree, JsonTree::fromText(theirs.dump()));
        return json::parse(tree.text());
    }
    json mergedTest(const json& ours, const json& theirs)
    {
        return merged(job({ ours }), job({ theirs })).at("tests")[0];
    }
};

TEST_F(JobMergeTest, aResultThatOnlyTheOtherHasIsTaken)
{
    EXPECT_EQ(mergedTest(test("x"), test("x", early)).at("results"), early);
    EXPECT_TRUE(m_changed);
}

TEST_F(JobMergeTest, aResultThatOnlyWeHaveStays)
{
    EXPECT_EQ(mergedTest(test("x", early), test("x")).at("results"), early);
    EXPECT_FALSE(m_changed);
}

TEST_F(JobMergeTest, theLaterResultCountsAndTheEarlierOneIsKept)
{
    json expected = late;
    expected["earlierResults"] = json::array({ early });
    EXPECT_EQ(mergedTest(test("x", early), test("x", late)).at("results"), expected);
    EXPECT_TRUE(m_changed);
    EXPECT_EQ(mergedTest(test("x", late), test("x", early)).at("results"), expected);
    EXPECT_TRUE(m_changed);
}

TEST_F(JobMergeTest, equalResultsChangeNothing)
{
    EXPECT_EQ(mergedTest(test("x", early), test("x", early)).at("results"), early);
    EXPECT_FALSE(m_changed);
}

TEST_F(JobMergeTest, ofResultsOfOneMomentOursCounts)
{
    const json ours = results("pass", "2026-03-01T08:00:00Z");
    const json merged = mergedTest(test("x", ours), test("x", early)).at("results");
    EXPECT_EQ(merged.at("status"), "pass");
    EXPECT_EQ(merged.at("earlierResults"), json::array({ early }));
}

TEST_F(JobMergeTest, aTimeThatIsNoneIsTheEarliest)
{
    const json odd = results("skipped", "yesterday");
    EXPECT_EQ(mergedTest(test("x", odd), test("x", early)).at("results").at("status"), "fail");
}

TEST_F(JobMergeTest, theSameMergeAgainChangesNothing)
{
    const json theirs = job({ test("x", late), test("new", early) });
    const json once = merged(job({ test("x", early) }), theirs);
    EXPECT_EQ(merged(once, theirs), once);
    EXPECT_FALSE(m_changed);
}

TEST_F(JobMergeTest, bothSidesComeToHaveTheSameResults)
{
    const json third = results("marginal", "2026-03-02T08:00:00Z");
    json ours = late;
    ours["earlierResults"] = json::array({ early });
    const json here = mergedTest(test("x", ours), test("x", third)).at("results");
    const json there = mergedTest(test("x", third), test("x", ours)).at("results");
    EXPECT_EQ(here, there);
    EXPECT_EQ(here.at("earlierResults"), json::array({ late, early }));
}

TEST_F(JobMergeTest, locationsAreMergedByName)
{
    json ours = test("x");
    ours["testLocations"] = json::array({ location("A", early), location("B") });
    json theirs = test("x");
    theirs["testLocations"] = json::array({ location("B", late), location("A", late) });
    const json locations = mergedTest(ours, theirs).at("testLocations");
    EXPECT_EQ(locations[0].at("results").at("status"), "pass");
    EXPECT_EQ(locations[1].at("results").at("status"), "pass");
    EXPECT_EQ(locations.size(), 2u);
}

TEST_F(JobMergeTest, testsOfOneKindBelongTogetherByPlace)
{
    const json ours = job({ test("x"), test("x"), test("x") });
    const json theirs = job({ test("x"), test("x", early), test("x", late) });
    const json tests = merged(ours, theirs).at("tests");
    EXPECT_FALSE(tests[0].contains("results"));
    EXPECT_EQ(tests[1].at("results"), early);
    EXPECT_EQ(tests[2].at("results"), late);
}

TEST_F(JobMergeTest, whatOnlyTheOtherHasIsAddedAtTheEndAndNumbered)
{
    json extra = test("new", early);
    extra["uiIndex"] = "0";
    const json tests = merged(job({ test("x") }), job({ extra, test("x", late) })).at("tests");
    ASSERT_EQ(tests.size(), 2u);
    EXPECT_EQ(tests[0].at("results"), late);
    EXPECT_EQ(tests[1].at("testType"), "new");
    EXPECT_EQ(tests[1].at("results"), early);
    EXPECT_EQ(tests[1].at("uiIndex"), "1");
}

TEST_F(JobMergeTest, everythingElseStaysOurs)
{
    json ours = job({ test("x") });
    ours["details"]["customerName"] = "ours";
    json theirs = job({ test("x", early) });
    theirs["details"]["customerName"] = "theirs";
    theirs["tests"][0]["description"] = "theirs";
    const json result = merged(ours, theirs);
    EXPECT_EQ(result.at("details").at("customerName"), "ours");
    EXPECT_FALSE(result.at("tests")[0].contains("description"));
}

TEST_F(JobMergeTest, jobsWithoutTestsMerge)
{
    EXPECT_FALSE(merged({ { "details", { { "id", "a" } } } }, job({})).contains("tests"));
    EXPECT_EQ(merged({ { "details", { { "id", "a" } } } }, job({ test("x", early) })).at("tests").size(), 1u);
}

} // namespace
