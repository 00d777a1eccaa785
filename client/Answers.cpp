#include "client/Answers.h"

#include "api/cdm/JobCodec.h"
#include "api/cdm/JsonText.h"

#include <limits>

namespace job_client::answers {

namespace {

using nlohmann::json;

/// Thrown by the readers below where an answer is not as it should be; leaves no function of this file's interface.
struct BrokenAnswer
{
};

void require(bool held)
{
    if (!held)
        throw BrokenAnswer();
}

const json* find(const json& object, const char* key)
{
    require(object.is_object());
    const auto member = object.find(key);
    return member == object.end() ? nullptr : &*member;
}

const json& at(const json& object, const char* key)
{
    const json* const member = find(object, key);
    require(member != nullptr);
    return *member;
}

void read(const json& value, std::string& target)
{
    require(value.is_string());
    target = value.get_ref<const std::string&>();
}

void read(const json& value, bool& target)
{
    require(value.is_boolean());
    target = value.get<bool>();
}

void read(const json& value, std::int64_t& target)
{
    // An unsigned number beyond the range of signed ones comes out negative.
    require(value.is_number_integer());
    target = value.get<std::int64_t>();
    require(!value.is_number_unsigned() || target >= 0);
}

void read(const json& value, int& target)
{
    std::int64_t wide = 0;
    read(value, wide);
    require(wide >= std::numeric_limits<int>::min() && wide <= std::numeric_limits<int>::max());
    target = static_cast<int>(wide);
}

template <typename Element> void read(const json& value, std::vector<Element>& target);

void read(const json& value, std::map<std::string, std::string>& target)
{
    require(value.is_object());
    for (const auto& [key, text] : value.items())
        read(text, target[key]);
}

/// A member that may be missing.
template <typename Value> void readIfThere(const json& object, const char* key, Value& target)
{
    if (const json* const value = find(object, key))
        read(*value, target);
}

void read(const json& value, RestApiJobManager::MinimalJobInfo& target)
{
    read(at(value, "id"), target.id);
    readIfThere(value, "workOrderLabel", target.workOrderLabel);
    readIfThere(value, "workflowTypeName", target.workflowTypeName);
    readIfThere(value, "customerName", target.customerName);
    readIfThere(value, "modifiedOn", target.modifiedOn);
    readIfThere(value, "managedByInfo", target.managedByInfo);
    readIfThere(value, "managementState", target.managementState);
    readIfThere(value, "teamTechIds", target.teamTechIds);
    readIfThere(value, "archived", target.archived);
    readIfThere(value, "totalNumberOfRequiredTests", target.totalNumberOfRequiredTests);
    readIfThere(value, "numberOfCompletedRequiredTests", target.numberOfCompletedRequiredTests);
}

template <typename Element> void read(const json& value, std::vector<Element>& target)
{
    require(value.is_array());
    for (const json& element : value)
        read(element, target.emplace_back());
}

/// The parsed text; the document itself must be an object, which every reader asks by taking a member.
json parsed(const std::string& body)
{
    cdm::DocumentError error;
    auto document = cdm::parseJson(body, error);
    require(document.has_value());
    return std::move(*document);
}

/// Runs a reader of a document and turns BrokenAnswer into nothing.
template <typename Reader>
auto readAnswer(const std::string& body, Reader reader) -> std::optional<decltype(reader(json()))>
{
    try {
        return reader(parsed(body));
    } catch (const BrokenAnswer&) {
        return std::nullopt;
    }
}

/// An answer of which one member is wanted.
template <typename Value> std::optional<Value> readMember(const std::string& body, const char* key)
{
    return readAnswer(body, [key](const json& document) {
        Value value{};
        read(at(document, key), value);
        return value;
    });
}

} // namespace

bool isJsonAnswer(const HttpOutcome& outcome, long status)
{
    return outcome.kind == HttpOutcome::Kind::Answered && outcome.status == status && outcome.isJson;
}

bool isUnknownJob(const HttpOutcome& outcome)
{
    if (!isJsonAnswer(outcome, 404))
        return false;
    const auto code = readAnswer(outcome.body, [](const json& document) {
        std::string text;
        read(at(at(document, "error"), "code"), text);
        return text;
    });
    return code == "job_not_found";
}

std::optional<std::int64_t> changeCount(const std::string& body)
{
    return readMember<std::int64_t>(body, "changeCount");
}

std::optional<std::vector<RestApiJobManager::MinimalJobInfo>> jobList(const std::string& body)
{
    return readMember<std::vector<RestApiJobManager::MinimalJobInfo>>(body, "jobs");
}

std::optional<cdm::CdmSouthboundJob> job(const std::string& body)
{
    cdm::DocumentError error;
    const auto document = cdm::parseJson(body, error);
    return document ? cdm::jobFromJson(*document, error) : std::nullopt;
}

std::optional<std::string> activeJob(const std::string& body)
{
    return readMember<std::string>(body, "id");
}

std::optional<std::string> newJob(const std::string& body)
{
    return readMember<std::string>(body, "id");
}

std::optional<RestApiJobManager::LaunchTestResult> launch(const std::string& body)
{
    return readAnswer(body, [](const json& document) {
        RestApiJobManager::LaunchTestResult result;
        read(at(document, "success"), result.success);
        readIfThere(document, "message", result.message);
        return result;
    });
}

std::optional<std::string> exportedPath(const std::string& body)
{
    return readMember<std::string>(body, "path");
}

std::optional<int> importedJobs(const std::string& body)
{
    return readMember<int>(body, "imported");
}

std::optional<std::vector<std::string>> templateNames(const std::string& body)
{
    return readAnswer(body, [](const json& document) {
        const json& templates = at(document, "templates");
        require(templates.is_array());
        std::vector<std::string> names;
        for (const json& element : templates)
            read(at(element, "name"), names.emplace_back());
        return names;
    });
}

std::optional<JobTemplate> jobTemplate(const std::string& body)
{
    return readAnswer(body, [](const json& document) {
        JobTemplate result;
        read(at(document, "workOrderLabel"), result.workOrderLabel);
        read(at(document, "numberOfTests"), result.numberOfTests);
        return result;
    });
}

std::optional<std::map<std::string, std::string>> settings(const std::string& body)
{
    return readMember<std::map<std::string, std::string>>(body, "settings");
}

std::optional<RestApiJobManager::InstrumentLoginConfig> loginConfig(const std::string& body)
{
    return readAnswer(body, [](const json& document) {
        RestApiJobManager::InstrumentLoginConfig config;
        read(at(document, "techId"), config.techId);
        readIfThere(document, "opaqueText1", config.opaqueText1);
        readIfThere(document, "opaqueText2", config.opaqueText2);
        return config;
    });
}

} // namespace job_client::answers
