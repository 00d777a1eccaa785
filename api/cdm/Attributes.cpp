#include "api/cdm/Attributes.h"

#include <iostream>
#include <limits>

namespace cdm {

namespace {

template <typename Integer> bool fitsInto32Bits(Integer number)
{
    using Limits = std::numeric_limits<std::int32_t>;
    if constexpr (std::is_unsigned_v<Integer>)
        return number <= static_cast<std::uint32_t>(Limits::max());
    else // exact for double as well: it represents both bounds; NaN compares false
        return number >= Limits::min() && number <= Limits::max();
}

template <typename Number> void takeNumber(Number number, std::optional<std::int32_t>& field)
{
    if (fitsInto32Bits(number))
        field = static_cast<std::int32_t>(number);
}

void take(const nlohmann::json& json, std::optional<std::string>& field)
{
    if (json.is_string())
        field = json.get_ref<const std::string&>();
}

void take(const nlohmann::json& json, std::optional<bool>& field)
{
    if (json.is_boolean())
        field = json.get<bool>();
}

void take(const nlohmann::json& json, std::optional<std::int32_t>& field)
{
    if (json.is_number_unsigned())
        takeNumber(json.get<std::uint64_t>(), field);
    else if (json.is_number_integer())
        takeNumber(json.get<std::int64_t>(), field);
    else if (json.is_number_float())
        takeNumber(json.get<double>(), field);
}

void take(const nlohmann::json& json, std::optional<std::vector<std::string>>& field)
{
    if (!json.is_array())
        return;
    std::vector<std::string> texts;
    texts.reserve(json.size());
    for (const nlohmann::json& text : json) {
        if (!text.is_string())
            return;
        texts.push_back(text.get_ref<const std::string&>());
    }
    field = std::move(texts);
}

/// Reads one optional member. Whatever goes wrong costs this field alone.
template <typename T> void readOptional(const nlohmann::json& object, const char* key, std::optional<T>& field)
{
    try {
        const auto member = object.find(key);
        if (member == object.end())
            return;
        if (member->is_null())
            field.reset();
        else
            take(*member, field);
    } catch (...) {
    }
}

/// The service sends "editable" both as a boolean and as text, of which "true" alone counts.
void readEditable(const nlohmann::json& object, std::optional<bool>& field)
{
    const auto member = object.find("editable");
    if (member == object.end())
        return;
    if (member->is_string() && member->get_ref<const std::string&>() == "true")
        field = true;
    else
        take(*member, field);
}

template <typename T> void writeOptional(nlohmann::json& object, const char* key, const std::optional<T>& field)
{
    if (field)
        object[key] = *field;
}

} // namespace

void from_json(const nlohmann::json& json, Attribute& attribute)
{
    json.at("label").get_to(attribute.label);
    json.at("value").get_to(attribute.value);
    readOptional(json, "valueType", attribute.valueType);
    readOptional(json, "regExp", attribute.regExp);
    readOptional(json, "validValues", attribute.validValues);
    readOptional(json, "visible", attribute.visible);
    readOptional(json, "orderIndex", attribute.orderIndex);
    readEditable(json, attribute.editable);
}

void to_json(nlohmann::json& json, const Attribute& attribute)
{
    json = { { "label", attribute.label }, { "value", attribute.value } };
    writeOptional(json, "valueType", attribute.valueType);
    writeOptional(json, "regExp", attribute.regExp);
    writeOptional(json, "validValues", attribute.validValues);
    writeOptional(json, "visible", attribute.visible);
    writeOptional(json, "orderIndex", attribute.orderIndex);
    if (attribute.editable)
        json["editable"] = "true";
}

Attribute Attributes::getAttribute(const std::string& name) const
{
    const auto found = values.find(name);
    // Null, an empty object and an empty array all count as empty.
    if (found == values.end() || found->second.empty())
        return {};
    try {
        return found->second.get<Attribute>();
    } catch (...) {
        std::cerr << "cdm::Attribute cdm::Attributes::getAttribute(const string&) const failed to parse attribute\n";
        return {};
    }
}

void Attributes::setAttribute(const std::string& name, const Attribute& attribute)
{
    values.insert_or_assign(name, attribute);
}

} // namespace cdm
