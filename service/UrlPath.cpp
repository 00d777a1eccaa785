#include "service/UrlPath.h"

#include <algorithm>

namespace job_service {

namespace {

int hexValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

std::optional<std::string> decoded(std::string_view segment)
{
    std::string text;
    for (std::size_t i = 0; i < segment.size(); ++i) {
        if (segment[i] != '%') {
            text += segment[i];
            continue;
        }
        if (i + 2 >= segment.size())
            return std::nullopt;
        const int high = hexValue(segment[i + 1]);
        const int low = hexValue(segment[i + 2]);
        if (high < 0 || low < 0)
            return std::nullopt;
        text += static_cast<char>(high * 16 + low);
        i += 2;
    }
    if (!isUtf8(text) || text.find('\0') != std::string::npos)
        return std::nullopt;
    return text;
}

struct Utf8Form
{
    std::size_t length;
    unsigned char firstMask;
    unsigned smallest;
};

/// The form that a first byte announces; length 0 for a byte that cannot be first.
Utf8Form formOf(unsigned char first)
{
    if (first < 0x80)
        return { 1, 0x7F, 0 };
    if (first >= 0xC0 && first < 0xE0)
        return { 2, 0x1F, 0x80 };
    if (first >= 0xE0 && first < 0xF0)
        return { 3, 0x0F, 0x800 };
    if (first >= 0xF0 && first < 0xF8)
        return { 4, 0x07, 0x10000 };
    return { 0, 0, 0 };
}

} // namespace

std::optional<std::vector<std::string>> pathSegments(std::string_view target)
{
    target = target.substr(0, target.find('?'));
    if (target.empty() || target.front() != '/')
        return std::nullopt;
    std::vector<std::string> segments;
    for (std::size_t start = 1; start <= target.size();) {
        const std::size_t end = std::min(target.find('/', start), target.size());
        std::optional<std::string> segment = decoded(target.substr(start, end - start));
        if (!segment)
            return std::nullopt;
        segments.push_back(std::move(*segment));
        start = end + 1;
    }
    return segments;
}

bool isUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i]);
        const Utf8Form form = formOf(first);
        if (form.length == 0 || i + form.length > text.size())
            return false;
        unsigned codePoint = first & form.firstMask;
        for (std::size_t k = 1; k < form.length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80)
                return false;
            codePoint = codePoint << 6 | (next & 0x3Fu);
        }
        if (codePoint < form.smallest || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint < 0xE000))
            return false;
        i += form.length;
    }
    return true;
}

} // namespace job_service
