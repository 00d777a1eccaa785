#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace job_service {

/// A version of numbers with dots between, "24.2.1". "24.2" and "24.2.0" are the same.
class DottedVersion
{
public:
    /// Nothing unless the text is 1 to 8 numbers of up to 9 digits.
    static std::optional<DottedVersion> fromText(std::string_view text);

    bool operator<(const DottedVersion& other) const { return m_numbers < other.m_numbers; }

private:
    /// Without noughts at the end.
    std::vector<int> m_numbers;
};

} // namespace job_service
