#pragma once

#include "service/TestRun.h"

#include <string>

namespace job_service {

/// Reads what a test program has written on its standard output (docs/job-service-api.md). An outcome without a verdict
/// if that is nonsense.
TestOutcome programAnswer(const std::string& output);

} // namespace job_service
