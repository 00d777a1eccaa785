#include "service/JobDocument.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace job_service;
using nlohmann::json;

namespace {

constexpr const char* now = "2026-03-02T00:00:00.000Z";

json documentOf(const StoredJob& job)
{
    return json::parse(job.document);
}

std::string refusalOf(const std::string& text)
{
    try {
        jobFromFile(text, now);
    } catch (const DocumentRefused& refused) {
        return refused.what();
    }
    return "accepted";
}

TEST(JobDocumentTest, testsAndLocationsAreNumberedInListOrder)
{
    const json document = documentOf(jobFromFile(
        R"({"details":{"id":"a"},"tests":[{"testType":"x","uiIndex":"7"},{"testType":"y"},{"testType":"z",
            "testLocations":[{"location":"A","uiIndex":""},{"location":"B"}]}]})",
        now));
    const json& tests = document.at("tests");
    EXPECT_EQ(tests[0].at("uiIndex"), "0");
    EXPECT_EQ(tests[1].at("uiIndex"), "1");
    EXPECT_EQ(tests[2].at("uiIndex"), "2");
    EXPECT_EQ(tests[2].at("testLocations")[0].at("uiIndex"), "2_0");
    EXPECT_EQ(tests[2].at("testLocations")[1].at("uiIndex"), "2_1");
}

TEST(JobDocumentTest, unknownMembersAndNumbersOfAnySizeStay)
{
    const StoredJob job = jobFromFile(
        R"({"x":123456789012345678901234567890,"details":{"id":"a","y":1.10,"modifiedOn":"2026-03-01T08:15:00.000Z"},)"
        R"("tests":[],"z":{"w":[null]}})",
        now);
    EXPECT_EQ(job.document,
        R"({"x":123456789012345678901234567890,"details":{"id":"a","y":1.10,"modifiedOn":"2026-03-01T08:15:00.000Z"},)"
        R"("tests":[],"z":{"w":[null]}})");
}

TEST(JobDocumentTest, aWellFormedTimeOfModificationIsKept)
{
    const StoredJob job = jobFromFile(R"({"details":{"id":"a","modifiedOn":"2020-01-01T00:00:00.000Z"}})", now);
    EXPECT_EQ(job.modifiedOn, "2020-01-01T00:00:00.000Z");
}

TEST(JobDocumentTest, aMissingOrIllFormedTimeOfModificationBecomesTheTimeOfLoading)
{
    for (const char* text : { R"({"details":{"id":"a"}})", R"({"details":{"id":"a","modifiedOn":"yesterday"}})",
             R"({"details":{"id":"a","modifiedOn":null}})" }) {
        const StoredJob job = jobFromFile(text, now);
        EXPECT_EQ(job.modifiedOn, now) << text;
        EXPECT_EQ(documentOf(job).at("details").at("modifiedOn"), now) << text;
    }
}

TEST(JobDocumentTest, theSummaryHoldsWhatTheJobListNeeds)
{
    const StoredJob job = jobFromFile(
        R"({"details":{"id":"a","workOrderLabel":"L","workflowTypeName":"W","customerName":"C","managedByInfo":"M",
            "managementState":"S","teamTechIds":["t1","t2"],"archived":true,"modifiedOn":"2020-01-01T00:00:00.000Z"},
            "tests":[{"testType":"x","results":{"status":"pass","time":"t"}},{"testType":"y"},
                     {"testType":"z","required":false}]})",
        now);
    EXPECT_EQ(json::parse(job.summary),
        (json{ { "id", "a" }, { "workOrderLabel", "L" }, { "workflowTypeName", "W" }, { "customerName", "C" },
            { "managedByInfo", "M" }, { "managementState", "S" }, { "teamTechIds", { "t1", "t2" } },
            { "archived", true }, { "modifiedOn", "2020-01-01T00:00:00.000Z" }, { "totalNumberOfRequiredTests", 2 },
            { "numberOfCompletedRequiredTests", 1 } }));
}

TEST(JobDocumentTest, theSummaryOfABareJobIsComplete)
{
    EXPECT_EQ(json::parse(jobFromFile(R"({"details":{"id":"a","customerName":null}})", now).summary),
        (json{ { "id", "a" }, { "workOrderLabel", "" }, { "workflowTypeName", "" }, { "customerName", "" },
            { "managedByInfo", "" }, { "managementState", "" }, { "teamTechIds", json::array() }, { "archived", false },
            { "modifiedOn", now }, { "totalNumberOfRequiredTests", 0 }, { "numberOfCompletedRequiredTests", 0 } }));
}

TEST(JobDocumentTest, aRefusalNamesTheOffendingMember)
{
    EXPECT_EQ(refusalOf(R"({"details":{}})").substr(0, 12), "/details/id:");
    EXPECT_EQ(refusalOf(R"({"details":{"id":""}})").substr(0, 12), "/details/id:");
    EXPECT_EQ(refusalOf(R"({"details":{"id":"a"},"tests":[{}]})").substr(0, 18), "/tests/0/testType:");
}

TEST(JobDocumentTest, whatIsNoJsonOrTooDeepOrTooLargeIsRefused)
{
    EXPECT_NE(refusalOf(""), "accepted");
    EXPECT_NE(refusalOf("[]"), "accepted");
    EXPECT_NE(
        refusalOf(R"({"details":{"id":"a"},"x":)" + std::string(64, '[') + std::string(64, ']') + "}"), "accepted");
    EXPECT_EQ(
        refusalOf(R"({"details":{"id":"a"},"x":)" + std::string(63, '[') + std::string(63, ']') + "}"), "accepted");
    EXPECT_NE(refusalOf(R"({"details":{"id":"a"},"x":")" + std::string(maximumDocumentSize, 'x') + "\"}"), "accepted");
}

TEST(JobDocumentTest, idsHaveBoundsAndNoControlCharacters)
{
    EXPECT_TRUE(isJobId("x"));
    EXPECT_TRUE(isJobId("../\xE4\xBD\x9C\xE6\xA5\xAD %2F"));
    EXPECT_TRUE(isJobId("\xC2\xA0"));
    EXPECT_TRUE(isJobId(std::string(512, 'x')));
    EXPECT_FALSE(isJobId(""));
    EXPECT_FALSE(isJobId(std::string(513, 'x')));
    EXPECT_FALSE(isJobId("a\nb"));
    EXPECT_FALSE(isJobId(std::string_view("a\0b", 3)));
    EXPECT_FALSE(isJobId("\x7F"));
    EXPECT_FALSE(isJobId("\xC2\x85"));
}

struct IndexCase
{
    const char* uiIndex;
    const char* found; // name of the test type or location, null for none
};

class IndexString : public testing::TestWithParam<IndexCase>
{
};

TEST_P(IndexString, findsTheTestOrLocation)
{
    JsonTree document = JsonTree::fromText(
        R"({"tests":[{"testType":"x"},{"testType":"y","testLocations":[{"location":"A"},{"location":"B"}]}]})");
    JsonTree* found = findTest(document, GetParam().uiIndex);
    ASSERT_EQ(found != nullptr, GetParam().found != nullptr) << GetParam().uiIndex;
    if (!found)
        return;
    const JsonTree* name = found->find("location") ? found->find("location") : found->find("testType");
    EXPECT_EQ(name->stringValue(), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Indices, IndexString,
    testing::Values(IndexCase{ "0", "x" }, IndexCase{ "1", "y" }, IndexCase{ "1_0", "A" }, IndexCase{ "1_1", "B" },
        IndexCase{ "2", nullptr }, IndexCase{ "1_2", nullptr }, IndexCase{ "0_0", nullptr }, IndexCase{ "", nullptr },
        IndexCase{ "_", nullptr }, IndexCase{ "1_", nullptr }, IndexCase{ "_1", nullptr }, IndexCase{ "01", nullptr },
        IndexCase{ "1_0_0", nullptr }, IndexCase{ "-1", nullptr }, IndexCase{ "0x1", nullptr },
        IndexCase{ "4294967297", nullptr }, IndexCase{ "18446744073709551617", nullptr }));

TEST(JobDocumentTest, aJobWithoutATemplateIsBare)
{
    const StoredJob job = jobFromTemplate({ "WO-1", "t-7", true }, "", now);
    EXPECT_EQ(job.id, "WO-1");
    EXPECT_EQ(documentOf(job),
        (json{ { "details",
                   { { "id", "WO-1" }, { "timestamp", now }, { "techInfo", { { "techId", "t-7" } } },
                       { "syncToNimbrel", true }, { "archived", false }, { "modifiedOn", now } } },
            { "tests", json::array() } }));
}

TEST(JobDocumentTest, aJobTakesTheDetailsAndTestsOfItsTemplate)
{
    const StoredJob job = jobFromTemplate({ "WO-1", "t-7", false },
        R"({"name":"T","workOrderLabel":"Ticket","workflowTypeName":"Repair","extra":[1],
            "details":{"customerName":"C","techInfo":{"techId":"old","more":1},"archived":true},
            "tests":[{"testType":"x","testLocations":[{"location":"A"}]}]})",
        now);
    EXPECT_EQ(documentOf(job),
        (json{ { "extra", { 1 } },
            { "details",
                { { "id", "WO-1" }, { "timestamp", now }, { "techInfo", { { "techId", "t-7" }, { "more", 1 } } },
                    { "syncToNimbrel", false }, { "archived", false }, { "modifiedOn", now }, { "customerName", "C" },
                    { "workOrderLabel", "Ticket" }, { "workflowTypeName", "Repair" } } },
            { "tests",
                { { { "testType", "x" }, { "uiIndex", "0" },
                    { "testLocations", { { { "location", "A" }, { "uiIndex", "0_0" } } } } } } } }));
    EXPECT_EQ(json::parse(job.summary).at("workOrderLabel"), "Ticket");
}

TEST(JobDocumentTest, aTemplateIsCheckedAndNamed)
{
    EXPECT_EQ(checkedTemplateName(R"({"name":"T","tests":[{"testType":"x"}]})"), "T");
    EXPECT_THROW(checkedTemplateName(R"({"tests":[]})"), DocumentRefused);
    EXPECT_THROW(checkedTemplateName(R"({"name":"T","tests":[{}]})"), DocumentRefused);
    EXPECT_THROW(checkedTemplateName("{"), DocumentRefused);
}

} // namespace
