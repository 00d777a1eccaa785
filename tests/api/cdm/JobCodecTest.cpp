#include "api/cdm/JobCodec.h"

#include "CompleteJobDocument.h"

#include <gmock/gmock.h>

using cdm::CdmSouthboundJob;
using cdm::DocumentError;
using nlohmann::json;
using testing::ElementsAre;

namespace {

CdmSouthboundJob readJob(const json& document)
{
    DocumentError error;
    const auto job = cdm::jobFromJson(document, error);
    EXPECT_TRUE(job.has_value()) << error.path << ": " << error.message;
    return job.value_or(CdmSouthboundJob());
}

/// How a document is refused, in the form "path: sentence".
std::string refusal(const json& document)
{
    DocumentError error{ "/left/over", "left over" };
    const bool read = cdm::jobFromJson(document, error).has_value();
    EXPECT_FALSE(read);
    return read ? std::string() : error.path + ": " + error.message;
}

json with(const std::string& pointer, const json& value)
{
    json document = completeJobDocument();
    document.at(json::json_pointer(pointer)) = value;
    return document;
}

json without(const std::string& pointer)
{
    const json::json_pointer path(pointer);
    json document = completeJobDocument();
    document.at(path.parent_pointer()).erase(path.back());
    return document;
}

/// The named fields only; the members of the job list have no field.
json recordMembersOf(json document)
{
    for (const char* key : { "workOrderLabel", "workflowTypeName", "customerName", "managedByInfo", "managementState",
             "teamTechIds", "archived", "modifiedOn" })
        document.at("details").erase(key);
    return document;
}

struct Member
{
    const char* pointer;
    const char* expected;
    bool required;
};

/// Every member of the format whose type is fixed.
const Member typedMembers[] = {
    { "/cdmVersion", "A string", false },
    { "/details", "An object", true },
    { "/details/id", "A string", true },
    { "/details/timestamp", "A string", false },
    { "/details/techInfo", "An object", false },
    { "/details/techInfo/techId", "A string", true },
    { "/details/contractorId", "A string", false },
    { "/details/jobManagerAttributes", "An object", false },
    { "/details/workOrderLabel", "A string", false },
    { "/details/workflowTypeName", "A string", false },
    { "/details/customerName", "A string", false },
    { "/details/managedByInfo", "A string", false },
    { "/details/managementState", "A string", false },
    { "/details/teamTechIds", "An array", false },
    { "/details/archived", "A boolean", false },
    { "/details/modifiedOn", "A string", false },
    { "/tests", "An array", false },
    { "/tests/0/testType", "A string", true },
    { "/tests/0/testTypeDisplayName", "A string", false },
    { "/tests/0/description", "A string", false },
    { "/tests/0/site", "A string", false },
    { "/tests/0/guideFile", "A string", false },
    { "/tests/0/configuration", "A string", false },
    { "/tests/0/required", "A boolean", false },
    { "/tests/0/uiIndex", "A string", false },
    { "/tests/0/attributes", "An object", false },
    { "/tests/0/results", "An object", false },
    { "/tests/0/results/status", "A string", true },
    { "/tests/0/results/time", "A string", true },
    { "/tests/0/results/response", "A string", false },
    { "/tests/0/deployableTo", "An array", false },
    { "/tests/0/deployableTo/1/name", "A string", true },
    { "/tests/0/deployableTo/1/version", "A string", false },
    { "/tests/1/testLocations", "An array", false },
    { "/tests/1/testLocations/0/location", "A string", true },
    { "/tests/1/testLocations/0/uiIndex", "A string", false },
    { "/tests/1/testLocations/0/configuration", "A string", false },
    { "/tests/1/testLocations/0/required", "A boolean", false },
    { "/tests/1/testLocations/0/attributes", "An object", false },
    { "/tests/1/testLocations/0/results", "An object", false },
    { "/tests/1/testLocations/0/results/status", "A string", true },
    { "/tests/1/testLocations/0/results/time", "A string", true },
    { "/tests/1/testLocations/0/results/response", "A string", false },
};

/// Elements of lists; these cannot be missing.
const Member typedElements[] = {
    { "/details/teamTechIds/1", "A string", true },
    { "/tests/1", "An object", true },
    { "/tests/0/deployableTo/1", "An object", true },
    { "/tests/1/testLocations/1", "An object", true },
};

const char* const freeMembers[] = { "/tests/0/configurationData", "/tests/0/results/data",
    "/tests/1/testLocations/0/results/data" };

std::string nameOf(const Member& member)
{
    std::string name(member.pointer + 1);
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

class JobCodecMember : public testing::TestWithParam<Member>
{
};

class JobCodecValue : public testing::TestWithParam<Member>
{
};

} // namespace

TEST_P(JobCodecValue, ofTheWrongTypeIsRefusedWithItsPath)
{
    const std::string expected = GetParam().expected;
    const std::vector<std::pair<std::string, json>> values = { { "A string", "text" }, { "A boolean", true },
        { "An object", json::object() }, { "An array", json::array() }, { "A number", 7 }, { "A number", 1.5 } };
    for (const auto& [kind, value] : values) {
        if (kind != expected) {
            EXPECT_EQ(refusal(with(GetParam().pointer, value)),
                GetParam().pointer + (": " + expected) + " is expected here.");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Members, JobCodecValue, testing::ValuesIn(typedMembers), [](const auto& row) { return nameOf(row.param); });
INSTANTIATE_TEST_SUITE_P(
    Elements, JobCodecValue, testing::ValuesIn(typedElements), [](const auto& row) { return nameOf(row.param); });

TEST_P(JobCodecMember, thatIsMissingIsRefusedOnlyIfRequired)
{
    const json document = without(GetParam().pointer);
    if (GetParam().required) {
        EXPECT_EQ(refusal(document), GetParam().pointer + std::string(": This member is missing."));
    } else {
        readJob(document);
    }
}

TEST_P(JobCodecMember, thatIsNullIsMissingUnlessRequired)
{
    const json document = with(GetParam().pointer, nullptr);
    if (GetParam().required) {
        EXPECT_EQ(
            refusal(document), GetParam().pointer + (": " + std::string(GetParam().expected)) + " is expected here.");
        return;
    }
    json written = cdm::jobToJson(readJob(document));
    json expected = cdm::jobToJson(readJob(without(GetParam().pointer)));
    // The one member whose default is not fixed.
    if (GetParam().pointer == std::string("/details/timestamp"))
        written["details"]["timestamp"] = expected["details"]["timestamp"];
    EXPECT_EQ(written, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Members, JobCodecMember, testing::ValuesIn(typedMembers), [](const auto& row) { return nameOf(row.param); });

TEST(JobCodec, everyNamedFieldIsRead)
{
    const CdmSouthboundJob job = readJob(completeJobDocument());
    EXPECT_EQ(job.cdmVersion, "2.3");
    EXPECT_EQ(job.details.id, "WO-1");
    EXPECT_EQ(job.details.timestamp.value, "2026-03-01T08:15:00+0100");
    EXPECT_EQ(job.details.techInfo->techId, "T-17");
    EXPECT_EQ(job.details.contractorId, "C-4");
    EXPECT_EQ(job.details.attributes->getAttribute("gate").value, "1234");
    EXPECT_EQ(job.details.attributes->values.at("free"), json::parse(R"([1, {"a": null}])"));

    ASSERT_EQ(job.tests->size(), 2U);
    const cdm::Test& manual = job.tests->at(0);
    EXPECT_EQ(manual.testType, "manual");
    EXPECT_EQ(manual.testTypeDisplayName, "Manual step");
    EXPECT_EQ(manual.description, "Look at it");
    EXPECT_EQ(manual.site, "Cabinet 4");
    EXPECT_EQ(manual.guideFile, "guides/look.pdf");
    EXPECT_EQ(manual.configuration, "a=1\nb=2");
    EXPECT_EQ(manual.configurationData, json({ { "prompt", "Connected?" }, { "type", "yesNo" } }));
    EXPECT_EQ(manual.required, std::optional<bool>(true));
    EXPECT_EQ(manual.uiIndex, "0");
    EXPECT_EQ(manual.attributes->getAttribute("port").label, "Port");
    EXPECT_EQ(manual.results->status, "passed");
    EXPECT_EQ(manual.results->time, "2026-03-01T09:00:00Z");
    EXPECT_EQ(manual.results->response, "yes");
    EXPECT_EQ(manual.results->data, json::array({ 1.5 }));
    EXPECT_FALSE(manual.testLocations);
    ASSERT_EQ(manual.deployableTo->size(), 2U);
    EXPECT_EQ(manual.deployableTo->at(1).name, "bench");
    EXPECT_EQ(manual.deployableTo->at(1).version, "5");

    ASSERT_EQ(job.tests->at(1).testLocations->size(), 2U);
    const cdm::TestLocation& location = job.tests->at(1).testLocations->at(0);
    EXPECT_EQ(location.location, "A");
    EXPECT_EQ(location.uiIndex, "1_0");
    EXPECT_EQ(location.configuration, "c=3");
    EXPECT_EQ(location.required, std::optional<bool>(false));
    EXPECT_EQ(location.attributes->values.at("fibre"), 7);
    EXPECT_EQ(location.results->status, "failed");
    EXPECT_EQ(location.results->data, 4);
    EXPECT_FALSE(job.tests->at(1).testLocations->at(1).results);
}

TEST(JobCodec, whatIsMissingKeepsTheDefaultOfItsRecord)
{
    const CdmSouthboundJob job = readJob({ { "details", { { "id", "" } } } });
    EXPECT_EQ(job.cdmVersion, "2.2");
    EXPECT_FALSE(job.details.timestamp.value.empty());
    EXPECT_FALSE(job.details.techInfo);
    EXPECT_FALSE(job.details.contractorId);
    EXPECT_FALSE(job.details.attributes);
    EXPECT_FALSE(job.tests);
}

TEST(JobCodec, emptyListsAreHeldAsEmpty)
{
    const CdmSouthboundJob job = readJob(json::parse(
        R"({"details": {"id": "a", "jobManagerAttributes": {}},
            "tests": [{"testType": "t", "testLocations": [], "deployableTo": [], "attributes": {}}]})"));
    EXPECT_TRUE(job.details.attributes->values.empty());
    EXPECT_TRUE(job.tests->at(0).testLocations->empty());
    EXPECT_TRUE(job.tests->at(0).deployableTo->empty());
    EXPECT_TRUE(job.tests->at(0).attributes->values.empty());
    EXPECT_TRUE(readJob({ { "details", { { "id", "a" } } }, { "tests", json::array() } }).tests->empty());
}

TEST(JobCodec, freeMembersTakeAnything)
{
    for (const char* pointer : freeMembers) {
        for (const json& anything :
            { json(1), json("a"), json(false), json::array(), json::object(), json({ 1, { { "a", 2 } } }) })
            EXPECT_EQ(cdm::jobToJson(readJob(with(pointer, anything))).at(json::json_pointer(pointer)), anything);
    }
}

TEST(JobCodec, freeMemberThatIsNullIsMissing)
{
    EXPECT_FALSE(readJob(with("/tests/0/configurationData", nullptr)).tests->at(0).configurationData);
    EXPECT_FALSE(readJob(with("/tests/0/results/data", nullptr)).tests->at(0).results->data);
}

TEST(JobCodec, attributesTakeAnything)
{
    for (const json& anything :
        { json(), json(1), json("a"), json(false), json::array({ 1 }), json({ { "a", nullptr } }) }) {
        const CdmSouthboundJob job = readJob(with("/tests/1/testLocations/0/attributes/fibre", anything));
        EXPECT_EQ(job.tests->at(1).testLocations->at(0).attributes->values.at("fibre"), anything);
    }
}

TEST(JobCodec, unknownMembersAreIgnored)
{
    json document = completeJobDocument();
    document["future"] = { 1, 2 };
    document["details"]["future"] = nullptr;
    document["tests"][0]["future"] = "x";
    document["tests"][1]["testLocations"][0]["results"]["future"] = 1;
    EXPECT_EQ(cdm::jobToJson(readJob(document)), cdm::jobToJson(readJob(completeJobDocument())));
}

TEST(JobCodec, documentThatIsNoObjectIsRefusedWithoutAPath)
{
    for (const json& document : { json(), json(1), json("a"), json(true), json::array() })
        EXPECT_EQ(refusal(document), ": An object is expected here.") << document;
}

TEST(JobCodec, firstFaultIsReported)
{
    json document = with("/tests/1/testLocations/0/location", 1);
    document["tests"][0]["site"] = false;
    EXPECT_EQ(refusal(document), "/tests/0/site: A string is expected here.");
}

TEST(JobCodec, writtenDocumentHoldsEveryNamedField)
{
    EXPECT_EQ(cdm::jobToJson(readJob(completeJobDocument())), recordMembersOf(completeJobDocument()));
}

TEST(JobCodec, writtenJobComesBack)
{
    const CdmSouthboundJob job = readJob(completeJobDocument());
    EXPECT_EQ(cdm::jobToJson(readJob(cdm::jobToJson(job))), cdm::jobToJson(job));
}

TEST(JobCodec, defaultJobComesBack)
{
    const CdmSouthboundJob job;
    const json written = cdm::jobToJson(job);
    EXPECT_EQ(written,
        json({ { "cdmVersion", "2.2" },
            { "details", { { "id", "" }, { "timestamp", job.details.timestamp.value } } } }));
    EXPECT_EQ(cdm::jobToJson(readJob(written)), written);
}

TEST(JobCodec, opaqueFieldsAndFreeNullsAreNotWritten)
{
    CdmSouthboundJob job;
    job.opaqueJson = 1;
    job.instrument.emplace();
    job.details.opaqueText1 = "a";
    cdm::Test& test = job.tests.emplace().emplace_back();
    test.opaqueFlag1 = true;
    test.configurationData = json();
    EXPECT_EQ(cdm::jobToJson(job).at("tests"), json::array({ { { "testType", "" } } }));
    EXPECT_EQ(cdm::jobToJson(job).at("details").size(), 2U);
    EXPECT_EQ(cdm::jobToJson(job).size(), 3U);
}

TEST(JobCodec, readingByMoveGivesTheSameJob)
{
    DocumentError error;
    const auto job = cdm::jobFromJson(completeJobDocument(), error);
    ASSERT_TRUE(job);
    EXPECT_EQ(cdm::jobToJson(*job), recordMembersOf(completeJobDocument()));
}

TEST(JobCodec, readingByMoveCopiesNoLongText)
{
    json document = with("/tests/0/description", std::string(1000, 'x'));
    const char* const memory = document["/tests/0/description"_json_pointer].get_ref<const std::string&>().data();
    DocumentError error;
    const auto job = cdm::jobFromJson(std::move(document), error);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->tests->at(0).description->data(), memory);
}

TEST(JobCodec, readingLeavesAConstantDocumentAsItWas)
{
    const json document = completeJobDocument();
    readJob(document);
    EXPECT_EQ(document, completeJobDocument());
}

TEST(JobCodec, anyValueAnywhereIsReadOrRefused)
{
    const json flat = completeJobDocument().flatten();
    for (const auto& leaf : flat.items()) {
        for (json::json_pointer pointer(leaf.key()); !pointer.empty(); pointer = pointer.parent_pointer()) {
            for (const json& value : { json(), json(1), json(-1.5), json("a"), json(true), json::array({ nullptr }),
                     json::object({ { "", 1 } }), json::array({ json::object() }) }) {
                DocumentError error;
                EXPECT_NO_THROW(cdm::jobFromJson(with(pointer.to_string(), value), error));
                if (!error.path.empty()) {
                    EXPECT_EQ(error.path.rfind(pointer.to_string(), 0), 0U) << error.path << " " << pointer.to_string();
                }
            }
        }
    }
}

namespace {

const json goodTemplate = json::parse(R"({
    "name": "Ring", "workOrderLabel": "Order", "workflowTypeName": "Activation",
    "details": {"contractorId": "C", "techInfo": {"techId": "T"}, "jobManagerAttributes": {"a": 1}, "customerName": "N"},
    "tests": [{"testType": "loss", "testLocations": [{"location": "A"}]}], "future": 1})");

std::string templateRefusal(const std::string& pointer, const json& value)
{
    json document = goodTemplate;
    document[json::json_pointer(pointer)] = value;
    DocumentError error;
    return cdm::checkTemplate(document, error) ? "accepted" : error.path + ": " + error.message;
}

} // namespace

TEST(JobTemplate, completeOneIsAccepted)
{
    DocumentError error;
    EXPECT_TRUE(cdm::checkTemplate(goodTemplate, error)) << error.path << error.message;
}

TEST(JobTemplate, nameAloneSuffices)
{
    DocumentError error;
    EXPECT_TRUE(cdm::checkTemplate({ { "name", "Ring" } }, error));
}

TEST(JobTemplate, documentWithoutANameIsRefused)
{
    DocumentError error;
    EXPECT_FALSE(cdm::checkTemplate(json::object(), error));
    EXPECT_EQ(error.path + ": " + error.message, "/name: This member is missing.");
    EXPECT_EQ(templateRefusal("/name", ""), "/name: A template needs a name.");
}

TEST(JobTemplate, memberOfTheWrongTypeIsRefusedWithItsPath)
{
    EXPECT_EQ(templateRefusal("", 1), ": An object is expected here.");
    EXPECT_EQ(templateRefusal("/name", 1), "/name: A string is expected here.");
    EXPECT_EQ(templateRefusal("/workOrderLabel", 1), "/workOrderLabel: A string is expected here.");
    EXPECT_EQ(templateRefusal("/workflowTypeName", 1), "/workflowTypeName: A string is expected here.");
    EXPECT_EQ(templateRefusal("/tests", 1), "/tests: An array is expected here.");
    EXPECT_EQ(templateRefusal("/tests/0/testType", 1), "/tests/0/testType: A string is expected here.");
    EXPECT_EQ(templateRefusal("/tests/0/testLocations/0", 1), "/tests/0/testLocations/0: An object is expected here.");
    EXPECT_EQ(templateRefusal("/details", 1), "/details: An object is expected here.");
    EXPECT_EQ(templateRefusal("/details/techInfo/techId", 1), "/details/techInfo/techId: A string is expected here.");
    EXPECT_EQ(templateRefusal("/details/jobManagerAttributes", 1),
        "/details/jobManagerAttributes: An object is expected here.");
}
