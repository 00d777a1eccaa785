#pragma once

#include <string>

namespace cdm {

/// A point in time as ISO 8601 text.
struct Iso8601
{
    /// Holds the current local time with its offset from UTC, as "2026-03-01T08:15:00+0100".
    Iso8601();
    /// Holds `text` as it is; nothing is checked.
    explicit Iso8601(std::string text);

    std::string value;
};

} // namespace cdm
