// Writes of the free attributes of a test and its location, in the records alone.

#include "api/rest/TestAttributes.h"
#include "tests/api/rest/CerrCapture.h"
#include "tests/api/rest/Records.h"
#include "tests/support/MessageCollector.h"

#include <map>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

using Values = std::map<std::string, nlohmann::json>;

const QString name = QStringLiteral("name");
const QString written = QStringLiteral("new");
const QString locationWarning = QStringLiteral("warning: This fails because referenceInfo is an object...");

nlohmann::json attributeJson(const std::string& label, const std::string& value)
{
    return { { "label", label }, { "value", value } };
}

cdm::Test testWith(const Values& values)
{
    cdm::Test test = testOf("0");
    test.attributes.emplace().values = values;
    return test;
}

cdm::TestLocation locationWith(const Values& values)
{
    cdm::TestLocation location = locationOf("0_0");
    location.attributes.emplace().values = values;
    return location;
}

std::string valueIn(const std::optional<cdm::Attributes>& attributes)
{
    return attributes->getAttribute("name").value;
}

std::string labelIn(const std::optional<cdm::Attributes>& attributes)
{
    return attributes->getAttribute("name").label;
}

} // namespace

class TestAttributesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void testWithoutALocationTakesTheValue();
    void attributeOfALocationIsWrittenAtTheTestNotAtTheLocation();
    void locationsDescriptionGoesToTheTest();
    void attributeThatTheLocationDoesNotHaveReplacesTheTestsOwn();
    void emptyValueForAnAttributeThatNobodyHasIsStoredAtTheTest();
    void testWithoutAttributesGetsThemForItsLocationsAttribute();
    void locationWithoutAttributesLeavesTheTestsOwnWay();
    void recordsWithoutAttributesStayWithout();
    void writtenAttributeComesBackEditable();
    void failureAtTheLocationIsWarnedOfAndTheTestWrittenAllTheSame();
    void failureAtTheTestIsWarnedOf();
};

void TestAttributesTest::testWithoutALocationTakesTheValue()
{
    cdm::Test test = testWith({ { "name", attributeJson("Label", "old") } });
    setTestAttribute(test, nullptr, name, written);
    QCOMPARE(valueIn(test.attributes), std::string("new"));
    QCOMPARE(labelIn(test.attributes), std::string("Label"));
}

void TestAttributesTest::attributeOfALocationIsWrittenAtTheTestNotAtTheLocation()
{
    cdm::Test test = testWith({ { "name", attributeJson("T", "of the test") } });
    cdm::TestLocation location = locationWith({ { "name", attributeJson("L", "of the location") } });
    setTestAttribute(test, &location, name, written);
    QCOMPARE(valueIn(test.attributes), std::string("new"));
    QCOMPARE(valueIn(location.attributes), std::string("of the location"));
    // So that a read for this location still finds the old value.
    QCOMPARE(testAttribute(test, &location, name).value, std::string("of the location"));
}

void TestAttributesTest::locationsDescriptionGoesToTheTest()
{
    cdm::Test test = testWith({ { "name", attributeJson("T", "of the test") } });
    cdm::TestLocation location = locationWith({ { "name", attributeJson("L", "of the location") } });
    setTestAttribute(test, &location, name, written);
    QCOMPARE(labelIn(test.attributes), std::string("L"));
}

void TestAttributesTest::attributeThatTheLocationDoesNotHaveReplacesTheTestsOwn()
{
    cdm::Test test = testWith({ { "name", attributeJson("T", "of the test") } });
    cdm::TestLocation location = locationWith({});
    setTestAttribute(test, &location, name, written);
    QCOMPARE(valueIn(test.attributes), std::string("new"));
    QCOMPARE(labelIn(test.attributes), std::string());
    QVERIFY(location.attributes->values.empty());
}

void TestAttributesTest::emptyValueForAnAttributeThatNobodyHasIsStoredAtTheTest()
{
    cdm::Test test = testWith({});
    cdm::TestLocation location = locationWith({});
    setTestAttribute(test, &location, name, QString());
    QCOMPARE(test.attributes->values.size(), std::size_t(1));
    QCOMPARE(valueIn(test.attributes), std::string());
}

void TestAttributesTest::testWithoutAttributesGetsThemForItsLocationsAttribute()
{
    cdm::Test test = testOf("0");
    cdm::TestLocation location = locationWith({ { "name", attributeJson("L", "of the location") } });
    setTestAttribute(test, &location, name, written);
    QVERIFY(test.attributes);
    QCOMPARE(valueIn(test.attributes), std::string("new"));
}

void TestAttributesTest::locationWithoutAttributesLeavesTheTestsOwnWay()
{
    cdm::Test test = testWith({ { "name", attributeJson("T", "of the test") } });
    cdm::TestLocation location = locationOf("0_0");
    setTestAttribute(test, &location, name, written);
    QCOMPARE(valueIn(test.attributes), std::string("new"));
    QCOMPARE(labelIn(test.attributes), std::string("T"));
    QVERIFY(!location.attributes);
}

void TestAttributesTest::recordsWithoutAttributesStayWithout()
{
    cdm::Test test = testOf("0");
    cdm::TestLocation location = locationOf("0_0");
    setTestAttribute(test, nullptr, name, written);
    setTestAttribute(test, &location, name, written);
    QVERIFY(!test.attributes);
    QVERIFY(!location.attributes);
}

void TestAttributesTest::writtenAttributeComesBackEditable()
{
    cdm::Test test = testWith({ { "name", attributeJson("Label", "old") } });
    QVERIFY(test.attributes->getAttribute("name").editable == false);
    setTestAttribute(test, nullptr, name, written);
    QVERIFY(test.attributes->getAttribute("name").editable == true);
}

void TestAttributesTest::failureAtTheLocationIsWarnedOfAndTheTestWrittenAllTheSame()
{
    cdm::Test test = testWith({ { "name", attributeJson("T", "of the test") } });
    cdm::TestLocation location = locationWith({ { "name", 1 } });
    const MessageCollector messages;
    {
        const CerrThatThrows broken;
        setTestAttribute(test, &location, name, written);
    }
    QCOMPARE(messages.messages(), QStringList(locationWarning));
    QCOMPARE(valueIn(test.attributes), std::string("new"));
    QCOMPARE(labelIn(test.attributes), std::string("T"));
}

void TestAttributesTest::failureAtTheTestIsWarnedOf()
{
    cdm::Test test = testWith({ { "name", 1 } });
    const MessageCollector messages;
    {
        const CerrThatThrows broken;
        setTestAttribute(test, nullptr, name, written);
    }
    QCOMPARE(messages.messages(), QStringList(QStringLiteral("warning: Could not set test attribute \"name\"")));
    QCOMPARE(test.attributes->values.at("name"), nlohmann::json(1));
}

QTEST_APPLESS_MAIN(TestAttributesTest)
#include "TestAttributesTest.moc"
