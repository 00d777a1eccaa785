#include "models/Test.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <functional>
#include <limits>
#include <QFile>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString jobID = QStringLiteral("WO-1");
constexpr long long testID = 0x0000000700000002;

QDateTime firstTime()
{
    return QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
}

/// A call about the test as the journal has it.
QString testCall(const QString& operation, const QString& furtherArguments = {})
{
    return QStringLiteral("call %1(\"WO-1\", 30064771074%2)").arg(operation, furtherArguments);
}

/// Everything that taking the snapshot calls, in order.
QStringList snapshotReads()
{
    return { QStringLiteral("call getTestIndex(30064771074)"), QStringLiteral("call getTestLocationIndex(30064771074)"),
        testCall(QStringLiteral("getTestType")), testCall(QStringLiteral("getTestTime")),
        testCall(QStringLiteral("getTestTypeDisplayName")), testCall(QStringLiteral("getTestRequired")),
        testCall(QStringLiteral("getTestLocationsNumber")),
        testCall(QStringLiteral("getOptionalTestProperty"), QStringLiteral(", \"location\"")) };
}

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

void writeFile(const QString& path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
    file.write("guide");
}

using Write = std::function<void(Test&)>;

} // namespace

Q_DECLARE_METATYPE(Write)

class TestObjectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<RecordingApi>(m_journal);
        answer("getTestIndex", 7);
        answer("getTestLocationIndex", 2);
        answer("getTestType", QStringLiteral("fiber"));
        answer("getTestTypeDisplayName", QStringLiteral("Faser-Prüfung"));
        answer("getTestTime", firstTime());
        answer("getTestRequired", static_cast<int>(TestRequirement::TEST_ADDED));
        answer("getTestLocationsNumber", 4);
        answer("getOptionalTestProperty", QStringLiteral("Rack 5"));
        answer("getTestDescription", QStringLiteral("Check the line"));
        answer("getTestSite", QStringLiteral("Basement"));
        answer("getTestStatus", QStringLiteral("pass"));
        answer("getTestConfiguration", QStringList{ QStringLiteral("1310 nm"), QStringLiteral("1550 nm") });
        answer("getTestGuideFile", QStringLiteral("/guides/fiber.pdf"));
        answer("getTestResponse", QStringLiteral("yes"));
        answer("getManualTestConfiguration", QVariantMap{ { QStringLiteral("prompt"), QStringLiteral("Clean?") } });
        answer("setManualTestResult", true);
    }

    /// The class logs nothing, whatever happens.
    void cleanup()
    {
        const QStringList messages = m_messages->take();
        m_api.reset();
        m_messages.reset();
        QCOMPARE(messages, QStringList());
    }

    void constructorTakesTheSnapshotInOrder()
    {
        const Test test(m_api, jobID, testID);
        QCOMPARE(m_journal.take(), snapshotReads());
    }

    void snapshotIsReadWithoutTheInterface_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("testIndex") << QVariant(7);
        QTest::newRow("locationIndex") << QVariant(2);
        QTest::newRow("testType") << QVariant(QStringLiteral("fiber"));
        QTest::newRow("testTypeDisplayName") << QVariant(QStringLiteral("Faser-Prüfung"));
        QTest::newRow("testTime") << QVariant(firstTime());
        QTest::newRow("testRequired") << QVariant(3);
        QTest::newRow("errorMessage") << QVariant(QString());
        QTest::newRow("errorSeverity") << QVariant(0);
        QTest::newRow("location") << QVariant(QStringLiteral("Rack 5"));
        QTest::newRow("numberOfTestLocations") << QVariant(4);
    }

    void snapshotIsReadWithoutTheInterface()
    {
        QFETCH(QVariant, value);
        const Test test(m_api, jobID, testID);
        m_journal.take();
        const QVariant read = test.property(QTest::currentDataTag());
        QVERIFY(read.isValid());
        QCOMPARE(value.userType() == QMetaType::Int ? QVariant(read.toInt()) : read, value);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void otherPropertiesAskOnEachRead_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("newValue");
        QTest::newRow("description") << QStringLiteral("getTestDescription")
                                     << QVariant(QStringLiteral("Check the line"))
                                     << QVariant(QStringLiteral("Check it twice"));
        QTest::newRow("site") << QStringLiteral("getTestSite") << QVariant(QStringLiteral("Basement"))
                              << QVariant(QString());
        QTest::newRow("testStatus") << QStringLiteral("getTestStatus") << QVariant(QStringLiteral("pass"))
                                    << QVariant(QStringLiteral("fail"));
        QTest::newRow("configuration") << QStringLiteral("getTestConfiguration")
                                       << QVariant(QStringList{ QStringLiteral("1310 nm"), QStringLiteral("1550 nm") })
                                       << QVariant(QStringList());
        QTest::newRow("guideFilepath") << QStringLiteral("getTestGuideFile")
                                       << QVariant(QStringLiteral("/guides/fiber.pdf"))
                                       << QVariant(QStringLiteral("/guides/other.pdf"));
        QTest::newRow("manualStepUserResponse")
            << QStringLiteral("getTestResponse") << QVariant(QStringLiteral("yes")) << QVariant(QStringLiteral("no"));
    }

    void otherPropertiesAskOnEachRead()
    {
        QFETCH(QString, operation);
        QFETCH(QVariant, value);
        QFETCH(QVariant, newValue);
        const Test test(m_api, jobID, testID);
        m_journal.take();
        QCOMPARE(test.property(QTest::currentDataTag()), value);
        m_api->setAnswer(operation, newValue);
        QCOMPARE(test.property(QTest::currentDataTag()), newValue);
        QCOMPARE(m_journal.take(), (QStringList{ testCall(operation), testCall(operation) }));
    }

    void idsAreThereForTheLaunch()
    {
        const Test test(m_api, jobID, testID);
        m_journal.take();
        QCOMPARE(test.concreteTypeJobID(), jobID);
        QCOMPARE(test.concreteTypeTestID(), testID);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void anyIdIsPassedOnUntouched_data()
    {
        QTest::addColumn<long long>("id");
        QTest::newRow("none") << -1LL;
        QTest::newRow("zero") << 0LL;
        QTest::newRow("greatest") << std::numeric_limits<long long>::max();
        QTest::newRow("least") << std::numeric_limits<long long>::min();
    }

    void anyIdIsPassedOnUntouched()
    {
        QFETCH(long long, id);
        const Test test(m_api, jobID, id);
        QCOMPARE(test.concreteTypeTestID(), id);
        QVERIFY(m_journal.contains(QStringLiteral("call getTestType(\"WO-1\", %1)").arg(id)));
    }

    // What QML sees.

    void propertiesStandInOrder()
    {
        QCOMPARE(propertyLines(Test::staticMetaObject), QStringLiteral(R"(int testIndex testIndexChanged
int locationIndex locationIndexChanged
QString testType testTypeChanged
QString testTypeDisplayName testTypeDisplayNameChanged
QString description descriptionChanged
QString site siteChanged
QString testStatus testStatusChanged
QDateTime testTime testTimeChanged
jobmanager_ui::TestRequirement::Enum testRequired testRequiredChanged
QStringList configuration configurationChanged
QString errorMessage errorMessageChanged writable
int errorSeverity errorSeverityChanged
QString guideFilepath guideFilepathChanged
bool hasGuide hasGuideChanged
QString location locationChanged
int numberOfTestLocations numberOfTestLocationsChanged
QString manualStepUserResponse manualStepUserResponseChanged writable
QVariantMap testConfigurationMap testConfigurationMapChanged)"));
    }

    void signalsAndSlotsStandInOrder()
    {
        QCOMPARE(methodLines(Test::staticMetaObject), QStringLiteral(R"(signal testIndexChanged()
signal locationIndexChanged()
signal testTypeChanged()
signal testTypeDisplayNameChanged()
signal descriptionChanged()
signal siteChanged()
signal testStatusChanged()
signal testTimeChanged()
signal testRequiredChanged()
signal optionalPropertiesChanged()
signal errorMessageChanged()
signal errorSeverityChanged()
signal configurationChanged()
signal guideFilepathChanged()
signal hasGuideChanged()
signal locationChanged()
signal numberOfTestLocationsChanged()
signal manualStepUserResponseChanged()
signal testConfigurationMapChanged()
slot setErrorMessage(QString)
slot setErrorSeverity(int))"));
    }

    void requirementIsItsNumberForQml()
    {
        Test test(m_api, jobID, testID);
        QQmlEngine engine;
        engine.rootContext()->setContextProperty(QStringLiteral("test"), &test);
        QQmlComponent component(&engine);
        component.setData("import QtQml 2.15\nQtObject { property bool same: test.testRequired === 3 }", QUrl());
        const std::unique_ptr<QObject> root(component.create());
        QVERIFY2(root != nullptr, qPrintable(component.errorString()));
        QCOMPARE(root->property("same"), QVariant(true));
    }

    void bindingsOfAskedPropertiesFollowAnUpdate()
    {
        Test test(m_api, jobID, testID);
        QQmlEngine engine;
        engine.rootContext()->setContextProperty(QStringLiteral("test"), &test);
        QQmlComponent component(&engine);
        component.setData("import QtQml 2.15\nQtObject { property string shown: test.testStatus + test.site }", QUrl());
        const std::unique_ptr<QObject> root(component.create());
        QVERIFY2(root != nullptr, qPrintable(component.errorString()));
        QCOMPARE(root->property("shown").toString(), QStringLiteral("passBasement"));
        answer("getTestStatus", QStringLiteral("fail"));
        test.updateDataFromAPI();
        QCOMPARE(root->property("shown").toString(), QStringLiteral("failBasement"));
    }

    void testBelongsToCppWithoutAParent()
    {
        Test test(m_api, jobID, testID);
        QCOMPARE(test.parent(), nullptr);
        QCOMPARE(QQmlEngine::objectOwnership(&test), QQmlEngine::CppOwnership);
    }

    void testOutlivesTheCollectorOfJavaScript()
    {
        const auto test = std::make_shared<Test>(m_api, jobID, testID);
        const QPointer<Test> watched = test.get();
        QQmlEngine engine;
        // The way of an object that nobody has marked: wrapped without a parent, let go of, collected.
        const QPointer<QObject> unmarked = new QObject;
        for (QObject* object : { static_cast<QObject*>(test.get()), unmarked.data() }) {
            QJSValue wrapped = engine.newQObject(object);
            wrapped = QJSValue();
        }
        engine.collectGarbage();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(unmarked.isNull());
        QVERIFY(!watched.isNull());
    }

    // Updates.

    void updateReadsFirstAndThenEmitsAllSignalsInOrder()
    {
        Test test(m_api, jobID, testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        test.updateDataFromAPI();
        QCOMPARE(m_journal.take(), snapshotReads() + updateSignals());
    }

    void updateTakesOverNewValues()
    {
        Test test(m_api, jobID, testID);
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
        Test test(m_api, jobID, testID);
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
        QTest::newRow("empty") << QVariant(QString()) << QStringLiteral("~");
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
        const Test test(m_api, jobID, testID);
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
        Test test(m_api, jobID, testID);
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
        Test test(m_api, jobID, testID);
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
        Test test(m_api, jobID, testID);
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
        Test test(m_api, jobID, testID);
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
        Test test(m_api, jobID, testID);
        write(test);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        write(test);
        QCOMPARE(m_journal.take(), QStringList());
    }

    // Manual steps.

    void newAnswerIsRecordedAndSignalled_data()
    {
        QTest::addColumn<QString>("response");
        QTest::newRow("text") << QStringLiteral("no");
        QTest::newRow("other case") << QStringLiteral("Yes");
        QTest::newRow("empty") << QString();
    }

    void newAnswerIsRecordedAndSignalled()
    {
        QFETCH(QString, response);
        Test test(m_api, jobID, testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        QVERIFY(test.setProperty("manualStepUserResponse", response));
        QCOMPARE(m_journal.take(),
            (QStringList{ testCall(QStringLiteral("getTestResponse")),
                testCall(QStringLiteral("setManualTestResult"), QStringLiteral(", \"%1\", \"\"").arg(response)),
                QStringLiteral("emit manualStepUserResponseChanged()") }));
    }

    void recordedAnswerIsNotWrittenAgain()
    {
        Test test(m_api, jobID, testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        test.setManualStepUserResponse(QStringLiteral("yes"));
        QCOMPARE(m_journal.take(), QStringList{ testCall(QStringLiteral("getTestResponse")) });
    }

    void refusedAnswerIsSilent()
    {
        answer("setManualTestResult", false);
        Test test(m_api, jobID, testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        test.setManualStepUserResponse(QStringLiteral("no"));
        QCOMPARE(m_journal.take(),
            (QStringList{ testCall(QStringLiteral("getTestResponse")),
                testCall(QStringLiteral("setManualTestResult"), QStringLiteral(", \"no\", \"\"")) }));
        QCOMPARE(test.manualStepUserResponse(), QStringLiteral("yes"));
    }

    void onlyAManualTestHasAPrompt_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("asks");
        QTest::newRow("manual") << QStringLiteral("manual") << true;
        QTest::newRow("other case") << QStringLiteral("Manual") << false;
        QTest::newRow("with a blank") << QStringLiteral("manual ") << false;
        QTest::newRow("none") << QString() << false;
        QTest::newRow("other") << QStringLiteral("fiber") << false;
    }

    void onlyAManualTestHasAPrompt()
    {
        QFETCH(QString, type);
        QFETCH(bool, asks);
        answer("getTestType", type);
        const Test test(m_api, jobID, testID);
        m_journal.take();
        const QVariantMap prompt{ { QStringLiteral("prompt"), QStringLiteral("Clean?") } };
        QCOMPARE(test.property("testConfigurationMap").toMap(), asks ? prompt : QVariantMap());
        QCOMPARE(m_journal.take(),
            asks ? QStringList{ testCall(QStringLiteral("getManualTestConfiguration")) } : QStringList());
    }

    // The guide.

    void guideIsThereIfItsFileIs_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("hasGuide");
        QTest::newRow("no path") << QString() << false;
        QTest::newRow("a file") << m_folder.filePath(QStringLiteral("guide.pdf")) << true;
        QTest::newRow("a missing file") << m_folder.filePath(QStringLiteral("missing.pdf")) << false;
        QTest::newRow("a folder") << m_folder.path() << false;
        QTest::newRow("a link to a file") << m_folder.filePath(QStringLiteral("link.pdf")) << true;
        QTest::newRow("a link to nothing") << m_folder.filePath(QStringLiteral("broken.pdf")) << false;
    }

    void guideIsThereIfItsFileIs()
    {
        QFETCH(QString, path);
        QFETCH(bool, hasGuide);
        writeFile(m_folder.filePath(QStringLiteral("guide.pdf")));
        QFile::link(QStringLiteral("guide.pdf"), m_folder.filePath(QStringLiteral("link.pdf")));
        QFile::link(QStringLiteral("missing.pdf"), m_folder.filePath(QStringLiteral("broken.pdf")));
        answer("getTestGuideFile", path);
        const Test test(m_api, jobID, testID);
        m_journal.take();
        QCOMPARE(test.property("hasGuide"), QVariant(hasGuide));
        QCOMPARE(test.checkIfGuideFileExists(), hasGuide);
        const QString read = testCall(QStringLiteral("getTestGuideFile"));
        QCOMPARE(m_journal.take(), (QStringList{ read, read }));
    }

    void guideIsLookedForOnEachRead()
    {
        const QString path = m_folder.filePath(QStringLiteral("passing.pdf"));
        answer("getTestGuideFile", path);
        const Test test(m_api, jobID, testID);
        QCOMPARE(test.hasGuide(), false);
        writeFile(path);
        QCOMPARE(test.hasGuide(), true);
        QVERIFY(QFile::remove(path));
        QCOMPARE(test.hasGuide(), false);
    }

private:
    void answer(const char* operation, const QVariant& value)
    {
        m_api->setAnswer(QString::fromLatin1(operation), value);
    }

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

    Journal m_journal;
    QTemporaryDir m_folder;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
};

QTEST_GUILESS_MAIN(TestObjectTest)
#include "TestObjectTest.moc"
