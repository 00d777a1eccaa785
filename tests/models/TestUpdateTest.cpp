#include "tests/models/TestObjectFixture.h"
#include "tests/support/SignalRecorder.h"

#include <functional>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// Everything that an update emits, in order.
QStringList updateSignals()
{
    QStringList expected;
    const char* const names[] = { "testIndexChanged", "locationIndexChanged", "testTypeChanged",
        "testTypeDisplayNameChanged", "descriptionChanged", "siteChanged", "testStatusChanged", "testTimeChanged",
        "testRequiredChanged", "optionalPropertiesChanged", "errorMessageChanged", "errorSeverityChanged",
        "configurationChanged", "guideFilepathChanged", "hasGuideChanged", "locationChanged",
        "numberOfTestLocationsChanged", "manualStepUserResponseChanged", "testConfigurationMapChanged" };
    for (const char* name : names) {
        expected.append(QStringLiteral("emit %1()").arg(QLatin1String(name)));
    }
    return expected;
}

using Write = std::function<void(Test&)>;

} // namespace

Q_DECLARE_METATYPE(Write)

/// What an update of a test reads, emits and does to the error of the last launch.
class TestUpdateTest : public TestObjectFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Updates.

    void updateReadsFirstAndThenEmitsAllSignalsInOrder()
    {
        Test test(m_api, m_jobID, m_testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        test.updateDataFromAPI();
        QCOMPARE(m_journal.take(), snapshotReads() + updateSignals());
    }

    void updateTakesOverNewValues()
    {
        Test test(m_api, m_jobID, m_testID);
        answer("getTestIndex", 8);
        answer("getTestLocationIndex", -1);
        answer("getTestType", QStringLiteral("copper"));
        answer("getTestTypeDisplayName", QStringLiteral("Copper"));
        answer("getTestRequired", static_cast<int>(TestRequirement::TEST_OPTIONAL));
        answer("getTestLocationsNumber", 1);
        answer("getOptionalTestProperty", QStringLiteral("Rack 6"));
        answer("getTestTime", firstTime().addSecs(1));
        QCOMPARE(test.testType(), QStringLiteral("fiber"));
        test.updateDataFromAPI();
        QCOMPARE(test.testIndex(), 8);
        QCOMPARE(test.locationIndex(), -1);
        QCOMPARE(test.testType(), QStringLiteral("copper"));
        QCOMPARE(test.testTypeDisplayName(), QStringLiteral("Copper"));
        QCOMPARE(test.testRequired(), TestRequirement::TEST_OPTIONAL);
        QCOMPARE(test.numberOfTestLocations(), 1);
        QCOMPARE(test.location(), QStringLiteral("Rack 6"));
        QCOMPARE(test.testTime(), firstTime().addSecs(1));
    }

    void receiversSeeTheNewValuesFromTheFirstSignalOn()
    {
        Test test(m_api, m_jobID, m_testID);
        test.setErrorMessage(QStringLiteral("Failed"));
        answer("getTestTime", firstTime().addSecs(1));
        answer("getOptionalTestProperty", QString());
        QStringList seen;
        connect(&test, &Test::testIndexChanged, this, [&] {
            seen = QStringList{ test.errorMessage(), test.location() };
        });
        test.updateDataFromAPI();
        QCOMPARE(seen, (QStringList{ QString(), QStringLiteral("~") }));
    }

    void unknownTestTakesWhatTheInterfaceAnswers()
    {
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_api->setAnswer(QStringLiteral("getTestRequired"), static_cast<int>(TestRequirement::TEST_REQUIRED));
        m_api->setAnswer(QStringLiteral("getTestLocationsNumber"), -1);
        const Test test(m_api, QStringLiteral("?"), -1);
        QCOMPARE(test.testType(), QString());
        QCOMPARE(test.testTime(), QDateTime());
        QCOMPARE(test.testRequired(), TestRequirement::TEST_REQUIRED);
        QCOMPARE(test.numberOfTestLocations(), -1);
        QCOMPARE(test.location(), QStringLiteral("~"));
        QCOMPARE(test.description(), QString());
        QCOMPARE(test.configuration(), QStringList());
        QCOMPARE(test.hasGuide(), false);
        QCOMPARE(test.testConfigurationMap(), QVariantMap());
    }

    void locationIsATildeWithoutOne_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("location");
        QTest::newRow("missing") << QVariant() << QStringLiteral("~");
        QTest::newRow("null") << QVariant(QString()) << QStringLiteral("~");
        QTest::newRow("empty") << QVariant(QLatin1String("")) << QStringLiteral("~");
        QTest::newRow("no text") << QVariant(QStringList()) << QStringLiteral("~");
        QTest::newRow("blank") << QVariant(QStringLiteral(" ")) << QStringLiteral(" ");
        QTest::newRow("number") << QVariant(12) << QStringLiteral("12");
        QTest::newRow("tilde") << QVariant(QStringLiteral("~")) << QStringLiteral("~");
        QTest::newRow("text") << QVariant(QStringLiteral("Büro 3")) << QStringLiteral("Büro 3");
    }

    void locationIsATildeWithoutOne()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, location);
        answer("getOptionalTestProperty", value);
        const Test test(m_api, m_jobID, m_testID);
        QCOMPARE(test.location(), location);
    }

    // The error of the last launch.

    void errorOutlivesAnUpdateWithTheSameTime_data()
    {
        QTest::addColumn<QDateTime>("time");
        QTest::newRow("a time") << firstTime();
        QTest::newRow("no time") << QDateTime();
    }

    void errorOutlivesAnUpdateWithTheSameTime()
    {
        QFETCH(QDateTime, time);
        answer("getTestTime", time);
        Test test(m_api, m_jobID, m_testID);
        test.setErrorMessage(QStringLiteral("Failed"));
        test.setErrorSeverity(2);
        const SignalRecorder recorder(test, m_journal);
        test.updateDataFromAPI();
        m_journal.take();
        test.updateDataFromAPI();
        QCOMPARE(test.errorMessage(), QStringLiteral("Failed"));
        QCOMPARE(test.errorSeverity(), 2);
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.count(QStringLiteral("emit errorMessageChanged()")), 1);
        QCOMPARE(entries.count(QStringLiteral("emit errorSeverityChanged()")), 1);
    }

    void errorEndsWithANewTime_data()
    {
        QTest::addColumn<QDateTime>("before");
        QTest::addColumn<QDateTime>("after");
        const QDateTime epoch = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);
        QTest::newRow("later") << firstTime() << firstTime().addMSecs(1);
        QTest::newRow("earlier") << firstTime() << firstTime().addSecs(-1);
        QTest::newRow("from none") << QDateTime() << firstTime();
        QTest::newRow("to none") << firstTime() << QDateTime();
        QTest::newRow("from none to the epoch") << QDateTime() << epoch;
        QTest::newRow("from the epoch to none") << epoch << QDateTime();
    }

    void errorEndsWithANewTime()
    {
        QFETCH(QDateTime, before);
        QFETCH(QDateTime, after);
        answer("getTestTime", before);
        Test test(m_api, m_jobID, m_testID);
        test.setErrorMessage(QStringLiteral("Failed"));
        test.setErrorSeverity(2);
        answer("getTestTime", after);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        test.updateDataFromAPI();
        QCOMPARE(test.errorMessage(), QString());
        QCOMPARE(test.errorSeverity(), 0);
        QCOMPARE(m_journal.take(), snapshotReads() + updateSignals());
    }

    void sameMomentInAnotherTimeZoneKeepsTheError()
    {
        Test test(m_api, m_jobID, m_testID);
        test.setErrorMessage(QStringLiteral("Failed"));
        answer("getTestTime", firstTime().toOffsetFromUtc(7200));
        test.updateDataFromAPI();
        QCOMPARE(test.errorMessage(), QStringLiteral("Failed"));
    }

    void newErrorIsStoredAndSignalled_data() { addErrorWrites(); }

    void newErrorIsStoredAndSignalled()
    {
        QFETCH(Write, write);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        Test test(m_api, m_jobID, m_testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        write(test);
        QCOMPARE(test.property(property), value);
        QCOMPARE(
            m_journal.take(), QStringList{ QStringLiteral("emit %1Changed()").arg(QString::fromLatin1(property)) });
    }

    void sameErrorDoesNothing_data() { addErrorWrites(); }

    void sameErrorDoesNothing()
    {
        QFETCH(Write, write);
        Test test(m_api, m_jobID, m_testID);
        write(test);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        write(test);
        QCOMPARE(m_journal.take(), QStringList());
    }

private:
    /// Every way to set one of the two error fields.
    void addErrorWrites()
    {
        const QByteArray message = "errorMessage";
        const QByteArray severity = "errorSeverity";
        const QVariant text(QStringLiteral("Failed"));
        QTest::addColumn<Write>("write");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("message by its property")
            << Write([=](Test& test) { test.setProperty("errorMessage", text); }) << message << text;
        QTest::newRow("message by its slot") << Write([=](Test& test) {
            QMetaObject::invokeMethod(&test, "setErrorMessage", Q_ARG(QString, text.toString()));
        }) << message << text;
        QTest::newRow("severity by its slot")
            << Write([](Test& test) { QMetaObject::invokeMethod(&test, "setErrorSeverity", Q_ARG(int, 2)); })
            << severity << QVariant(2);
    }
};

QTEST_GUILESS_MAIN(TestUpdateTest)
#include "TestUpdateTest.moc"
