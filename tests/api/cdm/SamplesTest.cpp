#include "api/cdm/JobCodec.h"
#include "api/cdm/JobSummary.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <map>
#include <regex>
#include <set>

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::Not;

namespace {

/// File name to text of every sample of one kind: the files of a folder that end so.
std::map<std::string, std::string> textsIn(const char* folder, const std::string& ending)
{
    std::map<std::string, std::string> texts;
    const std::filesystem::path path = std::filesystem::path(JOBMANAGER_SAMPLES_DIR) / folder;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        const std::string name = entry.path().filename().string();
        if (name.size() < ending.size() || name.compare(name.size() - ending.size(), ending.size(), ending) != 0)
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        texts[name].assign(std::istreambuf_iterator<char>(file), {});
    }
    return texts;
}

const std::map<std::string, std::string>& jobTexts()
{
    static const auto texts = textsIn("jobs", "");
    return texts;
}

std::map<std::string, json> documentsOf(const std::map<std::string, std::string>& texts)
{
    std::map<std::string, json> documents;
    for (const auto& [name, text] : texts) {
        cdm::DocumentError error;
        auto document = cdm::parseJson(text, error);
        EXPECT_TRUE(document) << name << ": " << error.message;
        documents[name] = document.value_or(json());
    }
    return documents;
}

const std::map<std::string, json>& jobDocuments()
{
    static const auto documents = documentsOf(jobTexts());
    return documents;
}

const std::map<std::string, cdm::CdmSouthboundJob>& jobs()
{
    static const auto read = [] {
        std::map<std::string, cdm::CdmSouthboundJob> result;
        for (const auto& [name, document] : jobDocuments()) {
            cdm::DocumentError error;
            const auto job = cdm::jobFromJson(document, error);
            EXPECT_TRUE(job) << name << ": " << error.path << ": " << error.message;
            result[name] = job.value_or(cdm::CdmSouthboundJob());
        }
        return result;
    }();
    return read;
}

std::vector<cdm::Test> allTests()
{
    std::vector<cdm::Test> tests;
    for (const auto& [name, job] : jobs()) {
        if (job.tests)
            tests.insert(tests.end(), job.tests->begin(), job.tests->end());
    }
    return tests;
}

std::vector<cdm::TestLocation> allLocations()
{
    std::vector<cdm::TestLocation> locations;
    for (const cdm::Test& test : allTests()) {
        if (test.testLocations)
            locations.insert(locations.end(), test.testLocations->begin(), test.testLocations->end());
    }
    return locations;
}

std::vector<cdm::TestResults> allResults()
{
    std::vector<cdm::TestResults> results;
    for (const cdm::Test& test : allTests()) {
        if (test.results)
            results.push_back(*test.results);
    }
    for (const cdm::TestLocation& location : allLocations()) {
        if (location.results)
            results.push_back(*location.results);
    }
    return results;
}

void append(std::vector<std::pair<std::string, json>>& list, const std::optional<cdm::Attributes>& attributes)
{
    if (attributes)
        list.insert(list.end(), attributes->values.begin(), attributes->values.end());
}

/// Name and value of every attribute of every job, test and location.
std::vector<std::pair<std::string, json>> allAttributeValues()
{
    std::vector<std::pair<std::string, json>> values;
    for (const auto& [name, job] : jobs())
        append(values, job.details.attributes);
    for (const cdm::Test& test : allTests())
        append(values, test.attributes);
    for (const cdm::TestLocation& location : allLocations())
        append(values, location.attributes);
    return values;
}

bool isOfOtherShape(const std::string& name)
{
    return name == "referenceInfo" || name == "subTypeInfo";
}

/// Every attribute that has the usual form.
std::vector<cdm::Attribute> allAttributes()
{
    std::vector<cdm::Attribute> attributes;
    for (const auto& [name, value] : allAttributeValues()) {
        if (!isOfOtherShape(name))
            attributes.push_back(value.get<cdm::Attribute>());
    }
    return attributes;
}

template <typename List, typename Predicate> long countOf(const List& list, Predicate holds)
{
    return std::count_if(list.begin(), list.end(), holds);
}

bool isAdded(const std::optional<cdm::TestResults>& results)
{
    return results && results->data && results->data->is_object()
        && results->data->value("ijm_additionalTest", json()) == true;
}

} // namespace

TEST(Samples, thereAreEnoughJobsAndTemplates)
{
    EXPECT_GE(jobs().size(), 16U);
    EXPECT_EQ(textsIn("templates", ".tpl.json").size(), 6U);
    EXPECT_EQ(textsIn("templates", ".txt").size(), 2U);
}

TEST(Samples, fileNamesSayWhatTheyHold)
{
    for (const auto& [name, text] : jobTexts())
        EXPECT_THAT(name, testing::EndsWith(".job.json"));
    for (const auto& [name, text] : textsIn("templates", ""))
        EXPECT_THAT(name, testing::AnyOf(testing::EndsWith(".tpl.json"), testing::EndsWith(".txt")));
}

TEST(Samples, templatesFollowTheFormat)
{
    for (const auto& [name, document] : documentsOf(textsIn("templates", ".tpl.json"))) {
        cdm::DocumentError error;
        EXPECT_TRUE(cdm::checkTemplate(document, error)) << name << ": " << error.path << ": " << error.message;
        EXPECT_THAT(document.at("tests"), Not(IsEmpty()));
    }
}

TEST(Samples, idsDifferAndFitIntoAPathSegment)
{
    std::set<std::string> ids;
    for (const auto& [name, job] : jobs()) {
        EXPECT_THAT(job.details.id, Not(IsEmpty()));
        EXPECT_THAT(job.details.id, Not(testing::HasSubstr("/")));
        EXPECT_TRUE(ids.insert(job.details.id).second) << job.details.id;
    }
    EXPECT_THAT(ids, Contains("Störung 77 Nürnberg"));
}

TEST(Samples, writtenJobsComeBack)
{
    for (const auto& [name, job] : jobs()) {
        cdm::DocumentError error;
        const json written = cdm::jobToJson(job);
        const auto again = cdm::jobFromJson(written, error);
        ASSERT_TRUE(again) << name << ": " << error.path << ": " << error.message;
        EXPECT_EQ(cdm::jobToJson(*again), written) << name;
    }
}

TEST(Samples, smallestJobCutAnywhereIsRefused)
{
    const auto smallest = std::min_element(jobTexts().begin(), jobTexts().end(),
        [](const auto& a, const auto& b) { return a.second.size() < b.second.size(); });
    const std::string_view text = smallest->second;
    ASSERT_EQ(text.substr(text.size() - 2), "}\n");
    for (std::size_t length = 0; length < text.size() - 1; ++length) {
        cdm::DocumentError error;
        ASSERT_FALSE(cdm::parseJson(text.substr(0, length), error)) << length;
    }
}

TEST(Samples, oneLargeJobHas400Tests)
{
    EXPECT_EQ(countOf(jobs(), [](const auto& job) { return job.second.tests && job.second.tests->size() == 400; }), 1);
    for (const auto& [name, text] : jobTexts())
        EXPECT_LT(text.size(), 600U * 1024) << name;
}

TEST(Samples, jobListMembersVary)
{
    int archived = 0;
    std::set<std::string> customers;
    std::set<std::string> modified;
    std::set<std::string> managedBy;
    std::set<std::string> states;
    std::size_t largestTeam = 0;
    for (const auto& [name, document] : jobDocuments()) {
        const json& details = document.at("details");
        archived += details.value("archived", false) ? 1 : 0;
        customers.insert(details.at("customerName").get<std::string>());
        EXPECT_TRUE(modified.insert(details.at("modifiedOn").get<std::string>()).second) << name;
        managedBy.insert(details.value("managedByInfo", ""));
        states.insert(details.value("managementState", ""));
        largestTeam = std::max(largestTeam, details.value("teamTechIds", json::array()).size());
    }
    EXPECT_GE(archived, 5);
    EXPECT_GE(static_cast<int>(jobs().size()) - archived, 11);
    EXPECT_THAT(customers, Contains("a < b > c & sons"));
    EXPECT_GE(managedBy.size(), 5U);
    EXPECT_GE(states.size(), 5U);
    EXPECT_GE(largestTeam, 4U);
    const std::regex fixedWidth(R"(20[0-9]{2}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9]\.[0-9]{3}Z)");
    for (const std::string& time : modified)
        EXPECT_TRUE(std::regex_match(time, fixedWidth)) << time;
}

TEST(Samples, testsAreRequiredOptionalAndAdded)
{
    const auto tests = allTests();
    EXPECT_GE(countOf(tests, [](const auto& test) { return test.required == std::optional<bool>(true); }), 4);
    EXPECT_GE(countOf(tests, [](const auto& test) { return !test.required; }), 50);
    EXPECT_GE(
        countOf(tests,
            [](const auto& test) { return test.required == std::optional<bool>(false) && !isAdded(test.results); }),
        10);
    EXPECT_GE(
        countOf(tests,
            [](const auto& test) { return test.required == std::optional<bool>(false) && isAdded(test.results); }),
        3);
    const auto locations = allLocations();
    EXPECT_GE(
        countOf(locations, [](const auto& location) { return location.required == std::optional<bool>(true); }), 2);
    EXPECT_GE(
        countOf(locations, [](const auto& location) { return location.required == std::optional<bool>(false); }), 2);
    EXPECT_GE(countOf(locations, [](const auto& location) { return isAdded(location.results); }), 1);
}

TEST(Samples, requiredTestsAreDoneInPart)
{
    int untouched = 0;
    int begun = 0;
    int finished = 0;
    for (const auto& [name, document] : jobDocuments()) {
        const cdm::RequiredTestCounts counts = cdm::requiredTestCounts(document);
        EXPECT_THAT(counts.completed, AllOf(Ge(0), Le(counts.total))) << name;
        untouched += counts.total > 0 && counts.completed == 0 ? 1 : 0;
        begun += counts.completed > 0 && counts.completed < counts.total ? 1 : 0;
        finished += counts.total > 0 && counts.completed == counts.total ? 1 : 0;
    }
    EXPECT_GE(untouched, 1);
    EXPECT_GE(begun, 5);
    EXPECT_GE(finished, 5);
}

TEST(Samples, requiredTestsOfTheBackboneJobAreCountedByHand)
{
    // Required: the traces (fibres 1 to 3 measured, 4 is optional and skipped), the level and the manual step.
    const cdm::RequiredTestCounts counts = cdm::requiredTestCounts(jobDocuments().at("WO-2026-004711.job.json"));
    EXPECT_EQ(counts.total, 3);
    EXPECT_EQ(counts.completed, 3);
}

TEST(Samples, resultsPassFailAndAreSkipped)
{
    const auto results = allResults();
    const std::regex iso(
        R"(20[0-9]{2}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9](Z|[+-][0-9]{2}:[0-9]{2}))");
    for (const char* status : { "pass", "fail", "skipped" })
        EXPECT_GE(countOf(results, [&](const auto& result) { return result.status == status; }), 3) << status;
    for (const cdm::TestResults& result : results)
        EXPECT_TRUE(std::regex_match(result.time, iso)) << result.time;
    EXPECT_GE(countOf(results, [](const auto& result) { return result.response.has_value(); }), 5);
    EXPECT_GE(countOf(results, [](const auto& result) { return !result.data; }), 3);
}

TEST(Samples, locationsOfOneTestHaveResultsOfTheirOwn)
{
    EXPECT_GE(
        countOf(allTests(),
            [](const cdm::Test& test) {
                std::set<std::string> states;
                for (const cdm::TestLocation& location : test.testLocations.value_or(std::vector<cdm::TestLocation>()))
                    states.insert(location.results ? location.results->status : "");
                return states == std::set<std::string>{ "", "fail", "pass" };
            }),
        3);
}

TEST(Samples, testsWithOneLocationHaveItsResultsOrThoseOfTheWhole)
{
    int ofTheLocation = 0;
    int ofTheWhole = 0;
    for (const cdm::Test& test : allTests()) {
        if (!test.testLocations || test.testLocations->size() != 1)
            continue;
        const bool located = test.testLocations->front().results.has_value();
        ofTheLocation += located ? 1 : 0;
        ofTheWhole += test.results && !located ? 1 : 0;
    }
    EXPECT_GE(ofTheLocation, 1);
    EXPECT_GE(ofTheWhole, 1);
}

TEST(Samples, testWithSeveralLocationsHasResultsOfTheWholeToo)
{
    EXPECT_GE(
        countOf(allTests(),
            [](const auto& test) { return test.results && test.testLocations && test.testLocations->size() > 1; }),
        1);
}

TEST(Samples, resultDataIsNotAlwaysAnObject)
{
    EXPECT_GE(countOf(allResults(), [](const auto& result) { return result.data && result.data->is_array(); }), 1);
}

TEST(Samples, manualStepIsAnsweredAtALocation)
{
    EXPECT_GE(countOf(allLocations(),
                  [](const auto& location) { return location.results && location.results->response.has_value(); }),
        1);
}

TEST(Samples, attributesOfALocationSayWhetherTheyAreShownAndEdited)
{
    std::vector<std::pair<std::string, json>> values;
    for (const cdm::TestLocation& location : allLocations())
        append(values, location.attributes);
    for (const char* key : { "visible", "editable" }) {
        for (const bool flag : { true, false })
            EXPECT_GE(countOf(values, [&](const auto& value) { return value.second.value(key, json()) == flag; }), 1);
    }
}

TEST(Samples, manualStepsHavePrompts)
{
    std::set<std::string> kinds;
    for (const cdm::Test& test : allTests()) {
        if (test.testType == "manual" && test.configurationData) {
            EXPECT_THAT(test.configurationData->value("prompt", ""), Not(IsEmpty()));
            kinds.insert(test.configurationData->value("type", ""));
        }
    }
    EXPECT_THAT(kinds, testing::ElementsAre("choice", "info", "number", "text", "yesNo"));
}

TEST(Samples, attributesOfTheUsualFormAreRead)
{
    for (const auto& [name, value] : allAttributeValues()) {
        if (isOfOtherShape(name)) {
            EXPECT_FALSE(value.contains("label") && value.contains("value")) << value;
        } else {
            EXPECT_NO_THROW(static_cast<void>(value.get<cdm::Attribute>())) << name << ": " << value;
        }
    }
}

TEST(Samples, attributesUseEveryField)
{
    const auto attributes = allAttributes();
    for (const char* type : { "string", "double", "number", "boolean" })
        EXPECT_GE(countOf(attributes, [&](const auto& attribute) { return attribute.valueType == type; }), 3) << type;
    for (const bool flag : { true, false }) {
        EXPECT_GE(
            countOf(attributes, [&](const auto& attribute) { return attribute.editable == std::optional<bool>(flag); }),
            3);
        EXPECT_GE(
            countOf(attributes, [&](const auto& attribute) { return attribute.visible == std::optional<bool>(flag); }),
            2);
    }
    EXPECT_GE(countOf(attributes, [](const auto& attribute) { return attribute.regExp.has_value(); }), 10);
    EXPECT_GE(countOf(attributes, [](const auto& attribute) { return attribute.validValues.has_value(); }), 5);
    EXPECT_GE(countOf(attributes, [](const auto& attribute) { return attribute.orderIndex.has_value(); }), 30);
    EXPECT_GE(countOf(attributes,
                  [](const auto& attribute) { return attribute.valueType == "boolean" && attribute.validValues; }),
        1);
}

TEST(Samples, attributesOfOtherShapesArePresent)
{
    const auto values = allAttributeValues();
    EXPECT_GE(countOf(values, [](const auto& value) { return value.first == "referenceInfo"; }), 2);
    EXPECT_GE(countOf(values, [](const auto& value) { return value.first == "subTypeInfo"; }), 2);
}

TEST(Samples, valuesFitTheirPatternsAndLists)
{
    for (const cdm::Attribute& attribute : allAttributes()) {
        if (attribute.regExp && !attribute.value.empty()) {
            EXPECT_TRUE(std::regex_match(attribute.value, std::regex(*attribute.regExp))) << attribute.label;
        }
        if (attribute.validValues && attribute.valueType != "boolean") {
            EXPECT_THAT(*attribute.validValues, Contains(attribute.value)) << attribute.label;
        }
    }
}

TEST(Samples, indexStringsAreThePositions)
{
    int indexed = 0;
    for (const auto& [name, job] : jobs()) {
        for (std::size_t t = 0; job.tests && t < job.tests->size(); ++t) {
            const cdm::Test& test = job.tests->at(t);
            EXPECT_EQ(test.uiIndex.value_or(std::to_string(t)), std::to_string(t)) << name;
            indexed += test.uiIndex ? 1 : 0;
            for (std::size_t l = 0; test.testLocations && l < test.testLocations->size(); ++l) {
                const std::string expected = std::to_string(t) + "_" + std::to_string(l);
                EXPECT_EQ(test.testLocations->at(l).uiIndex.value_or(expected), expected) << name;
            }
        }
    }
    EXPECT_GE(indexed, 400);
}

TEST(Samples, remainingMembersAreUsed)
{
    const auto tests = allTests();
    EXPECT_GE(countOf(jobs(), [](const auto& job) { return job.second.details.techInfo.has_value(); }), 10);
    EXPECT_GE(countOf(jobs(), [](const auto& job) { return job.second.details.contractorId.has_value(); }), 5);
    EXPECT_GE(countOf(jobs(), [](const auto& job) { return job.second.tests && job.second.tests->empty(); }), 1);
    EXPECT_GE(countOf(tests, [](const auto& test) { return test.guideFile.has_value(); }), 10);
    EXPECT_GE(countOf(tests, [](const auto& test) { return test.site.has_value(); }), 20);
    EXPECT_GE(countOf(tests, [](const auto& test) { return test.deployableTo.has_value(); }), 3);
    EXPECT_GE(
        countOf(tests,
            [](const auto& test) { return test.configuration && test.configuration->find('\n') != std::string::npos; }),
        10);
    EXPECT_GE(countOf(tests, [](const auto& test) { return test.description && test.description->size() > 1000; }), 1);
    EXPECT_GE(countOf(allLocations(), [](const auto& location) { return location.configuration.has_value(); }), 5);
}

TEST(Samples, unknownMembersArePresentAtEveryLevel)
{
    EXPECT_TRUE(jobDocuments().at("WO-2026-004711.job.json").contains("x-origin"));
    EXPECT_TRUE(jobDocuments().at("WO-2026-004802.job.json").at("/details"_json_pointer).contains("risk"));
    EXPECT_TRUE(jobDocuments().at("WO-2026-004802.job.json").at("/tests/0"_json_pointer).contains("estimatedMinutes"));
    EXPECT_TRUE(jobDocuments()
                    .at("WO-2026-004802.job.json")
                    .at("/tests/0/testLocations/0"_json_pointer)
                    .contains("photoRequired"));
}

TEST(Samples, manyScriptsAreUsed)
{
    std::string everything;
    for (const auto& [name, text] : jobTexts())
        everything += text;
    for (const char* word :
        { "病院", "シールド", "النور", "Северная", "ö", "Ακαδημία", "הדקל", "서울", "機房", "रोहिणी", "Ø" })
        EXPECT_THAT(everything, testing::HasSubstr(word));
}
