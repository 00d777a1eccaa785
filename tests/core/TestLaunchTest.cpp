#include "tests/core/RecordedManager.h"
#include "tests/models/ScriptedTests.h"
#include "tests/support/Deadline.h"
#include "tests/support/OtherWords.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString idA = QStringLiteral("A");
const QString idB = QStringLiteral("B");

} // namespace

/// Launching tests, and the sync: two jobs, of which "A" has the tests 0 and 1. Without start there is no worker, and
/// a launch ends when the test says so.
class TestLaunchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_front = std::make_unique<RecordedManager>();
        setTests(*m_front->api, idA, testsAt({ QStringLiteral("x"), QStringLiteral("y") }));
        m_front->rebuild({ idA, idB });
        m_test = test(1);
        m_front->take();
    }

    void cleanup()
    {
        m_test.reset();
        m_front.reset();
    }

    // The beginning.

    void launchIsAnnouncedPreparedAndSentInOrder()
    {
        m_front->manager.launchTest(m_test.get());
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit testAboutToLaunch(<>)
emit isTestLaunchingChanged()
call prepareForLaunchTest("A", 1)
emit launchTestSignal("A", 1))"));
        QCOMPARE(m_front->manager.isTestLaunching(), true);
    }

    void launchIsNamedByItsIds()
    {
        QVariantList sent;
        connect(
            &m_front->manager, &JobManager::launchTestSignal, this, [&](const QVariant& jobID, const QVariant& testID) {
                sent = { jobID, testID };
            });
        m_front->manager.launchTest(m_test.get());
        QCOMPARE(sent.size(), 2);
        QCOMPARE(sent.first().userType(), int(QMetaType::QString));
        QCOMPARE(sent.last().userType(), int(QMetaType::LongLong));
    }

    void announcementNamesTheTestWhileNothingLaunchesYet()
    {
        QList<bool> launching;
        const Test* announced = nullptr;
        connect(&m_front->manager, &JobManager::testAboutToLaunch, this, [&](const Test* about) {
            announced = about;
            launching.append(m_front->manager.isTestLaunching());
        });
        connect(&m_front->manager, &JobManager::isTestLaunchingChanged, this,
            [&] { launching.append(m_front->manager.isTestLaunching()); });
        m_front->manager.launchTest(m_test.get());
        QCOMPARE(announced, m_test.get());
        QCOMPARE(launching, (QList<bool>{ false, true }));
    }

    void noTestIsNotLaunched()
    {
        m_front->manager.launchTest(nullptr);
        QCOMPARE(m_front->take(), QStringLiteral("debug: Can't launch a NULL test"));
        QCOMPARE(m_front->manager.isTestLaunching(), false);
    }

    void secondLaunchIsDroppedWhileOneRuns()
    {
        m_front->manager.launchTest(m_test.get());
        m_front->take();
        m_front->manager.launchTest(test(0).get());
        m_front->manager.launchTest(m_test.get());
        QCOMPARE(m_front->take(),
            QStringLiteral("debug: There's already a test launching\ndebug: There's already a test launching"));
        QCOMPARE(m_front->manager.isTestLaunching(), true);
    }

    void noTestIsNamedBeforeARunningLaunchIs()
    {
        m_front->manager.launchTest(m_test.get());
        m_front->take();
        m_front->manager.launchTest(nullptr);
        QCOMPARE(m_front->take(), QStringLiteral("debug: Can't launch a NULL test"));
    }

    void launchFromTheAnnouncementOfAnotherIsDropped()
    {
        const std::shared_ptr<Test> other = test(0);
        connect(
            &m_front->manager, &JobManager::testAboutToLaunch, this, [&] { m_front->manager.launchTest(other.get()); });
        m_front->take();
        m_front->manager.launchTest(m_test.get());
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit testAboutToLaunch(<>)
debug: There's already a test launching
emit isTestLaunchingChanged()
call prepareForLaunchTest("A", 1)
emit launchTestSignal("A", 1))"));
    }

    void testThatGoesAtItsAnnouncementIsLaunchedByItsIds()
    {
        const QPointer<Test> gone = m_test.get();
        m_test.reset();
        connect(&m_front->manager, &JobManager::testAboutToLaunch, this, [&] { m_front->rebuild({ idB }); });
        m_front->manager.launchTest(gone);
        QVERIFY(gone.isNull());
        QVERIFY(m_front->api->journal().contains(QStringLiteral("call prepareForLaunchTest(\"A\", 1)")));
        QVERIFY(m_front->api->journal().contains(QStringLiteral("emit launchTestSignal(\"A\", 1)")));
    }

    void launchIsPossibleAgainWhenOneHasEnded()
    {
        m_front->manager.launchTest(m_test.get());
        finish({});
        m_front->take();
        m_front->manager.launchTest(m_test.get());
        QCOMPARE(m_front->api->count(QStringLiteral("prepareForLaunchTest")), 1);
    }

    // The end.

    void refusedLaunchIsToldOnItsTest()
    {
        m_front->manager.launchTest(m_test.get());
        finish(QStringLiteral("ERROR_POWER"));
        QCOMPARE(m_test->errorMessage(), QStringLiteral("Insufficient Power. Turn off a running application"));
        QCOMPARE(m_test->errorSeverity(), 0);
        QCOMPARE(test(0)->errorMessage(), QString());
        QCOMPARE(m_front->manager.isTestLaunching(), false);
    }

    void endIsLoggedThenToldOnTheTestAndThenTheFlagFalls()
    {
        m_front->manager.launchTest(m_test.get());
        m_test->setErrorSeverity(5);
        const SignalRecorder recorder(*m_test, m_front->api->journal(), QStringLiteral("test: "));
        m_front->take();
        finish(QStringLiteral("ERROR_OPTION^x"));
        QCOMPARE(m_front->take(),
            QStringLiteral("debug: Test from job  QVariant(QString, \"A\")  with id  QVariant(qlonglong, 1)  finished "
                           "with status:  \"ERROR_OPTION^x\"\n"
                           "emit test: errorMessageChanged()\n"
                           "emit test: errorSeverityChanged()\n"
                           "emit isTestLaunchingChanged()"));
    }

    void messageStaysInTheLanguageOfTheEnd()
    {
        const QString translated = QStringLiteral("anders: Insufficient Power. Turn off a running application");
        m_front->manager.launchTest(m_test.get());
        {
            const OtherWords translator;
            finish(QStringLiteral("ERROR_POWER"));
        }
        QCOMPARE(m_test->errorMessage(), translated);
        m_front->rebuild({ idA, idB });
        QCOMPARE(test(1), m_test);
        QCOMPARE(m_test->errorMessage(), translated);
    }

    void acceptedLaunchClearsAnEarlierError()
    {
        m_test->setErrorMessage(QStringLiteral("of before"));
        m_test->setErrorSeverity(5);
        m_front->manager.launchTest(m_test.get());
        finish({});
        QCOMPARE(m_test->errorMessage(), QString());
        QCOMPARE(m_test->errorSeverity(), 0);
    }

    void statusOfAJobThatHasGoneIsLost()
    {
        m_front->manager.launchTest(m_test.get());
        m_front->rebuild({ idB });
        m_front->take();
        finish(QStringLiteral("ERROR_POWER"));
        QCOMPARE(m_front->take(),
            QStringLiteral("debug: Test from job  QVariant(QString, \"A\")  with id  QVariant(qlonglong, 1)  finished "
                           "with status:  \"ERROR_POWER\"\n"
                           "warning: Could not find job:  \"A\"\n"
                           "emit isTestLaunchingChanged()"));
        QCOMPARE(m_front->manager.isTestLaunching(), false);
    }

    void statusOfATestThatHasGoneIsLost()
    {
        m_front->manager.launchTest(m_test.get());
        setTests(*m_front->api, idA, testsAt({ QStringLiteral("x") }));
        m_front->rebuild({ idA, idB });
        finish(QStringLiteral("ERROR_POWER"));
        const QStringList entries = m_front->api->journal().take();
        QCOMPARE(lines(entries.mid(entries.size() - 2)),
            QStringLiteral("warning: Could not find test:  1\nemit isTestLaunchingChanged()"));
        QCOMPARE(m_front->manager.isTestLaunching(), false);
    }

    void statusReachesTheTestAsItStandsAtThatMoment()
    {
        m_front->manager.launchTest(m_test.get());
        m_front->rebuild({ idB });
        m_front->rebuild({ idB, idA });
        finish(QStringLiteral("ERROR_POWER"));
        QVERIFY(test(1) != m_test);
        QCOMPARE(test(1)->errorMessage(), QStringLiteral("Insufficient Power. Turn off a running application"));
        QCOMPARE(m_test->errorMessage(), QString());
    }

    void idsThatDoNotConvertAreNobodys_data()
    {
        QTest::addColumn<QVariant>("jobID");
        QTest::addColumn<QVariant>("testID");
        QTest::addColumn<QString>("warning");
        QTest::newRow("a list as the job")
            << QVariant(QVariantList{ idA }) << QVariant(1LL) << "warning: Could not find job:  \"\"";
        QTest::newRow("nothing as the job") << QVariant() << QVariant(1LL) << "warning: Could not find job:  \"\"";
        QTest::newRow("a list as the test")
            << QVariant(idB) << QVariant(QVariantList{ 1 }) << "warning: Could not find test:  0";
        QTest::newRow("a text as the test")
            << QVariant(idB) << QVariant(QStringLiteral("x")) << "warning: Could not find test:  0";
    }

    void idsThatDoNotConvertAreNobodys()
    {
        QFETCH(QVariant, jobID);
        QFETCH(QVariant, testID);
        QFETCH(QString, warning);
        m_front->manager.onTestLaunchFinished(jobID, testID, {});
        QVERIFY(m_front->api->journal().contains(warning));
    }

    void idsAreConvertedWhereTheyCanBe()
    {
        m_front->manager.onTestLaunchFinished(
            QByteArray("A"), QStringLiteral("1"), QStringLiteral("ERROR_CUSTOM_FATAL^no"));
        QCOMPARE(m_test->errorMessage(), QStringLiteral("no"));
    }

    void jobThatGoesAtTheMessageHarmsNothing()
    {
        m_front->manager.launchTest(m_test.get());
        const QPointer<Test> gone = m_test.get();
        m_test.reset();
        connect(gone, &Test::errorMessageChanged, this, [&] { m_front->rebuild({}); });
        finish(QStringLiteral("ERROR_POWER"));
        QVERIFY(gone.isNull());
        QCOMPARE(m_front->manager.isTestLaunching(), false);
    }

    // Through the worker.

    void launchRunsOnTheWorkerAndItsStatusComesBack()
    {
        m_front->start();
        m_front->api->setAnswer(QStringLiteral("launchTest"), QStringLiteral("ERROR_MODULE^OTDR"));
        m_front->manager.launchTest(m_test.get());
        QTRY_VERIFY(!m_front->manager.isTestLaunching());
        QCOMPARE(m_test->errorMessage(),
            QStringLiteral("Test requires OTDR module. Ensure the module is properly attached"));
        const QStringList entries = m_front->api->journal().take();
        const int prepared = entries.indexOf(QStringLiteral("call prepareForLaunchTest(\"A\", 1)"));
        const int launched = entries.indexOf(QStringLiteral("call launchTest(\"A\", 1) on worker"));
        QVERIFY(prepared >= 0);
        QVERIFY(launched > prepared);
    }

    void jobThatGoesDuringTheLaunchLosesItsStatus()
    {
        m_front->start();
        m_front->api->hold(QStringLiteral("launchTest"));
        m_front->manager.launchTest(m_test.get());
        QVERIFY(m_front->api->waitUntilHeld(QStringLiteral("launchTest")));
        m_front->rebuild({ idB });
        m_front->api->release(QStringLiteral("launchTest"));
        QTRY_VERIFY(!m_front->manager.isTestLaunching());
        QVERIFY(m_front->api->journal().contains(QStringLiteral("warning: Could not find job:  \"A\"")));
    }

    void pollStandsAsideDuringTheLaunch()
    {
        m_front->start();
        m_front->api->hold(QStringLiteral("launchTest"));
        m_front->manager.launchTest(m_test.get());
        QVERIFY(m_front->api->waitUntilHeld(QStringLiteral("launchTest")));
        m_front->take();
        m_front->poll();
        QCOMPARE(m_front->take(), QStringLiteral("debug: Query request ignored because a request is in progress"));
        m_front->api->release(QStringLiteral("launchTest"));
        QTRY_VERIFY(!m_front->manager.isTestLaunching());
    }

    void pollBetweenTheLaunchAndItsReportUpdatesAndTellsNothing()
    {
        m_front->start();
        m_front->manager.launchTest(m_test.get());
        QVERIFY(m_front->waitUntilAnswered(QStringLiteral("launchTest(\"A\", 1)")));
        m_front->api->setChangeCount(1);
        m_front->take();
        m_front->poll();
        const QStringList entries = m_front->api->journal().take();
        QVERIFY(entries.contains(QStringLiteral("emit fetchJobList()")));
        QVERIFY(!entries.contains(QStringLiteral("emit jobManagerUpdated()")));
        QTRY_VERIFY(!m_front->manager.isTestLaunching());
    }

    // What a launch does to the polls after it.

    void firstPollAfterALaunchTellsNothing_data()
    {
        QTest::addColumn<QString>("jobID");
        QTest::addColumn<bool>("changed");
        QTest::newRow("count moved") << idA << true;
        QTest::newRow("count not moved") << idA << false;
        QTest::newRow("job gone, count moved") << QStringLiteral("gone") << true;
        QTest::newRow("test gone, count moved") << idB << true;
    }

    void firstPollAfterALaunchTellsNothing()
    {
        QFETCH(QString, jobID);
        QFETCH(bool, changed);
        m_front->api->keepJobListCached();
        m_front->manager.onTestLaunchFinished(jobID, 1LL, {});
        const QSignalSpy updated(&m_front->manager, &JobManager::jobManagerUpdated);
        const QSignalSpy rebuilt(&m_front->manager, &JobManager::modelReset);
        m_front->api->setChangeCount(changed ? 1 : 0);
        m_front->poll();
        QCOMPARE(updated.count(), 0);
        QCOMPARE(rebuilt.count(), changed ? 1 : 0);
        m_front->api->setChangeCount(2);
        m_front->poll();
        QCOMPARE(updated.count(), 1);
        QCOMPARE(rebuilt.count(), changed ? 2 : 1);
    }

    void pollAtTheFallOfTheFlagIsToldAndTheNextIsNot()
    {
        m_front->api->keepJobListCached();
        m_front->manager.launchTest(m_test.get());
        connect(&m_front->manager, &JobManager::isTestLaunchingChanged, this, [&] {
            m_front->api->setChangeCount(1);
            m_front->poll();
        });
        const QSignalSpy updated(&m_front->manager, &JobManager::jobManagerUpdated);
        finish({});
        QCOMPARE(updated.count(), 1);
        verifySilenceOfTheNextPoll();
        QCOMPARE(updated.count(), 2);
    }

    void silenceIsUsedUpByAPollDuringAFetch()
    {
        m_front->manager.updateDataFromAPI(true);
        m_front->manager.onTestLaunchFinished(idA, 1LL, {});
        m_front->api->setChangeCount(1);
        m_front->take();
        m_front->poll();
        QCOMPARE(m_front->take(), QStringLiteral(R"(call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  1
call clearCache()
debug: Already fetching data)"));
        m_front->api->setChangeCount(2);
        m_front->poll();
        QVERIFY(m_front->api->journal().contains(QStringLiteral("emit jobManagerUpdated()")));
    }

    void pausedPollKeepsTheSilence()
    {
        m_front->api->keepJobListCached();
        m_front->manager.onTestLaunchFinished(idA, 1LL, {});
        m_front->manager.setPauseAutomaticUpdates(true);
        m_front->poll();
        m_front->manager.setPauseAutomaticUpdates(false);
        verifySilenceOfTheNextPoll();
    }

    void pollThatStandsAsideForTheWorkerKeepsTheSilence()
    {
        m_front->start();
        m_front->manager.onTestLaunchFinished(idA, 1LL, {});
        m_front->api->hold(QStringLiteral("fetchJobList"));
        m_front->manager.updateDataFromAPI(true);
        QVERIFY(m_front->api->waitUntilHeld(QStringLiteral("fetchJobList")));
        m_front->poll();
        m_front->api->release(QStringLiteral("fetchJobList"));
        QTRY_VERIFY(!m_front->manager.fetchingJobList());
        verifySilenceOfTheNextPoll();
    }

    void pollThatStandsAsideForTheCurrentJobKeepsTheSilence()
    {
        m_front->start();
        m_front->manager.onTestLaunchFinished(idA, 1LL, {});
        m_front->manager.setCurrentJob(m_front->manager.getJob(idB));
        QVERIFY(m_front->waitUntilAnswered(QStringLiteral("setCurrentJobByID(\"B\")")));
        m_front->poll();
        QVERIFY(m_front->api->journal().contains(
            QStringLiteral("debug: Query request ignored because a request is in progress")));
        QTRY_VERIFY(!m_front->manager.settingCurrentJob());
        verifySilenceOfTheNextPoll();
    }

    void changeFoundByAnotherCallLeavesTheSilence()
    {
        m_front->api->keepJobListCached();
        m_front->manager.onTestLaunchFinished(idA, 1LL, {});
        m_front->api->setChangeCount(1);
        QVERIFY(m_front->manager.checkChangeCount(true));
        verifySilenceOfTheNextPoll();
    }

    // The flags.

    void flagIsSignalledOnARealChangeOnly_data()
    {
        QTest::addColumn<bool>("sync");
        QTest::newRow("isTestLaunching") << false;
        QTest::newRow("isSyncInProgress") << true;
    }

    void flagIsSignalledOnARealChangeOnly()
    {
        QFETCH(bool, sync);
        const auto set = [&](bool value) {
            sync ? m_front->manager.setIsSyncInProgress(value) : m_front->manager.setIsTestLaunching(value);
            return m_front->take();
        };
        const QString changed =
            QStringLiteral("emit ") + QString::fromLatin1(QTest::currentDataTag()) + QStringLiteral("Changed()");
        QCOMPARE(set(false), QString());
        QCOMPARE(set(true), changed);
        QCOMPARE(set(true), QString());
        QCOMPARE(m_front->manager.property(QTest::currentDataTag()), QVariant(true));
        QCOMPARE(set(false), changed);
    }

    // The sync.

    void syncRaisesItsFlagAndAsksTheWorker()
    {
        m_front->manager.syncWithNimbrel();
        QCOMPARE(m_front->take(), QStringLiteral("emit isSyncInProgressChanged()\nemit syncWithNimbrelSignal()"));
        QCOMPARE(m_front->manager.isSyncInProgress(), true);
    }

    void endOfASyncLowersItsFlag()
    {
        m_front->manager.syncWithNimbrel();
        m_front->take();
        m_front->manager.onSyncFinished();
        QCOMPARE(m_front->take(), QStringLiteral("debug: Sync finished\nemit isSyncInProgressChanged()"));
        QCOMPARE(m_front->manager.isSyncInProgress(), false);
        m_front->manager.onSyncFinished();
        QCOMPARE(m_front->take(), QStringLiteral("debug: Sync finished"));
    }

    void secondSyncWaitsForItsTurnAndTheFirstEndLowersTheFlag()
    {
        m_front->start();
        QElapsedTimer time;
        time.start();
        m_front->manager.syncWithNimbrel();
        m_front->manager.syncWithNimbrel();
        QCOMPARE(m_front->take(), QStringLiteral(R"(emit isSyncInProgressChanged()
emit syncWithNimbrelSignal()
emit syncWithNimbrelSignal())"));
        const int bound = static_cast<int>(stretched(std::chrono::seconds(20)).count());
        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager.isSyncInProgress(), bound);
        QVERIFY(time.elapsed() >= 2000);
        QTRY_VERIFY_WITH_TIMEOUT(
            m_front->api->journal().entries().count(QStringLiteral("debug: Sync finished")) == 2, bound);
        QVERIFY(time.elapsed() >= 4000);
        QCOMPARE(m_front->take(), QStringLiteral(R"(debug: Sync finished
emit isSyncInProgressChanged()
debug: Sync finished)"));
    }

    void launchAndSyncDoNotExcludeEachOther()
    {
        m_front->manager.syncWithNimbrel();
        m_front->manager.launchTest(m_test.get());
        QCOMPARE(m_front->manager.isTestLaunching(), true);
        m_front->manager.onSyncFinished();
        QCOMPARE(m_front->manager.isTestLaunching(), true);
    }

private:
    std::shared_ptr<Test> test(long long testID) const { return m_front->manager.getJob(idA)->getTest(testID); }

    /// As if the worker had reported the launch of the test.
    void finish(const QString& status) { m_front->manager.onTestLaunchFinished(idA, 1LL, status); }

    void verifySilenceOfTheNextPoll()
    {
        m_front->take();
        m_front->api->setChangeCount(10);
        m_front->poll();
        QVERIFY(m_front->api->journal().contains(QStringLiteral("call clearCache()")));
        QVERIFY(!m_front->api->journal().contains(QStringLiteral("emit jobManagerUpdated()")));
        m_front->api->setChangeCount(20);
        m_front->poll();
        QVERIFY(m_front->api->journal().contains(QStringLiteral("emit jobManagerUpdated()")));
    }

    std::unique_ptr<RecordedManager> m_front;
    std::shared_ptr<Test> m_test;
};

QTEST_GUILESS_MAIN(TestLaunchTest)
#include "TestLaunchTest.moc"
