#include "service/AttributeCheck.h"

#include "service/Pattern.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace job_service {

namespace {

bool isNumber(const std::string& text)
{
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end && std::isfinite(number);
}

bool isTrueOrFalse(const std::string& text)
{
    return text == "true" || text == "false";
}

bool isValidValue(const cdm::Attribute& attribute, const std::string& value)
{
    return attribute.validValues
        && std::find(attribute.validValues->begin(), attribute.validValues->end(), value)
        != attribute.validValues->end();
}

/// Valid values of a boolean attribute come on top of true and false; without any, every value is valid.
std::optional<std::string> choiceFault(const cdm::Attribute& attribute, const std::string& value)
{
    const bool isBoolean = attribute.valueType == "boolean";
    const bool hasValidValues = attribute.validValues && !attribute.validValues->empty();
    if ((!isBoolean && !hasValidValues) || (isBoolean && isTrueOrFalse(value)) || isValidValue(attribute, value))
        return std::nullopt;
    return isBoolean && !hasValidValues ? "has to be true or false." : "has to be one of its valid values.";
}

std::optional<std::string> patternFault(const std::string& regExp, const std::string& value)
{
    switch (matchWhole(regExp, value)) {
    case PatternMatch::No:
        return "does not match its pattern.";
    case PatternMatch::TooCostly:
        return "cannot be compared with its pattern: that takes too long.";
    case PatternMatch::Yes:
    case PatternMatch::NoPattern:
        break;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> valueFault(const cdm::Attribute& attribute, const std::string& value)
{
    if (value.empty())
        return std::nullopt;
    if ((attribute.valueType == "double" || attribute.valueType == "number") && !isNumber(value))
        return "has to be a number.";
    if (auto fault = choiceFault(attribute, value))
        return fault;
    const bool hasPattern = attribute.regExp && !attribute.regExp->empty();
    return hasPattern ? patternFault(*attribute.regExp, value) : std::nullopt;
}

} // namespace job_service
