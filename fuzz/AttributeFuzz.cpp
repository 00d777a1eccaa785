// The reader of attributes: any JSON that the service sends as one.

#include "api/cdm/Attributes.h"
#include "api/cdm/JsonText.h"
#include "fuzz/Expect.h"

#include <iostream>

using jobmanager_fuzz::expect;

namespace {

/// The attribute, if the JSON is one.
std::optional<cdm::Attribute> read(const nlohmann::json& content)
{
    try {
        return content.get<cdm::Attribute>();
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

/// All that an attribute says but whether it is editable.
bool sayTheSame(const cdm::Attribute& a, const cdm::Attribute& b)
{
    return a.label == b.label && a.value == b.value && a.valueType == b.valueType && a.regExp == b.regExp
        && a.validValues == b.validValues && a.visible == b.visible && a.orderIndex == b.orderIndex;
}

void checkReading(const cdm::Attributes& attributes, const std::optional<cdm::Attribute>& attribute)
{
    const cdm::Attribute got = attributes.getAttribute("x");
    expect(sayTheSame(got, attribute.value_or(cdm::Attribute())), "content that is no attribute reads as the default");
    expect(got.editable.has_value(), "whether an attribute is editable is always known");
}

void checkWriting(cdm::Attributes attributes, const cdm::Attribute& attribute)
{
    attributes.setAttribute("x", attribute);
    const cdm::Attribute again = attributes.getAttribute("x");
    expect(sayTheSame(again, attribute), "a written attribute reads as it was");
    expect(again.editable == true, "a written attribute comes back editable");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // One line for each content that is no attribute would be most of what the fuzzer does.
    std::cerr.setstate(std::ios::failbit);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    cdm::DocumentError error;
    const std::optional<nlohmann::json> content = cdm::parseJson({ reinterpret_cast<const char*>(data), size }, error);
    expect(content.has_value() == error.message.empty(), "what is refused is told");
    if (!content)
        return 0;
    const std::optional<cdm::Attribute> attribute = read(*content);
    const cdm::Attributes attributes{ { { "x", *content } }, {} };
    checkReading(attributes, attribute);
    if (attribute)
        checkWriting(attributes, *attribute);
    return 0;
}
