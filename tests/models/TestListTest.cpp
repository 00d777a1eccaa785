#include "models/TestList.h"
#include "tests/models/ListText.h"
#include "tests/models/ScriptedTests.h"
#include "tests/support/FlatView.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/SignalRecorder.h"

#include <algorithm>
#include <memory>
#include <QAbstractItemModelTester>
#include <QMetaEnum>
#include <QPointer>
#include <QQmlEngine>
#include <QtTest>
#include <utility>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString job = QStringLiteral("J");

/// What a rebuild of rows and sections emits that leaves their number as it was.
QStringList rebuildSignals()
{
    return { QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit sectionsChanged()"),
        QStringLiteral("emit sectionsCountChanged()"), QStringLiteral("emit modelReset()") };
}

/// What a rebuild of rows and sections emits that changes the number of rows.
QStringList shrinkingSignals()
{
    QStringList expected = rebuildSignals();
    expected.insert(1, QStringLiteral("emit testsCountChanged()"));
    return expected;
}

} // namespace

/// Calls, signals of the list and messages go into one journal.
class TestListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>(m_journal);
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_list = std::make_unique<TestList>(m_api, job, TestList::TESTSUBSET_ALL);
        m_recorder = std::make_unique<SignalRecorder>(*m_list, m_journal);
    }

    void cleanup()
    {
        QCOMPARE(m_journal.take().filter(QStringLiteral("warning: ")), QStringList());
        m_recorder.reset();
        m_list.reset();
        m_api.reset();
        m_messages.reset();
    }

    // What it publishes.

    void propertiesStandInOrder()
    {
        QCOMPARE(propertyLines(TestList::staticMetaObject), QStringLiteral(R"(int testsCount testsCountChanged
int sectionsCount sectionsCountChanged
QVariantList sections sectionsChanged
QString searchRegExpStr searchRegExpStrChanged writable
TestFilter testFilter testFilterChanged writable)"));
    }

    void signalsAndTheInvokableStandInOrder()
    {
        QCOMPARE(methodLines(TestList::staticMetaObject), QStringLiteral(R"(signal testsCountChanged()
signal sectionsCountChanged()
signal sectionsChanged()
signal searchRegExpStrChanged()
signal testFilterChanged()
signal newTestResultsReceived()
method findLatestRanTestIndex())"));
    }

    void enumsArePublished()
    {
        const QMetaObject& meta = TestList::staticMetaObject;
        QStringList published;
        for (int i = meta.enumeratorOffset(); i < meta.enumeratorCount(); ++i) {
            const QMetaEnum values = meta.enumerator(i);
            for (int k = 0; k < values.keyCount(); ++k) {
                published.append(QStringLiteral("%1::%2=%3")
                                     .arg(QLatin1String(values.name()), QLatin1String(values.key(k)))
                                     .arg(values.value(k)));
            }
        }
        QCOMPARE(lines(published), QStringLiteral(R"(TestFilter::TESTFILTER_ALL=0
TestFilter::TESTFILTER_COMPLETED=1
TestFilter::TESTFILTER_INCOMPLETE=2
TestRoles::JobID=257
TestRoles::TestID=258
TestRoles::TestStatus=259
TestRoles::TestTime=260
TestRoles::TestSection=261
TestRoles::Test=262)"));
    }

    void rolesHaveTheirNames()
    {
        const QHash<int, QByteArray> expected{ { 257, "jobID" }, { 258, "testID" }, { 259, "testStatus" },
            { 260, "testTime" }, { 261, "testSection" }, { 262, "test" } };
        QCOMPARE(m_list->roleNames(), expected);
    }

    void listBelongsToCppWithoutAParent()
    {
        QCOMPARE(m_list->parent(), nullptr);
        QCOMPARE(QQmlEngine::objectOwnership(m_list.get()), QQmlEngine::CppOwnership);
    }

    // Rows.

    void listIsEmptyAndAsksNothingBeforeItsFirstUpdate()
    {
        QCOMPARE(m_list->testsCount(), 0);
        QCOMPARE(m_list->rowCount(), 0);
        QCOMPARE(m_list->sectionsCount(), 0);
        QCOMPARE(m_list->sections(), QVariantList());
        for (int role = 256; role <= 263; ++role) {
            QCOMPARE(m_list->data(m_list->index(0, 0), role), QVariant());
            QCOMPARE(m_list->data(QModelIndex(), role), QVariant());
        }
        QCOMPARE(m_journal.take(), QStringList());
    }

    void dataAnswersTheRoles()
    {
        ScriptedTest test;
        test.id = 4294967298;
        test.index = 12;
        test.status = QStringLiteral("pass");
        test.time = minute(5);
        load({ test });
        const QModelIndex index = m_list->index(0, 0);
        QCOMPARE(index.data(257), QVariant(job));
        QCOMPARE(index.data(258), QVariant(4294967298LL));
        QCOMPARE(index.data(258).userType(), int(QMetaType::LongLong));
        QCOMPARE(index.data(259), QVariant(QStringLiteral("pass")));
        QCOMPARE(index.data(260), QVariant(minute(5)));
        QCOMPARE(index.data(261), QVariant(QStringLiteral("12")));
        QCOMPARE(index.data(262).value<jobmanager_ui::Test*>(), m_list->getTest(4294967298).get());
        QVERIFY(index.data(262).value<QObject*>() != nullptr);
    }

    void otherRolesAndRowsThatAreNotThereAnswerNothing()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        QCOMPARE(m_list->data(m_list->index(0, 0), 256), QVariant());
        QCOMPARE(m_list->data(m_list->index(0, 0), 263), QVariant());
        QCOMPARE(m_list->data(m_list->index(0, 0), Qt::DisplayRole), QVariant());
        const QModelIndex gone = m_list->index(1, 0);
        m_list->setSearchRegExpStr(QStringLiteral("A"));
        QCOMPARE(m_list->data(gone, TestList::JobID), QVariant());
        QCOMPARE(m_list->data(gone, TestList::Test), QVariant());
    }

    void rowCountIgnoresTheParent()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        QCOMPARE(m_list->rowCount(m_list->index(0, 0)), 2);
        QCOMPARE(m_list->rowCount(), 2);
    }

    void nothingIsWrittenThroughTheModel()
    {
        load(testsAt({ QStringLiteral("A") }));
        m_journal.take();
        QCOMPARE(m_list->setData(m_list->index(0, 0), QStringLiteral("x"), TestList::TestStatus), false);
        QCOMPARE(m_list->setData(QModelIndex(), QStringLiteral("x")), false);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void modelKeepsQtsRules()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A") }));
        FlatView view(*m_list);
        const QAbstractItemModelTester tester(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        m_list->setSearchRegExpStr(QStringLiteral("a"));
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        load(testsAt({ QStringLiteral("C") }));
        load({});
        QCOMPARE(view.rowCount(), 0);
    }

    // The reload.

    void subsetChoosesTheOperation_data()
    {
        QTest::addColumn<int>("subset");
        QTest::addColumn<QString>("operation");
        QTest::newRow("all") << 0 << QStringLiteral("getAllTestIDs");
        QTest::newRow("required") << 1 << QStringLiteral("getRequiredTestIDs");
        QTest::newRow("optional") << 2 << QStringLiteral("getOptionalTestIDs");
        QTest::newRow("any other") << 3 << QStringLiteral("getAllTestIDs");
        QTest::newRow("negative") << -1 << QStringLiteral("getAllTestIDs");
    }

    void subsetChoosesTheOperation()
    {
        QFETCH(int, subset);
        QFETCH(QString, operation);
        TestList list(m_api, job, static_cast<TestList::TestSubset>(subset));
        list.updateDataFromAPIIfRequired();
        QCOMPARE(m_api->calls(), QStringList{ operation });
    }

    void reloadReadsAndEmitsInOrder()
    {
        setTests(*m_api, job, testsAt({ QStringLiteral("A") }));
        m_list->updateDataFromAPIIfRequired();
        QCOMPARE(lines(m_journal.take()),
            QStringLiteral(
                R"(debug: void jobmanager_ui::TestList::updateDataFromAPIIfRequired() : Updating  "J" ...
emit modelAboutToBeReset()
call getAllTestIDs("J")
call getTestIndex(0)
call getTestLocationIndex(0)
call getTestType("J", 0)
call getTestTime("J", 0)
call getTestTypeDisplayName("J", 0)
call getTestRequired("J", 0)
call getTestLocationsNumber("J", 0)
call getOptionalTestProperty("J", 0, "location")
emit sectionsChanged()
emit sectionsCountChanged()
emit modelReset())"));
    }

    void secondUpdateWithoutAMarkDoesNothing()
    {
        load(testsAt({ QStringLiteral("A") }));
        m_journal.take();
        m_list->updateDataFromAPIIfRequired();
        QCOMPARE(m_journal.take(), QStringList());
    }

    void markAloneDoesNothing()
    {
        load(testsAt({ QStringLiteral("A") }));
        m_journal.take();
        m_list->markAsUpdateRequired();
        QCOMPARE(m_journal.take(), QStringList());
        QCOMPARE(m_list->testsCount(), 1);
    }

    void reloadOfNoTestsEmitsTheSectionSignalsToo()
    {
        load({});
        QCOMPARE(emitted(), rebuildSignals());
        QCOMPARE(m_list->testsCount(), 0);
    }

    void reloadKeepsTheFilterAndDropsTheSearchSilently()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("B") });
        tests[0].status = QStringLiteral("pass");
        tests[2].status = QStringLiteral("pass");
        load(tests);
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        m_list->setSearchRegExpStr(QStringLiteral("A"));
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(ids(), QStringLiteral("0"));
        m_journal.take();
        load(tests);
        QCOMPARE(emitted(), shrinkingSignals());
        QCOMPARE(m_list->getSearchRegExpStr(), QString());
        QCOMPARE(m_list->getTestFilter(), TestList::TESTFILTER_COMPLETED);
        QCOMPARE(m_list->getSection(2), QStringLiteral("B"));
        QCOMPARE(ids(), QStringLiteral("0 2"));
    }

    void reloadAloneDoesNotTellTheNumberOfTests_data()
    {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::newRow("first tests") << 0 << 2;
        QTest::newRow("grown") << 2 << 3;
        QTest::newRow("shrunk") << 3 << 1;
        QTest::newRow("emptied") << 3 << 0;
    }

    void reloadAloneDoesNotTellTheNumberOfTests()
    {
        QFETCH(int, before);
        QFETCH(int, after);
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        load({ tests.begin(), tests.begin() + before });
        m_journal.take();
        load({ tests.begin(), tests.begin() + after });
        QCOMPARE(emitted(), rebuildSignals());
        QCOMPARE(m_list->testsCount(), after);
    }

    void newTimeOfAKnownTestIsTold_data()
    {
        QTest::addColumn<QDateTime>("before");
        QTest::addColumn<QDateTime>("after");
        QTest::addColumn<bool>("told");
        QTest::newRow("same time") << minute(1) << minute(1) << false;
        QTest::newRow("never ran") << QDateTime() << QDateTime() << false;
        QTest::newRow("later") << minute(1) << minute(2) << true;
        QTest::newRow("earlier") << minute(2) << minute(1) << true;
        QTest::newRow("first result") << QDateTime() << minute(1) << true;
        QTest::newRow("first result, at the start of the epoch")
            << QDateTime() << QDateTime::fromMSecsSinceEpoch(0, Qt::UTC) << true;
        QTest::newRow("first result, at the start of the local epoch")
            << QDateTime() << QDateTime(QDate(1970, 1, 1), QTime(0, 0)) << true;
        QTest::newRow("result withdrawn") << minute(1) << QDateTime() << true;
    }

    void newTimeOfAKnownTestIsTold()
    {
        QFETCH(QDateTime, before);
        QFETCH(QDateTime, after);
        QFETCH(bool, told);
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        tests[0].time = before;
        load(tests);
        m_journal.take();
        tests[0].time = after;
        load(tests);
        QCOMPARE(emitted(),
            rebuildSignals() + (told ? QStringList{ QStringLiteral("emit newTestResultsReceived()") } : QStringList()));
    }

    void manyNewTimesAreToldOnceAfterTheReset()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        load(tests);
        m_journal.take();
        for (ScriptedTest& test : tests) {
            test.time = minute(9);
        }
        load(tests);
        QCOMPARE(emitted(), rebuildSignals() + QStringList{ QStringLiteral("emit newTestResultsReceived()") });
    }

    void newAndRemovedTestsAreNoNewResults()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        tests[0].time = minute(1);
        tests[1].time = minute(2);
        load({ tests[0] });
        m_journal.take();
        load(tests);
        load({ tests[1] });
        QCOMPARE(emitted(), rebuildSignals() + rebuildSignals());
    }

    void receiverOfNewResultsSeesTheNewRowsAndTheTestsThatHaveGone()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        load(tests);
        const QPointer<jobmanager_ui::Test> gone = m_list->getTest(1).get();
        QDateTime seen;
        bool alive = false;
        connect(m_list.get(), &TestList::newTestResultsReceived, this, [&] {
            seen = m_list->index(0, 0).data(TestList::TestTime).toDateTime();
            alive = !gone.isNull();
        });
        tests[0].time = minute(3);
        load({ tests[0] });
        QCOMPARE(seen, minute(3));
        QCOMPARE(alive, true);
        QVERIFY(gone.isNull());
    }

    void testStaysTheSameObjectForAsLongAsItsIdStays()
    {
        const std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        load(tests);
        jobmanager_ui::Test* const b = m_list->getTest(1).get();
        m_list->setSearchRegExpStr(QStringLiteral("C"));
        load({ tests[2], tests[1] });
        QCOMPARE(m_list->getTest(1).get(), b);
        QCOMPARE(m_list->index(1, 0).data(TestList::Test).value<jobmanager_ui::Test*>(), b);
        QCOMPARE(m_list->getTest(0).get(), nullptr);
    }

    void hundredReloadsKeepEveryTest()
    {
        const std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        load(tests);
        const QList<QPointer<jobmanager_ui::Test>> before{ m_list->getTest(0).get(), m_list->getTest(1).get(),
            m_list->getTest(2).get() };
        for (int round = 0; round < 100; ++round) {
            load(tests);
        }
        for (int id = 0; id < 3; ++id) {
            QVERIFY(!before.at(id).isNull());
            QCOMPARE(m_list->getTest(id).get(), before.at(id).data());
        }
    }

    void testThatSomebodyHoldsOutlivesItsId()
    {
        load(testsAt({ QStringLiteral("A") }));
        const std::shared_ptr<jobmanager_ui::Test> held = m_list->getTest(0);
        load({});
        QCOMPARE(held->location(), QStringLiteral("A"));
        QCOMPARE(m_list->getTest(0), nullptr);
    }

    void keptTestsAreUpdatedInsideTheReset()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A") });
        load(tests);
        const SignalRecorder testRecorder(*m_list->getTest(0), m_journal, QStringLiteral("test: "));
        m_journal.take();
        tests[0].location = QStringLiteral("B");
        load(tests);
        const QStringList entries = m_journal.take();
        const int update = entries.indexOf(QStringLiteral("emit test: locationChanged()"));
        QVERIFY(update > entries.indexOf(QStringLiteral("emit modelAboutToBeReset()")));
        QVERIFY(update < entries.indexOf(QStringLiteral("emit sectionsChanged()")));
        QCOMPARE(m_list->getTest(0)->location(), QStringLiteral("B"));
    }

    void idThatStandsTwiceHasTwoRowsAndOneTest()
    {
        const std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        load({ tests[0], tests[1], tests[0] });
        QCOMPARE(ids(), QStringLiteral("0 1 0"));
        load({ tests[0], tests[1], tests[0] });
        QCOMPARE(ids(), QStringLiteral("0 1 0"));
        QCOMPARE(m_list->index(0, 0).data(TestList::Test), m_list->index(2, 0).data(TestList::Test));
    }

    // Receivers inside a reload.

    void rowsWhoseTestIsNotThereYetAnswerTheirIdsAlone()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        QVariantList seen;
        connect(m_list->getTest(0).get(), &jobmanager_ui::Test::locationChanged, this, [&] {
            for (int role = TestList::JobID; role <= TestList::Test; ++role) {
                seen.append(m_list->index(1, 0).data(role));
            }
        });
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        QCOMPARE(seen, (QVariantList{ job, 1LL, {}, {}, {}, {} }));
    }

    void receiverMayFilterAndRegroupInsideAReload()
    {
        std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("B"), QString(), QStringLiteral("A"), QStringLiteral("B") });
        tests[1].status = QStringLiteral("pass");
        load(tests);
        connect(m_list->getTest(2).get(), &jobmanager_ui::Test::locationChanged, this, [&] {
            m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
            m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
            m_list->setSearchRegExpStr(QStringLiteral("[ab~]"));
        });
        load(tests);
        QCOMPARE(ids(), QStringLiteral("0 3 4 2"));
        QCOMPARE(m_list->sectionsCount(), 3);
    }

    void reloadThatBecomesRequiredInsideAReloadWaitsForTheNextReader()
    {
        const std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        load(tests);
        const QList<QPointer<jobmanager_ui::Test>> before{ m_list->getTest(0).get(), m_list->getTest(1).get(),
            m_list->getTest(2).get() };
        connect(before.at(1).data(), &jobmanager_ui::Test::locationChanged, this, [&] {
            m_list->markAsUpdateRequired();
            m_list->updateDataFromAPIIfRequired();
        });
        load(tests);
        for (int id = 0; id < 3; ++id) {
            QVERIFY(!before.at(id).isNull());
        }
        before.at(1)->disconnect(this);
        m_journal.take();
        m_list->updateDataFromAPIIfRequired();
        QCOMPARE(m_api->count(QStringLiteral("getAllTestIDs")), 1);
        for (int id = 0; id < 3; ++id) {
            QCOMPARE(m_list->getTest(id).get(), before.at(id).data());
        }
    }

    // The status filter.

    void newFilterRebuildsInsideAResetAndIsThenTold()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        tests[0].status = QStringLiteral("pass");
        load(tests);
        m_journal.take();
        QVERIFY(m_list->setProperty("testFilter", 1));
        QCOMPARE(emitted(), shrinkingSignals() + QStringList{ QStringLiteral("emit testFilterChanged()") });
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
        setTests(*m_api, job, tests);
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
        setTests(*m_api, job, tests);
        m_journal.take();
        m_list->filterTests();
        QCOMPARE(emitted(), shrinkingSignals());
        QCOMPARE(ids(), QStringLiteral("1"));
    }

    // The search.

    void newSearchRebuildsInsideAResetAndIsThenTold()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        m_journal.take();
        QVERIFY(m_list->setProperty("searchRegExpStr", QStringLiteral("B")));
        QCOMPARE(m_journal.take(), shrinkingSignals() + QStringList{ QStringLiteral("emit searchRegExpStrChanged()") });
        QCOMPARE(m_list->property("searchRegExpStr").toString(), QStringLiteral("B"));
    }

    void currentSearchDoesNothing()
    {
        load(testsAt({ QStringLiteral("A") }));
        m_list->setSearchRegExpStr(QStringLiteral("A"));
        m_journal.take();
        m_list->setSearchRegExpStr(QStringLiteral("A"));
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
        QTest::newRow("greedy as QRegExp is") << QStringLiteral("o.*2") << QStringLiteral("1");
        QTest::newRow("empty match") << QStringLiteral("x*") << QStringLiteral("0 1 2 3");
        QTest::newRow("no match") << QStringLiteral("elsewhere") << QStringLiteral("");
        QTest::newRow("invalid expression") << QStringLiteral("Loc1(") << QStringLiteral("");
        QTest::newRow("invalid class") << QStringLiteral("[") << QStringLiteral("");
        QTest::newRow("escaped bracket") << QStringLiteral("\\(") << QStringLiteral("2");
        QTest::newRow("without a location") << QStringLiteral("~") << QStringLiteral("3");
        QTest::newRow("blanks around count") << QStringLiteral(" Loc1 ") << QStringLiteral("");
        QTest::newRow("blank inside") << QStringLiteral("d (?=\\()") << QStringLiteral("2");
        QTest::newRow("blanks alone") << QStringLiteral(" \t ") << QStringLiteral("0 1 2 3");
        QTest::newRow("name of the type is not searched") << QStringLiteral("OTDR") << QStringLiteral("");
        QTest::newRow("status is not searched") << QStringLiteral("pass") << QStringLiteral("");
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
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("B") });
        tests[0].status = QStringLiteral("pass");
        tests[2].status = QStringLiteral("pass");
        load(tests);
        m_list->setSearchRegExpStr(QStringLiteral("A"));
        m_list->setTestFilter(TestList::TESTFILTER_COMPLETED);
        QCOMPARE(ids(), QStringLiteral("0"));
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(ids(), QStringLiteral("1"));
    }

    // Lookups.

    void getTestReloadsFirst()
    {
        load(testsAt({ QStringLiteral("A") }));
        setTests(*m_api, job, testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
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
        QCOMPARE(m_list->getTest(7), nullptr); // asking has not made it
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
    void load(const std::vector<ScriptedTest>& tests)
    {
        setTests(*m_api, job, tests);
        m_list->markAsUpdateRequired();
        m_list->updateDataFromAPIIfRequired();
    }

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

    /// The signals since the journal was emptied last.
    QStringList emitted() { return m_journal.take().filter(QRegularExpression(QStringLiteral("^emit "))); }

    QString ids() const { return orderText(*m_list); }

    int latest() const
    {
        int row = -2;
        QMetaObject::invokeMethod(m_list.get(), "findLatestRanTestIndex", Q_RETURN_ARG(int, row));
        return row;
    }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<TestList> m_list;
    std::unique_ptr<SignalRecorder> m_recorder;
};

QTEST_GUILESS_MAIN(TestListTest)
#include "TestListTest.moc"
