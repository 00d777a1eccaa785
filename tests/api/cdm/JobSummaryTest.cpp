#include "api/cdm/JobSummary.h"

#include <gtest/gtest.h>

using nlohmann::json;

namespace {

struct Case
{
    const char* name;
    const char* tests;
    int total;
    int completed;
};

class JobSummary : public testing::TestWithParam<Case>
{
};

const Case cases[] = {
    { "noTests", "[]", 0, 0 },
    { "testWithoutFlagIsRequired", R"([{}])", 1, 0 },
    { "requiredTestWithStatusIsCompleted", R"([{"required": true, "results": {"status": "failed"}}])", 1, 1 },
    { "emptyStatusIsNoStatus", R"([{"results": {"status": ""}}])", 1, 0 },
    { "aRunThatBrokeOffCompletesNothing", R"([{"results": {"status": "error"}}, {"results": {"status": "Error"}}])", 2,
        1 },
    { "resultsWithoutStatusAreNoStatus", R"([{"results": {"time": "now"}}])", 1, 0 },
    { "optionalTestDoesNotCount", R"([{"required": false, "results": {"status": "passed"}}])", 0, 0 },
    { "emptyLocationListIsNone", R"([{"testLocations": [], "results": {"status": "passed"}}])", 1, 1 },
    { "testCountsOnceHoweverManyLocations", R"([{"testLocations": [{}, {}, {}]}])", 1, 0 },
    { "allLocationsNeedAStatus",
        R"([{"testLocations": [{"results": {"status": "passed"}}, {}]},
            {"testLocations": [{"results": {"status": "passed"}}, {"results": {"status": "failed"}}]}])",
        2, 1 },
    { "oneLocationWithoutStatusIsEnoughToBeIncomplete",
        R"([{"testLocations": [{}, {"results": {"status": "passed"}}]}])", 1, 0 },
    { "resultsOfTheWholeDoNotStandForALocation", R"([{"results": {"status": "passed"}, "testLocations": [{}]}])", 1,
        0 },
    { "optionalLocationNeedsAStatusToo",
        R"([{"testLocations": [{"results": {"status": "passed"}}, {"required": false}]},
            {"testLocations": [{"results": {"status": "passed"}},
                               {"required": false, "results": {"status": "skipped"}}]}])",
        2, 1 },
    { "requiredLocationMakesAnOptionalTestRequired",
        R"([{"required": false, "testLocations": [{}, {"required": true}]}])", 1, 0 },
    { "allLocationsOfAnOptionalTestWithARequiredOneNeedAStatus",
        R"([{"required": false, "testLocations": [{}, {"required": true, "results": {"status": "passed"}}]},
            {"required": false, "testLocations": [{"results": {"status": "failed"}},
                                                  {"required": true, "results": {"status": "passed"}}]}])",
        2, 1 },
    { "optionalLocationsMakeARequiredTestOptional",
        R"([{"required": true, "testLocations": [{"required": false}, {"required": false}]}])", 0, 0 },
    { "nullFlagIsNoFlag", R"([{"required": null}, {"required": false, "testLocations": [{"required": null}]}])", 1, 0 },
    { "flagOfTheWrongTypeIsNoFlag", R"([{"required": "false"}, {"required": 0}])", 2, 0 },
    { "statusOfTheWrongTypeIsNone", R"([{"results": {"status": 1}}, {"results": []}, {"results": "passed"}])", 3, 0 },
    { "whatIsNoObjectIsPassedOver", R"([1, "a", null, [], {"testLocations": [1, null]}, {"testLocations": "a"}])", 2,
        0 },
    { "testsAreNoList", R"({"0": {}})", 0, 0 },
};

} // namespace

TEST_P(JobSummary, counts)
{
    const json document = { { "tests", json::parse(GetParam().tests) } };
    const cdm::RequiredTestCounts counts = cdm::requiredTestCounts(document);
    EXPECT_EQ(counts.total, GetParam().total);
    EXPECT_EQ(counts.completed, GetParam().completed);
}

INSTANTIATE_TEST_SUITE_P(Rules, JobSummary, testing::ValuesIn(cases), [](const auto& row) { return row.param.name; });

TEST(JobSummaryOfAnything, documentWithoutTestsHasNone)
{
    for (const json& document : { json(), json(1), json("a"), json::array({ 1 }), json::object() }) {
        EXPECT_EQ(cdm::requiredTestCounts(document).total, 0) << document;
        EXPECT_EQ(cdm::requiredTestCounts(document).completed, 0) << document;
    }
}
