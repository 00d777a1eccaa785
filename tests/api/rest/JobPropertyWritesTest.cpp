// Writes of a job's optional properties: what the service is asked, and what becomes of the cached record.

#include "tests/api/rest/CerrCapture.h"
#include "tests/api/rest/WithJob.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString techId = QStringLiteral("techId");
const QString contractorId = QStringLiteral("contractorId");

/// A job in which every extractor has something to write to.
cdm::CdmSouthboundJob fullJob()
{
    cdm::CdmSouthboundJob record = jobWithAttributes({ { "name", attributeJson("old") } });
    record.details.techInfo.emplace().techId = "T-1";
    record.details.contractorId = "C-1";
    return record;
}

/// From now on the service refuses all updates.
void refuseUpdates()
{
    ClientAnswers answers;
    answers.success["updateWorkflowAttributes"] = false;
    StandInClient::setAnswers(answers);
}

/// The updates that the service was asked for, as job id and body.
std::vector<std::pair<std::string, nlohmann::json>> updates()
{
    std::vector<std::pair<std::string, nlohmann::json>> result;
    for (const ClientCall& call : StandInClient::calls("updateWorkflowAttributes"))
        result.emplace_back(call.arguments.at(0), nlohmann::json::parse(call.arguments.at(1)));
    return result;
}

} // namespace

class JobPropertyWritesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { StandInClient::reset(); }

    void eachExtractorSendsItsOwnShape_data();
    void eachExtractorSendsItsOwnShape();
    void oneWriteIsOneRequest();
    void jobIsNamedByItsOwnId();
    void textCrossesAsUtf8();
    void fieldCrossesAsUtf8_data();
    void fieldCrossesAsUtf8();
    void valueIsSentAsText_data();
    void valueIsSentAsText();

    void acceptedValueIsReadBackAtOnce_data() { addProperties(); }
    void acceptedValueIsReadBackAtOnce();
    void refusedValueLeavesTheRecordAndTheAnswerIsTrueAllTheSame_data() { addProperties(); }
    void refusedValueLeavesTheRecordAndTheAnswerIsTrueAllTheSame();
    void recordIsPatchedAfterTheServiceHasAgreed();

    void writtenAttributeKeepsItsDescription();
    void writtenAttributeComesBackEditable();
    void contractorOfAJobThatHadNoneIsThereFromNowOn();
    void technicianOfAJobThatHadNoneIsSentAndNotCached();
    void attributeOfAJobWithoutAttributesIsSentAndNotCached();
    void attributeThatTheJobDoesNotHaveIsAddedToTheCachedOnes();
    void contentThatIsNoAttributeIsReplacedByOne();
    void otherAttributesStayAsTheyAre();
    void testsAreFoundAsBeforeTheWrite();

    void nameThatNoExtractorServesSendsNothingAndAnswersTrue_data();
    void nameThatNoExtractorServesSendsNothingAndAnswersTrue();
    void unknownJobIsFetchedOnceAndThenWritten();

private:
    static void addProperties()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("old");
        QTest::newRow("attribute") << someProperty << QStringLiteral("old");
        QTest::newRow("technician") << techId << QStringLiteral("T-1");
        QTest::newRow("contractor") << contractorId << QStringLiteral("C-1");
    }
};

void JobPropertyWritesTest::eachExtractorSendsItsOwnShape_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("update");
    QTest::newRow("attribute") << someProperty << QByteArray(R"({"jobManagerAttributes":{"name":{"value":"new"}}})");
    QTest::newRow("attribute with a slash in its name")
        << QStringLiteral("attributes/a/b") << QByteArray(R"({"jobManagerAttributes":{"a/b":{"value":"new"}}})");
    QTest::newRow("attribute without a name")
        << QStringLiteral("attributes/") << QByteArray(R"({"jobManagerAttributes":{"":{"value":"new"}}})");
    QTest::newRow("attribute named like its extractor")
        << QStringLiteral("attributes") << QByteArray(R"({"jobManagerAttributes":{"attributes":{"value":"new"}}})");
    QTest::newRow("technician") << techId << QByteArray(R"({"techInfo":{"techId":"new"}})");
    QTest::newRow("technician, name ignored")
        << QStringLiteral("techId/any") << QByteArray(R"({"techInfo":{"techId":"new"}})");
    QTest::newRow("contractor") << contractorId << QByteArray(R"({"contractorId":"new"})");
    QTest::newRow("contractor, name ignored")
        << QStringLiteral("contractorId/any") << QByteArray(R"({"contractorId":"new"})");
}

void JobPropertyWritesTest::eachExtractorSendsItsOwnShape()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, update);
    WithJob api(fullJob());
    QVERIFY(api->setOptionalJobProperty(job, name, QStringLiteral("new")));
    QCOMPARE(StandInClient::calls().size(), std::size_t(1));
    QCOMPARE(QByteArray::fromStdString(StandInClient::calls("updateWorkflowAttributes").at(0).arguments.at(1)), update);
}

void JobPropertyWritesTest::oneWriteIsOneRequest()
{
    WithJob api(fullJob());
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    api->getOptionalJobProperty(job, someProperty);
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "updateWorkflowAttributes" });
}

void JobPropertyWritesTest::jobIsNamedByItsOwnId()
{
    cdm::CdmSouthboundJob record = fullJob();
    record.details.id = "its own";
    ClientAnswers answers;
    answers.jobs["J"] = record;
    StandInClient::setAnswers(answers);
    OnStandIn api;
    // A read that finds nothing files what comes under the id that was asked for.
    api->getOptionalJobProperty(job, someProperty);
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    QCOMPARE(updates().at(0).first, std::string("its own"));
}

void JobPropertyWritesTest::textCrossesAsUtf8()
{
    WithJob api(jobWithAttributes({ { "Gr\u00f6\u00dfe", attributeJson("klein") } }));
    const QString name = QString::fromUtf8("attributes/Gr\u00f6\u00dfe");
    api->setOptionalJobProperty(job, name, QString::fromUtf8("gro\u00df"));
    QCOMPARE(updates().at(0).second["jobManagerAttributes"]["Gr\u00f6\u00dfe"]["value"], "gro\u00df");
    QCOMPARE(api->getOptionalJobProperty(job, name), QVariant(QString::fromUtf8("gro\u00df")));
}

void JobPropertyWritesTest::fieldCrossesAsUtf8_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("update");
    QTest::newRow("technician") << techId << QByteArray("{\"techInfo\":{\"techId\":\"M\u00fcller\"}}");
    QTest::newRow("contractor") << contractorId << QByteArray("{\"contractorId\":\"M\u00fcller\"}");
}

void JobPropertyWritesTest::fieldCrossesAsUtf8()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, update);
    WithJob api(fullJob());
    const QString value = QString::fromUtf8("M\u00fcller");
    api->setOptionalJobProperty(job, name, value);
    QCOMPARE(updates().at(0).second, nlohmann::json::parse(update.toStdString()));
    QCOMPARE(api->getOptionalJobProperty(job, name), QVariant(value));
}

void JobPropertyWritesTest::valueIsSentAsText_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("text") << QVariant(QStringLiteral("new")) << QStringLiteral("new");
    QTest::newRow("empty text") << QVariant(QString()) << QString();
    QTest::newRow("number") << QVariant(1.5) << QStringLiteral("1.5");
    QTest::newRow("whole number") << QVariant(-7) << QStringLiteral("-7");
    QTest::newRow("boolean") << QVariant(true) << QStringLiteral("true");
    QTest::newRow("nothing") << QVariant() << QString();
    QTest::newRow("what has no text") << QVariant(QVariantMap()) << QString();
}

void JobPropertyWritesTest::valueIsSentAsText()
{
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    WithJob api(fullJob());
    QVERIFY(api->setOptionalJobProperty(job, contractorId, value));
    QCOMPARE(updates().at(0).second, nlohmann::json({ { "contractorId", text.toStdString() } }));
    QCOMPARE(api->getOptionalJobProperty(job, contractorId), QVariant(text));
}

void JobPropertyWritesTest::acceptedValueIsReadBackAtOnce()
{
    QFETCH(QString, name);
    WithJob api(fullJob());
    QVERIFY(api->setOptionalJobProperty(job, name, QStringLiteral("new")));
    QCOMPARE(api->getOptionalJobProperty(job, name), QVariant(QStringLiteral("new")));
}

void JobPropertyWritesTest::refusedValueLeavesTheRecordAndTheAnswerIsTrueAllTheSame()
{
    QFETCH(QString, name);
    QFETCH(QString, old);
    WithJob api(fullJob());
    refuseUpdates();
    QVERIFY(api->setOptionalJobProperty(job, name, QStringLiteral("new")));
    QCOMPARE(updates().size(), std::size_t(1));
    QCOMPARE(api->getOptionalJobProperty(job, name), QVariant(old));
}

void JobPropertyWritesTest::recordIsPatchedAfterTheServiceHasAgreed()
{
    WithJob api(fullJob());
    QVariant seenMeanwhile;
    StandInClient::setHook(
        [&](const ClientCall& /*call*/) { seenMeanwhile = api->getOptionalJobProperty(job, someProperty); });
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    QCOMPARE(seenMeanwhile, QVariant(QStringLiteral("old")));
}

void JobPropertyWritesTest::writtenAttributeKeepsItsDescription()
{
    nlohmann::json content = attributeJson("1");
    content.update({ { "valueType", "double" }, { "regExp", "[0-9]" }, { "validValues", { "1", "2" } },
        { "visible", false }, { "orderIndex", 4 }, { "editable", true } });
    WithJob api(jobWithAttributes({ { "name", content } }));
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("2"));
    const PropertyDisplayInfo info = api->getOptionalJobPropertyDisplayInfo(job, someProperty);
    QCOMPARE(info.label, QStringLiteral("Label"));
    QCOMPARE(info.type, PropertyType::DOUBLE);
    QCOMPARE(info.regex, QStringLiteral("[0-9]"));
    QCOMPARE(info.validValues, (QStringList{ QStringLiteral("1"), QStringLiteral("2") }));
    QVERIFY(!info.visible);
    QCOMPARE(info.orderIndex, 4);
}

void JobPropertyWritesTest::writtenAttributeComesBackEditable()
{
    nlohmann::json content = attributeJson("old");
    content["editable"] = false;
    WithJob api(jobWithAttributes({ { "name", content } }));
    QVERIFY(!api->getOptionalJobPropertyDisplayInfo(job, someProperty).editable);
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    QVERIFY(api->getOptionalJobPropertyDisplayInfo(job, someProperty).editable);
}

void JobPropertyWritesTest::contractorOfAJobThatHadNoneIsThereFromNowOn()
{
    WithJob api(jobOf("J"));
    QCOMPARE(api->getAllOptionalJobProperties(job), std::vector<QString>{ techId });
    api->setOptionalJobProperty(job, contractorId, QStringLiteral("C-2"));
    QCOMPARE(api->getAllOptionalJobProperties(job), (std::vector<QString>{ contractorId, techId }));
    QCOMPARE(api->getOptionalJobProperty(job, contractorId), QVariant(QStringLiteral("C-2")));
}

void JobPropertyWritesTest::technicianOfAJobThatHadNoneIsSentAndNotCached()
{
    WithJob api(jobOf("J"));
    QVERIFY(api->setOptionalJobProperty(job, techId, QStringLiteral("T-2")));
    QCOMPARE(updates().size(), std::size_t(1));
    QCOMPARE(api->getOptionalJobProperty(job, techId), QVariant(QString()));
}

void JobPropertyWritesTest::attributeOfAJobWithoutAttributesIsSentAndNotCached()
{
    WithJob api(jobOf("J"));
    QVERIFY(api->setOptionalJobProperty(job, someProperty, QStringLiteral("new")));
    QCOMPARE(updates().size(), std::size_t(1));
    QCOMPARE(api->getOptionalJobProperty(job, someProperty), QVariant(QString()));
    QCOMPARE(api->getAllOptionalJobProperties(job), std::vector<QString>{ techId });
}

void JobPropertyWritesTest::attributeThatTheJobDoesNotHaveIsAddedToTheCachedOnes()
{
    WithJob api(jobWithAttributes({}));
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    QCOMPARE(api->getOptionalJobProperty(job, someProperty), QVariant(QStringLiteral("new")));
    QCOMPARE(api->getAllOptionalJobProperties(job), (std::vector<QString>{ someProperty, techId }));
    QCOMPARE(api->getOptionalJobPropertyDisplayInfo(job, someProperty).label, QString());
}

void JobPropertyWritesTest::contentThatIsNoAttributeIsReplacedByOne()
{
    WithJob api(jobWithAttributes({ { "name", { { "other", 1 } } } }));
    const CerrCapture errors;
    const MessageCollector messages;
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    QCOMPARE(errors.text(), badAttributeText);
    QCOMPARE(api->getOptionalJobProperty(job, someProperty), QVariant(QStringLiteral("new")));
    QCOMPARE(errors.text(), badAttributeText);
    QCOMPARE(messages.messages(), QStringList());
}

void JobPropertyWritesTest::otherAttributesStayAsTheyAre()
{
    WithJob api(jobWithAttributes({ { "name", attributeJson("old") }, { "other", attributeJson("kept") } }));
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    QCOMPARE(api->getOptionalJobProperty(job, QStringLiteral("attributes/other")), QVariant(QStringLiteral("kept")));
    QVERIFY(!api->getOptionalJobPropertyDisplayInfo(job, QStringLiteral("attributes/other")).editable);
}

void JobPropertyWritesTest::testsAreFoundAsBeforeTheWrite()
{
    cdm::CdmSouthboundJob record = jobWithAttributes({ { "name", attributeJson("old") } });
    record.tests = { testOf("1"), testOf("2"), testOf("2") };
    record.tests->at(1).testType = "first";
    record.tests->at(2).testType = "second";
    WithJob api(record);
    QCOMPARE(api->getTestType(job, idOf(2)), QStringLiteral("first"));
    api->setOptionalJobProperty(job, someProperty, QStringLiteral("new"));
    QCOMPARE(api->getTestType(job, idOf(2)), QStringLiteral("first"));
    QVERIFY(api->getTestType(job, idOf(3)).isNull());
}

void JobPropertyWritesTest::nameThatNoExtractorServesSendsNothingAndAnswersTrue_data()
{
    addNamesThatNoExtractorServes();
}

void JobPropertyWritesTest::nameThatNoExtractorServesSendsNothingAndAnswersTrue()
{
    QFETCH(QString, name);
    WithJob api(fullJob());
    QVERIFY(api->setOptionalJobProperty(job, name, QStringLiteral("new")));
    QVERIFY(StandInClient::calls().empty());
    QCOMPARE(api->getOptionalJobProperty(job, someProperty), QVariant(QStringLiteral("old")));
}

void JobPropertyWritesTest::unknownJobIsFetchedOnceAndThenWritten()
{
    OnStandIn api;
    QVERIFY(api->setJobAttribute(job, contractorId, QStringLiteral("C-2")));
    QVERIFY(api->setJobAttribute(job, contractorId, QStringLiteral("C-3")));
    QCOMPARE(StandInClient::operations(),
        (std::vector<std::string>{ "getJob", "updateWorkflowAttributes", "updateWorkflowAttributes" }));
    QCOMPARE(api->getOptionalJobProperty(job, contractorId), QVariant(QStringLiteral("C-3")));
}

QTEST_GUILESS_MAIN(JobPropertyWritesTest)
#include "JobPropertyWritesTest.moc"
