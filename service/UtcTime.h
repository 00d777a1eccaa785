#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace job_service {

/// A moment as fixed-width UTC text, "2026-03-01T08:15:00.000Z". Texts sort as the moments do.
std::string utcText(std::chrono::system_clock::time_point moment);

/// Now, as `utcText`.
std::string utcNow();

/// Whether a text has exactly the form of `utcText` and names a day and time that exist.
bool isUtcText(std::string_view text);

/// The moment of an ISO 8601 text with seconds, "2026-03-01T08:15:00", with or without a fraction; an offset may follow
/// ("Z", "+01:00", "+0100"), without which it counts as UTC. Nothing for any other text.
std::optional<std::chrono::system_clock::time_point> utcMoment(std::string_view text);

} // namespace job_service
