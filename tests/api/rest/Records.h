#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "client/RestApiJobManager.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace jobmanager_test {

/// A test id, written as its two halves; location -1 names the test itself.
inline long long idOf(int test, int location = -1)
{
    return (static_cast<long long>(test) << 32) | static_cast<unsigned>(location);
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

} // namespace jobmanager_test
