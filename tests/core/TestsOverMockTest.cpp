#include "models/PartialModel.h"
#include "tests/core/MockFrontFixture.h"
#include "tests/models/ListText.h"
#include "tests/support/FlatView.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <set>

using namespace jobmanager_test;
using namespace jobmanager_ui;

/// The tests of the jobs over the mock: what the fixed tests look like on the screen.
class TestsOverMockTest : public MockFrontFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setUp();
        m_manager->initialize();
    }

    void cleanup() { tearDown(); }

    void testsAreThereWithoutAFetch()
    {
        QVERIFY(job(idJob1).worker() != nullptr);
        QCOMPARE(testsOf(idJob1).rowCount(), 15);
        QCOMPARE(job(idJob1).fetchInProgress(), false);
        QCOMPARE(testsOf(QStringLiteral("JOB_EMPTY_3")).rowCount(), 0);
    }

    void groupTypeOrdersAndCutsTheTests_data()
    {
        QTest::addColumn<QString>("jobID");
        QTest::addColumn<int>("groupType");
        QTest::addColumn<QString>("order");
        QTest::addColumn<QString>("sections");
        QTest::newRow("JOB1, none") << idJob1 << 0 << QStringLiteral("0 1 2 3 4 5 6 7 8 9 10 11 12 13 14") << QString();
        QTest::newRow("JOB1, location") << idJob1 << 2 << QStringLiteral("0 5 6 7 8 9 10 11 12 13 14 1 2 3 4")
                                        << QStringLiteral(
                                               "\"Loc1\", 0, 11; \"MyLocation2\", 11, 1; \"MyLocation3\", 12, 1; "
                                               "\"MyLocation5\", 13, 1; \"MyLocation4\", 14, 1");
        QTest::newRow("JOB1, name") << idJob1 << 3 << QStringLiteral("0 5 6 7 8 9 10 11 12 13 14 1 2 3 4")
                                    << QStringLiteral(
                                           "\"OTDR\", 0, 11; \"Kwikprobe Ethernet\", 11, 1; \"Kwikprobe\", 12, 3");
        QTest::newRow("JOB2, location, two tests without one")
            << idJob2 << 2 << QStringLiteral("0 1 2 3")
            << QStringLiteral("\"MyLocation3\", 0, 1; \"MyLocation4\", 1, 1; \"~\", 2, 2");
        QTest::newRow("JOB3, default") << idJob3 << 1 << QStringLiteral("0 1")
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
        const TestList& tests = testsOf(idJob1);
        QCOMPARE(tests.sectionsCount(), 15);
        m_manager->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(tests.sectionsCount(), 3);
    }

    void filterAndSearchPassTestsOfTheJob()
    {
        TestList& tests = testsOf(idJob2);
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
        TestList& tests = testsOf(idJob1);
        tests.setSearchRegExpStr(QStringLiteral("loc1"));
        QCOMPARE(tests.testsCount(), 11);
    }

    void statusNoneIsAStatus()
    {
        TestList& tests = testsOf(idJob1);
        tests.setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(tests.testsCount(), 15);
        tests.setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(tests.testsCount(), 0);
    }

    void onlyTestWithATimeIsTheLatest()
    {
        TestList& tests = testsOf(idJob1);
        QCOMPARE(tests.findLatestRanTestIndex(), 2);
        m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(tests.findLatestRanTestIndex(), 12);
        tests.setSearchRegExpStr(QStringLiteral("Loc1"));
        QCOMPARE(tests.findLatestRanTestIndex(), 11);
        QCOMPARE(testsOf(idJob2).findLatestRanTestIndex(), -1);
    }

    void testsAreCountedByName()
    {
        testsOf(idJob1);
        QCOMPARE(job(idJob1).countTestsByDisplayName(QStringLiteral("OTDR")), 11);
        QCOMPARE(job(idJob1).countTestsByDisplayName(QStringLiteral("Kwikprobe")), 3);
        QCOMPARE(job(idJob1).testLocationsNumberByDisplayName(QStringLiteral("OTDR")), 0);
        QCOMPARE(job(idJob1).getTestNamebyTestIndex(1), QStringLiteral("Kwikprobe Ethernet"));
        QCOMPARE(job(idJob1).testLocationsNumberByIndex(1), -1);
    }

    void testsStayTheSameObjectsAcrossUpdates()
    {
        const std::set<Test*> before = testObjects();
        for (int round = 0; round < 100; ++round) {
            m_manager->updateDataFromAPI(true);
            QVERIFY(job(idJob1).tests() != nullptr);
        }
        QCOMPARE(before.size(), std::size_t{ 15 });
        QVERIFY(before == testObjects());
    }

    void answerOfAManualStepArrives()
    {
        const std::shared_ptr<Test> test = job(idJob2).getTest(2);
        test->setManualStepUserResponse(QStringLiteral("yes"));
        QCOMPARE(test->manualStepUserResponse(), QStringLiteral("yes"));
        QCOMPARE(m_manager->checkChangeCount(true), true);
        QCOMPARE(job(idJob2).getTest(2), test);
    }

    void testShowsItsMembers_data()
    {
        QTest::addColumn<QVariant>("manual");
        QTest::addColumn<QVariant>("measured");
        const QStringList lines{ QStringLiteral("myconfig : myconfig1.json"), QStringLiteral("Ref0 : r0"),
            QStringLiteral("Ref12 : r12"), QStringLiteral("r1 : r11") };
        const QVariantMap prompt{ { QStringLiteral("prompt"), QStringLiteral("Mock API test prompt") },
            { QStringLiteral("type"), QStringLiteral("yesNo") } };
        const auto row = [](const char* property, const QVariant& manual, const QVariant& measured) {
            QTest::newRow(property) << manual << measured;
        };
        row("testIndex", 2, 2);
        row("locationIndex", -1, -1);
        row("testType", QStringLiteral("manual"), QStringLiteral("Kwikprobe"));
        row("testTypeDisplayName", QStringLiteral("manual"), QStringLiteral("Kwikprobe"));
        row("description", QStringLiteral("Inspect before you connect. Connected?"), QString());
        row("site", QStringLiteral("Site2"), QString());
        row("testStatus", QString(), QStringLiteral("pass"));
        row("testTime", QDateTime(), QDateTime(QDate(2022, 8, 30), QTime(8, 28, 7), Qt::UTC));
        row("testRequired", int{ TestRequirement::TEST_REQUIRED }, int{ TestRequirement::TEST_REQUIRED });
        row("configuration",
            QStringList{ QStringLiteral("\"prompt\" : \"Reminder\","), QStringLiteral("\"type\" : \"yesNo\"") }, lines);
        row("errorMessage", QString(), QString());
        row("errorSeverity", 0, 0);
        row("guideFilepath", QString(), QString());
        row("hasGuide", false, false);
        row("location", QStringLiteral("~"), QStringLiteral("MyLocation3"));
        row("numberOfTestLocations", -1, -1);
        row("manualStepUserResponse", QStringLiteral("no"), QString());
        row("testConfigurationMap", prompt, QVariantMap());
    }

    void testShowsItsMembers()
    {
        const char* const property = QTest::currentDataTag();
        QTEST(asShown(job(idJob2).getTest(2)->property(property)), "manual");
        QTEST(asShown(job(idJob1).getTest(2)->property(property)), "measured");
    }

    void sliceOfEachSectionHasItsTests_data()
    {
        QTest::addColumn<int>("groupType");
        QTest::newRow("default") << int{ TestGroupType::DEFAULT_VIEW };
        QTest::newRow("location") << int{ TestGroupType::GROUPBY_LOCATION };
        QTest::newRow("name") << int{ TestGroupType::GROUPBY_TEST_NAME };
    }

    void sliceOfEachSectionHasItsTests()
    {
        QFETCH(int, groupType);
        m_manager->setGroupType(static_cast<TestGroupType::Enum>(groupType));
        TestList& tests = testsOf(idJob1);
        PartialModel slice;
        slice.setModel(&tests);
        QStringList rows;
        const QVariantList sections = tests.sections();
        for (const QVariant& section : sections) {
            slice.setStartIndex(section.toMap().value(QStringLiteral("startIndex")).toInt());
            slice.setTestsCount(section.toMap().value(QStringLiteral("testsCount")).toInt());
            for (int row = 0; row < slice.rowCount(); ++row) {
                rows.append(slice.index(row, 0).data(TestList::TestID).toString());
            }
        }
        QCOMPARE(rows.join(QLatin1Char(' ')), orderText(tests));
    }

    void resetsOfTheJobShowAllItsTests()
    {
        TestList& tests = testsOf(idJob2);
        tests.setTestFilter(TestList::TESTFILTER_COMPLETED);
        tests.setSearchRegExpStr(QStringLiteral("MyLocation3"));
        QCOMPARE(orderText(tests), QStringLiteral("0"));
        job(idJob2).resetTestFilter();
        job(idJob2).resetTestLocationSearch();
        QCOMPARE(orderText(tests), QStringLiteral("0 1 2 3"));
    }

    void updateWithoutNewTimesTellsOfNoResults()
    {
        testsOf(idJob1);
        const QSignalSpy results(&job(idJob1), &Job::newTestResultsReceived);
        m_api->setManualTestResult(idJob1, 0, QStringLiteral("yes"), QString());
        QVERIFY(m_manager->checkChangeCount(true));
        testsOf(idJob1);
        QCOMPARE(results.count(), 0);
    }

    void testsAreAConsistentModelThroughout()
    {
        FlatView view(testsOf(idJob1));
        const QAbstractItemModelTester tester(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_manager->setGroupType(TestGroupType::GROUPBY_LOCATION);
        testsOf(idJob1).setSearchRegExpStr(QStringLiteral("Loc1"));
        testsOf(idJob1).setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        m_manager->updateDataFromAPI(true);
        QCOMPARE(testsOf(idJob1).rowCount(), 0);
        job(idJob1).resetTestFilter();
        QCOMPARE(view.rowCount(), 15);
    }

private:
    /// The value of a property, an enum as its number.
    static QVariant asShown(const QVariant& value)
    {
        return value.canConvert<TestRequirement::Enum>() && value.userType() >= QMetaType::User ? value.toInt() : value;
    }

    std::set<Test*> testObjects() const
    {
        std::set<Test*> objects;
        for (int id = 0; id < 15; ++id) {
            objects.insert(job(idJob1).getTest(id).get());
        }
        return objects;
    }
};

QTEST_GUILESS_MAIN(TestsOverMockTest)
#include "TestsOverMockTest.moc"
