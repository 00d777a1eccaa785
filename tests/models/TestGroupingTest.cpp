#include "models/TestGrouping.h"
#include "models/TestList.h"
#include "tests/models/ListText.h"
#include "tests/models/TestListFixture.h"

#include <algorithm>
#include <QtTest>
#include <random>
#include <utility>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

using Ids = std::vector<long long>;

/// Tests with the display names of the list, without a location.
std::vector<ScriptedTest> testsNamed(const QStringList& names)
{
    std::vector<ScriptedTest> tests = testsAt(names);
    for (ScriptedTest& test : tests) {
        test.displayName = std::exchange(test.location, QString());
    }
    return tests;
}

/// A job of fifteen tests: five at five places, then ten more of the first kind at the first place.
std::vector<ScriptedTest> fifteenTests()
{
    QStringList locations{ QStringLiteral("Loc1"), QStringLiteral("MyLocation2"), QStringLiteral("MyLocation3"),
        QStringLiteral("MyLocation5"), QStringLiteral("MyLocation4") };
    QStringList names{ QStringLiteral("OTDR"), QStringLiteral("Kwikprobe Ethernet"), QStringLiteral("Kwikprobe"),
        QStringLiteral("Kwikprobe"), QStringLiteral("Kwikprobe") };
    for (int i = 0; i < 10; ++i) {
        locations.append(QStringLiteral("Loc1"));
        names.append(QStringLiteral("OTDR"));
    }
    std::vector<ScriptedTest> tests = testsAt(locations);
    for (ScriptedTest& test : tests) {
        test.displayName = names.at(static_cast<int>(test.id));
    }
    return tests;
}

} // namespace

class TestGroupingTest : public TestListFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // The worked examples.

    void fifteenTestsByLocation()
    {
        load(fifteenTests(), TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(ids(), QStringLiteral("0 5 6 7 8 9 10 11 12 13 14 1 2 3 4"));
        QCOMPARE(sections(),
            QStringLiteral("\"Loc1\", 0, 11; \"MyLocation2\", 11, 1; \"MyLocation3\", 12, 1; "
                           "\"MyLocation5\", 13, 1; \"MyLocation4\", 14, 1"));
    }

    void fifteenTestsByName()
    {
        load(fifteenTests(), TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(ids(), QStringLiteral("0 5 6 7 8 9 10 11 12 13 14 1 2 3 4"));
        QCOMPARE(sections(), QStringLiteral("\"OTDR\", 0, 11; \"Kwikprobe Ethernet\", 11, 1; \"Kwikprobe\", 12, 3"));
    }

    // The group types.

    void groupTypeDecidesOrderAndTitles_data()
    {
        QTest::addColumn<int>("groupType");
        QTest::addColumn<QString>("order");
        QTest::addColumn<QString>("sections");
        const QString ofTheJob = QStringLiteral("0 1 2 3 4");
        QTest::newRow("none") << 0 << ofTheJob << QString();
        QTest::newRow("default") << 1 << ofTheJob
                                 << QStringLiteral("\"7\", 0, 2; \"8\", 2, 1; \"9\", 3, 1; \"-1\", 4, 1");
        QTest::newRow("location") << 2 << QStringLiteral("0 2 1 4 3")
                                  << QStringLiteral("\"b\", 0, 2; \"a\", 2, 2; \"~\", 4, 1");
        QTest::newRow("name") << 3 << QStringLiteral("0 3 4 1 2") << QStringLiteral("\"Y\", 0, 3; \"X\", 3, 2");
        QTest::newRow("outside the enum") << 4 << ofTheJob << QString();
        QTest::newRow("negative") << -1 << ofTheJob << QString();
    }

    void groupTypeDecidesOrderAndTitles()
    {
        QFETCH(int, groupType);
        QTEST(groupedText(static_cast<TestGroupType::Enum>(groupType)), "sections");
        QTEST(ids(), "order");
    }

    void withoutGroupingThereAreNoSections()
    {
        load(fifteenTests(), TestGroupType::NONE);
        QCOMPARE(m_list->sections(), QVariantList());
        QCOMPARE(m_list->sectionsCount(), 0);
        for (int row = 0; row < 15; ++row) {
            QCOMPARE(m_list->index(row, 0).data(TestList::TestSection), QVariant(QString()));
            QCOMPARE(m_list->index(row, 0).data(TestList::TestID), QVariant(static_cast<long long>(row)));
        }
    }

    void listStartsWithTheDefaultGrouping()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("A") });
        tests[1].index = 30;
        load(tests);
        QCOMPARE(sections(), QStringLiteral("\"0\", 0, 1; \"30\", 1, 1"));
    }

    void sectionHasExactlyItsThreeKeys()
    {
        load(testsAt({ QStringLiteral("A") }), TestGroupType::GROUPBY_LOCATION);
        const QVariantMap expected{ { QStringLiteral("section"), QStringLiteral("A") },
            { QStringLiteral("startIndex"), 0 }, { QStringLiteral("testsCount"), 1 } };
        const QVariantList all = m_list->property("sections").toList();
        QCOMPARE(all.size(), 1);
        QCOMPARE(all.at(0).userType(), int(QMetaType::QVariantMap));
        QCOMPARE(all.at(0).toMap(), expected);
        QCOMPARE(m_list->property("sectionsCount").toInt(), 1);
    }

    // Signals.

    void newGroupTypeRebuildsInsideAReset()
    {
        load(fifteenTests());
        m_journal.take();
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_journal.take(), rebuildSignals());
    }

    void currentGroupTypeDoesNothing()
    {
        load(fifteenTests());
        m_journal.take();
        m_list->setGroupType(TestGroupType::DEFAULT_VIEW);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void groupTypeChangesInsideTheReset()
    {
        load(testsAt({ QStringLiteral("A") }));
        QStringList titles;
        const auto note = [&] { titles.append(m_list->getSection(0)); };
        connect(m_list.get(), &QAbstractItemModel::modelAboutToBeReset, this, note);
        connect(m_list.get(), &QAbstractItemModel::modelReset, this, note);
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(titles, (QStringList{ QStringLiteral("0"), QStringLiteral("A") }));
    }

    void sectionsChangeWhileTheirNumberIsStillTheOldOne()
    {
        load(fifteenTests());
        QCOMPARE(m_list->sectionsCount(), 15);
        QStringList seen;
        const auto note = [&] {
            seen.append(QStringLiteral("%1 of %2").arg(m_list->sectionsCount()).arg(m_list->sections().size()));
        };
        connect(m_list.get(), &TestList::sectionsChanged, this, note);
        connect(m_list.get(), &TestList::sectionsCountChanged, this, note);
        m_list->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(seen, (QStringList{ QStringLiteral("15 of 3"), QStringLiteral("3 of 3") }));
    }

    void rowsAreTheNewOnesWhenTheirNumberIsTold()
    {
        load(fifteenTests(), TestGroupType::GROUPBY_TEST_NAME);
        QStringList seen;
        connect(m_list.get(), &TestList::testsCountChanged, this, [&] {
            seen.append(QStringLiteral("%1 rows, %2 sections").arg(m_list->testsCount()).arg(m_list->sectionsCount()));
        });
        m_list->setSearchRegExpStr(QStringLiteral("Loc1"));
        QCOMPARE(seen, QStringList{ QStringLiteral("11 rows, 3 sections") });
    }

    void unchangedSectionsAreSignalledToo()
    {
        load(fifteenTests());
        m_journal.take();
        m_list->filterTests();
        QCOMPARE(m_journal.take(), rebuildSignals());
    }

    void emptyListSignalsItsSections()
    {
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_journal.take(), rebuildSignals());
        QCOMPARE(m_list->sections(), QVariantList());
        QCOMPARE(m_list->sectionsCount(), 0);
    }

    void groupTypeSurvivesAReload()
    {
        load(fifteenTests(), TestGroupType::GROUPBY_TEST_NAME);
        load(fifteenTests());
        QCOMPARE(m_list->sectionsCount(), 3);
    }

    // By location.

    void groupsStandWhereTheirFirstTestDoesAndWithoutALocationLast()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("~"),
                 QStringLiteral("B") }),
            TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(ids(), QStringLiteral("0 2 1 4 3"));
        QCOMPARE(sections(), QStringLiteral("\"A\", 0, 2; \"B\", 2, 2; \"~\", 4, 1"));
    }

    void testsWithoutALocationComeLastWhereverTheyStand_data()
    {
        QTest::addColumn<QStringList>("locations");
        QTest::addColumn<QString>("order");
        QTest::newRow("first") << QStringList{ QString(), QStringLiteral("B"), QStringLiteral("A") }
                               << QStringLiteral("1 2 0");
        QTest::newRow("all over") << QStringList{ QString(), QStringLiteral("B"), QString(), QStringLiteral("A"),
            QString() } << QStringLiteral("1 3 0 2 4");
        QTest::newRow("last") << QStringList{ QStringLiteral("B"), QString() } << QStringLiteral("0 1");
        QTest::newRow("alone") << QStringList{ QString(), QString() } << QStringLiteral("0 1");
        QTest::newRow("beside a longer one") << QStringList{ QString(), QStringLiteral("~~") } << QStringLiteral("1 0");
        QTest::newRow("none") << QStringList{ QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("B") }
                              << QStringLiteral("0 2 1");
    }

    void testsWithoutALocationComeLastWhereverTheyStand()
    {
        QFETCH(QStringList, locations);
        load(testsAt(locations), TestGroupType::GROUPBY_LOCATION);
        QTEST(ids(), "order");
    }

    void testsWithoutALocationFormTheLastSection()
    {
        load(testsAt({ QStringLiteral("MyLocation3"), QStringLiteral("MyLocation4"), QString(), QString() }),
            TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(sections(), QStringLiteral("\"MyLocation3\", 0, 1; \"MyLocation4\", 1, 1; \"~\", 2, 2"));
    }

    void locationsAreEqualOnlyLetterForLetter()
    {
        load(testsAt({ QStringLiteral("a"), QStringLiteral("A"), QStringLiteral("a "), QStringLiteral("a") }),
            TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(ids(), QStringLiteral("0 3 1 2"));
        QCOMPARE(m_list->sectionsCount(), 3);
    }

    // With a filter.

    void groupThatIsHiddenHasNoSection()
    {
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        tests[2].status = QStringLiteral("pass");
        tests[3].status = QStringLiteral("pass");
        load(tests, TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(sections(), QStringLiteral("\"A\", 0, 2; \"B\", 2, 1; \"C\", 3, 1"));
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(sections(), QStringLiteral("\"B\", 0, 1; \"C\", 1, 1"));
    }

    void rowsOfAGroupCloseUp()
    {
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("B") });
        tests[1].status = QStringLiteral("pass");
        load(tests, TestGroupType::GROUPBY_LOCATION);
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(sections(), QStringLiteral("\"A\", 0, 2; \"B\", 2, 1"));
    }

    void hiddenFirstTestKeepsItsGroupsPlace()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A") });
        tests[0].status = QStringLiteral("pass");
        load(tests, TestGroupType::GROUPBY_LOCATION);
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(ids(), QStringLiteral("2 1"));
        QCOMPARE(sections(), QStringLiteral("\"A\", 0, 1; \"B\", 1, 1"));
    }

    void invalidSearchLeavesNoSections()
    {
        load(fifteenTests(), TestGroupType::GROUPBY_LOCATION);
        m_list->setSearchRegExpStr(QStringLiteral("("));
        QCOMPARE(m_list->testsCount(), 0);
        QCOMPARE(m_list->sections(), QVariantList());
        QCOMPARE(m_list->sectionsCount(), 0);
    }

    void locationsOfATestFoldIntoItsSection()
    {
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QString() });
        for (ScriptedTest& test : tests) {
            test.index = test.id < 3 ? 10 : 11;
        }
        tests[1].status = QStringLiteral("pass");
        load(tests);
        QCOMPARE(sections(), QStringLiteral("\"10\", 0, 3; \"11\", 3, 1"));
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(sections(), QStringLiteral("\"10\", 0, 2; \"11\", 2, 1"));
    }

    void equalTitlesThatAreNotNeighboursAreTwoSections()
    {
        std::vector<ScriptedTest> tests = testsAt({ {}, {}, {} });
        tests[1].index = 5;
        tests[2].index = 0;
        load(tests);
        QCOMPARE(sections(), QStringLiteral("\"0\", 0, 1; \"5\", 1, 1; \"0\", 2, 1"));
    }

    // Empty titles.

    void testsWithoutANameGroupTogetherAndHaveNoSection()
    {
        load(testsNamed({ QStringLiteral("X"), QString(), QStringLiteral("Y"), QString(), QStringLiteral("X") }),
            TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(ids(), QStringLiteral("0 4 1 3 2"));
        QCOMPARE(sections(), QStringLiteral("\"X\", 0, 2; \"Y\", 4, 1"));
        QCOMPARE(m_list->index(2, 0).data(TestList::TestSection), QVariant(QString()));
    }

    void firstSectionStartsBehindRowsWithoutATitle()
    {
        load(testsNamed({ QString(), QString(), QStringLiteral("X") }), TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(sections(), QStringLiteral("\"X\", 2, 1"));
        QCOMPARE(m_list->testsCount(), 3);
    }

    void lastRowsWithoutATitleBelongToNoSection()
    {
        load(testsNamed({ QStringLiteral("X"), QString() }), TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(sections(), QStringLiteral("\"X\", 0, 1"));
    }

    // Titles.

    void titleIsGivenForATestAndForItsId()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }), TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_list->getSection(1), QStringLiteral("B"));
        QCOMPARE(m_list->getSection(m_list->getTest(1)), QStringLiteral("B"));
        m_list->setSearchRegExpStr(QStringLiteral("A"));
        QCOMPARE(m_list->getSection(1), QStringLiteral("B"));
    }

    void unknownTestHasNoTitle()
    {
        load(testsAt({ QStringLiteral("A") }), TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(m_list->getSection(5), QString());
        QCOMPARE(m_list->getSection(nullptr), QString());
    }

    // Costs.

    void regroupingAsksTheInterfaceNothing()
    {
        load(fifteenTests());
        m_journal.take();
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        m_list->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(m_api->calls(), QStringList());
    }

    void groupingAsksEachIdForItsTextOnce()
    {
        QHash<long long, int> asked;
        const Ids grouped = groupedByText({ 9, 4, 7, 1, 3 }, [&](long long id) {
            ++asked[id];
            return id > 3 ? QStringLiteral("large") : QStringLiteral("small");
        });
        QCOMPARE(grouped, (Ids{ 9, 4, 7, 1, 3 }));
        QCOMPARE(asked, (QHash<long long, int>{ { 9, 1 }, { 4, 1 }, { 7, 1 }, { 1, 1 }, { 3, 1 } }));
    }

    void sectionsAskEachRowForItsTitleOnce()
    {
        Ids asked;
        const QVariantList sections = sectionsOf({ 9, 4, 7 }, [&](long long id) {
            asked.push_back(id);
            return QString::number(id);
        });
        QCOMPARE(sections.size(), 3);
        QCOMPARE(asked, (Ids{ 9, 4, 7 }));
    }

    void groupingIsWhatASortByFirstPositionsGives_data()
    {
        QTest::addColumn<int>("seed");
        for (int seed = 1; seed <= 20; ++seed) {
            QTest::addRow("%d", seed) << seed;
        }
    }

    void groupingIsWhatASortByFirstPositionsGives()
    {
        QFETCH(int, seed);
        std::mt19937 random(static_cast<unsigned>(seed));
        Ids ids;
        QHash<long long, QString> texts;
        for (int i = 0; i < 200; ++i) {
            ids.push_back(static_cast<long long>(random()));
            texts.insert(ids.back(), QString::number(random() % 17));
        }
        // The rule by its letter: the text is asked for at each comparison.
        QHash<QString, int> firstPositions;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const QString text = texts.value(ids[i]);
            if (!firstPositions.contains(text)) {
                firstPositions.insert(text, static_cast<int>(i));
            }
        }
        Ids expected = ids;
        std::stable_sort(expected.begin(), expected.end(), [&](long long a, long long b) {
            return firstPositions.value(texts.value(a)) < firstPositions.value(texts.value(b));
        });
        QCOMPARE(groupedByText(ids, [&](long long id) { return texts.value(id); }), expected);
    }

    void nothingGroupsToNothing()
    {
        const auto never = [](long long /*id*/) { return QStringLiteral("text"); };
        QCOMPARE(groupedByText({}, never), Ids());
        QCOMPARE(sectionsOf({}, never), QVariantList());
    }

private:
    /// Loads five tests whose indexes, locations and names group in different ways, and gives the sections.
    QString groupedText(TestGroupType::Enum groupType)
    {
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("b"), QString(), QStringLiteral("a") });
        const int indexes[] = { 7, 7, 8, 9, -1 };
        const char* const names[] = { "Y", "X", "X", "Y", "Y" };
        for (std::size_t i = 0; i < tests.size(); ++i) {
            tests[i].index = indexes[i];
            tests[i].displayName = QString::fromLatin1(names[i]);
        }
        load(tests, groupType);
        return sections();
    }

    QString sections() const { return sectionsText(*m_list); }
};

QTEST_GUILESS_MAIN(TestGroupingTest)
#include "TestGroupingTest.moc"
