#include "tests/api/Readings.h"
#include "tests/support/ConcreteMockApi.h"
#include "tests/support/DisplayInfoText.h"

#include <csignal>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <pthread.h>
#include <QElapsedTimer>
#include <QtTest>
#include <thread>

using namespace jobmanager_test;
using namespace jobmanager_ui;

using Read = std::function<QVariant(MockJobManagerAPI&)>;

namespace {

/// Calls its own type of test something else.
class RenamingApi : public ConcreteMockApi
{
public:
    QString getTestType(QString jobID, long long testID) override
    {
        return QStringLiteral("renamed %1 %2").arg(jobID).arg(testID);
    }
};

volatile std::sig_atomic_t interruptions = 0;

void countInterruption(int /*signal*/)
{
    interruptions = interruptions + 1;
}

/// Counts SIGUSR1 while it lives. System calls that the signal interrupts are not restarted.
class CountedInterruptions
{
public:
    CountedInterruptions()
    {
        interruptions = 0;
        struct sigaction action = {};
        action.sa_handler = countInterruption;
        sigaction(SIGUSR1, &action, &m_previous);
    }
    ~CountedInterruptions() { sigaction(SIGUSR1, &m_previous, nullptr); }
    Q_DISABLE_COPY(CountedInterruptions)

private:
    struct sigaction m_previous = {};
};

} // namespace

Q_DECLARE_METATYPE(Read)

class MockJobManagerAPITest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_api = std::make_unique<ConcreteMockApi>(); }
    void cleanup() { m_api.reset(); }

    // Properties.

    void jobPropertyNamesAreListed_data()
    {
        QTest::addColumn<QStringList>("names");
        const QStringList all{ QStringLiteral("otherJobProperty"), QStringLiteral("numberJobProperty"),
            QStringLiteral("onlyLetters") };
        QTest::newRow("JOB1") << all;
        QTest::newRow("JOB2") << QStringList(all.mid(1));
        QTest::newRow("job2") << all;
        QTest::newRow("JOB3") << all;
        QTest::newRow("JOB_EMPTY_3") << all;
        QTest::newRow("unknown") << all;
    }

    void jobPropertyNamesAreListed()
    {
        QTEST(list(m_api->getAllOptionalJobProperties(QString::fromLatin1(QTest::currentDataTag()))), "names");
    }

    void unknownJobHasNoPropertyValue()
    {
        QCOMPARE(typed(m_api->getOptionalJobProperty(QStringLiteral("unknown"), QStringLiteral("otherJobProperty"))),
            QStringLiteral("invalid"));
    }

    void jobPropertyIsShownByItsName_data()
    {
        QTest::addColumn<QString>("info");
        QTest::newRow("otherJobProperty") << "otherJobProperty | API Label | type 0 | editable 1 | visible 1 |  |  | 0";
        QTest::newRow("numberJobProperty") << "numberJobProperty |  | type 1 | editable 1 | visible 1 |  |  | 0";
        QTest::newRow("onlyLetters") << "onlyLetters |  | type 0 | editable 1 | visible 1 | [a-zA-Z]+ |  | 0";
        QTest::newRow("customer") << "customer |  | type 0 | editable 1 | visible 1 |  |  | 0";
    }

    void jobPropertyIsShownByItsName()
    {
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        QTEST(displayInfoText(m_api->getOptionalJobPropertyDisplayInfo(QStringLiteral("JOB1"), name)), "info");
        QTEST(displayInfoText(m_api->getOptionalJobPropertyDisplayInfo(QStringLiteral("unknown"), name)), "info");
    }

    void testPropertyNamesAreTheSameForAnyTest_data()
    {
        QTest::addColumn<QString>("job");
        QTest::addColumn<int>("test");
        QTest::newRow("a measurement") << "JOB1" << 0;
        QTest::newRow("a manual test that stores none") << "JOB2" << 2;
        QTest::newRow("an unknown test") << "JOB1" << -1;
        QTest::newRow("an unknown job") << "unknown" << 0;
    }

    void testPropertyNamesAreTheSameForAnyTest()
    {
        QFETCH(QString, job);
        QFETCH(int, test);
        QCOMPARE(list(m_api->getAllOptionalTestProperties(job, test)),
            (QStringList{ QStringLiteral("location"), QStringLiteral("otherTestInfo1"),
                QStringLiteral("otherTestInfo2"), QStringLiteral("numberProperty") }));
    }

    void testPropertyIsShownByDefaults_data()
    {
        QTest::addColumn<QString>("job");
        QTest::newRow("numberProperty") << "JOB1";
        QTest::newRow("numberJobProperty") << "JOB1";
        QTest::newRow("anything") << "unknown";
    }

    void testPropertyIsShownByDefaults()
    {
        QFETCH(QString, job);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        QCOMPARE(displayInfoText(m_api->getOptionalTestPropertyDisplayInfo(job, 0, name)),
            QStringLiteral("%1 |  | type 0 | editable 1 | visible 1 |  |  | 0").arg(name));
    }

    // Fixed answers.

    void answerIsFixed_data()
    {
        QTest::addColumn<Read>("read");
        QTest::addColumn<QVariant>("answer");
        const auto row = [](const char* name, Read read, const QVariant& answer) {
            QTest::newRow(name) << std::move(read) << answer;
        };
        row(
            "locations of a test", [](auto& api) { return api.getTestLocationsNumber(QStringLiteral("JOB1"), 0); }, -1);
        row(
            "locations of an unknown test",
            [](auto& api) { return api.getTestLocationsNumber(QStringLiteral("unknown"), 0); }, -1);
        row(
            "imported jobs", [](auto& api) { return api.importJobs(QStringLiteral("/media/usb")); }, 0);
        row(
            "exchange", [](auto& api) { return api.exchangeCurrentJob(QStringLiteral("/dev/qzx")); }, true);
        row(
            "templates", [](auto& api) { return api.fetchJobTemplates(); },
            QStringList{
                QStringLiteral("MockTemplate1"), QStringLiteral("MockTemplate2"), QStringLiteral("MockTemplate3") });
        row(
            "label of a template",
            [](auto& api) { return api.getWorkOrderLabelFromTemplate(QStringLiteral("MockTemplate1")); },
            QStringLiteral("MockWorkOrderLabel"));
        row(
            "label of an unknown template",
            [](auto& api) { return api.getWorkOrderLabelFromTemplate(QStringLiteral("unknown")); },
            QStringLiteral("MockWorkOrderLabel"));
        row(
            "tests of a template",
            [](auto& api) { return api.getTemplateNumberOfTests(QStringLiteral("MockTemplate3")); }, 1);
        row(
            "tests of an unknown template",
            [](auto& api) { return api.getTemplateNumberOfTests(QStringLiteral("unknown")); }, 1);
        row(
            "list in cache", [](auto& api) { return api.isJobListInCache(); }, true);
        row(
            "job in cache", [](auto& api) { return api.isJobInCache(QStringLiteral("JOB1")); }, true);
        row(
            "unknown job in cache", [](auto& api) { return api.isJobInCache(QStringLiteral("unknown")); }, true);
        row(
            "fetch of a job", [](auto& api) { return api.fetchJob(QStringLiteral("JOB1")); }, false);
        row(
            "fetch of the list", [](auto& api) { return api.fetchJobList(); }, false);
        row(
            "commit", [](auto& api) { return api.commitFetchedData(); }, false);
        row(
            "commit after a fetch", [](auto& api) { return api.fetchJobList() || api.commitFetchedData(); }, false);
        row(
            "port", [](auto& api) { return api.getRestApiPort(); }, 0);
    }

    void answerIsFixed()
    {
        QFETCH(Read, read);
        const QVariant answer = read(*m_api);
        QTEST(answer, "answer");
        QCOMPARE(m_api->getChangeCount(), 0);
    }

    void guideAndExportAreNull()
    {
        QVERIFY(m_api->getTestGuideFile(QStringLiteral("JOB1"), 0).isNull());
        QVERIFY(m_api->exportJobData(QStringLiteral("JOB1"), QStringLiteral("/media/usb")).isNull());
    }

    void timeIsNow()
    {
        const QDateTime before = QDateTime::currentDateTime();
        const QDateTime time = m_api->getTime();
        QVERIFY(before <= time);
        QVERIFY(time <= QDateTime::currentDateTime());
    }

    void testIndexIsTheLowHalfOfTheID_data()
    {
        QTest::addColumn<qlonglong>("id");
        QTest::addColumn<int>("index");
        QTest::newRow("first") << 0LL << 0;
        QTest::newRow("last of a job") << 14LL << 14;
        QTest::newRow("beyond") << 1000LL << 1000;
        QTest::newRow("packed") << ((5LL << 32) | 7) << 7;
        QTest::newRow("sign of the low half") << 0x80000000LL << std::numeric_limits<int>::min();
        QTest::newRow("minus one") << -1LL << -1;
    }

    void testIndexIsTheLowHalfOfTheID()
    {
        QFETCH(qlonglong, id);
        QTEST(m_api->getTestIndex(id), "index");
        QCOMPARE(m_api->getTestLocationIndex(id), -1);
    }

    void displayNameIsWhateverTheTypeIs()
    {
        RenamingApi api;
        QCOMPARE(api.getTestTypeDisplayName(QStringLiteral("JOB2"), 3), QStringLiteral("renamed JOB2 3"));
    }

    void promptIsTheSameForEveryTest_data()
    {
        QTest::addColumn<QString>("job");
        QTest::addColumn<int>("test");
        QTest::newRow("measurement") << "JOB1" << 0;
        QTest::newRow("manual") << "JOB2" << 2;
        QTest::newRow("manual for information") << "JOB2" << 3;
    }

    void promptIsTheSameForEveryTest()
    {
        QFETCH(QString, job);
        QFETCH(int, test);
        QCOMPARE(m_api->getManualTestConfiguration(job, test),
            (QVariantMap{ { QStringLiteral("prompt"), QStringLiteral("Mock API test prompt") },
                { QStringLiteral("type"), QStringLiteral("yesNo") } }));
    }

    void unknownTestHasNoPrompt()
    {
        QCOMPARE(m_api->getManualTestConfiguration(QStringLiteral("JOB1"), 15), QVariantMap());
        QCOMPARE(m_api->getManualTestConfiguration(QStringLiteral("unknown"), 0), QVariantMap());
    }

    void idBeyondThirtyTwoBitsIsNoPosition()
    {
        QCOMPARE(m_api->getTestType(QStringLiteral("JOB1"), 1LL << 32), QString());
    }

    void groupingLeavesOrderAndChangeCount_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("none") << int{ TestGroupType::NONE };
        QTest::newRow("location") << int{ TestGroupType::GROUPBY_LOCATION };
        QTest::newRow("test name") << int{ TestGroupType::GROUPBY_TEST_NAME };
    }

    void groupingLeavesOrderAndChangeCount()
    {
        QFETCH(int, type);
        m_api->setGroupType(static_cast<TestGroupType::Enum>(type));
        QCOMPARE(text(m_api->getAllTestIDs(QStringLiteral("JOB2"))), QStringLiteral("0 1 2 3"));
        QCOMPARE(m_api->getChangeCount(), 0);
    }

    void clearedCacheForgetsNothing()
    {
        m_api->clearCache();
        QVERIFY(m_api->isJobListInCache());
        QVERIFY(m_api->isJobInCache(QStringLiteral("JOB1")));
        QCOMPARE(m_api->getAllJobIDs().size(), std::size_t{ 20 });
        QCOMPARE(m_api->getChangeCount(), 0);
    }

    void portCannotBeSet()
    {
        m_api->setRestApiPort(9000);
        QCOMPARE(m_api->getRestApiPort(), 0);
    }

    // The launch.

    void launchTakesTwoSecondsAndFailsForWantOfAnOption()
    {
        m_api->prepareForLaunchTest(QStringLiteral("JOB1"), 2);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(m_api->launchTest(QStringLiteral("JOB1"), 2), QStringLiteral("ERROR_OPTION^someMadeUpOption"));
        QVERIFY2(timer.elapsed() >= 2000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(m_api->getTestStatus(QStringLiteral("JOB1"), 2), QStringLiteral("pass"));
        QCOMPARE(m_api->getTestTime(QStringLiteral("JOB1"), 2).toString(Qt::ISODate),
            QStringLiteral("2022-08-30T11:28:07+03:00"));
        QCOMPARE(m_api->getChangeCount(), 0);
    }

    void interruptedLaunchOfAnUnknownTestTakesItsTwoSeconds()
    {
        const CountedInterruptions counted;
        std::promise<QString> promise;
        std::future<QString> status = promise.get_future();
        QElapsedTimer timer;
        timer.start();
        std::thread launcher([&] { promise.set_value(m_api->launchTest(QStringLiteral("unknown"), 0)); });
        for (int sent = 0; sent < 5; ++sent) {
            // Spread over the launch: each signal is to find it asleep.
            if (status.wait_for(std::chrono::milliseconds(100)) == std::future_status::ready) {
                break;
            }
            pthread_kill(launcher.native_handle(), SIGUSR1);
        }
        const QString answer = status.get();
        const qint64 elapsed = timer.elapsed();
        launcher.join();
        QCOMPARE(answer, QStringLiteral("ERROR_OPTION^someMadeUpOption"));
        QVERIFY(interruptions > 0);
        QVERIFY2(elapsed >= 2000, qPrintable(QString::number(elapsed)));
    }

private:
    std::unique_ptr<ConcreteMockApi> m_api;
};

QTEST_APPLESS_MAIN(MockJobManagerAPITest)
#include "MockJobManagerAPITest.moc"
