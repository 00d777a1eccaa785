#pragma once

#include "service/TestRun.h"

#include <string>

namespace job_service {

/// Writes what came of a run into the results of a test or location. A verdict replaces the results; the mark of a
/// test that was added in the field stays. A run without a verdict takes none away: it leaves the results as they are,
/// or makes some of the status "error" where there is no verdict, and tells why in their member `error`.
/// `time` is when the run ended, ISO 8601.
void recordOutcome(JsonTree& target, const TestOutcome& outcome, const std::string& time);

/// The answer of a manual step.
struct ManualAnswer
{
    std::string text;
    /// A further text; ordinarily empty.
    std::string note;
};

/// Whether a test of a document is a manual step.
bool isManual(const JsonTree& test);
/// Whether a manual step asks for yes or no.
bool asksYesNo(const JsonTree& test);

/// Writes the answer of a manual step into the results of its test or location: as "pass", or as "fail" if the step
/// asks for yes or no and the answer is "no". The empty answer opens the step again. Result data stay. `time` is that
/// of the answer, ISO 8601.
void recordAnswer(JsonTree& target, const ManualAnswer& answer, bool yesNo, const std::string& time);

} // namespace job_service
