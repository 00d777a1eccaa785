#include "api/rest/JobManagerRestAPI.h"
#include "core/JobManager.h"
#include "tests/end_to_end/Bounds.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/end_to_end/ServiceRelay.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/ServiceProcess.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

using jobmanager_test::MessageCollector;
using jobmanager_test::ServiceProcess;
using namespace jobmanager_ui;

namespace {

/// For waits whose length is of no matter.
int aWhile()
{
    return stretched(10000);
}

/// Longer than anything here waits for.
const std::string forever = "600";

const QString newID = QStringLiteral("WO / größer #1");
const QString testedID = QStringLiteral("WO-2026-004711");
/// The indexes of tests of that job: one with a result, one without, a manual step.
constexpr int withResult = 1;
constexpr int withoutResult = 2;
constexpr int manualStep = 4;
/// A job with two tests.
const QString otherID = QStringLiteral("WO-2026-004512");

QString percentEncoded(const QString& id)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(id));
}

std::string jobRoute(const std::string& method, const QString& id, const std::string& rest = {})
{
    return method + " /api/v1/jobs/" + percentEncoded(id).toStdString() + rest;
}

} // namespace

/// What the front end asks the service to do, over the real client and the real service: the round trips, launches with
/// all that may come between, and writes whose answers are lost on the way.
class LiveOperationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // Jobs.
    void currentJobIsUpToDateWhenTheRequestHasEnded();
    void currentJobIsGivenUp();
    void currentJobThatTheServiceDoesNotKnowStaysAsItWas();
    void createdJobIsCurrentAtOnceAndAnnouncedWhenItHasARow();
    void createdJobKeepsItsTechnicianAndWhetherItIsSynced();
    void jobFromATemplateHasItsTests();
    void jobThatTheServiceRefusesIsNotAnnounced_data();
    void jobThatTheServiceRefusesIsNotAnnounced();
    void deletedJobIsGoneAndNoLongerCurrent();
    void jobThatAnotherClientHasDeletedIsNotDeletedAgain();
    void archivedCurrentJobIsCurrentNoMoreAndComesBack();

    // Launches.
    void acceptedLaunchShowsItsResultOnTheSameTest();
    void refusedLaunchIsToldOnItsTest_data();
    void refusedLaunchIsToldOnItsTest();
    void launchWhileATestRunsIsToldOnItsTest();
    void launchDuringALaunchIsDropped();
    void jobThatIsDeletedDuringItsLaunchGoesQuietly();
    void statusOfAJobThatHasGoneIsLost();
    void serviceKilledDuringALaunchLeavesTheTestLaunchable();
    void managerThatEndsDuringALaunchWaitsForIt();
    void twoSyncsHoldTheWorkerOneAfterTheOther();

    // Writes whose answers are lost.
    void lostAnswerIsNeitherRepeatedNorBelieved_data();
    void lostAnswerIsNeitherRepeatedNorBelieved();
    void activationWithoutAnAnswerAnnouncesNothing();
    void launchWithoutAnAnswerFailsAndStillShowsItsResult();

private:
    void startService(const std::vector<std::string>& options = {});
    void startManager(unsigned short port);
    void startManager() { startManager(m_service->port()); }
    void startRelay();
    void openTests(const QString& jobID);
    void makeCurrent(const QString& jobID);
    Job* job(const QString& jobID) const { return m_manager->getJob(jobID); }
    /// The test of the job `testedID` with this index, or the last of its locations.
    std::shared_ptr<Test> testAt(int index) const;
    void awaitResult(const Test& test);
    QString currentID() const;

    std::unique_ptr<MessageCollector> m_messages;
    QStringList m_expectedWarnings;
    std::unique_ptr<ServiceProcess> m_service;
    std::unique_ptr<ServiceRelay> m_relay;
    JobServiceClient m_client{ 0 };
    std::unique_ptr<JobManager> m_manager;
};

void LiveOperationsTest::init()
{
    m_messages = std::make_unique<MessageCollector>();
    m_expectedWarnings.clear();
}

void LiveOperationsTest::cleanup()
{
    m_manager.reset();
    m_relay.reset();
    m_service.reset();
    QCOMPARE(m_messages->take().filter(QStringLiteral("warning: ")), m_expectedWarnings);
    m_messages.reset();
}

void LiveOperationsTest::startService(const std::vector<std::string>& options)
{
    std::vector<std::string> arguments{ "--load", JOBMANAGER_SAMPLES "/templates", "--load",
        JOBMANAGER_SAMPLES "/jobs/" + testedID.toStdString() + ".job.json", "--load",
        JOBMANAGER_SAMPLES "/jobs/" + otherID.toStdString() + ".job.json" };
    arguments.insert(arguments.end(), options.begin(), options.end());
    m_service = std::make_unique<ServiceProcess>(arguments);
    QVERIFY2(m_service->start(), m_service->log().c_str());
    m_client = JobServiceClient(m_service->port());
}

void LiveOperationsTest::startManager(unsigned short port)
{
    m_manager = std::make_unique<JobManager>(std::make_shared<JobManagerRestAPI>("127.0.0.1", port));
    m_manager->initialize();
    QTRY_COMPARE_WITH_TIMEOUT(m_manager->rowCount(), 2, aWhile());
}

void LiveOperationsTest::startRelay()
{
    m_relay = std::make_unique<ServiceRelay>(m_service->port(), static_cast<unsigned short>(0));
}

void LiveOperationsTest::openTests(const QString& jobID)
{
    QTRY_VERIFY_WITH_TIMEOUT(job(jobID)->tests() != nullptr, aWhile());
}

void LiveOperationsTest::makeCurrent(const QString& jobID)
{
    m_client.setActiveJob(jobID);
    QTRY_COMPARE_WITH_TIMEOUT(currentID(), jobID, aWhile());
    openTests(jobID);
}

std::shared_ptr<Test> LiveOperationsTest::testAt(int index) const
{
    std::shared_ptr<Test> found;
    const QAbstractItemModel* const tests = job(testedID)->tests();
    for (int row = 0; row < tests->rowCount(); ++row) {
        const auto* const test = tests->index(row, 0).data(TestList::Test).value<Test*>();
        if (test->testIndex() == index) {
            found = job(testedID)->getTest(test->concreteTypeTestID());
        }
    }
    return found;
}

/// Until the list of tests has been read anew: the status alone may be ahead of it.
void LiveOperationsTest::awaitResult(const Test& test)
{
    QTRY_VERIFY_WITH_TIMEOUT(job(testedID)->tests() != nullptr && test.testTime().isValid(), aWhile());
    QVERIFY(!test.testStatus().isEmpty());
}

QString LiveOperationsTest::currentID() const
{
    return m_manager->currentJob() == nullptr ? QString() : m_manager->currentJob()->concreteTypeJobID();
}

void LiveOperationsTest::currentJobIsUpToDateWhenTheRequestHasEnded()
{
    startService();
    startManager();
    QString currentAtTheEnd;
    connect(m_manager.get(), &JobManager::settingCurrentJobChanged, this, [&] { currentAtTheEnd = currentID(); });

    QVERIFY(m_manager->setCurrentJob(job(testedID)));

    QCOMPARE(m_manager->settingCurrentJob(), true);
    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->settingCurrentJob(), aWhile());
    QCOMPARE(currentAtTheEnd, testedID);
    QCOMPARE(m_client.activeJob(), testedID);
    QCOMPARE(m_manager->requiredJobs()->rowCount() + m_manager->archivedJobs()->rowCount(), 1);
}

void LiveOperationsTest::currentJobIsGivenUp()
{
    startService();
    startManager();
    makeCurrent(testedID);

    QVERIFY(m_manager->unsetCurrentJob());

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->settingCurrentJob(), aWhile());
    QCOMPARE(m_manager->currentJob(), nullptr);
    QCOMPARE(m_client.activeJob(), QString());
}

void LiveOperationsTest::currentJobThatTheServiceDoesNotKnowStaysAsItWas()
{
    startService();
    startManager();
    makeCurrent(testedID);
    m_manager->setPauseAutomaticUpdates(true);
    m_client.deleteJob(otherID);
    const int count = m_client.changeCount();

    QVERIFY(m_manager->setCurrentJob(job(otherID)));

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->settingCurrentJob(), aWhile());
    QCOMPARE(currentID(), testedID);
    QCOMPARE(m_client.activeJob(), testedID);
    QCOMPARE(m_client.changeCount(), count);
}

void LiveOperationsTest::createdJobIsCurrentAtOnceAndAnnouncedWhenItHasARow()
{
    startService();
    startManager();
    QStringList announced;
    connect(m_manager.get(), &JobManager::newJobCreated, this, [&](Job* created) {
        announced.append(created->concreteTypeJobID());
        QVERIFY(m_manager->isCurrentJob(created));
    });

    QVERIFY(m_manager->createNewJob(newID, QStringLiteral("T-7")));

    QCOMPARE(m_client.activeJob(), newID);
    QTRY_COMPARE_WITH_TIMEOUT(announced, QStringList{ newID }, aWhile());
    QCOMPARE(m_manager->currentJob(), job(newID));
    QCOMPARE(m_manager->rowCount(), 3);
}

void LiveOperationsTest::createdJobKeepsItsTechnicianAndWhetherItIsSynced()
{
    startService();
    startManager();

    QVERIFY(m_manager->createNewJob(newID, QStringLiteral("T-7"), QString(), QString(), false));
    QVERIFY(m_manager->createNewJob(QStringLiteral("synced"), QStringLiteral("T-8")));

    const QJsonObject details = m_client.document(newID).value(QLatin1String("details")).toObject();
    QCOMPARE(details.value(QLatin1String("techInfo")).toObject().value(QLatin1String("techId")).toString(),
        QStringLiteral("T-7"));
    QCOMPARE(details.value(QLatin1String("syncToNimbrel")), QJsonValue(false));
    const QJsonObject synced = m_client.document(QStringLiteral("synced")).value(QLatin1String("details")).toObject();
    QCOMPARE(synced.value(QLatin1String("syncToNimbrel")), QJsonValue(true));
}

void LiveOperationsTest::jobFromATemplateHasItsTests()
{
    startService();
    startManager();

    QVERIFY(m_manager->createNewJob(newID, QStringLiteral("T-7"), QStringLiteral("Ethernet activation")));

    QTRY_VERIFY_WITH_TIMEOUT(job(newID), aWhile());
    openTests(newID);
    QCOMPARE(job(newID)->tests()->rowCount(), 6);
    QCOMPARE(job(newID)->workOrderLabel(), QStringLiteral("Activation"));
}

void LiveOperationsTest::jobThatTheServiceRefusesIsNotAnnounced_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("templateName");
    QTest::newRow("number in use, which no update has seen") << newID << QString();
    QTest::newRow("no such template") << QStringLiteral("other") << QStringLiteral("no such template");
    QTest::newRow("number with a line end") << QStringLiteral("a\nb") << QString();
    QTest::newRow("number of 10,000 characters") << QString(10000, QLatin1Char('x')) << QString();
}

void LiveOperationsTest::jobThatTheServiceRefusesIsNotAnnounced()
{
    QFETCH(QString, number);
    QFETCH(QString, templateName);
    startService();
    startManager();
    const QSignalSpy announced(m_manager.get(), &JobManager::newJobCreated);
    m_manager->setPauseAutomaticUpdates(true);
    m_client.createJob(newID);

    QCOMPARE(m_manager->createNewJob(number, QStringLiteral("T-7"), templateName), false);

    m_manager->setPauseAutomaticUpdates(false);
    QTRY_COMPARE_WITH_TIMEOUT(m_manager->rowCount(), 3, aWhile());
    QCOMPARE(announced.count(), 0);
    QCOMPARE(m_manager->currentJob(), nullptr);
}

void LiveOperationsTest::deletedJobIsGoneAndNoLongerCurrent()
{
    startService();
    startManager();
    makeCurrent(testedID);
    const QPointer<Job> gone = job(testedID);

    QVERIFY(m_manager->deleteJob(gone));

    QCOMPARE(m_client.jobIds(), QStringList{ otherID });
    QTRY_VERIFY_WITH_TIMEOUT(gone.isNull(), aWhile());
    QCOMPARE(m_manager->currentJob(), nullptr);
    QCOMPARE(m_manager->rowCount(), 1);
}

void LiveOperationsTest::jobThatAnotherClientHasDeletedIsNotDeletedAgain()
{
    startService();
    startManager();
    m_manager->setPauseAutomaticUpdates(true);
    m_client.deleteJob(testedID);

    QCOMPARE(m_manager->deleteJob(job(testedID)), false);
}

void LiveOperationsTest::archivedCurrentJobIsCurrentNoMoreAndComesBack()
{
    startService();
    startManager();
    makeCurrent(testedID);

    job(testedID)->setIsArchived(true);

    QCOMPARE(m_client.activeJob(), QString());
    QTRY_COMPARE_WITH_TIMEOUT(m_manager->archivedJobs()->rowCount(), 1, aWhile());
    QCOMPARE(m_manager->currentJob(), nullptr);

    job(testedID)->setIsArchived(false);

    QTRY_COMPARE_WITH_TIMEOUT(m_manager->requiredJobs()->rowCount(), 2, aWhile());
    QCOMPARE(m_client.summary(testedID).value(QLatin1String("archived")), QJsonValue(false));
}

void LiveOperationsTest::acceptedLaunchShowsItsResultOnTheSameTest()
{
    startService({ "--start-seconds", "0.1", "--run-seconds", "0.3" });
    startManager();
    makeCurrent(testedID);
    const std::shared_ptr<Test> test = testAt(withoutResult);
    test->setErrorMessage(QStringLiteral("of before"));
    QCOMPARE(test->testStatus(), QString());

    m_manager->launchTest(test.get());

    QCOMPARE(m_manager->isTestLaunching(), true);
    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QCOMPARE(test->errorMessage(), QString());
    awaitResult(*test);
    QCOMPARE(job(testedID)->getTest(test->concreteTypeTestID()), test);
}

void LiveOperationsTest::refusedLaunchIsToldOnItsTest_data()
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

void LiveOperationsTest::refusedLaunchIsToldOnItsTest()
{
    QFETCH(QString, active);
    QFETCH(int, index);
    startService();
    startManager();
    makeCurrent(testedID);
    const std::shared_ptr<Test> test = testAt(index);
    m_client.setActiveJob(active);

    m_manager->launchTest(test.get());

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QTEST(test->errorMessage(), "message");
    QCOMPARE(test->errorSeverity(), 0);
    QVERIFY(!m_client.isTestRunning());
}

void LiveOperationsTest::launchWhileATestRunsIsToldOnItsTest()
{
    startService({ "--start-seconds", "0", "--run-seconds", forever });
    startManager();
    makeCurrent(testedID);
    const std::shared_ptr<Test> running = testAt(withoutResult);
    const std::shared_ptr<Test> second = testAt(withResult);
    m_manager->launchTest(running.get());
    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());

    m_manager->launchTest(second.get());

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QCOMPARE(second->errorMessage(), QStringLiteral("Another test is still running. Wait until it has finished."));
    QCOMPARE(running->errorMessage(), QString());
}

void LiveOperationsTest::launchDuringALaunchIsDropped()
{
    startService({ "--start-seconds", "0.5", "--run-seconds", forever });
    startManager();
    makeCurrent(testedID);
    const std::shared_ptr<Test> dropped = testAt(withResult);
    const QSignalSpy announced(m_manager.get(), &JobManager::testAboutToLaunch);

    m_manager->launchTest(testAt(withoutResult).get());
    m_manager->launchTest(dropped.get());

    QVERIFY(m_messages->messages().contains(QStringLiteral("debug: There's already a test launching")));
    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QCOMPARE(announced.count(), 1);
    QCOMPARE(dropped->errorMessage(), QString());
}

void LiveOperationsTest::jobThatIsDeletedDuringItsLaunchGoesQuietly()
{
    startService({ "--start-seconds", "1", "--run-seconds", "0" });
    startManager();
    makeCurrent(testedID);
    const QPointer<Job> gone = job(testedID);
    m_manager->launchTest(testAt(withoutResult).get());
    QTRY_VERIFY_WITH_TIMEOUT(m_client.isTestRunning(), aWhile());

    QVERIFY(m_manager->deleteJob(gone));

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QTRY_VERIFY_WITH_TIMEOUT(gone.isNull(), aWhile());
    QTRY_VERIFY_WITH_TIMEOUT(!m_client.isTestRunning(), aWhile());
    QCOMPARE(m_client.jobIds(), QStringList{ otherID });
    QCOMPARE(m_manager->currentJob(), nullptr);
}

void LiveOperationsTest::statusOfAJobThatHasGoneIsLost()
{
    startService();
    startRelay();
    startManager(m_relay->port());
    makeCurrent(testedID);
    const std::shared_ptr<Test> test = testAt(withoutResult);
    // The launch waits behind a fetch of the list, which no longer has the job.
    m_relay->hold("GET /api/v1/jobs");
    m_manager->updateDataFromAPI(true);
    QVERIFY(m_relay->awaitHeld("GET /api/v1/jobs"));
    m_manager->launchTest(test.get());
    m_client.deleteJob(testedID);
    m_relay->release("GET /api/v1/jobs");

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());

    QCOMPARE(job(testedID), nullptr);
    QCOMPARE(test->errorMessage(), QString());
    m_expectedWarnings.append(QStringLiteral("warning: Could not find job:  \"%1\"").arg(testedID));
}

void LiveOperationsTest::serviceKilledDuringALaunchLeavesTheTestLaunchable()
{
    startService({ "--start-seconds", "50" });
    startManager();
    makeCurrent(testedID);
    const std::shared_ptr<Test> test = testAt(withoutResult);
    const QJsonObject before = m_client.document(testedID);
    m_manager->launchTest(test.get());
    QTRY_VERIFY_WITH_TIMEOUT(m_client.isTestRunning(), aWhile());

    m_service->kill();

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QCOMPARE(test->errorMessage(), QStringLiteral("Test failed to run"));
    m_service->setArguments({ "--start-seconds", "0", "--run-seconds", "0" });
    QVERIFY2(m_service->start(), m_service->log().c_str());
    QCOMPARE(m_client.document(testedID), before);
    QCOMPARE(m_client.activeJob(), testedID);

    m_manager->launchTest(test.get());

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QCOMPARE(test->errorMessage(), QString());
    awaitResult(*test);
}

void LiveOperationsTest::managerThatEndsDuringALaunchWaitsForIt()
{
    startService({ "--start-seconds", "1.5", "--run-seconds", forever });
    startManager();
    makeCurrent(testedID);
    QElapsedTimer time;
    time.start();
    m_manager->launchTest(testAt(withoutResult).get());
    QTRY_VERIFY_WITH_TIMEOUT(m_client.isTestRunning(), aWhile());

    m_manager.reset();

    QVERIFY2(time.elapsed() >= 1500, qPrintable(QString::number(time.elapsed())));
    QVERIFY(m_client.isTestRunning());
}

void LiveOperationsTest::twoSyncsHoldTheWorkerOneAfterTheOther()
{
    startService();
    startManager();
    QElapsedTimer time;
    time.start();
    m_manager->syncWithNimbrel();
    m_manager->syncWithNimbrel();
    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isSyncInProgress(), aWhile());
    QVERIFY(time.elapsed() >= 2000);

    m_client.createJob(newID);

    QTRY_VERIFY_WITH_TIMEOUT(job(newID), aWhile());
    QVERIFY2(time.elapsed() >= 4000, qPrintable(QString::number(time.elapsed())));
    QVERIFY(m_messages->messages().contains(
        QStringLiteral("debug: Query request ignored because a request is in progress")));
}

using Write = std::function<void(JobManager& manager)>;
using Truth = std::function<bool(JobManager& manager)>;
Q_DECLARE_METATYPE(Write)
Q_DECLARE_METATYPE(Truth)

void LiveOperationsTest::lostAnswerIsNeitherRepeatedNorBelieved_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<Write>("write");
    QTest::addColumn<Truth>("shows");
    const auto row = [](const char* name, const std::string& route, const Write& write, const Truth& shows) {
        QTest::newRow(name) << QString::fromStdString(route) << write << shows;
    };
    row(
        "create", "POST /api/v1/jobs",
        [](JobManager& manager) { QCOMPARE(manager.createNewJob(newID, QStringLiteral("T-7")), false); },
        [](JobManager& manager) { return manager.doesJobExist(newID); });
    row(
        "delete", jobRoute("DELETE", testedID),
        [](JobManager& manager) { QCOMPARE(manager.deleteJob(manager.getJob(testedID)), false); },
        [](JobManager& manager) { return !manager.doesJobExist(testedID); });
    row(
        "archive", jobRoute("POST", testedID, "/archive"),
        [](JobManager& manager) { manager.getJob(testedID)->setIsArchived(true); },
        [](JobManager& manager) { return manager.getJob(testedID)->isArchived(); });
    row(
        "make current", "PUT /api/v1/active-job",
        [](JobManager& manager) { QCOMPARE(manager.setCurrentJob(manager.getJob(testedID)), true); },
        [](JobManager& manager) { return manager.isCurrentJob(manager.getJob(testedID)); });
}

void LiveOperationsTest::lostAnswerIsNeitherRepeatedNorBelieved()
{
    QFETCH(QString, route);
    QFETCH(Write, write);
    QFETCH(Truth, shows);
    startService();
    startRelay();
    startManager(m_relay->port());
    const QSignalSpy announced(m_manager.get(), &JobManager::newJobCreated);
    m_relay->loseAnswers(route.toStdString());
    const int count = m_client.changeCount();

    write(*m_manager);

    QVERIFY(!shows(*m_manager));
    QTRY_VERIFY_WITH_TIMEOUT(shows(*m_manager), aWhile());
    QCOMPARE(m_relay->count(route.toStdString()), 1);
    QCOMPARE(m_client.changeCount(), count + 1);
    QCOMPARE(announced.count(), 0);
}

void LiveOperationsTest::activationWithoutAnAnswerAnnouncesNothing()
{
    startService();
    startRelay();
    startManager(m_relay->port());
    const QSignalSpy announced(m_manager.get(), &JobManager::newJobCreated);
    m_relay->loseAnswers("PUT /api/v1/active-job");

    QCOMPARE(m_manager->createNewJob(newID, QStringLiteral("T-7")), false);

    QTRY_COMPARE_WITH_TIMEOUT(currentID(), newID, aWhile());
    QCOMPARE(announced.count(), 0);
    QCOMPARE(m_relay->count("POST /api/v1/jobs"), 1);
    QCOMPARE(m_relay->count("PUT /api/v1/active-job"), 1);
}

void LiveOperationsTest::launchWithoutAnAnswerFailsAndStillShowsItsResult()
{
    startService({ "--start-seconds", "0", "--run-seconds", "0.5" });
    startRelay();
    startManager(m_relay->port());
    makeCurrent(testedID);
    const std::shared_ptr<Test> test = testAt(withoutResult);
    m_relay->loseAnswers("POST /api/v1/launches");

    m_manager->launchTest(test.get());

    QTRY_VERIFY_WITH_TIMEOUT(!m_manager->isTestLaunching(), aWhile());
    QCOMPARE(test->errorMessage(), QStringLiteral("Test failed to run"));
    awaitResult(*test);
    QCOMPARE(m_relay->count("POST /api/v1/launches"), 1);
    QCOMPARE(test->errorMessage(), QString());
}

QTEST_GUILESS_MAIN(LiveOperationsTest)
#include "LiveOperationsTest.moc"
