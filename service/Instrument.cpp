#include "service/Instrument.h"

#include "api/cdm/JsonText.h"
#include "service/FileHandle.h"
#include "service/JsonFields.h"
#include "service/StandardInstrument.h"

#include <algorithm>

namespace job_service {

namespace {

constexpr std::size_t largestFile = 1024 * 1024;

DottedVersion versionOf(const JsonFields& fields, const char* name)
{
    const std::optional<DottedVersion> version = DottedVersion::fromText(fields.text(name));
    if (!version)
        throw FieldRefused(fields.pathOf(name) + " has to be a version such as \"24.2.1\".");
    return *version;
}

std::set<std::string> setOf(const JsonFields& fields, const char* name)
{
    const std::vector<std::string> texts = fields.texts(name);
    return { texts.begin(), texts.end() };
}

Instrument instrumentOf(const JsonFields& fields)
{
    Instrument instrument;
    instrument.platformVersion = versionOf(fields, "platformVersion");
    instrument.options = setOf(fields, "options");
    for (const JsonFields& module : fields.objects("modules"))
        instrument.modules.push_back({ module.text("name"), versionOf(module, "version"), module.flag("ready", true) });
    instrument.configurationFiles = setOf(fields, "configurationFiles");
    instrument.availablePower = fields.number("availablePower");
    if (fields.has("testTypes"))
        instrument.testTypes = setOf(fields, "testTypes");
    instrument.fault = fields.optionalText("fault").value_or("");
    return instrument;
}

} // namespace

const Instrument::Module* Instrument::module(const std::string& name) const
{
    const auto found =
        std::find_if(modules.begin(), modules.end(), [&](const Module& module) { return module.name == name; });
    return found == modules.end() ? nullptr : &*found;
}

Instrument Instrument::standard()
{
    return fromText(standardInstrument);
}

Instrument Instrument::fromFile(const std::filesystem::path& file)
{
    try {
        return fromText(contentOf(openedForReading(file), largestFile));
    } catch (const FileUnreadable& error) {
        throw InstrumentRefused("The description of the instrument cannot be read: " + std::string(error.what()) + ".");
    }
}

Instrument Instrument::fromText(const std::string& text)
{
    cdm::DocumentError error;
    const std::optional<nlohmann::json> document = cdm::parseJson(text, error);
    const std::string unusable = "The description of the instrument cannot be used: ";
    if (!document)
        throw InstrumentRefused(unusable + error.message);
    try {
        return instrumentOf(JsonFields(*document));
    } catch (const FieldRefused& refused) {
        throw InstrumentRefused(unusable + refused.what());
    }
}

} // namespace job_service
