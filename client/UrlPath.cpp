#include "client/UrlPath.h"

namespace job_client {

std::string pathSegment(std::string_view text)
{
    // Not isalnum(), which asks the locale.
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string segment;
    for (const char character : text) {
        if (plain.find(character) != std::string_view::npos) {
            segment += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            segment += { '%', digits[byte / 16], digits[byte % 16] };
        }
    }
    return segment;
}

} // namespace job_client
