#include "service/JobFileName.h"

#include <algorithm>
#include <cctype>

namespace job_service {

namespace {

bool endsIn(std::string_view name, std::string_view suffix)
{
    const auto sameLetter = [](char letter, char small) {
        return std::tolower(static_cast<unsigned char>(letter)) == small;
    };
    return name.size() >= suffix.size()
        && std::equal(name.end() - static_cast<std::ptrdiff_t>(suffix.size()), name.end(), suffix.begin(), sameLetter);
}

} // namespace

bool isJobFileName(std::string_view name)
{
    return endsIn(name, ".job.json");
}

bool isTemplateFileName(std::string_view name)
{
    return endsIn(name, ".tpl.json");
}

} // namespace job_service
