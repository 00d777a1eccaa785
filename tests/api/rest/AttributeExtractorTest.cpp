#include "api/rest/AttributeExtractor.h"

#include <QtTest>

using namespace jobmanager_ui;

namespace {

/// A record with one field that may be missing.
struct Record
{
    std::optional<std::string> field;
    QString written;
};

using Extractor = AttributeExtractor<Record>;

std::optional<cdm::Attribute> readField(const Record& record)
{
    if (!record.field)
        return std::nullopt;
    cdm::Attribute attribute;
    attribute.value = *record.field;
    return attribute;
}

Extractor single()
{
    return Extractor(
        QStringLiteral("field"), readField, [](Record& record, const QString& value) { record.written = value; });
}

} // namespace

class AttributeExtractorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threeFunctionsAreTakenAsTheyAre();
    void singleOneListsItsNameIfTheRecordHasIt();
    void singleOneReadsWhateverNameIsAsked();
    void singleOneReadsADefaultAttributeIfTheRecordHasNone();
    void singleOneWritesTheValueWhateverNameIsGiven();
    void writerThatIsNotThereStaysEmpty();
};

void AttributeExtractorTest::threeFunctionsAreTakenAsTheyAre()
{
    const Extractor extractor(
        QStringLiteral("all"), [](const Record&) { return std::vector<QString>{ QStringLiteral("n") }; },
        [](const Record&, const QString& name) {
            cdm::Attribute attribute;
            attribute.label = name.toStdString();
            return attribute;
        },
        [](Record& record, const QString& name, const QString& value) { record.written = name + value; });
    Record record;
    QCOMPARE(extractor.m_name, QStringLiteral("all"));
    QVERIFY(!extractor.m_singleAttribute);
    QCOMPARE(extractor.m_getNames(record), std::vector<QString>{ QStringLiteral("n") });
    QCOMPARE(extractor.m_getAttribute(record, QStringLiteral("x")).label, std::string("x"));
    extractor.m_setAttribute(record, QStringLiteral("a"), QStringLiteral("b"));
    QCOMPARE(record.written, QStringLiteral("ab"));
}

void AttributeExtractorTest::singleOneListsItsNameIfTheRecordHasIt()
{
    const Extractor extractor = single();
    QCOMPARE(extractor.m_name, QStringLiteral("field"));
    QVERIFY(extractor.m_singleAttribute);
    QCOMPARE(extractor.m_getNames({ "value", {} }), std::vector<QString>{ QStringLiteral("field") });
    QVERIFY(extractor.m_getNames({ std::nullopt, {} }).empty());
}

void AttributeExtractorTest::singleOneReadsWhateverNameIsAsked()
{
    QCOMPARE(single().m_getAttribute({ "value", {} }, QStringLiteral("other")).value, std::string("value"));
}

void AttributeExtractorTest::singleOneReadsADefaultAttributeIfTheRecordHasNone()
{
    const cdm::Attribute attribute = single().m_getAttribute({ std::nullopt, {} }, QStringLiteral("field"));
    QCOMPARE(attribute.value, std::string());
    QCOMPARE(attribute.label, std::string());
    QVERIFY(attribute.editable == false);
}

void AttributeExtractorTest::singleOneWritesTheValueWhateverNameIsGiven()
{
    Record record;
    single().m_setAttribute(record, QStringLiteral("other"), QStringLiteral("value"));
    QCOMPARE(record.written, QStringLiteral("value"));
}

void AttributeExtractorTest::writerThatIsNotThereStaysEmpty()
{
    QVERIFY(!Extractor(QStringLiteral("field"), readField, nullptr).m_setAttribute);
    QVERIFY(!Extractor(QStringLiteral("all"), nullptr, nullptr, nullptr).m_setAttribute);
}

QTEST_APPLESS_MAIN(AttributeExtractorTest)
#include "AttributeExtractorTest.moc"
