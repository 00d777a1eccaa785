#include "models/TestList.h"
#include "tests/models/TestListFixture.h"
#include "tests/support/FlatView.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/QmlObject.h"
#include "tests/support/SignalRecorder.h"

#include <memory>
#include <QAbstractItemModelTester>
#include <QMetaEnum>
#include <QPointer>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

class TestListTest : public TestListFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

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
        QVERIFY(outlivesTheCollector(m_list.get()));
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
        m_journal.take();
        const QModelIndex index = m_list->index(0, 0);
        QCOMPARE(index.data(257), QVariant(m_jobID));
        QCOMPARE(index.data(258), QVariant(4294967298LL));
        QCOMPARE(index.data(258).userType(), int(QMetaType::LongLong));
        QCOMPARE(index.data(259), QVariant(QStringLiteral("pass")));
        QCOMPARE(index.data(260), QVariant(minute(5)));
        QCOMPARE(index.data(261), QVariant(QStringLiteral("12")));
        QCOMPARE(index.data(262).value<jobmanager_ui::Test*>(), m_list->getTest(4294967298).get());
        QVERIFY(index.data(262).value<QObject*>() != nullptr);
        QCOMPARE(m_api->calls(), QStringList{ QStringLiteral("getTestStatus") });
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
        TestList list(m_api, m_jobID, static_cast<TestList::TestSubset>(subset));
        list.updateDataFromAPIIfRequired();
        QCOMPARE(m_api->calls(), QStringList{ operation });
    }

    void reloadReadsAndEmitsInOrder()
    {
        setTests(*m_api, m_jobID, testsAt({ QStringLiteral("A") }));
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

    void oldRowsAndTheirSearchAreThereWhenAReloadBegins()
    {
        load(testsAt({ QStringLiteral("A"), QStringLiteral("B") }));
        m_list->setSearchRegExpStr(QStringLiteral("b"));
        QStringList seen;
        connect(m_list.get(), &QAbstractItemModel::modelAboutToBeReset, this, [&] {
            seen = QStringList{ ids(), m_list->getSearchRegExpStr() };
        });
        load(testsAt({ QStringLiteral("C") }));
        QCOMPARE(seen, (QStringList{ QStringLiteral("1"), QStringLiteral("b") }));
    }

    void reloadTakesTheTestsInTheOrderOfTheJob()
    {
        const std::vector<ScriptedTest> tests =
            testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        load({ tests[0], tests[1] });
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        m_journal.take();
        load({ tests[2], tests[1], tests[0] });
        QCOMPARE(m_journal.take().filter(QStringLiteral("getTestIndex")),
            (QStringList{ QStringLiteral("call getTestIndex(2)"), QStringLiteral("call getTestIndex(1)"),
                QStringLiteral("call getTestIndex(0)") }));
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
        QCOMPARE(emitted(), resizingSignals());
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

    void newTimeOfAHiddenTestIsToldToo()
    {
        std::vector<ScriptedTest> tests = testsAt({ QStringLiteral("A"), QStringLiteral("B") });
        tests[1].status = QStringLiteral("pass");
        load(tests);
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        m_journal.take();
        tests[1].time = minute(1);
        load(tests);
        QCOMPARE(ids(), QStringLiteral("0"));
        QCOMPARE(emitted(), resizingSignals() + QStringList{ QStringLiteral("emit newTestResultsReceived()") });
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
        QCOMPARE(seen, (QVariantList{ m_jobID, 1LL, {}, {}, {}, {} }));
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
        QCOMPARE(m_list->testLocationsNumberByIndex(1), 0); // the hidden test is found by its index
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
};

QTEST_GUILESS_MAIN(TestListTest)
#include "TestListTest.moc"
