#include "api/cdm/JobSummary.h"

#include <algorithm>
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

/// A run that broke off is none that completes a test.
bool hasVerdict(const nlohmann::json& testOrLocation)
{
    const nlohmann::json& status = member(member(testOrLocation, "results"), "status");
    return status.is_string() && status != "" && status != "error";
}

bool isRequired(const nlohmann::json& test, const std::vector<const nlohmann::json*>& locations)
{
    const bool testRequired = isRequired(test, true);
    if (locations.empty())
        return testRequired;
    return std::any_of(locations.begin(), locations.end(),
        [testRequired](const nlohmann::json* location) { return isRequired(*location, testRequired); });
}

bool isCompleted(const nlohmann::json& test, const std::vector<const nlohmann::json*>& locations)
{
    if (locations.empty())
        return hasVerdict(test);
    return std::all_of(
        locations.begin(), locations.end(), [](const nlohmann::json* location) { return hasVerdict(*location); });
}

} // namespace

RequiredTestCounts requiredTestCounts(const nlohmann::json& document)
{
    RequiredTestCounts counts;
    for (const nlohmann::json* test : objectsOf(member(document, "tests"))) {
        const auto locations = objectsOf(member(*test, "testLocations"));
        if (!isRequired(*test, locations))
            continue;
        ++counts.total;
        if (isCompleted(*test, locations))
            ++counts.completed;
    }
    return counts;
}

} // namespace cdm
