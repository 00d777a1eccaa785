#pragma once

#include "service/TestRun.h"

#include <string>

namespace job_service {

/// Writes what came of a run into the results of a test or location. A verdict replaces the results; the mark of a
/// test that was added in the field stays. A run without a verdict takes none away: it leaves the results as they are,
/// or makes some of the status "error" where there is no verdict, and tells why in their member `error`.
/// `time` is when the run ended, ISO 8601.
void recordOutcome(JsonTree& target, const TestOutcome& outcome, const std::string& time);

} // namespace job_service
