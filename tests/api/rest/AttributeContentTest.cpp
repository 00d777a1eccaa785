// What the service may send as a job's attribute: each key in each type of JSON, and what is shown of it.

#include "tests/api/rest/CerrCapture.h"
#include "tests/api/rest/WithJob.h"
#include "tests/support/DisplayInfoText.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;
using nlohmann::json;

Q_DECLARE_METATYPE(json)

namespace {

/// A value of each type of JSON, and of the kinds that matter within one.
const std::vector<std::pair<const char*, json>>& samples()
{
    static const std::vector<std::pair<const char*, json>> all = {
        { "null", json() },
        { "true", json(true) },
        { "false", json(false) },
        { "number", json(3) },
        { "negative number", json(-3) },
        { "fraction", json(1.5) },
        { "number beyond 32 bits", json(4294967297LL) },
        { "text", json("text") },
        { "empty text", json("") },
        { "the word true", json("true") },
        { "the word false", json("false") },
        { "empty list", json::array() },
        { "list of texts", json::array({ "a", "b" }) },
        { "list of numbers", json::array({ 1, 2 }) },
        { "mixed list", json::array({ "a", 2 }) },
        { "empty object", json::object() },
        { "object", json{ { "a", "b" } } },
    };
    return all;
}

/// An attribute whose every member differs from the default.
json fullAttribute()
{
    return { { "label", "Label" }, { "value", "12" }, { "valueType", "double" }, { "editable", true },
        { "regExp", "[0-9]+" }, { "validValues", { "12", "13" } }, { "visible", false }, { "orderIndex", 7 } };
}

/// Whether a member of that type is taken as it is. A null of an optional one clears it, which is not the default's
/// way but comes to the same here.
bool isTaken(const QByteArray& key, const json& member)
{
    if (key == "validValues") {
        return member.is_array()
            && std::all_of(member.begin(), member.end(), [](const json& text) { return text.is_string(); });
    }
    if (key == "visible" || key == "editable")
        return member.is_boolean() || (key == "editable" && member == "true");
    if (key == "orderIndex")
        return member.is_number() && member != 4294967297LL;
    return member.is_string();
}

/// Everything that a screen gets of the attribute with this content.
QString shown(const json& content)
{
    WithJob api(jobWithAttributes({ { "name", content } }));
    return displayInfoText(api->getOptionalJobPropertyDisplayInfo(job, someProperty)) + QStringLiteral(" = ")
        + api->getOptionalJobProperty(job, someProperty).toString();
}

void addRows(std::initializer_list<const char*> keys, bool taken)
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<json>("member");
    for (const char* key : keys) {
        for (const auto& [name, member] : samples()) {
            if (isTaken(key, member) == taken)
                QTest::addRow("%s: %s", key, name) << QByteArray(key) << member;
        }
    }
}

} // namespace

class AttributeContentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { StandInClient::reset(); }

    void labelOrValueOfAWrongTypeMakesItNoAttribute_data() { addRows({ "label", "value" }, false); }
    void labelOrValueOfAWrongTypeMakesItNoAttribute();
    void missingLabelOrValueMakesItNoAttribute_data();
    void missingLabelOrValueMakesItNoAttribute();
    void otherMemberOfAWrongTypeCostsItselfAlone_data();
    void otherMemberOfAWrongTypeCostsItselfAlone();
    void memberOfTheRightTypeIsShown_data();
    void memberOfTheRightTypeIsShown();
    void contentOfAnyOtherShapeIsAnEmptyAttribute_data();
    void contentOfAnyOtherShapeIsAnEmptyAttribute();
    void memberThatNobodyKnowsIsPassedOver();
};

void AttributeContentTest::labelOrValueOfAWrongTypeMakesItNoAttribute()
{
    QFETCH(QByteArray, key);
    QFETCH(json, member);
    json content = fullAttribute();
    content[key.toStdString()] = member;
    const CerrCapture errors;
    QCOMPARE(shown(content), QStringLiteral("attributes/name |  | type 0 | editable 0 | visible 1 |  |  | 0 = "));
    // Once for the display info, and once for the value.
    QCOMPARE(errors.text(), badAttributeText + badAttributeText);
}

void AttributeContentTest::missingLabelOrValueMakesItNoAttribute_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("label") << QByteArray("label");
    QTest::newRow("value") << QByteArray("value");
}

void AttributeContentTest::missingLabelOrValueMakesItNoAttribute()
{
    QFETCH(QByteArray, key);
    json content = fullAttribute();
    content.erase(key.toStdString());
    const CerrCapture errors;
    QCOMPARE(shown(content), QStringLiteral("attributes/name |  | type 0 | editable 0 | visible 1 |  |  | 0 = "));
    QCOMPARE(errors.text(), badAttributeText + badAttributeText);
}

void AttributeContentTest::otherMemberOfAWrongTypeCostsItselfAlone_data()
{
    addRows({ "valueType", "editable", "regExp", "validValues", "visible", "orderIndex" }, false);
}

void AttributeContentTest::otherMemberOfAWrongTypeCostsItselfAlone()
{
    QFETCH(QByteArray, key);
    QFETCH(json, member);
    json content = fullAttribute();
    content.erase(key.toStdString());
    const QString without = shown(content);
    QVERIFY(without != shown(fullAttribute()));
    content[key.toStdString()] = member;
    const CerrCapture errors;
    const MessageCollector messages;
    QCOMPARE(shown(content), without);
    QCOMPARE(errors.text(), std::string());
    QCOMPARE(messages.messages(), QStringList());
}

void AttributeContentTest::memberOfTheRightTypeIsShown_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<json>("member");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* key, const json& member, const char* expected) {
        QTest::addRow("%s: %s", key, member.dump().c_str())
            << QByteArray(key) << member << QString::fromLatin1(expected);
    };
    const json texts = json::array({ "a", "b" });
    row("label", "L", "attributes/name | L | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | 7 = 12");
    row("label", "", "attributes/name |  | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | 7 = 12");
    row("value", "V", "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | 7 = V");
    row("value", "", "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | 7 = ");
    row("valueType", "number", "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | 7 = 12");
    row("valueType", "boolean",
        "attributes/name | Label | type 0 | editable 1 | visible 0 | [0-9]+ | true,false,12,13 | 7 = 12");
    row("valueType", "", "attributes/name | Label | type 0 | editable 1 | visible 0 | [0-9]+ | 12,13 | 7 = 12");
    row("editable", "true", "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | 7 = 12");
    row("editable", false, "attributes/name | Label | type 1 | editable 0 | visible 0 | [0-9]+ | 12,13 | 7 = 12");
    row("regExp", "x", "attributes/name | Label | type 1 | editable 1 | visible 0 | x | 12,13 | 7 = 12");
    row("validValues", texts, "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ | a,b | 7 = 12");
    row("validValues", json::array(), "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ |  | 7 = 12");
    row("visible", true, "attributes/name | Label | type 1 | editable 1 | visible 1 | [0-9]+ | 12,13 | 7 = 12");
    row("orderIndex", -3, "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | -3 = 12");
    row("orderIndex", 1.5, "attributes/name | Label | type 1 | editable 1 | visible 0 | [0-9]+ | 12,13 | 1 = 12");
}

void AttributeContentTest::memberOfTheRightTypeIsShown()
{
    QFETCH(QByteArray, key);
    QFETCH(json, member);
    json content = fullAttribute();
    content[key.toStdString()] = member;
    QTEST(shown(content), "expected");
}

void AttributeContentTest::contentOfAnyOtherShapeIsAnEmptyAttribute_data()
{
    QTest::addColumn<json>("content");
    for (const auto& [name, content] : samples())
        QTest::newRow(name) << content;
}

void AttributeContentTest::contentOfAnyOtherShapeIsAnEmptyAttribute()
{
    QFETCH(json, content);
    const CerrCapture errors;
    QCOMPARE(shown(content), QStringLiteral("attributes/name |  | type 0 | editable 0 | visible 1 |  |  | 0 = "));
    QCOMPARE(errors.text(), content.empty() ? std::string() : badAttributeText + badAttributeText);
}

void AttributeContentTest::memberThatNobodyKnowsIsPassedOver()
{
    json content = fullAttribute();
    content["other"] = { { "deep", { 1, 2, 3 } } };
    QCOMPARE(shown(content), shown(fullAttribute()));
}

QTEST_GUILESS_MAIN(AttributeContentTest)
#include "AttributeContentTest.moc"
