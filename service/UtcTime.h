#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace job_service {

/// A moment as fixed-width UTC text, "2026-03-01T08:15:00.000Z". Texts sort as the moments do.
std::string utcText(std::chrono::system_clock::time_point moment);

/// Now, as `utcText`.
std::string utcNow();

/// Whether a text has exactly the form of `utcText` and names a day and time that exist.
bool isUtcText(std::string_view text);

} // namespace job_service
