#include "models/TestList.h"
#include "tests/models/TestListFixture.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

/// Which tests a list shows, and how a test is found in it.
class TestListFilterTest : public TestListFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // The status filter.

    void newFilterRebuildsInsideAResetAndIsThenTold()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        tests[0].status = QStringLiteral("pass");
        load(tests);
        m_journal.take();
        QVERIFY(m_list->setProperty("testFilter", 1));
        QCOMPARE(emitted(), resizingSignals() + QStringList{ QStringLiteral("emit testFilterChanged()") });
        QCOMPARE(m_list->getTestFilter(), TestList::TESTFILTER_COMPLETED);
        QCOMPARE(m_list->property("testFilter").toInt(), 1);
    }

    void filterThatHidesNothingDoesNotTellTheNumberOfTests()
    {
        load(testsAt({ QStringLiteral("A") }));
        m_journal.take();
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(emitted(), rebuildSignals() + QStringList{ QStringLiteral("emit testFilterChanged()") });
    }

    void rowsThatComeBackChangeTheirNumberToo()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        tests[0].status = QStringLiteral("pass");
        load(tests);
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        m_journal.take();
        m_list->setTestFilter(TestList::TESTFILTER_ALL);
        QCOMPARE(emitted(), resizingSignals() + QStringList{ QStringLiteral("emit testFilterChanged()") });
        QCOMPARE(m_list->testsCount(), 2);
    }

    void currentFilterDoesNothing()
    {
        load(testsAt({ QStringLiteral("A") }));
        m_journal.take();
        m_list->setTestFilter(TestList::TESTFILTER_ALL);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void statusDecidesWhatAFilterShows_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<QString>("shown");
        // Statuses: 0 "pass", 1 none at all, 2 "none", 3 "fail", 4 a blank.
        QTest::newRow("all") << 0 << QStringLiteral("0 1 2 3 4");
        QTest::newRow("completed") << 1 << QStringLiteral("0 2 3 4");
        QTest::newRow("incomplete") << 2 << QStringLiteral("1");
        QTest::newRow("outside the enum") << 3 << QStringLiteral("0 1 2 3 4");
        QTest::newRow("negative") << -1 << QStringLiteral("0 1 2 3 4");
    }

    void statusDecidesWhatAFilterShows()
    {
        QFETCH(int, filter);
        QFETCH(QString, shown);
        std::vector<ScriptedTest> tests = testsAt({ {}, {}, {}, {}, {} });
        tests[0].status = QStringLiteral("pass");
        tests[2].status = QStringLiteral("none");
        tests[3].status = QStringLiteral("fail");
        tests[4].status = QStringLiteral(" ");
        load(tests);
        m_list->setTestFilter(static_cast<TestList::TestFilter>(filter));
        QCOMPARE(ids(), shown);
    }

    void filtersNeverCompound()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        tests[0].status = QStringLiteral("pass");
        load(tests);
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(ids(), QStringLiteral("1"));
        m_list->setTestFilter(TestList::TESTFILTER_ALL);
        QCOMPARE(ids(), QStringLiteral("0 1"));
    }

    void filterReadsEachStatusAfreshAndNothingElse()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        load(tests);
        tests[1].status = QStringLiteral("pass");
        setTests(*m_api, m_jobID, tests);
        m_journal.take();
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(m_api->calls(), (QStringList{ QStringLiteral("getTestStatus"), QStringLiteral("getTestStatus") }));
        QCOMPARE(ids(), QStringLiteral("1"));
    }

    void filterTestsRebuildsTheRows()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        load(tests);
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        tests[0].status = QStringLiteral("pass");
        setTests(*m_api, m_jobID, tests);
        m_journal.take();
        m_list->filterTests();
        QCOMPARE(emitted(), resizingSignals());
        QCOMPARE(ids(), QStringLiteral("1"));
    }

    // The search.

    void newSearchRebuildsInsideAResetAndIsThenTold()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        m_journal.take();
        QVERIFY(m_list->setProperty("searchRegExpStr", QStringLiteral("B")));
        QCOMPARE(m_journal.take(), resizingSignals() + QStringList{ QStringLiteral("emit searchRegExpStrChanged()") });
        QCOMPARE(m_list->property("searchRegExpStr").toString(), QStringLiteral("B"));
    }

    void currentSearchDoesNothing_data()
    {
        QTest::addColumn<QString>("search");
        QTest::newRow("none") << QString(QLatin1String(""));
        QTest::newRow("text") << QStringLiteral("A");
    }

    void currentSearchDoesNothing()
    {
        QFETCH(QString, search);
        load(testsAt({ QStringLiteral("A") }));
        m_list->setSearchRegExpStr(search);
        m_journal.take();
        m_list->setSearchRegExpStr(search);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void searchFindsLocations_data()
    {
        QTest::addColumn<QString>("search");
        QTest::addColumn<QString>("found");
        // Locations: 0 "Loc1", 1 "MyLocation2", 2 "Nord (Süd)", 3 none.
        QTest::newRow("lower case") << QStringLiteral("loc1") << QStringLiteral("0");
        QTest::newRow("upper case beyond ASCII") << QStringLiteral("SÜD") << QStringLiteral("2");
        QTest::newRow("not anchored") << QStringLiteral("loc") << QStringLiteral("0 1");
        QTest::newRow("anchored") << QStringLiteral("^loc") << QStringLiteral("0");
        QTest::newRow("expression") << QStringLiteral("[0-9]$") << QStringLiteral("0 1");
        QTest::newRow("any text between") << QStringLiteral("o.*2") << QStringLiteral("1");
        QTest::newRow("empty match") << QStringLiteral("x*") << QStringLiteral("0 1 2 3");
        QTest::newRow("no match") << QStringLiteral("elsewhere") << QString();
        QTest::newRow("invalid expression") << QStringLiteral("Loc1(") << QString();
        QTest::newRow("invalid class") << QStringLiteral("[") << QString();
        QTest::newRow("escaped bracket") << QStringLiteral("\\(") << QStringLiteral("2");
        QTest::newRow("without a location") << QStringLiteral("~") << QStringLiteral("3");
        QTest::newRow("blanks around count") << QStringLiteral(" Loc1 ") << QString();
        QTest::newRow("blank inside") << QStringLiteral("d (?=\\()") << QStringLiteral("2");
        QTest::newRow("blanks alone") << QStringLiteral(" \t ") << QStringLiteral("0 1 2 3");
        QTest::newRow("name of the type is not searched") << QStringLiteral("OTDR") << QString();
        QTest::newRow("status is not searched") << QStringLiteral("pass") << QString();
    }

    void searchFindsLocations()
    {
        QFETCH(QString, search);
        QFETCH(QString, found);
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("Loc1"), QStringLiteral("MyLocation2"), QStringLiteral("Nord (Süd)"), QString() });
        for (ScriptedTest& test : tests) {
            test.displayName = QStringLiteral("OTDR");
            test.type = QStringLiteral("OTDR");
            test.status = QStringLiteral("pass");
        }
        load(tests);
        m_list->setSearchRegExpStr(search);
        QCOMPARE(ids(), found);
        QCOMPARE(m_list->getSearchRegExpStr(), search);
    }

    void rowPassesBothSearchAndFilter()
    {
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("B") });
        tests[0].status = QStringLiteral("pass");
        tests[2].status = QStringLiteral("pass");
        load(tests);
        m_list->setSearchRegExpStr(QStringLiteral("A"));
        m_journal.take();
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(ids(), QStringLiteral("0"));
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(ids(), QStringLiteral("1"));
        QCOMPARE(m_api->count(QStringLiteral("getTestStatus")), 2 * 4); // read whatever the search says
    }

    // Lookups.

    void getTestReloadsFirst()
    {
        load(testsAt({ QStringLiteral("A") }));
        setTests(*m_api, m_jobID, testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        m_list->markAsUpdateRequired();
        m_journal.take();
        QVERIFY(m_list->getTest(1) != nullptr);
        QCOMPARE(emitted(), rebuildSignals());
        m_list->getTest(1);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void getTestGivesHiddenTestsAndNullForUnknownOnes()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        m_list->setSearchRegExpStr(QStringLiteral("B"));
        QCOMPARE(m_list->getTest(0)->location(), QStringLiteral("A"));
        QCOMPARE(m_list->getTest(7), nullptr);
        QCOMPARE(m_list->countTestsByDisplayName(QString()), 2); // asking has not made it
    }

    void firstTestOfAnIndexAnswersForIt()
    {
        load(locationsOfTwoTests());
        QCOMPARE(m_list->getTestNamebyTestIndex(5), QStringLiteral("name 0"));
        QCOMPARE(m_list->getTestTypeByTestIndex(5), QStringLiteral("type 0"));
        QCOMPARE(m_list->getTestDescriptionByTestIndex(5), QStringLiteral("description 0"));
        QCOMPARE(m_list->getTestSiteByTestIndex(5), QStringLiteral("site 0"));
        QCOMPARE(m_list->testLocationsNumberByIndex(5), 2);
        QCOMPARE(m_list->getTestNamebyTestIndex(6), QStringLiteral("name 2"));
    }

    void hiddenTestsAnswerForTheirIndex()
    {
        load(locationsOfTwoTests());
        m_list->setSearchRegExpStr(QStringLiteral("B"));
        QCOMPARE(ids(), QStringLiteral("1"));
        QCOMPARE(m_list->getTestNamebyTestIndex(5), QStringLiteral("name 0"));
        QCOMPARE(m_list->getTestNamebyTestIndex(6), QStringLiteral("name 2"));
    }

    void unknownIndexAnswersNothing()
    {
        load(locationsOfTwoTests());
        for (const int index : { 0, 7, -1 }) {
            QCOMPARE(m_list->getTestNamebyTestIndex(index), QString());
            QCOMPARE(m_list->getTestTypeByTestIndex(index), QString());
            QCOMPARE(m_list->getTestDescriptionByTestIndex(index), QString());
            QCOMPARE(m_list->getTestSiteByTestIndex(index), QString());
            QCOMPARE(m_list->testLocationsNumberByIndex(index), -1);
        }
    }

    void indexesFollowAReload()
    {
        load(locationsOfTwoTests());
        const std::vector<ScriptedTest> tests = locationsOfTwoTests();
        load({ tests[1] });
        QCOMPARE(m_list->getTestNamebyTestIndex(5), QStringLiteral("name 1"));
        QCOMPARE(m_list->getTestNamebyTestIndex(6), QString());
    }

    void locationsNumberIsThatOfRequiredTestsAlone_data()
    {
        QTest::addColumn<int>("required");
        QTest::addColumn<int>("number");
        QTest::newRow("undefined") << 0 << -1;
        QTest::newRow("required") << 1 << 4;
        QTest::newRow("optional") << 2 << -1;
        QTest::newRow("added") << 3 << -1;
    }

    void locationsNumberIsThatOfRequiredTestsAlone()
    {
        QFETCH(int, required);
        QFETCH(int, number);
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A") });
        tests[0].required = static_cast<TestRequirement::Enum>(required);
        tests[0].locationsNumber = 4;
        load(tests);
        QCOMPARE(m_list->testLocationsNumberByIndex(0), number);
    }

    void countsByNameLookAtAllTests()
    {
        std::vector<ScriptedTest> tests = testsAt({ {}, {}, {}, {}, {} });
        for (ScriptedTest& test : tests) {
            test.displayName = QStringLiteral("OTDR");
        }
        tests[1].locationsNumber = 2;
        tests[2].required = TestRequirement::TEST_OPTIONAL;
        tests[3].displayName = QStringLiteral("otdr");
        tests[4].locationsNumber = -1;
        load(tests);
        m_list->setSearchRegExpStr(QStringLiteral("nowhere"));
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(m_list->testsCount(), 0);
        QCOMPARE(m_list->countTestsByDisplayName(QStringLiteral("OTDR")), 4);
        QCOMPARE(m_list->testLocationsNumberByDisplayName(QStringLiteral("OTDR")), 1);
        QCOMPARE(m_list->countTestsByDisplayName(QStringLiteral("otdr")), 1);
        QCOMPARE(m_list->countTestsByDisplayName(QStringLiteral("OTD")), 0);
        QCOMPARE(m_list->testLocationsNumberByDisplayName(QString()), 0);
    }

    // The test that ran last.

    void latestTestIsFoundByItsRow()
    {
        std::vector<ScriptedTest> tests = testsAt({ {}, {}, {}, {} });
        tests[1].time = minute(1);
        tests[2].time = minute(3);
        tests[3].time = minute(2);
        load(tests);
        QCOMPARE(latest(), 2);
        tests[3].time = minute(4);
        load(tests);
        QCOMPARE(latest(), 3);
    }

    void latestTestOfNoneIsNone()
    {
        QCOMPARE(latest(), -1);
        load({});
        QCOMPARE(latest(), -1);
    }

    void latestTestIsNoneWhereNoTestRan()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        QCOMPARE(latest(), -1);
    }

    void latestTestThatIsHiddenIsBehindTheLastRow()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A") });
        tests[0].time = minute(1);
        tests[1].time = minute(2);
        load(tests);
        m_list->setSearchRegExpStr(QStringLiteral("A"));
        QCOMPARE(latest(), 2);
        QCOMPARE(latest(), m_list->rowCount());
    }

    void latestTestIsOneOfThoseWithTheLatestTime()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        tests[0].time = minute(1);
        tests[1].time = minute(2);
        tests[2].time = minute(2).toOffsetFromUtc(7200); // the same moment
        load(tests);
        QVERIFY(latest() == 1 || latest() == 2);
    }

    void latestTestIsFoundInTheOrderOfTheRows()
    {
        std::vector<ScriptedTest> tests = testsAt({ QString(), QStringLiteral("A") });
        tests[0].time = minute(1);
        load(tests);
        QCOMPARE(latest(), 0);
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(latest(), 1);
    }

private:
    /// Two locations of a test with the index 5, and a test with the index 6.
    static std::vector<ScriptedTest> locationsOfTwoTests()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B"), QString() });
        for (ScriptedTest& test : tests) {
            test.index = test.id < 2 ? 5 : 6;
            test.locationsNumber = test.id < 2 ? 2 : 0;
            test.displayName = QStringLiteral("name %1").arg(test.id);
            test.type = QStringLiteral("type %1").arg(test.id);
            test.description = QStringLiteral("description %1").arg(test.id);
            test.site = QStringLiteral("site %1").arg(test.id);
        }
        return tests;
    }

    int latest() const
    {
        int row = -2;
        QMetaObject::invokeMethod(m_list.get(), "findLatestRanTestIndex", Q_RETURN_ARG(int, row));
        return row;
    }
};

QTEST_GUILESS_MAIN(TestListFilterTest)
#include "TestListFilterTest.moc"
