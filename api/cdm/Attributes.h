#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace cdm {

/// Description and value of one optional property of a job, a test or a location.
struct Attribute
{
    std::string label;
    std::string value;
    std::optional<std::string> valueType;
    std::optional<bool> editable = false;
    std::optional<std::string> regExp;
    std::optional<std::vector<std::string>> validValues;
    std::optional<bool> visible;
    std::optional<std::int32_t> orderIndex;
};

/// Reads an attribute into `attribute`. Throws a nlohmann exception if `json` is no object that has "label" and
/// "value" as strings. Every other member that is missing or of the wrong type (a number that does not fit into 32
/// bits included) leaves its field as it was; null clears it, save for "editable".
void from_json(const nlohmann::json& json, Attribute& attribute);

/// Writes an attribute as an object; fields that hold nothing have no member. "editable" is written as the
/// string "true" whenever the field holds a value, even false.
void to_json(nlohmann::json& json, const Attribute& attribute);

/// The optional properties of one job, test or location, by name.
struct Attributes
{
    /// Attribute name to attribute. Normally an object in the form of an Attribute, but it can be anything.
    std::map<std::string, nlohmann::json> values;
    std::optional<std::vector<std::string>> opaqueTextList;

    /// The attribute of that name; the default attribute if there is none, or if it is null or empty.
    /// Content that is no attribute gives the default attribute, too, and a line on standard error. Never throws
    /// for bad content.
    Attribute getAttribute(const std::string& name) const;

    /// Stores `attribute` under `name` in its JSON form, replacing what was there.
    void setAttribute(const std::string& name, const Attribute& attribute);
};

} // namespace cdm
