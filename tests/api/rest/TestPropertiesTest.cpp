// The optional properties of a test and its locations: names, values and display infos.

#include "tests/api/rest/CerrCapture.h"
#include "tests/api/rest/WithTest.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

using Names = std::vector<QString>;
using Values = std::map<std::string, nlohmann::json>;

const QString someProperty = QStringLiteral("attributes/name");
const QString locationProperty = QStringLiteral("location");
const QString locationWarning = QStringLiteral("warning: This fails because referenceInfo is an object...");

nlohmann::json attributeJson(const std::string& label, const std::string& value)
{
    return { { "label", label }, { "value", value } };
}

/// Test "0", with one location, with these attributes each.
cdm::Test testWithAttributes(const Values& ofTest, const Values& ofLocation)
{
    cdm::Test test = testWithResults({}, { {} });
    test.attributes.emplace().values = ofTest;
    test.testLocations->front().location = "Cabinet 7";
    test.testLocations->front().attributes.emplace().values = ofLocation;
    return test;
}

} // namespace

class TestPropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { StandInClient::reset(); }

    void testWithNothingListsNothing();
    void locationIsListedForAnIdThatNamesOne();
    void nameOfBothTestAndLocationIsListedOnce();
    void attributesOfTheLocationAreNotTheTests();
    void structuredContentIsNotListed();
    void attributesOfATestAreUtf8();
    void locationIsUtf8();
    void unknownTestHasNoProperties();
    void unknownTestHasADefaultDisplayInfo_data();
    void unknownTestHasADefaultDisplayInfo();

    void locationIsReadByName();
    void locationOfAnIdWithoutOneIsAnEmptyText_data();
    void locationOfAnIdWithoutOneIsAnEmptyText();
    void locationGoesBeforeTheTest_data();
    void locationGoesBeforeTheTest();
    void emptyAttributeOfTheLocationGivesWayToWhatTheTestHas_data();
    void emptyAttributeOfTheLocationGivesWayToWhatTheTestHas();
    void missingAttributeIsAnEmptyText();
    void structuredContentIsReadAsADefaultAttribute_data();
    void structuredContentIsReadAsADefaultAttribute();
    void readAtTheLocationThatThrowsIsWarnedOf();
    void readAtTheTestThatThrowsIsWarnedOf();
    void nameThatNoExtractorServesHasNoValue_data();
    void nameThatNoExtractorServesHasNoValue();
    void nameIsSplitAtTheFirstSlash_data();
    void nameIsSplitAtTheFirstSlash();
    void propertiesCannotBeWritten();

    void displayInfoHasNameLabelAndEditableAlone();
    void displayInfoOfTheLocationCannotBeEdited();
    void nameWithoutAttributeHasADefaultDisplayInfo();
};

void TestPropertiesTest::testWithNothingListsNothing()
{
    QVERIFY(WithTest(testOf("0"))->getAllOptionalTestProperties(job, idOf(0)).empty());
}

void TestPropertiesTest::locationIsListedForAnIdThatNamesOne()
{
    WithTest api(testWithAttributes({}, {}));
    QCOMPARE(api->getAllOptionalTestProperties(job, idOf(0, 0)), Names{ locationProperty });
    QVERIFY(api->getAllOptionalTestProperties(job, idOf(0)).empty());
    QVERIFY(api->getAllOptionalTestProperties(job, idOf(0, 1)).empty());
}

void TestPropertiesTest::nameOfBothTestAndLocationIsListedOnce()
{
    WithTest api(testWithAttributes({ { "both", {} }, { "b", {} } }, { { "both", {} }, { "a", {} }, { "Z", {} } }));
    QCOMPARE(api->getAllOptionalTestProperties(job, idOf(0, 0)),
        (Names{ QStringLiteral("attributes/Z"), QStringLiteral("attributes/a"), QStringLiteral("attributes/b"),
            QStringLiteral("attributes/both"), locationProperty }));
}

void TestPropertiesTest::attributesOfTheLocationAreNotTheTests()
{
    WithTest api(testWithAttributes({ { "b", {} } }, { { "a", {} } }));
    QCOMPARE(api->getAllOptionalTestProperties(job, idOf(0)), Names{ QStringLiteral("attributes/b") });
}

void TestPropertiesTest::structuredContentIsNotListed()
{
    const Values structured{ { "subTypeInfo", {} }, { "referenceInfo", {} }, { "name", {} } };
    QCOMPARE(WithTest(testWithAttributes(structured, {}))->getAllOptionalTestProperties(job, idOf(0)),
        Names{ someProperty });
    QCOMPARE(WithTest(testWithAttributes({}, structured))->getAllOptionalTestProperties(job, idOf(0, 0)),
        (Names{ someProperty, locationProperty }));
}

void TestPropertiesTest::attributesOfATestAreUtf8()
{
    const Values values{ { "Gr\u00f6\u00dfe", attributeJson("L\u00e4nge", "gro\u00df") } };
    const QString name = QString::fromUtf8("attributes/Gr\u00f6\u00dfe");
    WithTest api(testWithAttributes(values, values));
    QCOMPARE(api->getAllOptionalTestProperties(job, idOf(0)), Names{ name });
    QCOMPARE(api->getAllOptionalTestProperties(job, idOf(0, 0)), (Names{ name, locationProperty }));
    for (const long long test : { idOf(0), idOf(0, 0) }) {
        QCOMPARE(api->getOptionalTestProperty(job, test, name), QVariant(QString::fromUtf8("gro\u00df")));
        const PropertyDisplayInfo info = api->getOptionalTestPropertyDisplayInfo(job, test, name);
        QCOMPARE(info.propName, name);
        QCOMPARE(info.label, QString::fromUtf8("L\u00e4nge"));
    }
}

void TestPropertiesTest::locationIsUtf8()
{
    cdm::Test test = testWithAttributes({}, {});
    test.testLocations->front().location = "G\u00e4rtnerstra\u00dfe";
    QCOMPARE(WithTest(test)->getOptionalTestProperty(job, idOf(0, 0), locationProperty),
        QVariant(QString::fromUtf8("G\u00e4rtnerstra\u00dfe")));
}

void TestPropertiesTest::unknownTestHasNoProperties()
{
    WithTest api(testWithAttributes({ { "name", attributeJson("", "value") } }, {}));
    QVERIFY(api->getAllOptionalTestProperties(job, idOf(1, 0)).empty());
    QVERIFY(!api->getOptionalTestProperty(job, idOf(1, 0), someProperty).isValid());
    QVERIFY(!api->getTestAttribute(job, idOf(1, 0), someProperty));
}

void TestPropertiesTest::unknownTestHasADefaultDisplayInfo_data()
{
    QTest::addColumn<QString>("jobId");
    QTest::addColumn<qlonglong>("test");
    QTest::newRow("of a known job") << job << idOf(1, 0);
    QTest::newRow("of an unknown job") << QStringLiteral("no job") << idOf(0, 0);
}

void TestPropertiesTest::unknownTestHasADefaultDisplayInfo()
{
    QFETCH(QString, jobId);
    QFETCH(qlonglong, test);
    WithTest api(testWithAttributes({ { "name", attributeJson("Label", "value") } }, {}));
    for (const QString& name : { someProperty, locationProperty }) {
        const PropertyDisplayInfo info = api->getOptionalTestPropertyDisplayInfo(jobId, test, name);
        QCOMPARE(info.propName, QString());
        QCOMPARE(info.label, QString());
        QVERIFY(info.editable);
    }
}

void TestPropertiesTest::locationIsReadByName()
{
    WithTest api(testWithAttributes({}, {}));
    QCOMPARE(api->getOptionalTestProperty(job, idOf(0, 0), locationProperty), QVariant(QStringLiteral("Cabinet 7")));
    const std::optional<cdm::Attribute> attribute = api->getTestAttribute(job, idOf(0, 0), locationProperty);
    QVERIFY(attribute && attribute->label.empty() && attribute->editable == false);
}

void TestPropertiesTest::locationOfAnIdWithoutOneIsAnEmptyText_data()
{
    QTest::addColumn<int>("location");
    QTest::newRow("the test itself") << -1;
    QTest::newRow("behind the last location") << 1;
}

void TestPropertiesTest::locationOfAnIdWithoutOneIsAnEmptyText()
{
    QFETCH(int, location);
    WithTest api(testWithAttributes({}, {}));
    const QVariant value = api->getOptionalTestProperty(job, idOf(0, location), locationProperty);
    QCOMPARE(value.userType(), static_cast<int>(QMetaType::QString));
    QCOMPARE(value.toString(), QString());
}

void TestPropertiesTest::locationGoesBeforeTheTest_data()
{
    // A null label: the record does not have the attribute.
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    const QString empty = QLatin1String("");
    QTest::newRow("label and value") << QStringLiteral("L") << QStringLiteral("own") << QStringLiteral("own");
    QTest::newRow("label, no value") << QStringLiteral("L") << empty << empty;
    QTest::newRow("value, no label") << empty << QStringLiteral("own") << QStringLiteral("own");
    QTest::newRow("neither") << empty << empty << QStringLiteral("of the test");
    QTest::newRow("no attribute") << QString() << QString() << QStringLiteral("of the test");
}

void TestPropertiesTest::locationGoesBeforeTheTest()
{
    QFETCH(QString, label);
    QFETCH(QString, value);
    Values ofLocation;
    if (!label.isNull())
        ofLocation["name"] = attributeJson(label.toStdString(), value.toStdString());
    WithTest api(testWithAttributes({ { "name", attributeJson("T", "of the test") } }, ofLocation));
    QTEST(api->getOptionalTestProperty(job, idOf(0, 0), someProperty).toString(), "expected");
    QCOMPARE(api->getOptionalTestProperty(job, idOf(0), someProperty).toString(), QStringLiteral("of the test"));
}

void TestPropertiesTest::emptyAttributeOfTheLocationGivesWayToWhatTheTestHas_data()
{
    QTest::addColumn<bool>("testHasAttributes");
    QTest::newRow("other attributes: a default one") << true;
    QTest::newRow("no attributes: the location's own") << false;
}

void TestPropertiesTest::emptyAttributeOfTheLocationGivesWayToWhatTheTestHas()
{
    QFETCH(bool, testHasAttributes);
    nlohmann::json ofLocation = attributeJson("", "");
    ofLocation["editable"] = true;
    cdm::Test test = testWithAttributes({}, { { "name", ofLocation } });
    if (!testHasAttributes)
        test.attributes.reset();
    const std::optional<cdm::Attribute> attribute = WithTest(test)->getTestAttribute(job, idOf(0, 0), someProperty);
    QVERIFY(attribute);
    QCOMPARE(attribute->editable, std::optional<bool>(!testHasAttributes));
}

void TestPropertiesTest::missingAttributeIsAnEmptyText()
{
    for (const cdm::Test& test : { testOf("0"), testWithAttributes({}, {}) }) {
        const QVariant value = WithTest(test)->getOptionalTestProperty(job, idOf(0, 0), someProperty);
        QCOMPARE(value.userType(), static_cast<int>(QMetaType::QString));
        QCOMPARE(value.toString(), QString());
    }
}

void TestPropertiesTest::structuredContentIsReadAsADefaultAttribute_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("atLocation");
    for (const char* name : { "subTypeInfo", "referenceInfo" }) {
        QTest::addRow("%s of the test", name) << QString::fromLatin1(name) << false;
        QTest::addRow("%s of the location", name) << QString::fromLatin1(name) << true;
    }
}

void TestPropertiesTest::structuredContentIsReadAsADefaultAttribute()
{
    QFETCH(QString, name);
    QFETCH(bool, atLocation);
    const Values structured{ { name.toStdString(), { { "other", 1 } } } };
    WithTest api(testWithAttributes(atLocation ? Values() : structured, atLocation ? structured : Values()));
    const CerrCapture errors;
    const MessageCollector messages;
    const QVariant value = api->getOptionalTestProperty(job, idOf(0, 0), QStringLiteral("attributes/") + name);
    QCOMPARE(value, QVariant(QString()));
    QCOMPARE(errors.text(), badAttributeText);
    QCOMPARE(messages.messages(), QStringList());
}

void TestPropertiesTest::readAtTheLocationThatThrowsIsWarnedOf()
{
    WithTest api(testWithAttributes({ { "name", attributeJson("T", "of the test") } }, { { "name", 1 } }));
    const MessageCollector messages;
    const CerrThatThrows broken;
    QCOMPARE(api->getOptionalTestProperty(job, idOf(0, 0), someProperty), QVariant(QStringLiteral("of the test")));
    QCOMPARE(messages.messages(), QStringList(locationWarning));
}

void TestPropertiesTest::readAtTheTestThatThrowsIsWarnedOf()
{
    WithTest api(testWithAttributes({ { "name", 1 } }, {}));
    const MessageCollector messages;
    const CerrThatThrows broken;
    QCOMPARE(api->getOptionalTestProperty(job, idOf(0, 0), someProperty), QVariant(QString()));
    QCOMPARE(messages.messages(), QStringList(QStringLiteral("warning: Could not get test attribute \"name\"")));
}

void TestPropertiesTest::nameThatNoExtractorServesHasNoValue_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("bare name of an attribute") << QStringLiteral("name");
    QTest::newRow("unknown extractor") << QStringLiteral("other/name");
    QTest::newRow("of jobs") << QStringLiteral("techId");
}

void TestPropertiesTest::nameThatNoExtractorServesHasNoValue()
{
    QFETCH(QString, name);
    WithTest api(testWithAttributes({ { "name", attributeJson("", "value") } }, {}));
    QVERIFY(!api->getOptionalTestProperty(job, idOf(0, 0), name).isValid());
    QVERIFY(!api->getTestAttribute(job, idOf(0, 0), name));
}

void TestPropertiesTest::nameIsSplitAtTheFirstSlash_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("two slashes") << QStringLiteral("attributes/a/b") << QStringLiteral("of a/b");
    QTest::newRow("empty attribute name") << QStringLiteral("attributes/") << QStringLiteral("of the empty name");
    QTest::newRow("the extractor's own name") << QStringLiteral("attributes") << QStringLiteral("of attributes");
    QTest::newRow("location, name ignored") << QStringLiteral("location/any") << QStringLiteral("Cabinet 7");
}

void TestPropertiesTest::nameIsSplitAtTheFirstSlash()
{
    QFETCH(QString, name);
    WithTest api(testWithAttributes(
        { { "a/b", attributeJson("", "of a/b") }, { "a", attributeJson("", "of a") },
            { "", attributeJson("", "of the empty name") }, { "attributes", attributeJson("", "of attributes") } },
        {}));
    QTEST(api->getOptionalTestProperty(job, idOf(0, 0), name).toString(), "value");
}

void TestPropertiesTest::propertiesCannotBeWritten()
{
    WithTest api(testWithAttributes({ { "name", attributeJson("", "old") } }, {}));
    StandInClient::forgetCalls();
    QVERIFY(!api->setOptionalTestProperty(job, idOf(0), someProperty, QStringLiteral("new")));
    QCOMPARE(api->getOptionalTestProperty(job, idOf(0), someProperty), QVariant(QStringLiteral("old")));
    QVERIFY(StandInClient::calls().empty());
}

void TestPropertiesTest::displayInfoHasNameLabelAndEditableAlone()
{
    nlohmann::json full = attributeJson("Label", "value");
    full.update({ { "valueType", "double" }, { "regExp", "x" }, { "validValues", { "a" } }, { "visible", false },
        { "orderIndex", 3 }, { "editable", true } });
    WithTest api(testWithAttributes({ { "name", full } }, {}));
    const PropertyDisplayInfo info = api->getOptionalTestPropertyDisplayInfo(job, idOf(0), someProperty);
    QCOMPARE(info.propName, someProperty);
    QCOMPARE(info.label, QStringLiteral("Label"));
    QVERIFY(info.editable);
    QVERIFY(info.visible);
    QCOMPARE(info.type, PropertyType::STRING);
    QCOMPARE(info.regex, QString());
    QCOMPARE(info.validValues, QStringList());
    QCOMPARE(info.orderIndex, 0);
}

void TestPropertiesTest::displayInfoOfTheLocationCannotBeEdited()
{
    WithTest api(testWithAttributes({}, {}));
    const PropertyDisplayInfo info = api->getOptionalTestPropertyDisplayInfo(job, idOf(0, 0), locationProperty);
    QCOMPARE(info.propName, locationProperty);
    QCOMPARE(info.label, QString());
    QVERIFY(!info.editable);
}

void TestPropertiesTest::nameWithoutAttributeHasADefaultDisplayInfo()
{
    WithTest api(testWithAttributes({}, {}));
    for (const QString& name : { QString(), QStringLiteral("unknown") }) {
        const PropertyDisplayInfo info = api->getOptionalTestPropertyDisplayInfo(job, idOf(0), name);
        QCOMPARE(info.propName, QString());
        QVERIFY(info.editable);
    }
}

QTEST_GUILESS_MAIN(TestPropertiesTest)
#include "TestPropertiesTest.moc"
