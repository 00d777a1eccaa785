#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace job_service {

struct Instrument;

/// Checks whether an instrument can run a test of a job document. Empty if it can, otherwise the status
/// (LaunchStatus.h) of the first obstacle, in the order that docs/job-service-api.md gives.
std::string launchObstacle(const Instrument& instrument, const nlohmann::json& test);

} // namespace job_service
