#include "api/cdm/JobSummary.h"

#include <string>
#include <vector>

namespace cdm {

namespace {

const nlohmann::json& member(const nlohmann::json& value, const char* key)
{
    static const nlohmann::json missing;
    if (!value.is_object())
        return missing;
    const auto found = value.find(key);
    return found == value.end() ? missing : *found;
}

/// The elements of a list that are objects.
std::vector<const nlohmann::json*> objectsOf(const nlohmann::json& list)
{
    std::vector<const nlohmann::json*> objects;
    if (!list.is_array())
        return objects;
    for (const nlohmann::json& element : list) {
        if (element.is_object())
            objects.push_back(&element);
    }
    return objects;
}

bool isRequired(const nlohmann::json& testOrLocation, bool otherwise)
{
    const nlohmann::json& flag = member(testOrLocation, "required");
    return flag.is_boolean() ? flag.get<bool>() : otherwise;
}

bool hasStatus(const nlohmann::json& testOrLocation)
{
    const nlohmann::json& status = member(member(testOrLocation, "results"), "status");
    return status.is_string() && !status.get_ref<const std::string&>().empty();
}

void count(const nlohmann::json& test, RequiredTestCounts& counts)
{
    const bool testRequired = isRequired(test, true);
    const auto locations = objectsOf(member(test, "testLocations"));
    bool required = locations.empty() && testRequired;
    bool completed = !locations.empty() || hasStatus(test);
    for (const nlohmann::json* location : locations) {
        if (isRequired(*location, testRequired)) {
            required = true;
            completed = completed && hasStatus(*location);
        }
    }
    counts.total += required ? 1 : 0;
    counts.completed += required && completed ? 1 : 0;
}

} // namespace

RequiredTestCounts requiredTestCounts(const nlohmann::json& document)
{
    RequiredTestCounts counts;
    for (const nlohmann::json* test : objectsOf(member(document, "tests")))
        count(*test, counts);
    return counts;
}

} // namespace cdm
