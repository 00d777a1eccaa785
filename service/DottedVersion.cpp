#include "service/DottedVersion.h"

#include <algorithm>

namespace job_service {

namespace {

constexpr std::size_t mostNumbers = 8;
constexpr std::size_t mostDigits = 9;

std::optional<int> numberOf(std::string_view digits)
{
    if (digits.empty() || digits.size() > mostDigits)
        return std::nullopt;
    int number = 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        number = number * 10 + (digit - '0');
    }
    return number;
}

} // namespace

std::optional<DottedVersion> DottedVersion::fromText(std::string_view text)
{
    DottedVersion version;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('.', start), text.size());
        const std::optional<int> number = numberOf(text.substr(start, end - start));
        if (!number || version.m_numbers.size() == mostNumbers)
            return std::nullopt;
        version.m_numbers.push_back(*number);
        start = end + 1;
    }
    while (!version.m_numbers.empty() && version.m_numbers.back() == 0)
        version.m_numbers.pop_back();
    return version;
}

} // namespace job_service
