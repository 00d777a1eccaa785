#include "tests/models/TestObjectFixture.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/QmlObject.h"
#include "tests/support/SignalRecorder.h"

#include <limits>
#include <QFile>
#include <QQmlContext>
#include <QTemporaryDir>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

void writeFile(const QString& path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
    file.write("guide");
}

} // namespace

/// What a test of a job gives, and what it writes.
class TestObjectTest : public TestObjectFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void constructorTakesTheSnapshotInOrder()
    {
        const Test test(m_api, m_jobID, m_testID);
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
        const Test test(m_api, m_jobID, m_testID);
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
        const Test test(m_api, m_jobID, m_testID);
        m_journal.take();
        QCOMPARE(test.property(QTest::currentDataTag()), value);
        m_api->setAnswer(operation, newValue);
        QCOMPARE(test.property(QTest::currentDataTag()), newValue);
        QCOMPARE(m_journal.take(), (QStringList{ testCall(operation), testCall(operation) }));
    }

    void idsAreThereForTheLaunch()
    {
        const Test test(m_api, m_jobID, m_testID);
        m_journal.take();
        QCOMPARE(test.concreteTypeJobID(), m_jobID);
        QCOMPARE(test.concreteTypeTestID(), m_testID);
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
        const Test test(m_api, m_jobID, id);
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
QQmlPropertyMap* optionalProperties optionalPropertiesChanged
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
        Test test(m_api, m_jobID, m_testID);
        const std::unique_ptr<QObject> object =
            objectAbout(test, "QtObject { property bool same: test.testRequired === 3 }");
        QCOMPARE(object->property("same"), QVariant(true));
    }

    void bindingsOfAskedPropertiesFollowAnUpdate()
    {
        Test test(m_api, m_jobID, m_testID);
        const std::unique_ptr<QObject> object =
            objectAbout(test, "QtObject { property string shown: test.testStatus + test.site }");
        QCOMPARE(object->property("shown").toString(), QStringLiteral("passBasement"));
        answer("getTestStatus", QStringLiteral("fail"));
        test.updateDataFromAPI();
        QCOMPARE(object->property("shown").toString(), QStringLiteral("failBasement"));
    }

    void testBelongsToCppWithoutAParent()
    {
        Test test(m_api, m_jobID, m_testID);
        QCOMPARE(test.parent(), nullptr);
        QCOMPARE(QQmlEngine::objectOwnership(&test), QQmlEngine::CppOwnership);
    }

    void testOutlivesTheCollectorOfJavaScript()
    {
        const auto test = std::make_shared<Test>(m_api, m_jobID, m_testID);
        QVERIFY(outlivesTheCollector(test.get()));
        QVERIFY(!outlivesTheCollector(new QObject)); // what nobody has marked
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
        Test test(m_api, m_jobID, m_testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        QVERIFY(test.setProperty("manualStepUserResponse", response));
        QCOMPARE(m_journal.take(),
            (QStringList{ testCall(QStringLiteral("getTestResponse")),
                testCall(QStringLiteral("setManualTestResult"), QStringLiteral(", \"%1\", \"\"").arg(response)),
                QStringLiteral("emit manualStepUserResponseChanged()") }));
    }

    void recordedAnswerIsNotWrittenAgain_data()
    {
        QTest::addColumn<QString>("response");
        QTest::newRow("text") << QStringLiteral("yes");
        QTest::newRow("empty") << QString(QLatin1String(""));
    }

    void recordedAnswerIsNotWrittenAgain()
    {
        QFETCH(QString, response);
        answer("getTestResponse", response);
        Test test(m_api, m_jobID, m_testID);
        const SignalRecorder recorder(test, m_journal);
        m_journal.take();
        test.setManualStepUserResponse(response);
        QCOMPARE(m_journal.take(), QStringList{ testCall(QStringLiteral("getTestResponse")) });
    }

    void refusedAnswerIsSilent()
    {
        answer("setManualTestResult", false);
        Test test(m_api, m_jobID, m_testID);
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
        const Test test(m_api, m_jobID, m_testID);
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
        const Test test(m_api, m_jobID, m_testID);
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
        const Test test(m_api, m_jobID, m_testID);
        QCOMPARE(test.hasGuide(), false);
        writeFile(path);
        QCOMPARE(test.hasGuide(), true);
        QVERIFY(QFile::remove(path));
        QCOMPARE(test.hasGuide(), false);
    }

private:
    /// The object that the QML text makes; it may speak of `test`.
    std::unique_ptr<QObject> objectAbout(Test& test, const QByteArray& text)
    {
        m_engine.rootContext()->setContextProperty(QStringLiteral("test"), &test);
        return qmlObject(m_engine, text);
    }

    QQmlEngine m_engine;
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestObjectTest)
#include "TestObjectTest.moc"
