#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace cdm {

/// Where a document breaks its format, and how.
struct DocumentError
{
    /// JSON pointer of the offending member ("/tests/3/testType"); empty for the document itself.
    std::string path;
    /// One sentence for people.
    std::string message;
};

/// Deepest nesting of arrays and objects that is accepted anywhere. Copying and writing a JSON
/// value recurse, so that a deeper one could end the process.
constexpr std::size_t maximumJsonDepth = 64;

/// Parses UTF-8 JSON text. Nesting is limited before a value is built.
/// Returns nothing, and fills `error`, if the text is no JSON or too deep. Throws nothing but std::bad_alloc.
std::optional<nlohmann::json> parseJson(std::string_view text, DocumentError& error);

/// Writes a value as compact UTF-8 text. Bytes that are not UTF-8 become U+FFFD instead of throwing.
std::string dumpJson(const nlohmann::json& value);

} // namespace cdm
