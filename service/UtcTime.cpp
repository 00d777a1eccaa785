#include "service/UtcTime.h"

#include <cstdio>
#include <ctime>

namespace job_service {

namespace {

constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:dd.dddZ";

int number(std::string_view text, std::size_t from, std::size_t length)
{
    int value = 0;
    for (const char digit : text.substr(from, length))
        value = value * 10 + (digit - '0');
    return value;
}

bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysOf(int month, int year)
{
    if (month == 2)
        return isLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

} // namespace

std::string utcText(std::chrono::system_clock::time_point moment)
{
    using namespace std::chrono;
    const auto milliseconds = floor<std::chrono::milliseconds>(moment.time_since_epoch());
    const auto wholeSeconds = floor<seconds>(milliseconds);
    const std::time_t time = static_cast<std::time_t>(wholeSeconds.count());
    std::tm parts{};
    ::gmtime_r(&time, &parts);
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + 1900, parts.tm_mon + 1,
        parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
        static_cast<int>((milliseconds - wholeSeconds).count()));
    return text;
}

std::string utcNow()
{
    return utcText(std::chrono::system_clock::now());
}

bool isUtcText(std::string_view text)
{
    if (text.size() != pattern.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool fits = pattern[i] == 'd' ? text[i] >= '0' && text[i] <= '9' : text[i] == pattern[i];
        if (!fits)
            return false;
    }
    const int year = number(text, 0, 4);
    const int month = number(text, 5, 2);
    const int day = number(text, 8, 2);
    if (month < 1 || month > 12 || day < 1 || day > daysOf(month, year))
        return false;
    return number(text, 11, 2) < 24 && number(text, 14, 2) < 60 && number(text, 17, 2) < 60;
}

} // namespace job_service
