#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace job_service {

/// Takes the path of a request target apart: "/jobs/a%2Fb?x" gives "jobs" and "a/b". A query is left out.
/// Nothing if the target is no absolute path, an escape is broken, or a segment is not UTF-8 or holds a NUL.
std::optional<std::vector<std::string>> pathSegments(std::string_view target);

/// Whether a text is well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

} // namespace job_service
