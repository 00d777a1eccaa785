#pragma once

#include "service/TestRun.h"

#include <cstdint>

namespace job_service {

/// What a simulated run gives: the same for the same seed, job, index string, test type and number of runs that the
/// results of the test count, on every machine. About one verdict in seven is "fail".
TestOutcome simulatedOutcome(std::uint32_t seed, const TestToRun& test);

} // namespace job_service
