#include "service/TestNeeds.h"

#include "service/JsonFields.h"

namespace job_service {

namespace {

constexpr const char* member = "requirements";

std::optional<NeededVersion> versionOf(const JsonFields& fields, const char* name)
{
    const std::optional<std::string> text = fields.optionalText(name);
    if (!text)
        return std::nullopt;
    const std::optional<DottedVersion> version = DottedVersion::fromText(*text);
    if (!version)
        throw FieldRefused(fields.pathOf(name) + " has to be a version such as \"24.2.1\".");
    return NeededVersion{ *text, *version };
}

} // namespace

TestNeeds TestNeeds::of(const nlohmann::json& test)
{
    TestNeeds needs;
    if (!JsonFields(test).has(member))
        return needs;
    const JsonFields fields(test.at(member), member);
    needs.fieldmate = fields.flag("fieldmate", false);
    needs.platformVersion = versionOf(fields, "platformVersion");
    needs.options = fields.texts("options");
    for (const JsonFields& module : fields.objects("modules"))
        needs.modules.push_back({ module.text("name"), versionOf(module, "version") });
    needs.configurationFiles = fields.texts("configurationFiles");
    needs.power = fields.number("power");
    return needs;
}

} // namespace job_service
