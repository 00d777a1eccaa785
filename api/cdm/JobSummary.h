#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>

namespace cdm {

/// How many tests of a job have to be done, and how many of these are.
struct RequiredTestCounts
{
    std::int32_t total = 0;
    std::int32_t completed = 0;
};

/// Counts the required tests of a job document. A test counts once, whatever the number of its locations.
///
/// The `required` flag of a location goes before that of its test; without either the answer is yes. A test with
/// locations is required if any of them is, and completed when all of them have results with a status other than
/// "error", optional ones included; results of the test as a whole do not count there. A test without locations is
/// judged by its own flag and results.
///
/// Takes any JSON: a member of the wrong type counts as missing, a test or location that is no object is passed over.
RequiredTestCounts requiredTestCounts(const nlohmann::json& document);

} // namespace cdm
