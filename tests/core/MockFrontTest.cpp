#include "core/JobManager.h"
#include "tests/models/ListText.h"
#include "tests/support/ConcreteMockApi.h"
#include "tests/support/MessageCollector.h"

#include <memory>
#include <QtTest>
#include <set>

using namespace jobmanager_test;
using namespace jobmanager_ui;

/// The front over the mock data interface: what the fixed jobs look like on the screen.
class MockFrontTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<ConcreteMockApi>();
        m_manager = std::make_unique<JobManager>(m_api);
        m_manager->initialize();
    }

    void cleanup()
    {
        m_manager.reset();
        m_api.reset();
        QCOMPARE(m_messages->take().filter(QStringLiteral("warning: ")), QStringList());
        m_messages.reset();
    }

    void jobsAreThereAtOnce()
    {
        QCOMPARE(m_manager->rowCount(), 20);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 19);
        QCOMPARE(m_manager->archivedJobs()->rowCount(), 1);
        QCOMPARE(m_manager->fetchingJobList(), false);
        QCOMPARE(m_manager->restApiPort(), 0);
    }

    void summaryOfAJobIsShown()
    {
        const Job& job = *m_manager->getJob(QStringLiteral("JOB1"));
        QCOMPARE(job.jobNumber(), QStringLiteral("JOB1"));
        QCOMPARE(job.workOrderLabel(), QStringLiteral("Ticket"));
        QCOMPARE(job.customerName(), QStringLiteral("Customer 1"));
        QCOMPARE(job.state(), QStringLiteral("conflict"));
        QCOMPARE(job.totalNumberOfRequiredTests(), 13);
        QCOMPARE(job.numberOfCompletedRequiredTests(), 12);
    }

    void testsAreThereWithoutAFetch()
    {
        Job& job = *m_manager->getJob(QStringLiteral("JOB1"));
        QVERIFY(job.worker() != nullptr);
        QVERIFY(job.tests() != nullptr);
        QCOMPARE(job.tests()->rowCount(), 15);
        QCOMPARE(job.fetchInProgress(), false);
        QCOMPARE(m_manager->getJob(QStringLiteral("JOB_EMPTY_3"))->tests()->rowCount(), 0);
    }

    void groupTypeOrdersAndCutsTheTests_data()
    {
        QTest::addColumn<QString>("jobID");
        QTest::addColumn<int>("groupType");
        QTest::addColumn<QString>("order");
        QTest::addColumn<QString>("sections");
        QTest::newRow("JOB1, none") << QStringLiteral("JOB1") << 0
                                    << QStringLiteral("0 1 2 3 4 5 6 7 8 9 10 11 12 13 14") << QString();
        QTest::newRow("JOB1, location") << QStringLiteral("JOB1") << 2
                                        << QStringLiteral("0 5 6 7 8 9 10 11 12 13 14 1 2 3 4")
                                        << QStringLiteral(
                                               "\"Loc1\", 0, 11; \"MyLocation2\", 11, 1; \"MyLocation3\", 12, 1; "
                                               "\"MyLocation5\", 13, 1; \"MyLocation4\", 14, 1");
        QTest::newRow("JOB1, name") << QStringLiteral("JOB1") << 3
                                    << QStringLiteral("0 5 6 7 8 9 10 11 12 13 14 1 2 3 4")
                                    << QStringLiteral(
                                           "\"OTDR\", 0, 11; \"Kwikprobe Ethernet\", 11, 1; \"Kwikprobe\", 12, 3");
        QTest::newRow("JOB2, location, two tests without one")
            << QStringLiteral("JOB2") << 2 << QStringLiteral("0 1 2 3")
            << QStringLiteral("\"MyLocation3\", 0, 1; \"MyLocation4\", 1, 1; \"~\", 2, 2");
        QTest::newRow("JOB3, default") << QStringLiteral("JOB3") << 1 << QStringLiteral("0 1")
                                       << QStringLiteral("\"0\", 0, 1; \"1\", 1, 1");
    }

    void groupTypeOrdersAndCutsTheTests()
    {
        QFETCH(QString, jobID);
        QFETCH(int, groupType);
        m_manager->setGroupType(static_cast<TestGroupType::Enum>(groupType));
        const TestList& tests = testsOf(jobID);
        QTEST(orderText(tests), "order");
        QTEST(sectionsText(tests), "sections");
    }

    void regroupingReachesTestsThatAreOpen()
    {
        const TestList& tests = testsOf(QStringLiteral("JOB1"));
        QCOMPARE(tests.sectionsCount(), 15);
        m_manager->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(tests.sectionsCount(), 3);
    }

    void groupTypeIsStoredAsASetting()
    {
        m_manager->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(m_api->getSettingsListInfo().value(QStringLiteral("groupType")), QStringLiteral("3"));
        m_manager->updateDataFromAPI(true);
        QCOMPARE(m_manager->groupType(), TestGroupType::GROUPBY_TEST_NAME);
    }

    void filterAndSearchPassTestsOfTheJob()
    {
        TestList& tests = testsOf(QStringLiteral("JOB2"));
        tests.setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(orderText(tests), QStringLiteral("2"));
        tests.setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(orderText(tests), QStringLiteral("0 1 3"));
        tests.setSearchRegExpStr(QStringLiteral("mylocation"));
        QCOMPARE(orderText(tests), QStringLiteral("0 1"));
        tests.setTestFilter(TestList::TESTFILTER_ALL);
        QCOMPARE(orderText(tests), QStringLiteral("0 1"));
    }

    void lowerCaseSearchFindsTheFirstLocation()
    {
        TestList& tests = testsOf(QStringLiteral("JOB1"));
        tests.setSearchRegExpStr(QStringLiteral("loc1"));
        QCOMPARE(tests.testsCount(), 11);
    }

    void statusNoneIsAStatus()
    {
        TestList& tests = testsOf(QStringLiteral("JOB1"));
        tests.setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(tests.testsCount(), 15);
        tests.setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(tests.testsCount(), 0);
    }

    void onlyTestWithATimeIsTheLatest()
    {
        TestList& tests = testsOf(QStringLiteral("JOB1"));
        QCOMPARE(tests.findLatestRanTestIndex(), 2);
        m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(tests.findLatestRanTestIndex(), 12);
        tests.setSearchRegExpStr(QStringLiteral("Loc1"));
        QCOMPARE(tests.findLatestRanTestIndex(), 11);
        QCOMPARE(testsOf(QStringLiteral("JOB2")).findLatestRanTestIndex(), -1);
    }

    void testsAreCountedByName()
    {
        Job& job = *m_manager->getJob(QStringLiteral("JOB1"));
        job.tests();
        QCOMPARE(job.countTestsByDisplayName(QStringLiteral("OTDR")), 11);
        QCOMPARE(job.countTestsByDisplayName(QStringLiteral("Kwikprobe")), 3);
        QCOMPARE(job.testLocationsNumberByDisplayName(QStringLiteral("OTDR")), 0);
        QCOMPARE(job.getTestNamebyTestIndex(1), QStringLiteral("Kwikprobe Ethernet"));
        QCOMPARE(job.testLocationsNumberByIndex(1), -1);
    }

    void testsStayTheSameObjectsAcrossUpdates()
    {
        Job& job = *m_manager->getJob(QStringLiteral("JOB1"));
        std::set<Test*> before;
        for (int id = 0; id < 15; ++id) {
            before.insert(job.getTest(id).get());
        }
        for (int round = 0; round < 100; ++round) {
            m_manager->updateDataFromAPI(true);
            QVERIFY(job.tests() != nullptr);
        }
        std::set<Test*> after;
        for (int id = 0; id < 15; ++id) {
            after.insert(job.getTest(id).get());
        }
        QCOMPARE(after.size(), std::size_t{ 15 });
        QVERIFY(before == after);
    }

    void answerOfAManualStepArrives()
    {
        const std::shared_ptr<Test> test = m_manager->getJob(QStringLiteral("JOB2"))->getTest(2);
        test->setManualStepUserResponse(QStringLiteral("yes"));
        QCOMPARE(test->manualStepUserResponse(), QStringLiteral("yes"));
        QCOMPARE(m_manager->checkChangeCount(true), true);
        QCOMPARE(m_manager->getJob(QStringLiteral("JOB2"))->getTest(2), test);
    }

private:
    TestList& testsOf(const QString& jobID) { return *qobject_cast<TestList*>(m_manager->getJob(jobID)->tests()); }

    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<ConcreteMockApi> m_api;
    std::unique_ptr<JobManager> m_manager;
};

QTEST_GUILESS_MAIN(MockFrontTest)
#include "MockFrontTest.moc"
