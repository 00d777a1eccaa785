#pragma once

#include <string>

namespace job_service {

enum class PatternMatch {
    Yes,
    No,
    /// The pattern is no regular expression.
    NoPattern,
    /// Finding out was given up.
    TooCostly
};

/// Whether a regular expression, in the common Perl notation, matches the whole of a text; both are UTF-8. However
/// the pattern is written, the time is bounded.
PatternMatch matchWhole(const std::string& pattern, const std::string& text);

} // namespace job_service
