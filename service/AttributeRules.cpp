#include "service/AttributeRules.h"

#include "api/cdm/JsonText.h"

#include <algorithm>
#include <boost/locale/encoding_utf.hpp>
#include <cwctype>
#include <fstream>
#include <iterator>
#include <locale.h>

namespace job_service {

namespace {

using boost::locale::conv::utf_to_utf;
using nlohmann::json;
using Target = AttributeWrite::Target;

constexpr std::chrono::milliseconds longestDelay = std::chrono::seconds(60);

[[noreturn]] void refuse(const std::string& message)
{
    throw AttributeRulesRefused("The attribute rules cannot be used: " + message);
}

/// The character classes of all scripts, whatever locale the service runs in.
locale_t unicode()
{
    static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

std::wstring trimmed(const std::wstring& text)
{
    const auto isSpace = [](wchar_t character) { return ::iswspace_l(static_cast<wint_t>(character), unicode()) != 0; };
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isSpace).base();
    return std::wstring(first, last);
}

void makeUpperCase(std::wstring& text)
{
    for (wchar_t& character : text)
        character = static_cast<wchar_t>(::towupper_l(static_cast<wint_t>(character), unicode()));
}

bool boolOf(const json& value, const std::string& what)
{
    if (!value.is_boolean())
        refuse(what + " has to be true or false.");
    return value.get<bool>();
}

std::chrono::milliseconds delayOf(const json& value, const std::string& what)
{
    const auto longest = static_cast<std::uint64_t>(longestDelay.count());
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > longest)
        refuse(what + " has to be a number of milliseconds up to 60000.");
    return std::chrono::milliseconds(value.get<std::int64_t>());
}

const json& objectOf(const json& value, const std::string& what)
{
    if (!value.is_object())
        refuse(what + " has to be an object.");
    return value;
}

AttributeRule ruleOf(const json& value, const std::string& name)
{
    AttributeRule rule;
    for (const auto& [key, setting] : objectOf(value, name).items()) {
        const std::string what = key + " of " + name;
        if (key == "refuse" && setting.is_string())
            rule.refusal = setting.get<std::string>();
        else if (key == "refuse")
            refuse(what + " has to be a sentence.");
        else if (key == "trim")
            rule.trim = boolOf(setting, what);
        else if (key == "upperCase")
            rule.upperCase = boolOf(setting, what);
        else if (key == "delayMs")
            rule.delay = delayOf(setting, what);
        else
            refuse("there is no rule " + what + '.');
    }
    return rule;
}

} // namespace

std::string AttributeRule::normalised(const std::string& value) const
{
    if (!trim && !upperCase)
        return value;
    std::wstring text = utf_to_utf<wchar_t>(value);
    if (trim)
        text = trimmed(text);
    if (upperCase)
        makeUpperCase(text);
    return utf_to_utf<char>(text);
}

AttributeRules AttributeRules::fromFile(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream || std::filesystem::is_directory(file))
        refuse("there is no file " + file.string() + '.');
    return fromText({ std::istreambuf_iterator<char>(stream), {} });
}

AttributeRules AttributeRules::fromText(const std::string& text)
{
    cdm::DocumentError error;
    const std::optional<json> document = cdm::parseJson(text, error);
    if (!document)
        refuse(error.message);
    AttributeRules rules;
    const auto add = [&rules](Target target, const std::string& name, const json& value) {
        rules.m_rules[{ target, name }] = ruleOf(value, name);
    };
    for (const auto& [member, value] : objectOf(*document, "the file").items()) {
        if (member == "jobManagerAttributes") {
            for (const auto& [name, rule] : objectOf(value, member).items())
                add(Target::Attribute, name, rule);
        } else if (member == "techId") {
            add(Target::TechId, member, value);
        } else if (member == "contractorId") {
            add(Target::ContractorId, member, value);
        } else {
            refuse("there is nothing called " + member + '.');
        }
    }
    return rules;
}

const AttributeRule& AttributeRules::ruleFor(const AttributeWrite& write) const
{
    static const AttributeRule none;
    const auto found = m_rules.find({ write.target, write.name });
    return found == m_rules.end() ? none : found->second;
}

} // namespace job_service
