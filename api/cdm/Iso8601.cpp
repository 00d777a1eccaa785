#include "api/cdm/Iso8601.h"

#include <ctime>
#include <utility>

namespace cdm {

namespace {

std::string currentLocalTime()
{
    const std::time_t now = std::time(nullptr);
    // Records are made on several threads at once, and localtime() shares one buffer among all copies of this code
    // in the process. localtime_r() takes the time zone that the process looked at last.
    std::tm local{};
    if (localtime_r(&now, &local) == nullptr)
        return {};
    char text[50];
    return { text, std::strftime(text, sizeof text, "%FT%T%z", &local) };
}

} // namespace

Iso8601::Iso8601() : value(currentLocalTime())
{
}

Iso8601::Iso8601(std::string text) : value(std::move(text))
{
}

} // namespace cdm
