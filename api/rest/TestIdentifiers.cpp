#include "api/rest/TestIdentifiers.h"

#include "api/cdm/CdmSouthboundJob.h"

#include <cstdint>
#include <cstdlib>

namespace jobmanager_ui {

namespace {

constexpr int noLocation = -1;

int indexFromText(const std::string& text)
{
    // Base 0 on purpose: the service's own reading of its index strings.
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 0));
}

void appendLocationIds(const std::vector<cdm::TestLocation>& locations, int testPosition, std::vector<long long>& ids)
{
    for (std::size_t position = 0; position < locations.size(); ++position) {
        const std::optional<std::string>& uiIndex = locations[position].uiIndex;
        if (!uiIndex)
            ids.push_back(testIdFromIndices({ static_cast<int>(position), testPosition }));
        else if (!uiIndex->empty())
            ids.push_back(testIdFromIndices(getIndicesFromUiIndex(*uiIndex)));
    }
}

void appendTestId(const cdm::Test& test, int testPosition, std::vector<long long>& ids)
{
    if (!test.uiIndex)
        ids.push_back(testIdFromIndices({ noLocation, testPosition }));
    else if (!test.uiIndex->empty())
        ids.push_back(testIdFromIndices({ noLocation, getIndicesFromUiIndex(*test.uiIndex).testIndex }));
}

} // namespace

long long testIdFromIndices(TestIndices indices)
{
    const auto high = static_cast<std::uint64_t>(static_cast<std::uint32_t>(indices.testIndex)) << 32;
    return static_cast<long long>(high | static_cast<std::uint32_t>(indices.locationIndex));
}

TestIndices indicesFromTestId(long long id)
{
    return { static_cast<int>(static_cast<std::uint32_t>(id)), static_cast<int>(id >> 32) };
}

std::string getUiIndexFromTestId(long long id)
{
    const int locationIndex = indicesFromTestId(id).locationIndex;
    std::string uiIndex = getTestUiIndexFromTestId(id);
    // The location does not depend on the test part: an id without one keeps its location ("_5").
    if (locationIndex >= 0)
        uiIndex += '_' + std::to_string(locationIndex);
    return uiIndex;
}

std::string getTestUiIndexFromTestId(long long id)
{
    return id < 0 ? std::string() : std::to_string(indicesFromTestId(id).testIndex);
}

TestIndices getIndicesFromUiIndex(const std::string& uiIndex)
{
    const std::size_t separator = uiIndex.find('_');
    if (separator == std::string::npos)
        return { noLocation, indexFromText(uiIndex) };
    return { indexFromText(uiIndex.substr(separator + 1)), indexFromText(uiIndex.substr(0, separator)) };
}

std::vector<long long> get_all_test_ids(const cdm::CdmSouthboundJob& job)
{
    std::vector<long long> ids;
    if (!job.tests)
        return ids;
    for (std::size_t position = 0; position < job.tests->size(); ++position) {
        const cdm::Test& test = (*job.tests)[position];
        const auto testPosition = static_cast<int>(position);
        if (test.testLocations && !test.testLocations->empty())
            appendLocationIds(*test.testLocations, testPosition, ids);
        else
            appendTestId(test, testPosition, ids);
    }
    return ids;
}

} // namespace jobmanager_ui
