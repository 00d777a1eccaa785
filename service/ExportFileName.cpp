#include "service/ExportFileName.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>

namespace job_service {

namespace {

constexpr std::string_view suffix = ".job.json";
/// Leaves room for the suffix, the number and the marks of a file that is being written, in the 255 bytes of a name.
constexpr std::size_t longestStem = 200;

bool isSafe(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x20 && byte != 0x7f && std::string_view("\"*/:<>?\\|").find(character) == std::string_view::npos;
}

/// Names of devices on the systems where such a medium may be read.
bool isReserved(std::string_view stem)
{
    std::string name(stem.substr(0, stem.find('.')));
    std::transform(name.begin(), name.end(), name.begin(),
        [](char character) { return static_cast<char>(std::toupper(static_cast<unsigned char>(character))); });
    constexpr std::array<std::string_view, 4> names{ "CON", "PRN", "AUX", "NUL" };
    if (std::find(names.begin(), names.end(), name) != names.end())
        return true;
    const bool port = name.compare(0, 3, "COM") == 0 || name.compare(0, 3, "LPT") == 0;
    return port && name.size() == 4 && name[3] >= '1' && name[3] <= '9';
}

/// Cuts between two characters of UTF-8.
void shorten(std::string& stem)
{
    if (stem.size() <= longestStem)
        return;
    std::size_t end = longestStem;
    while (end > 0 && (static_cast<unsigned char>(stem[end]) & 0xc0u) == 0x80u)
        --end;
    stem.resize(end);
}

std::string safeStem(std::string_view jobId)
{
    std::string stem(jobId);
    std::replace_if(
        stem.begin(), stem.end(), [](char character) { return !isSafe(character); }, '_');
    // A leading dot hides a file; a blank at either end is lost on some media.
    if (stem.front() == '.' || stem.front() == ' ')
        stem.front() = '_';
    if (stem.back() == ' ')
        stem.back() = '_';
    shorten(stem);
    return isReserved(stem) ? "_" + stem : stem;
}

std::string numberOf(std::string_view jobId)
{
    std::uint64_t hash = 14695981039346656037u; // FNV-1a: the same number on every instrument
    for (const char character : jobId)
        hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211u;
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

} // namespace

std::string exportFileName(std::string_view jobId)
{
    std::string stem = safeStem(jobId);
    return stem == jobId ? stem.append(suffix) : numberedExportFileName(jobId);
}

std::string numberedExportFileName(std::string_view jobId)
{
    return safeStem(jobId) + "-" + numberOf(jobId) + std::string(suffix);
}

} // namespace job_service
