#pragma once

#include <string>
#include <string_view>

namespace job_client {

/// A text as one segment of a path: all but ASCII letters, digits, "-", "_" and "~" is percent-encoded. Dots are
/// too, so that no segment reads as "." or "..".
std::string pathSegment(std::string_view text);

} // namespace job_client
