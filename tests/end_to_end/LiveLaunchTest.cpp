#include "tests/end_to_end/LiveManager.h"

#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace jobmanager_ui;

namespace {

/// Longer than anything here waits for.
const std::string forever = "600";

} // namespace

/// Launches of tests over the real client and the real service, with all that may come between, and the sync.
class LiveLaunchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_expectedWarnings.clear(); }

    void cleanup()
    {
        QCOMPARE(m_front->endWithWarnings(), m_expectedWarnings);
        m_front.reset();
    }

    void acceptedLaunchShowsItsResultOnTheSameTest()
    {
        m_front = liveManager({ "--start-seconds", "0.1", "--run-seconds", "0.3" });
        m_front->makeCurrent(testedID);
        const std::shared_ptr<Test> test = m_front->testAt(withoutResult);
        test->setErrorMessage(QStringLiteral("of before"));
        QCOMPARE(test->testStatus(), QString());

        m_front->manager->launchTest(test.get());

        QCOMPARE(m_front->manager->isTestLaunching(), true);
        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->isTestLaunching(), aWhile());
        QCOMPARE(test->errorMessage(), QString());
        m_front->awaitResult(*test);
        QCOMPARE(m_front->job(testedID)->getTest(test->concreteTypeTestID()), test);
    }

    void refusedLaunchIsToldOnItsTest_data()
    {
        QTest::addColumn<QString>("active");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("message");
        const QString notFound = QStringLiteral("Test not available on this device");
        QTest::newRow("no current job") << QString() << withoutResult << notFound;
        QTest::newRow("the current job has no such test") << otherID << withoutResult << notFound;
        QTest::newRow("a manual step") << testedID << manualStep
                                       << QStringLiteral(
                                              "This is a manual step. Answer its question instead of launching it.");
    }

    void refusedLaunchIsToldOnItsTest()
    {
        QFETCH(QString, active);
        QFETCH(int, index);
        m_front = liveManager();
        m_front->makeCurrent(testedID);
        const std::shared_ptr<Test> test = m_front->testAt(index);
        m_front->client.setActiveJob(active);

        launch(test);
        QTEST(test->errorMessage(), "message");
        QCOMPARE(test->errorSeverity(), 0);
        QVERIFY(!m_front->client.isTestRunning());
    }

    void whatTheInstrumentLacksIsToldOnTheTest_data()
    {
        QTest::addColumn<QByteArray>("instrument");
        QTest::addColumn<QByteArray>("test");
        QTest::addColumn<QString>("message");
        const char* const whole = R"("availablePower": 20, "modules": [{"name": "Optical", "version": "3.4"},
            {"name": "Copper", "version": "1.0", "ready": false}], "testTypes": ["otdr"])";
        const auto row = [&](const char* name, const char* requirements, const char* message) {
            const QByteArray test = QByteArray(R"("testType": "otdr", "requirements": )") + requirements;
            QTest::newRow(name) << QByteArray(whole) << test << QString::fromUtf8(message);
        };
        row("an option", R"({"options": ["OTDR-SM"]})", "Missing option OTDR-SM");
        row("power", R"({"power": 20.5})", "Insufficient Power. Turn off a running application");
        row("a module", R"({"modules": [{"name": "Coax"}]})",
            "Test requires Coax module. Ensure the module is properly attached");
        row("the version of a module", R"({"modules": [{"name": "Optical", "version": "3.10"}]})",
            "Test requires version 3.10 on Optical module");
        row("the platform's version", R"({"platformVersion": "24.3"})", "Test requires system software version 24.3");
        row("the companion app", R"({"fieldmate": true})", "Use Velmora Fieldmate to complete test");
        row("a module that is ready", R"({"modules": [{"name": "Copper"}]})",
            "The Copper module cannot fulfill the test at this time");
        row("a configuration file", R"({"configurationFiles": ["otdr/größe.cfg"]})",
            "Missing configuration file otdr/größe.cfg");
        row("requirements as they should be", R"({"power": "much"})",
            "Invalid test configuration requirements/power has to be a number that is not negative.");
        QTest::newRow("the type of test") << QByteArray(whole) << QByteArray(R"("testType": "wifi")")
                                          << QStringLiteral("Test not available on this device");
        QTest::newRow("everything") << QByteArray(R"("fault": "The laser is gone.")")
                                    << QByteArray(R"("testType": "otdr")") << QStringLiteral("The laser is gone.");
    }

    void whatTheInstrumentLacksIsToldOnTheTest()
    {
        QFETCH(QByteArray, instrument);
        QFETCH(QByteArray, test);
        const QTemporaryDir folder;
        const QString instrumentFile = folder.filePath(QStringLiteral("instrument.json"));
        const QString jobFile = folder.filePath(QStringLiteral("needs.job.json"));
        write(instrumentFile, R"({"name": "Tester", "platformVersion": "24.2", )" + instrument + '}');
        write(jobFile, R"({"details": {"id": "needs"}, "tests": [{)" + test + "}]}");
        m_front = liveManager({ "--instrument", instrumentFile.toStdString(), "--load", jobFile.toStdString() });
        m_front->makeCurrent(QStringLiteral("needs"));
        const std::shared_ptr<Test> needy = m_front->testAt(0, QStringLiteral("needs"));

        launch(needy);

        QTEST(needy->errorMessage(), "message");
        QVERIFY(!m_front->client.isTestRunning());
    }

    void launchWhileATestRunsIsToldOnItsTest()
    {
        m_front = liveManager({ "--start-seconds", "0", "--run-seconds", forever });
        m_front->makeCurrent(testedID);
        const std::shared_ptr<Test> running = m_front->testAt(withoutResult);
        const std::shared_ptr<Test> second = m_front->testAt(withResult);
        launch(running);

        launch(second);
        QCOMPARE(second->errorMessage(), QStringLiteral("Another test is still running. Wait until it has finished."));
        QCOMPARE(running->errorMessage(), QString());
    }

    void launchDuringALaunchIsDropped()
    {
        m_front = liveManager({ "--start-seconds", "0.5", "--run-seconds", forever });
        m_front->makeCurrent(testedID);
        const std::shared_ptr<Test> dropped = m_front->testAt(withResult);
        const QSignalSpy announced(m_front->manager.get(), &JobManager::testAboutToLaunch);

        m_front->manager->launchTest(m_front->testAt(withoutResult).get());
        m_front->manager->launchTest(dropped.get());

        QVERIFY(m_front->messages.messages().contains(QStringLiteral("debug: There's already a test launching")));
        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->isTestLaunching(), aWhile());
        QCOMPARE(announced.count(), 1);
        QCOMPARE(dropped->errorMessage(), QString());
    }

    void jobThatIsDeletedDuringItsLaunchGoesQuietly()
    {
        m_front = liveManager({ "--start-seconds", "1", "--run-seconds", "0" });
        m_front->makeCurrent(testedID);
        const QPointer<Job> gone = m_front->job(testedID);
        m_front->manager->launchTest(m_front->testAt(withoutResult).get());
        QTRY_VERIFY_WITH_TIMEOUT(m_front->client.isTestRunning(), aWhile());

        QVERIFY(m_front->manager->deleteJob(gone));

        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->isTestLaunching(), aWhile());
        QTRY_VERIFY_WITH_TIMEOUT(gone.isNull(), aWhile());
        QTRY_VERIFY_WITH_TIMEOUT(!m_front->client.isTestRunning(), aWhile());
        QCOMPARE(m_front->client.jobIds(), QStringList{ otherID });
        QCOMPARE(m_front->manager->currentJob(), nullptr);
    }

    void statusOfAJobThatHasGoneIsLost()
    {
        m_front = liveManagerOverRelay();
        m_front->makeCurrent(testedID);
        const std::shared_ptr<Test> test = m_front->testAt(withoutResult);
        // The launch waits behind a fetch of the list, which no longer has the job.
        m_front->relay->hold("GET /api/v1/jobs");
        m_front->manager->updateDataFromAPI(true);
        QVERIFY(m_front->relay->awaitHeld("GET /api/v1/jobs"));
        m_front->manager->launchTest(test.get());
        m_front->client.deleteJob(testedID);
        m_front->relay->release("GET /api/v1/jobs");

        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->isTestLaunching(), aWhile());

        QCOMPARE(m_front->job(testedID), nullptr);
        QCOMPARE(test->errorMessage(), QString());
        m_expectedWarnings.append(QStringLiteral("warning: Could not find job:  \"%1\"").arg(testedID));
    }

    void serviceKilledDuringALaunchLeavesTheTestLaunchable()
    {
        m_front = liveManager({ "--start-seconds", "50" });
        m_front->makeCurrent(testedID);
        const std::shared_ptr<Test> test = m_front->testAt(withoutResult);
        const QJsonObject before = m_front->client.document(testedID);
        m_front->manager->launchTest(test.get());
        QTRY_VERIFY_WITH_TIMEOUT(m_front->client.isTestRunning(), aWhile());

        m_front->service->kill();

        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->isTestLaunching(), aWhile());
        QCOMPARE(test->errorMessage(), QStringLiteral("Test failed to run"));
        m_front->service->setArguments({ "--start-seconds", "0", "--run-seconds", "0" });
        QVERIFY2(m_front->service->start(), m_front->service->log().c_str());
        QCOMPARE(m_front->client.document(testedID), before);
        QCOMPARE(m_front->client.activeJob(), testedID);

        launch(test);
        QCOMPARE(test->errorMessage(), QString());
        m_front->awaitResult(*test);
    }

    void managerThatEndsDuringALaunchWaitsForIt()
    {
        m_front = liveManager({ "--start-seconds", "1.5", "--run-seconds", forever });
        m_front->makeCurrent(testedID);
        QElapsedTimer time;
        time.start();
        m_front->manager->launchTest(m_front->testAt(withoutResult).get());
        QTRY_VERIFY_WITH_TIMEOUT(m_front->client.isTestRunning(), aWhile());

        m_front->manager.reset();

        QVERIFY2(time.elapsed() >= 1500, qPrintable(QString::number(time.elapsed())));
        QVERIFY(m_front->client.isTestRunning());
    }

    void twoSyncsHoldTheWorkerOneAfterTheOther()
    {
        m_front = liveManager();
        QElapsedTimer time;
        time.start();
        m_front->manager->syncWithNimbrel();
        m_front->manager->syncWithNimbrel();
        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->isSyncInProgress(), aWhile());
        QVERIFY(time.elapsed() >= 2000);

        m_front->client.createJob(QStringLiteral("new"));

        QTRY_VERIFY_WITH_TIMEOUT(m_front->job(QStringLiteral("new")), aWhile());
        QVERIFY2(time.elapsed() >= 4000, qPrintable(QString::number(time.elapsed())));
        QVERIFY(m_front->messages.messages().contains(
            QStringLiteral("debug: Query request ignored because a request is in progress")));
    }

    void launchWithoutAnAnswerFailsAndStillShowsItsResult()
    {
        m_front = liveManagerOverRelay({ "--start-seconds", "0", "--run-seconds", "0.5" });
        m_front->makeCurrent(testedID);
        const std::shared_ptr<Test> test = m_front->testAt(withoutResult);
        m_front->relay->loseAnswers("POST /api/v1/launches");

        launch(test);
        QCOMPARE(test->errorMessage(), QStringLiteral("Test failed to run"));
        m_front->awaitResult(*test);
        QCOMPARE(m_front->relay->count("POST /api/v1/launches"), 1);
        QCOMPARE(test->errorMessage(), QString());
    }

private:
    static void write(const QString& fileName, const QByteArray& text)
    {
        QFile file(fileName);
        QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
        file.write(text);
    }

    /// Launches the test and waits for the outcome of the launch.
    void launch(const std::shared_ptr<Test>& test)
    {
        m_front->manager->launchTest(test.get());
        QVERIFY(m_front->manager->isTestLaunching());
        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->isTestLaunching(), aWhile());
    }

    std::unique_ptr<LiveManager> m_front;
    QStringList m_expectedWarnings;
};

QTEST_GUILESS_MAIN(LiveLaunchTest)
#include "LiveLaunchTest.moc"
