#include "service/JobDocument.h"

#include "api/cdm/JobCodec.h"
#include "api/cdm/JobSummary.h"
#include "service/UtcTime.h"

namespace job_service {

namespace {

constexpr std::size_t longestName = 512;

nlohmann::json parsed(std::string_view text)
{
    if (text.size() > maximumDocumentSize)
        throw DocumentRefused({ {}, "The document is larger than 16 MiB." });
    cdm::DocumentError error;
    std::optional<nlohmann::json> value = cdm::parseJson(text, error);
    if (!value)
        throw DocumentRefused(error);
    return std::move(*value);
}

void checkJob(const nlohmann::json& document)
{
    cdm::DocumentError error;
    const std::optional<cdm::CdmSouthboundJob> job = cdm::jobFromJson(document, error);
    if (!job)
        throw DocumentRefused(error);
    if (!isJobId(job->details.id))
        throw DocumentRefused({ "/details/id", "An id has 1 to 512 bytes and no control characters." });
}

/// Copies a member that the job list shows; `otherwise` stands for one that is missing.
void copyMember(nlohmann::json& summary, const nlohmann::json& details, const char* name, nlohmann::json otherwise)
{
    const auto member = details.find(name);
    const bool present = member != details.end() && !member->is_null();
    summary[name] = present ? *member : std::move(otherwise);
}

nlohmann::json summaryOf(const nlohmann::json& document)
{
    const nlohmann::json& details = document.at("details");
    nlohmann::json summary = nlohmann::json::object();
    summary["id"] = details.at("id");
    for (const char* name :
        { "workOrderLabel", "workflowTypeName", "customerName", "modifiedOn", "managedByInfo", "managementState" })
        copyMember(summary, details, name, "");
    copyMember(summary, details, "teamTechIds", nlohmann::json::array());
    copyMember(summary, details, "archived", false);
    const cdm::RequiredTestCounts counts = cdm::requiredTestCounts(document);
    summary["totalNumberOfRequiredTests"] = counts.total;
    summary["numberOfCompletedRequiredTests"] = counts.completed;
    return summary;
}

std::vector<JsonTree>* arrayIn(JsonTree& parent, std::string_view name)
{
    JsonTree* array = parent.find(name);
    return array && array->isArray() ? &array->values() : nullptr;
}

/// The item whose index string ends in this number; null unless the text is its plain decimal form.
JsonTree* itemAt(std::vector<JsonTree>* items, std::string_view number)
{
    std::size_t index = 0;
    for (const char digit : number) {
        if (digit < '0' || digit > '9' || index > maximumDocumentSize)
            return nullptr;
        index = index * 10 + static_cast<std::size_t>(digit - '0');
    }
    if (!items || index >= items->size() || std::to_string(index) != number)
        return nullptr;
    return &(*items)[index];
}

/// Moves a member of a template, which stands beside its details, into the details of the job.
void moveIntoDetails(JsonTree& document, std::string_view name)
{
    const JsonTree* member = document.find(name);
    if (!member)
        return;
    JsonTree value = *member;
    document.remove(name);
    if (!detailsOf(document).find(name))
        detailsOf(document).set(name, std::move(value));
}

/// Gives each test these locations instead of its own.
void setLocations(std::vector<JsonTree>& tests, const std::vector<std::string>& locations)
{
    JsonTree list = JsonTree::emptyArray();
    for (const std::string& name : locations) {
        JsonTree location = JsonTree::emptyObject();
        location.set("location", JsonTree::fromString(name));
        list.values().push_back(std::move(location));
    }
    // Before that much is built: a list and a template of ordinary size can multiply to gigabytes.
    if (!tests.empty() && list.text().size() > maximumDocumentSize / tests.size())
        throw DocumentRefused({ {}, "With these locations the job would be larger than 16 MiB." });
    for (JsonTree& test : tests)
        test.set("testLocations", list);
}

} // namespace

bool isJobId(std::string_view text)
{
    return isPlainName(text);
}

bool isPlainName(std::string_view text)
{
    if (text.empty() || text.size() > longestName)
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // U+0080 to U+009F are control characters too.
        const bool secondSet = byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (byte < 0x20 || byte == 0x7F || secondSet)
            return false;
    }
    return true;
}

JsonTree& detailsOf(JsonTree& document)
{
    JsonTree* details = document.find("details");
    return details && details->isObject() ? *details : document.set("details", JsonTree::emptyObject());
}

void numberTests(JsonTree& document)
{
    std::vector<JsonTree>* tests = arrayIn(document, "tests");
    for (std::size_t t = 0; tests && t < tests->size(); ++t) {
        JsonTree& test = (*tests)[t];
        const std::string index = std::to_string(t);
        test.set("uiIndex", JsonTree::fromString(index));
        std::vector<JsonTree>* locations = arrayIn(test, "testLocations");
        for (std::size_t l = 0; locations && l < locations->size(); ++l)
            (*locations)[l].set("uiIndex", JsonTree::fromString(index + "_" + std::to_string(l)));
    }
}

JsonTree* findTest(JsonTree& document, std::string_view uiIndex)
{
    const std::size_t separator = uiIndex.find('_');
    JsonTree* test = itemAt(arrayIn(document, "tests"), uiIndex.substr(0, separator));
    if (!test || separator == std::string_view::npos)
        return test;
    return itemAt(arrayIn(*test, "testLocations"), uiIndex.substr(separator + 1));
}

StoredJob storedJob(const nlohmann::json& document, std::string text)
{
    const nlohmann::json summary = summaryOf(document);
    return { summary.at("id").get<std::string>(), summary.at("modifiedOn").get<std::string>(), cdm::dumpJson(summary),
        std::move(text) };
}

StoredJob storedJob(const JsonTree& document)
{
    std::string text = document.text();
    const nlohmann::json checked = parsed(text);
    checkJob(checked);
    return storedJob(checked, std::move(text));
}

StoredJob jobFromFile(std::string_view text, const std::string& now)
{
    checkJob(parsed(text));
    JsonTree document = JsonTree::fromText(text);
    numberTests(document);
    JsonTree& details = detailsOf(document);
    const JsonTree* modifiedOn = details.find("modifiedOn");
    if (!modifiedOn || !isUtcText(modifiedOn->stringValue()))
        details.set("modifiedOn", JsonTree::fromString(now));
    return storedJob(document);
}

StoredJob jobFromTemplate(const NewJob& job, std::string_view templateDocument, const std::string& now)
{
    JsonTree document = templateDocument.empty() ? JsonTree::emptyObject() : JsonTree::fromText(templateDocument);
    document.remove("name");
    moveIntoDetails(document, "workOrderLabel");
    moveIntoDetails(document, "workflowTypeName");

    JsonTree& details = detailsOf(document);
    details.set("id", JsonTree::fromString(job.id));
    details.set("timestamp", JsonTree::fromString(now));
    JsonTree* techInfo = details.find("techInfo");
    JsonTree& technician =
        techInfo && techInfo->isObject() ? *techInfo : details.set("techInfo", JsonTree::emptyObject());
    technician.set("techId", JsonTree::fromString(job.techId));
    details.set("syncToNimbrel", JsonTree::fromBool(job.syncToNimbrel));
    details.set("archived", JsonTree::fromBool(false));
    details.set("modifiedOn", JsonTree::fromString(now));

    if (!arrayIn(document, "tests"))
        document.set("tests", JsonTree::emptyArray());
    if (!job.locations.empty())
        setLocations(*arrayIn(document, "tests"), job.locations);
    numberTests(document);
    return storedJob(document);
}

std::string checkedTemplateName(std::string_view text)
{
    const nlohmann::json document = parsed(text);
    cdm::DocumentError error;
    if (!cdm::checkTemplate(document, error))
        throw DocumentRefused(error);
    std::string name = document.at("name").get<std::string>();
    if (!isPlainName(name))
        throw DocumentRefused({ "/name", "A template's name has 1 to 512 bytes and no control characters." });
    return name;
}

} // namespace job_service
