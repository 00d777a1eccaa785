#include "service/JsonFields.h"

#include <utility>

namespace job_service {

namespace {

[[noreturn]] void refuse(const std::string& path, const char* what)
{
    throw FieldRefused((path.empty() ? "The document" : path) + " has to be " + what + ".");
}

std::string textOf(const nlohmann::json& value, const std::string& path)
{
    if (!value.is_string() || value.get_ref<const std::string&>().empty())
        refuse(path, "a text that is not empty");
    return value.get<std::string>();
}

} // namespace

JsonFields::JsonFields(const nlohmann::json& value, std::string path) : m_object(value), m_path(std::move(path))
{
    if (!value.is_object())
        refuse(m_path, "an object");
}

std::string JsonFields::pathOf(const char* name) const
{
    return m_path.empty() ? name : m_path + "/" + name;
}

const nlohmann::json* JsonFields::find(const char* name) const
{
    const auto member = m_object.find(name);
    return member == m_object.end() || member->is_null() ? nullptr : &*member;
}

const nlohmann::json* JsonFields::findArray(const char* name) const
{
    const nlohmann::json* member = find(name);
    if (member && !member->is_array())
        refuse(pathOf(name), "a list");
    return member;
}

std::string JsonFields::text(const char* name) const
{
    const nlohmann::json* member = find(name);
    return textOf(member ? *member : nlohmann::json(), pathOf(name));
}

std::optional<std::string> JsonFields::optionalText(const char* name) const
{
    const nlohmann::json* member = find(name);
    return member ? std::optional(textOf(*member, pathOf(name))) : std::nullopt;
}

bool JsonFields::flag(const char* name, bool otherwise) const
{
    const nlohmann::json* member = find(name);
    if (member && !member->is_boolean())
        refuse(pathOf(name), "true or false");
    return member ? member->get<bool>() : otherwise;
}

std::optional<double> JsonFields::number(const char* name) const
{
    const nlohmann::json* member = find(name);
    if (!member)
        return std::nullopt;
    if (!member->is_number() || member->get<double>() < 0)
        refuse(pathOf(name), "a number that is not negative");
    return member->get<double>();
}

std::vector<std::string> JsonFields::texts(const char* name) const
{
    std::vector<std::string> texts;
    if (const nlohmann::json* array = findArray(name)) {
        for (const nlohmann::json& item : *array)
            texts.push_back(textOf(item, pathOf(name) + "/" + std::to_string(texts.size())));
    }
    return texts;
}

std::vector<JsonFields> JsonFields::objects(const char* name) const
{
    std::vector<JsonFields> objects;
    if (const nlohmann::json* array = findArray(name)) {
        for (const nlohmann::json& item : *array)
            objects.emplace_back(item, pathOf(name) + "/" + std::to_string(objects.size()));
    }
    return objects;
}

} // namespace job_service
