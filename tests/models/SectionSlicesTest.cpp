#include "models/PartialModel.h"
#include "tests/models/ListText.h"
#include "tests/models/TestListFixture.h"
#include "tests/support/FlatView.h"

#include <QAbstractItemModelTester>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// Five tests at three places, of two kinds, the second one with a result.
std::vector<ScriptedTest> fiveTests()
{
    std::vector<ScriptedTest> tests =
        testsAt({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A"), QString(), QStringLiteral("B") });
    for (ScriptedTest& test : tests) {
        test.displayName = test.id < 3 ? QStringLiteral("OTDR") : QStringLiteral("Kwikprobe");
    }
    tests[1].status = QStringLiteral("pass");
    return tests;
}

} // namespace

/// Slices that show the sections of a list of tests, as a screen has them.
class SectionSlicesTest : public TestListFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void sliceOfEachSectionShowsItsTests()
    {
        load(fiveTests(), TestGroupType::GROUPBY_LOCATION);
        QStringList shown;
        for (int section = 0; section < m_list->sectionsCount(); ++section) {
            PartialModel slice;
            slice.setModel(m_list.get());
            showSection(slice, section);
            shown.append(orderText(slice));
        }
        QCOMPARE(shown, (QStringList{ QStringLiteral("0 2"), QStringLiteral("1 4"), QStringLiteral("3") }));
    }

    void rowsOfASliceGiveTheTestsOfTheList()
    {
        load(fiveTests(), TestGroupType::GROUPBY_LOCATION);
        PartialModel slice;
        slice.setModel(m_list.get());
        showSection(slice, 1);
        QCOMPARE(slice.roleNames(), m_list->roleNames());
        const QModelIndex second = slice.index(1, 0);
        QCOMPARE(second.data(TestList::Test).value<Test*>(), m_list->getTest(4).get());
        QCOMPARE(second.data(TestList::TestSection), QVariant(QStringLiteral("B")));
    }

    void sliceFollowsItsSectionFromInsideTheResets()
    {
        load(fiveTests());
        PartialModel slice;
        slice.setModel(m_list.get());
        FlatView view(slice);
        const QAbstractItemModelTester tester(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
        // As a binding does: the list tells of its sections while it is being reset.
        connect(m_list.get(), &TestList::sectionsChanged, &slice, [&] { showSection(slice, 0); });
        m_list->setGroupType(TestGroupType::GROUPBY_LOCATION);
        QCOMPARE(orderText(slice), QStringLiteral("0 2"));
        m_list->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(orderText(slice), QStringLiteral("0 1 2"));
        m_list->setTestFilter(TestList::TESTFILTER_INCOMPLETE);
        QCOMPARE(orderText(slice), QStringLiteral("0 2"));
        m_list->setSearchRegExpStr(QStringLiteral("b"));
        QCOMPARE(orderText(slice), QStringLiteral("4"));
        load({});
        QCOMPARE(orderText(slice), QString());
        load(fiveTests());
        QCOMPARE(orderText(slice), QStringLiteral("0 2"));
    }

private:
    /// Has the slice show that section; nothing if there is none.
    void showSection(PartialModel& slice, int section) const
    {
        const QVariantMap numbers = m_list->sections().value(section).toMap();
        slice.setStartIndex(numbers.value(QStringLiteral("startIndex")).toInt());
        slice.setTestsCount(numbers.value(QStringLiteral("testsCount")).toInt());
    }
};

QTEST_GUILESS_MAIN(SectionSlicesTest)
#include "SectionSlicesTest.moc"
