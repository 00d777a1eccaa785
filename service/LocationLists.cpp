#include "service/LocationLists.h"

#include "service/ApiError.h"
#include "service/FileHandle.h"
#include "service/JobDocument.h"
#include "service/UrlPath.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace job_service {

namespace {

constexpr std::size_t largestFile = 1024 * 1024;
constexpr std::string_view blanks = " \t\r";

[[noreturn]] void refuse(const std::string& message)
{
    throw ApiError(400, "invalid_locations", message);
}

/// Whether a text names a file of a folder itself, none above or below it.
bool isFileName(const std::string& text)
{
    return isPlainName(text) && text.find('/') == std::string::npos && text != "." && text != "..";
}

std::string_view trimmed(std::string_view line)
{
    const std::size_t first = line.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> linesOf(std::string_view text)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark)
        text.remove_prefix(byteOrderMark.size());
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = trimmed(text.substr(start, end - start));
        if (!line.empty())
            lines.emplace_back(line);
        start = end + 1;
    }
    return lines;
}

std::string readList(const std::filesystem::path& file)
{
    const FileHandle handle = openedForReading(file, Links::Refused);
    if (!handle && (errno == ENOENT || errno == ENAMETOOLONG))
        throw ApiError(404, "locations_not_found", "There is no list of locations with this name.");
    try {
        return contentOf(handle, largestFile);
    } catch (const FileUnreadable&) {
        refuse("A list of locations is a plain file of at most 1 MiB, and no link.");
    }
}

} // namespace

std::vector<std::string> LocationLists::locations(const std::string& fileName) const
{
    if (!isFileName(fileName))
        refuse("A list of locations is named by the name of a file of the templates' folder.");
    if (m_folder.empty())
        throw ApiError(404, "locations_not_found", "There is no folder of templates with lists of locations.");
    const std::string text = readList(m_folder / fileName);
    std::vector<std::string> lines = isUtf8(text) ? linesOf(text) : std::vector<std::string>();
    if (lines.empty() || !std::all_of(lines.begin(), lines.end(), isPlainName))
        refuse("A list of locations holds one a line, each of at most 512 bytes of UTF-8 without control characters.");
    return lines;
}

} // namespace job_service
