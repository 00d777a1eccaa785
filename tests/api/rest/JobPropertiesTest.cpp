// The optional properties of a job: names, values and display infos.

#include "tests/api/rest/CerrCapture.h"
#include "tests/api/rest/WithJob.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

using Names = std::vector<QString>;

PropertyDisplayInfo displayInfoOf(const cdm::Attribute& attribute)
{
    nlohmann::json content = attribute;
    // The JSON form writes a flag that is set as "true", whatever it says.
    if (attribute.editable)
        content["editable"] = *attribute.editable;
    return WithJob(jobWithAttributes({ { "name", content } }))->getOptionalJobPropertyDisplayInfo(job, someProperty);
}

cdm::Attribute plainAttribute()
{
    cdm::Attribute attribute;
    attribute.label = "Label";
    attribute.value = "value";
    return attribute;
}

} // namespace

class JobPropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { StandInClient::reset(); }

    void jobWithContractorAloneListsItAndTheTechnician();
    void jobWithNothingListsTheTechnician();
    void attributesAreListedWithTheirPrefixInOrder();
    void nothingIsRemovedFromTheJobsNames();
    void namesAreUtf8();
    void fieldsAreUtf8();
    void displayInfoIsUtf8();

    void valueIsReadByName_data();
    void valueIsReadByName();
    void missingValueIsAnEmptyText_data();
    void missingValueIsAnEmptyText();
    void nameThatNoExtractorServesHasNoValue_data();
    void nameThatNoExtractorServesHasNoValue();
    void numberIsReadAsText();
    void contentThatIsNoAttributeIsEmptyAndReported();
    void unknownJobIsFetchedOnceAndHasEmptyProperties();
    void fieldsReadAsAttributes();

    void nameWithoutAttributeHasADefaultDisplayInfo();
    void displayInfoHasTheNameAndTheLabel();
    void typeFollowsTheValueType_data();
    void typeFollowsTheValueType();
    void booleanHasItsTwoValuesBeforeItsOwn();
    void visibleUnlessTheAttributeSaysNo_data();
    void visibleUnlessTheAttributeSaysNo();
    void editableAsTheAttributeSays();
    void orderAndPatternAreCopied();
    void missingAttributeHasANamedDisplayInfo();
    void displayInfoOfAnUnknownJobIsThatOfAnEmptyOne_data();
    void displayInfoOfAnUnknownJobIsThatOfAnEmptyOne();
};

void JobPropertiesTest::jobWithContractorAloneListsItAndTheTechnician()
{
    cdm::CdmSouthboundJob record = jobOf("J");
    record.details.contractorId = "C-1";
    WithJob api(record);
    QCOMPARE(
        api->getAllOptionalJobProperties(job), (Names{ QStringLiteral("contractorId"), QStringLiteral("techId") }));
    QCOMPARE(api->getOptionalJobProperty(job, QStringLiteral("techId")), QVariant(QString()));
}

void JobPropertiesTest::jobWithNothingListsTheTechnician()
{
    QCOMPARE(WithJob(jobOf("J"))->getAllOptionalJobProperties(job), Names{ QStringLiteral("techId") });
}

void JobPropertiesTest::attributesAreListedWithTheirPrefixInOrder()
{
    cdm::CdmSouthboundJob record = jobWithAttributes({ { "b", attributeJson("1") }, { "B", attributeJson("2") } });
    record.details.contractorId = "C-1";
    QCOMPARE(WithJob(record)->getAllOptionalJobProperties(job),
        (Names{ QStringLiteral("attributes/B"), QStringLiteral("attributes/b"), QStringLiteral("contractorId"),
            QStringLiteral("techId") }));
}

void JobPropertiesTest::nothingIsRemovedFromTheJobsNames()
{
    WithJob api(jobWithAttributes({ { "subTypeInfo", {} }, { "referenceInfo", {} } }));
    QCOMPARE(api->getAllOptionalJobProperties(job),
        (Names{ QStringLiteral("attributes/referenceInfo"), QStringLiteral("attributes/subTypeInfo"),
            QStringLiteral("techId") }));
}

void JobPropertiesTest::namesAreUtf8()
{
    WithJob api(jobWithAttributes({ { "Gr\u00f6\u00dfe", attributeJson("gro\u00df") } }));
    const QString name = QString::fromUtf8("attributes/Gr\u00f6\u00dfe");
    QCOMPARE(api->getAllOptionalJobProperties(job), (Names{ name, QStringLiteral("techId") }));
    QCOMPARE(api->getOptionalJobProperty(job, name), QVariant(QString::fromUtf8("gro\u00df")));
}

void JobPropertiesTest::fieldsAreUtf8()
{
    cdm::CdmSouthboundJob record = jobOf("J");
    record.details.techInfo.emplace().techId = "M\u00fcller";
    record.details.contractorId = "\u0421-1";
    WithJob api(record);
    QCOMPARE(api->getOptionalJobProperty(job, QStringLiteral("techId")), QVariant(QString::fromUtf8("M\u00fcller")));
    QCOMPARE(api->getOptionalJobProperty(job, QStringLiteral("contractorId")), QVariant(QString::fromUtf8("\u0421-1")));
}

void JobPropertiesTest::displayInfoIsUtf8()
{
    cdm::Attribute attribute = plainAttribute();
    attribute.label = "L\u00e4nge";
    attribute.regExp = "[\u00e0-\u00ff]+";
    attribute.validValues = { "gro\u00df", "\u0434\u0430" };
    const PropertyDisplayInfo info = displayInfoOf(attribute);
    QCOMPARE(info.label, QString::fromUtf8("L\u00e4nge"));
    QCOMPARE(info.regex, QString::fromUtf8("[\u00e0-\u00ff]+"));
    QCOMPARE(info.validValues, (QStringList{ QString::fromUtf8("gro\u00df"), QString::fromUtf8("\u0434\u0430") }));
}

void JobPropertiesTest::valueIsReadByName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("attribute") << someProperty << QStringLiteral("of the attribute");
    QTest::newRow("split at the first slash") << QStringLiteral("attributes/a/b") << QStringLiteral("of a/b");
    QTest::newRow("empty attribute name") << QStringLiteral("attributes/") << QStringLiteral("of the empty name");
    QTest::newRow("the extractor's own name") << QStringLiteral("attributes") << QStringLiteral("of attributes");
    QTest::newRow("technician") << QStringLiteral("techId") << QStringLiteral("T-1");
    QTest::newRow("technician, name ignored") << QStringLiteral("techId/any") << QStringLiteral("T-1");
    QTest::newRow("contractor") << QStringLiteral("contractorId") << QStringLiteral("C-1");
}

void JobPropertiesTest::valueIsReadByName()
{
    QFETCH(QString, name);
    cdm::CdmSouthboundJob record = jobWithAttributes({ { "name", attributeJson("of the attribute") },
        { "a/b", attributeJson("of a/b") }, { "a", attributeJson("of a") }, { "", attributeJson("of the empty name") },
        { "attributes", attributeJson("of attributes") } });
    record.details.techInfo.emplace().techId = "T-1";
    record.details.contractorId = "C-1";
    const QVariant value = WithJob(record)->getOptionalJobProperty(job, name);
    QCOMPARE(value.userType(), static_cast<int>(QMetaType::QString));
    QTEST(value.toString(), "value");
}

void JobPropertiesTest::missingValueIsAnEmptyText_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("attribute") << someProperty;
    QTest::newRow("technician") << QStringLiteral("techId");
    QTest::newRow("contractor") << QStringLiteral("contractorId");
}

void JobPropertiesTest::missingValueIsAnEmptyText()
{
    QFETCH(QString, name);
    for (const cdm::CdmSouthboundJob& record : { jobOf("J"), jobWithAttributes({}) }) {
        const QVariant value = WithJob(record)->getOptionalJobProperty(job, name);
        QCOMPARE(value.userType(), static_cast<int>(QMetaType::QString));
        QCOMPARE(value.toString(), QString());
    }
}

void JobPropertiesTest::nameThatNoExtractorServesHasNoValue_data()
{
    addNamesThatNoExtractorServes();
}

void JobPropertiesTest::nameThatNoExtractorServesHasNoValue()
{
    QFETCH(QString, name);
    WithJob api(jobWithAttributes({ { "name", attributeJson("value") } }));
    QVERIFY(!api->getOptionalJobProperty(job, name).isValid());
    QVERIFY(!api->getJobAttribute(job, name));
}

void JobPropertiesTest::numberIsReadAsText()
{
    nlohmann::json number = attributeJson("1.5");
    number["valueType"] = "double";
    const QVariant value =
        WithJob(jobWithAttributes({ { "name", number } }))->getOptionalJobProperty(job, someProperty);
    QCOMPARE(value.userType(), static_cast<int>(QMetaType::QString));
    QCOMPARE(value.toString(), QStringLiteral("1.5"));
}

void JobPropertiesTest::contentThatIsNoAttributeIsEmptyAndReported()
{
    WithJob api(jobWithAttributes({ { "name", { { "other", 1 } } } }));
    const CerrCapture errors;
    const MessageCollector messages;
    QCOMPARE(api->getOptionalJobProperty(job, someProperty), QVariant(QString()));
    QCOMPARE(errors.text(), badAttributeText);
    QCOMPARE(messages.messages(), QStringList());
}

void JobPropertiesTest::unknownJobIsFetchedOnceAndHasEmptyProperties()
{
    OnStandIn api;
    QCOMPARE(api->getOptionalJobProperty(job, someProperty), QVariant(QString()));
    QCOMPARE(api->getAllOptionalJobProperties(job), Names{ QStringLiteral("techId") });
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJob" });
}

void JobPropertiesTest::fieldsReadAsAttributes()
{
    cdm::CdmSouthboundJob record = jobOf("J");
    record.details.contractorId = "C-1";
    WithJob api(record);
    const std::optional<cdm::Attribute> technician = api->getJobAttribute(job, QStringLiteral("techId"));
    QVERIFY(technician && technician->label.empty() && technician->editable == false);
    const std::optional<cdm::Attribute> contractor = api->getJobAttribute(job, QStringLiteral("contractorId"));
    QVERIFY(contractor && contractor->label.empty() && contractor->editable == true);
}

void JobPropertiesTest::nameWithoutAttributeHasADefaultDisplayInfo()
{
    WithJob api(jobOf("J"));
    for (const QString& name : { QString(), QStringLiteral("unknown") }) {
        const PropertyDisplayInfo info = api->getOptionalJobPropertyDisplayInfo(job, name);
        QCOMPARE(info.propName, QString());
        QVERIFY(info.editable);
    }
}

void JobPropertiesTest::displayInfoHasTheNameAndTheLabel()
{
    const PropertyDisplayInfo info = displayInfoOf(plainAttribute());
    QCOMPARE(info.propName, someProperty);
    QCOMPARE(info.label, QStringLiteral("Label"));
    QCOMPARE(info.type, PropertyType::STRING);
    QVERIFY(!info.editable);
    QVERIFY(info.visible);
    QCOMPARE(info.orderIndex, 0);
    QCOMPARE(info.regex, QString());
    QCOMPARE(info.validValues, QStringList());
}

void JobPropertiesTest::typeFollowsTheValueType_data()
{
    QTest::addColumn<QString>("valueType");
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("validValues");
    const QStringList both{ QStringLiteral("true"), QStringLiteral("false") };
    const int string = PropertyType::STRING;
    const int number = PropertyType::DOUBLE;
    QTest::newRow("none") << QString() << string << QStringList();
    QTest::newRow("double") << QStringLiteral("double") << number << QStringList();
    QTest::newRow("number") << QStringLiteral("number") << number << QStringList();
    QTest::newRow("boolean") << QStringLiteral("boolean") << string << both;
    QTest::newRow("anything else") << QStringLiteral("Double") << string << QStringList();
}

void JobPropertiesTest::typeFollowsTheValueType()
{
    QFETCH(QString, valueType);
    cdm::Attribute attribute = plainAttribute();
    if (!valueType.isNull())
        attribute.valueType = valueType.toStdString();
    const PropertyDisplayInfo info = displayInfoOf(attribute);
    QTEST(static_cast<int>(info.type), "type");
    QTEST(info.validValues, "validValues");
}

void JobPropertiesTest::booleanHasItsTwoValuesBeforeItsOwn()
{
    cdm::Attribute attribute = plainAttribute();
    attribute.validValues = { "unknown" };
    QCOMPARE(displayInfoOf(attribute).validValues, QStringList{ QStringLiteral("unknown") });
    attribute.valueType = "boolean";
    QCOMPARE(displayInfoOf(attribute).validValues,
        (QStringList{ QStringLiteral("true"), QStringLiteral("false"), QStringLiteral("unknown") }));
}

void JobPropertiesTest::visibleUnlessTheAttributeSaysNo_data()
{
    // A flag: 1 true, 0 false, -1 nothing.
    QTest::addColumn<int>("flag");
    QTest::addColumn<bool>("expected");
    QTest::newRow("true") << 1 << true;
    QTest::newRow("false") << 0 << false;
    QTest::newRow("nothing") << -1 << true;
}

void JobPropertiesTest::visibleUnlessTheAttributeSaysNo()
{
    QFETCH(int, flag);
    const std::optional<bool> value = flag < 0 ? std::nullopt : std::optional<bool>(flag == 1);
    cdm::Attribute attribute = plainAttribute();
    attribute.visible = value;
    QTEST(displayInfoOf(attribute).visible, "expected");
}

void JobPropertiesTest::editableAsTheAttributeSays()
{
    cdm::Attribute attribute = plainAttribute();
    attribute.editable = true;
    QVERIFY(displayInfoOf(attribute).editable);
    attribute.editable = false;
    QVERIFY(!displayInfoOf(attribute).editable);
    // Content that does not say leaves the attribute's own default.
    attribute.editable = std::nullopt;
    QVERIFY(!displayInfoOf(attribute).editable);
}

void JobPropertiesTest::orderAndPatternAreCopied()
{
    cdm::Attribute attribute = plainAttribute();
    attribute.orderIndex = -7;
    attribute.regExp = "[0-9]+";
    const PropertyDisplayInfo info = displayInfoOf(attribute);
    QCOMPARE(info.orderIndex, -7);
    QCOMPARE(info.regex, QStringLiteral("[0-9]+"));
}

void JobPropertiesTest::missingAttributeHasANamedDisplayInfo()
{
    const PropertyDisplayInfo info = WithJob(jobOf("J"))->getOptionalJobPropertyDisplayInfo(job, someProperty);
    QCOMPARE(info.propName, someProperty);
    QCOMPARE(info.label, QString());
    QVERIFY(!info.editable);
}

void JobPropertiesTest::displayInfoOfAnUnknownJobIsThatOfAnEmptyOne_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("propName");
    QTest::addColumn<bool>("editable");
    QTest::newRow("attribute") << someProperty << someProperty << false;
    QTest::newRow("technician") << QStringLiteral("techId") << QStringLiteral("techId") << false;
    QTest::newRow("contractor") << QStringLiteral("contractorId") << QStringLiteral("contractorId") << false;
    QTest::newRow("unknown extractor") << QStringLiteral("unknown") << QString() << true;
    QTest::newRow("empty") << QString() << QString() << true;
}

void JobPropertiesTest::displayInfoOfAnUnknownJobIsThatOfAnEmptyOne()
{
    QFETCH(QString, name);
    OnStandIn api;
    for (int read = 0; read < 2; ++read) {
        const PropertyDisplayInfo info = api->getOptionalJobPropertyDisplayInfo(job, name);
        QTEST(info.propName, "propName");
        QTEST(info.editable, "editable");
        QCOMPARE(info.label, QString());
        QVERIFY(info.visible);
        QCOMPARE(info.type, PropertyType::STRING);
    }
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJob" });
}

QTEST_GUILESS_MAIN(JobPropertiesTest)
#include "JobPropertiesTest.moc"
