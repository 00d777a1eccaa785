#include "api/cdm/Attributes.h"

#include <gmock/gmock.h>
#include <limits>

using cdm::Attribute;
using cdm::Attributes;
using nlohmann::json;
using testing::ElementsAre;

namespace {

constexpr const char* parseFailure =
    "cdm::Attribute cdm::Attributes::getAttribute(const string&) const failed to parse attribute\n";

/// The outcome of one read: the attribute, and what went to standard error.
struct Reading
{
    Attribute attribute;
    std::string standardError;
};

Reading readStored(const json& stored)
{
    Attributes attributes;
    attributes.values["name"] = stored;
    testing::internal::CaptureStderr();
    Reading reading;
    reading.attribute = attributes.getAttribute("name");
    reading.standardError = testing::internal::GetCapturedStderr();
    return reading;
}

Reading readWith(const char* key, const json& member)
{
    return readStored({ { "label", "L" }, { "value", "V" }, { key, member } });
}

Attribute attributeOf(const char* label, const char* value)
{
    Attribute attribute;
    attribute.label = label;
    attribute.value = value;
    return attribute;
}

void expectDefault(const Attribute& attribute)
{
    EXPECT_EQ(attribute.label, "");
    EXPECT_EQ(attribute.value, "");
    EXPECT_EQ(attribute.valueType, std::nullopt);
    EXPECT_EQ(attribute.editable, std::optional<bool>(false));
    EXPECT_EQ(attribute.regExp, std::nullopt);
    EXPECT_EQ(attribute.validValues, std::nullopt);
    EXPECT_EQ(attribute.visible, std::nullopt);
    EXPECT_EQ(attribute.orderIndex, std::nullopt);
}

const json complete = { { "label", "Length" }, { "value", "12.5" }, { "valueType", "double" }, { "editable", true },
    { "regExp", "[0-9.]+" }, { "validValues", { "12.5", "13" } }, { "visible", false }, { "orderIndex", -3 } };

} // namespace

TEST(Attribute, startsNotEditableAndOtherwiseEmpty)
{
    expectDefault(Attribute{});
}

TEST(Attributes, missingNameGivesTheDefaultWithoutAMessage)
{
    testing::internal::CaptureStderr();
    expectDefault(Attributes{}.getAttribute("nothing"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Attributes, emptyContentGivesTheDefaultWithoutAMessage)
{
    for (const json& empty : { json(), json::object(), json::array() }) {
        const Reading reading = readStored(empty);
        expectDefault(reading.attribute);
        EXPECT_EQ(reading.standardError, "") << empty;
    }
}

TEST(Attributes, completeAttributeIsReadWhole)
{
    const Reading reading = readStored(complete);
    EXPECT_EQ(reading.attribute.label, "Length");
    EXPECT_EQ(reading.attribute.value, "12.5");
    EXPECT_EQ(reading.attribute.valueType, "double");
    EXPECT_EQ(reading.attribute.editable, std::optional<bool>(true));
    EXPECT_EQ(reading.attribute.regExp, "[0-9.]+");
    ASSERT_TRUE(reading.attribute.validValues);
    EXPECT_THAT(*reading.attribute.validValues, ElementsAre("12.5", "13"));
    EXPECT_EQ(reading.attribute.visible, std::optional<bool>(false));
    EXPECT_EQ(reading.attribute.orderIndex, -3);
    EXPECT_EQ(reading.standardError, "");
}

TEST(Attributes, labelAndValueSuffice)
{
    const Reading reading = readStored({ { "label", "L" }, { "value", "V" } });
    EXPECT_EQ(reading.standardError, "");
    EXPECT_EQ(reading.attribute.label, "L");
    EXPECT_EQ(reading.attribute.value, "V");
    Attribute rest = reading.attribute;
    rest.label.clear();
    rest.value.clear();
    expectDefault(rest);
}

TEST(Attributes, contentThatIsNoAttributeGivesTheDefaultAndTheMessage)
{
    json noLabel = complete;
    noLabel.erase("label");
    json noValue = complete;
    noValue.erase("value");
    json numberAsLabel = complete;
    numberAsLabel["label"] = 1;
    json nullAsValue = complete;
    nullAsValue["value"] = nullptr;
    for (const json& bad : { noLabel, noValue, numberAsLabel, nullAsValue, json(""), json("text"), json(7), json(1.5),
             json(true), json({ "label", "value" }), json({ { "reference", { { "id", "R" } } } }) }) {
        const Reading reading = readStored(bad);
        expectDefault(reading.attribute);
        EXPECT_EQ(reading.standardError, parseFailure) << bad;
    }
}

TEST(Attributes, optionalMemberOfTheWrongTypeCostsItsFieldAlone)
{
    const std::map<std::string, std::vector<json>> wrong = {
        { "valueType", { 1, true, json::array(), json::object() } },
        { "regExp", { 1, true, json::array(), json::object() } },
        { "validValues", { "a", 1, json::object(), json::array({ "a", 1 }), { { "a", "b" } } } },
        { "visible", { "true", 1, 0, json::array() } },
        { "orderIndex", { "4", true, json::array(), json::object() } },
    };
    for (const auto& [key, members] : wrong) {
        for (const json& member : members) {
            json stored = complete;
            stored[key] = member;
            json expected = complete;
            expected.erase(key);
            expected["editable"] = "true";
            const Reading reading = readStored(stored);
            EXPECT_EQ(json(reading.attribute), expected) << key << " " << member;
            EXPECT_EQ(reading.standardError, "") << key << " " << member;
        }
    }
}

TEST(Attributes, nullClearsAnOptionalField)
{
    json cleared = complete;
    for (const char* key : { "valueType", "regExp", "validValues", "visible", "orderIndex" })
        cleared[key] = nullptr;
    Attribute attribute;
    from_json(complete, attribute);
    from_json(cleared, attribute);
    EXPECT_EQ(attribute.valueType, std::nullopt);
    EXPECT_EQ(attribute.regExp, std::nullopt);
    EXPECT_EQ(attribute.validValues, std::nullopt);
    EXPECT_EQ(attribute.visible, std::nullopt);
    EXPECT_EQ(attribute.orderIndex, std::nullopt);
    EXPECT_EQ(readStored(cleared).standardError, "");
}

TEST(Attributes, memberOfTheWrongTypeLeavesTheFieldAsItWas)
{
    Attribute attribute;
    from_json(complete, attribute);
    from_json({ { "label", "L" }, { "value", "V" }, { "orderIndex", "x" }, { "editable", 4 } }, attribute);
    EXPECT_EQ(attribute.orderIndex, -3);
    EXPECT_EQ(attribute.valueType, "double");
    EXPECT_EQ(attribute.editable, std::optional<bool>(true));
}

TEST(Attributes, orderIndexTakesEveryNumberThatFits)
{
    EXPECT_EQ(readWith("orderIndex", 2147483647).attribute.orderIndex, 2147483647);
    EXPECT_EQ(readWith("orderIndex", -2147483648LL).attribute.orderIndex, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(readWith("orderIndex", 2.9).attribute.orderIndex, 2);
    for (const json& tooLarge : { json(2147483648LL), json(-2147483649LL), json(4294967297LL),
             json(18446744073709551615ULL), json(1e300), json(-1e300) }) {
        EXPECT_EQ(readWith("orderIndex", tooLarge).attribute.orderIndex, std::nullopt) << tooLarge;
    }
}

TEST(Attributes, editableIsReadFromABooleanOrTheWordTrue)
{
    EXPECT_EQ(readWith("editable", "true").attribute.editable, std::optional<bool>(true));
    EXPECT_EQ(readWith("editable", true).attribute.editable, std::optional<bool>(true));
    for (const json& no :
        { json(false), json("false"), json("True"), json("yes"), json(""), json(1), json(), json::array() })
        EXPECT_EQ(readWith("editable", no).attribute.editable, std::optional<bool>(false)) << no;
}

TEST(Attributes, editableFalseOverridesWhatTheFieldHeld)
{
    Attribute attribute;
    attribute.editable = true;
    from_json({ { "label", "" }, { "value", "" }, { "editable", "false" } }, attribute);
    EXPECT_EQ(attribute.editable, std::optional<bool>(true));
    from_json({ { "label", "" }, { "value", "" }, { "editable", false } }, attribute);
    EXPECT_EQ(attribute.editable, std::optional<bool>(false));
}

TEST(Attributes, setAttributeWritesOnlyWhatIsHeld)
{
    Attribute attribute;
    attribute.editable.reset();
    Attributes attributes;
    attributes.setAttribute("a", attribute);
    EXPECT_EQ(attributes.values.at("a"), json({ { "label", "" }, { "value", "" } }));
}

TEST(Attributes, setAttributeWritesEveryField)
{
    Attribute attribute;
    from_json(complete, attribute);
    Attributes attributes;
    attributes.setAttribute("a", attribute);
    json expected = complete;
    expected["editable"] = "true";
    EXPECT_EQ(attributes.values.at("a"), expected);
}

TEST(Attributes, setAttributeReplacesWhatWasThere)
{
    Attributes attributes;
    attributes.values["a"] = { { "label", "old" }, { "value", "old" }, { "extra", 1 } };
    attributes.setAttribute("a", attributeOf("new", "1"));
    EXPECT_EQ(attributes.values.at("a"), json({ { "label", "new" }, { "value", "1" }, { "editable", "true" } }));
    EXPECT_EQ(attributes.values.size(), 1U);
}

TEST(Attributes, attributeThatIsNotEditableComesBackEditable)
{
    Attributes attributes;
    attributes.setAttribute("a", attributeOf("label", "value"));
    EXPECT_EQ(attributes.getAttribute("a").editable, std::optional<bool>(true));
}

TEST(Attributes, namesSortBytewise)
{
    Attributes attributes;
    for (const char* name : { "ä", "a", "Z", "z" })
        attributes.values[name] = 1;
    std::vector<std::string> names;
    for (const auto& [name, value] : attributes.values)
        names.push_back(name);
    EXPECT_THAT(names, ElementsAre("Z", "a", "z", "ä"));
}
