#include "service/UtcTime.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace job_service {

namespace {

constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:dd.dddZ";
constexpr std::string_view secondsPattern = "dddd-dd-ddTdd:dd:dd";
constexpr std::string_view digits = "0123456789";

/// Whether the text is like the pattern, in which "d" stands for a digit.
bool fits(std::string_view text, std::string_view likeThis)
{
    if (text.size() != likeThis.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool same = likeThis[i] == 'd' ? text[i] >= '0' && text[i] <= '9' : text[i] == likeThis[i];
        if (!same)
            return false;
    }
    return true;
}

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

/// Whether there is the day and time of a text that fits `secondsPattern` at its beginning.
bool isDayAndTime(std::string_view text)
{
    const int year = number(text, 0, 4);
    const int month = number(text, 5, 2);
    const int day = number(text, 8, 2);
    if (month < 1 || month > 12 || day < 1 || day > daysOf(month, year))
        return false;
    return number(text, 11, 2) < 24 && number(text, 14, 2) < 60 && number(text, 17, 2) < 60;
}

std::chrono::system_clock::time_point secondsOf(std::string_view text)
{
    std::tm parts{};
    parts.tm_year = number(text, 0, 4) - 1900;
    parts.tm_mon = number(text, 5, 2) - 1;
    parts.tm_mday = number(text, 8, 2);
    parts.tm_hour = number(text, 11, 2);
    parts.tm_min = number(text, 14, 2);
    parts.tm_sec = number(text, 17, 2);
    return std::chrono::system_clock::from_time_t(::timegm(&parts));
}

/// Takes a fraction of a second off the front; nought if there is none, nothing if it is malformed.
std::optional<std::chrono::microseconds> takeFraction(std::string_view& text)
{
    if (text.empty() || (text[0] != '.' && text[0] != ','))
        return std::chrono::microseconds(0);
    const std::size_t end = std::min(text.find_first_not_of(digits, 1), text.size());
    if (end == 1)
        return std::nullopt;
    std::string six(text.substr(1, std::min<std::size_t>(end - 1, 6)));
    six.resize(6, '0');
    text.remove_prefix(end);
    return std::chrono::microseconds(number(six, 0, 6));
}

/// The offset from UTC that the rest of a text names; nothing if it is none.
std::optional<std::chrono::minutes> offsetOf(std::string_view text)
{
    if (text.empty() || text == "Z")
        return std::chrono::minutes(0);
    const bool west = text[0] == '-';
    if (!west && text[0] != '+')
        return std::nullopt;
    const std::string_view rest = text.substr(1);
    if (!fits(rest, "dd:dd") && !fits(rest, "dddd") && !fits(rest, "dd"))
        return std::nullopt;
    const int minutes = rest.size() > 2 ? number(rest, rest.size() - 2, 2) : 0;
    const std::chrono::minutes offset(number(rest, 0, 2) * 60 + minutes);
    return west ? -offset : offset;
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
    return fits(text, pattern) && isDayAndTime(text);
}

std::optional<std::chrono::system_clock::time_point> utcMoment(std::string_view text)
{
    const std::string_view dayAndTime = text.substr(0, secondsPattern.size());
    if (!fits(dayAndTime, secondsPattern) || !isDayAndTime(text))
        return std::nullopt;
    text.remove_prefix(dayAndTime.size());
    const std::optional<std::chrono::microseconds> fraction = takeFraction(text);
    const std::optional<std::chrono::minutes> offset = offsetOf(text);
    if (!fraction || !offset)
        return std::nullopt;
    return secondsOf(dayAndTime) + *fraction - *offset;
}

} // namespace job_service
