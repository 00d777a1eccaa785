#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "client/RestApiJobManager.h"

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace jobmanager_test {

/// A test id, written as its two halves; location -1 names the test itself.
inline long long idOf(int test, int location = -1)
{
    // Not shifted: a test index may be negative.
    return test * (1LL << 32) + static_cast<unsigned>(location);
}

inline RestApiJobManager::MinimalJobInfo summaryOf(const std::string& id)
{
    RestApiJobManager::MinimalJobInfo info;
    info.id = id;
    return info;
}

inline cdm::Test testOf(std::optional<std::string> uiIndex)
{
    cdm::Test test;
    test.uiIndex = std::move(uiIndex);
    return test;
}

inline cdm::TestLocation locationOf(std::optional<std::string> uiIndex)
{
    cdm::TestLocation location;
    location.uiIndex = std::move(uiIndex);
    return location;
}

inline cdm::CdmSouthboundJob jobOf(const std::string& id, std::optional<std::vector<cdm::Test>> tests = std::nullopt)
{
    cdm::CdmSouthboundJob job;
    job.details.id = id;
    job.tests = std::move(tests);
    return job;
}

inline cdm::TestResults resultsOf(
    const std::string& status, const std::string& time = {}, std::optional<std::string> response = {})
{
    cdm::TestResults results;
    results.status = status;
    results.time = time;
    results.response = std::move(response);
    return results;
}

inline cdm::TestResults resultsWithData(std::optional<nlohmann::json> data)
{
    cdm::TestResults results;
    results.data = std::move(data);
    return results;
}

/// What a test or location has, if it was run.
using Results = std::optional<cdm::TestResults>;

/// Test "0" with results of its own and one location for each of `locations`.
inline cdm::Test testWithResults(Results own, std::initializer_list<Results> locations = {})
{
    cdm::Test test = testOf("0");
    test.results = std::move(own);
    if (locations.size() > 0)
        test.testLocations.emplace();
    for (const Results& results : locations) {
        test.testLocations->push_back(locationOf("0_" + std::to_string(test.testLocations->size())));
        test.testLocations->back().results = results;
    }
    return test;
}

} // namespace jobmanager_test
