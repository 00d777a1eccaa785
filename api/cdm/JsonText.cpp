#include "api/cdm/JsonText.h"

#include <algorithm>

namespace cdm {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string position(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, offset);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t lineBreak = before.rfind('\n');
    const std::size_t lineStart = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(before.size() - lineStart + 1);
}

/// Offset of the first bracket that opens a level too many, or npos. The answer holds for any text: the parser
/// stops at the first character that breaks JSON, and up to there both see the same strings and brackets.
std::size_t findTooDeepBracket(std::string_view text)
{
    std::size_t depth = 0;
    bool insideString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (insideString) {
            if (character == '\\')
                ++i;
            else if (character == '"')
                insideString = false;
        } else if (character == '"') {
            insideString = true;
        } else if (character == '[' || character == '{') {
            if (++depth > maximumJsonDepth)
                return i;
        } else if ((character == ']' || character == '}') && depth > 0) {
            --depth;
        }
    }
    return std::string_view::npos;
}

/// What the parser would let pass or could not survive; empty if there is nothing.
std::string findObstacle(std::string_view text)
{
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark)
        return "The text begins with a byte order mark.";
    // The parser takes a NUL for the end of the text and would ignore what follows.
    const std::size_t nul = text.find('\0');
    if (nul != std::string_view::npos)
        return "The text holds a NUL at " + position(text, nul) + ".";
    const std::size_t bracket = findTooDeepBracket(text);
    if (bracket != std::string_view::npos) {
        return "The text is nested deeper than " + std::to_string(maximumJsonDepth) + " levels at "
            + position(text, bracket) + ".";
    }
    return {};
}

} // namespace

std::optional<nlohmann::json> parseJson(std::string_view text, DocumentError& error)
{
    error = { {}, findObstacle(text) };
    if (!error.message.empty())
        return std::nullopt;
    try {
        return nlohmann::json::parse(text.begin(), text.end());
    } catch (const nlohmann::json::parse_error& broken) {
        // `byte` counts from one and is the last character read, which may be the end of the text.
        const std::size_t offset = std::min(broken.byte == 0 ? 0 : broken.byte - 1, text.size());
        error.message = "The text is no JSON at " + position(text, offset) + ".";
    } catch (const nlohmann::json::out_of_range&) {
        error.message = "The text holds a number that is out of range.";
    }
    return std::nullopt;
}

std::string dumpJson(const nlohmann::json& value)
{
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace cdm
