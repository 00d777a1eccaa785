#include "tests/models/Letters.h"
#include "tests/models/Slices.h"
#include "tests/support/FlatView.h"
#include "tests/support/SignalRecorder.h"

#include <algorithm>
#include <functional>
#include <QAbstractItemModelTester>
#include <QtTest>
#include <random>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// The rows 3 to 5 of ABCDEFGHIJ, with a view of them and Qt's own tester.
struct Slice
{
    Slice() { cut(model, source, 3, 3); }

    /// The letters that the slice is to show, counted anew.
    QString expected() const
    {
        QString letters;
        const int end = std::min(model.startIndex() + model.testsCount(), source.letters().size());
        for (int row = std::max(model.startIndex(), 0); row < end; ++row) {
            letters += source.letters().at(row);
        }
        return letters;
    }

    Letters source{ QStringLiteral("ABCDEFGHIJ") };
    PartialModel model;
    const Follower view{ model };
    const QAbstractItemModelTester tester{ &model, QAbstractItemModelTester::FailureReportingMode::QtTest };
};

using Script = std::function<void(Letters&)>;

} // namespace

Q_DECLARE_METATYPE(Script)

/// What becomes of a slice when its source changes.
class PartialModelSourceTest : public SliceFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void sliceStaysConsistentOverRowSignals_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<QString>("letters");
        const auto insert = [](int row, const char* letters) {
            return Script([=](Letters& source) { source.insert(row, QString::fromLatin1(letters)); });
        };
        const auto remove = [](int first, int last) {
            return Script([=](Letters& source) { source.remove(first, last); });
        };
        const auto move = [](int first, int last, int before) {
            return Script([=](Letters& source) { source.move(first, last, before); });
        };
        const auto change = [](int first, int last) {
            return Script([=](Letters& source) { source.change(first, last); });
        };
        // New rows join by their own number; the rows that are there stay, pushed along or not.
        QTest::newRow("insert before") << insert(0, "xy") << QStringLiteral("DEF");
        QTest::newRow("insert across the first edge") << insert(2, "xy") << QStringLiteral("yDEF");
        QTest::newRow("insert at the first edge") << insert(3, "xy") << QStringLiteral("xyDEF");
        QTest::newRow("insert inside") << insert(4, "xy") << QStringLiteral("DxyEF");
        QTest::newRow("insert across the last edge") << insert(5, "xy") << QStringLiteral("DExF");
        QTest::newRow("insert at the last edge") << insert(6, "xy") << QStringLiteral("DEF");
        QTest::newRow("insert behind") << insert(10, "xy") << QStringLiteral("DEF");
        QTest::newRow("insert more than the slice") << insert(2, "uvwxyz") << QStringLiteral("vwxDEF");
        QTest::newRow("remove before") << remove(0, 1) << QStringLiteral("DEF");
        QTest::newRow("remove across the first edge") << remove(2, 3) << QStringLiteral("EF");
        QTest::newRow("remove at the first edge") << remove(3, 3) << QStringLiteral("EF");
        QTest::newRow("remove inside") << remove(4, 4) << QStringLiteral("DF");
        QTest::newRow("remove across the last edge") << remove(5, 6) << QStringLiteral("DE");
        QTest::newRow("remove at the last edge") << remove(6, 7) << QStringLiteral("DEF");
        QTest::newRow("remove behind") << remove(9, 9) << QStringLiteral("DEF");
        QTest::newRow("remove the slice") << remove(3, 5) << QString();
        QTest::newRow("remove more than the slice") << remove(2, 6) << QString();
        QTest::newRow("remove all") << remove(0, 9) << QString();
        // A move is a change of the layout, after which the base looks at every row anew.
        QTest::newRow("move before") << move(0, 0, 2) << QStringLiteral("DEF");
        QTest::newRow("move into over the first edge") << move(0, 1, 5) << QStringLiteral("ABF");
        QTest::newRow("move out over the first edge") << move(3, 4, 0) << QStringLiteral("BCF");
        QTest::newRow("move inside") << move(3, 3, 6) << QStringLiteral("EFD");
        QTest::newRow("move into over the last edge") << move(7, 8, 4) << QStringLiteral("DHI");
        QTest::newRow("move out over the last edge") << move(5, 5, 10) << QStringLiteral("DEG");
        QTest::newRow("move behind") << move(6, 7, 10) << QStringLiteral("DEF");
        QTest::newRow("move across both edges") << move(2, 6, 0) << QStringLiteral("FGA");
        QTest::newRow("move away across the first edge") << move(2, 3, 10) << QStringLiteral("FGH");
        QTest::newRow("move away across the last edge") << move(5, 6, 0) << QStringLiteral("BCD");
        QTest::newRow("change before") << change(0, 1) << QStringLiteral("DEF");
        QTest::newRow("change across the first edge") << change(2, 3) << QStringLiteral("dEF");
        QTest::newRow("change inside") << change(4, 4) << QStringLiteral("DeF");
        QTest::newRow("change across the last edge") << change(5, 6) << QStringLiteral("DEf");
        QTest::newRow("change across both edges") << change(2, 6) << QStringLiteral("def");
        QTest::newRow("change behind") << change(6, 9) << QStringLiteral("DEF");
        QTest::newRow("change all") << change(0, 9) << QStringLiteral("def");
        QTest::newRow("change what an insert has pushed out") << Script([](Letters& source) {
            source.insert(0, QStringLiteral("xy"));
            source.change(7, 7);
        }) << QStringLiteral("DE");
        QTest::newRow("change what an insert has pushed in") << Script([](Letters& source) {
            source.insert(0, QStringLiteral("xy"));
            source.change(3, 4);
        }) << QStringLiteral("bcDEF");
    }

    void sliceStaysConsistentOverRowSignals()
    {
        QFETCH(Script, script);
        Slice slice;
        script(slice.source);
        QTEST(shown(slice.model), "letters");
        QTEST(slice.view.letters(), "letters");
        QCOMPARE(fault(slice.model), QString());
    }

    void resetPutsTheSliceRight_data() { sliceStaysConsistentOverRowSignals_data(); }

    void resetPutsTheSliceRight()
    {
        QFETCH(Script, script);
        Slice slice;
        script(slice.source);
        slice.source.reset(slice.source.letters());
        QCOMPARE(shown(slice.model), slice.expected());
        QCOMPARE(slice.view.letters(), slice.expected());
    }

    void newNumberPutsTheSliceRight_data() { sliceStaysConsistentOverRowSignals_data(); }

    void newNumberPutsTheSliceRight()
    {
        QFETCH(Script, script);
        Slice slice;
        script(slice.source);
        slice.model.setTestsCount(4);
        QCOMPARE(shown(slice.model), slice.expected());
        QCOMPARE(slice.view.letters(), slice.expected());
    }

    void sourceResetIsAResetOfTheSlice_data()
    {
        QTest::addColumn<QString>("letters");
        QTest::addColumn<QString>("expected");
        QTest::newRow("same") << QStringLiteral("ABCDEFGHIJ") << QStringLiteral("DEF");
        QTest::newRow("others") << QStringLiteral("klmnopq") << QStringLiteral("nop");
        QTest::newRow("ends inside") << QStringLiteral("klmno") << QStringLiteral("no");
        QTest::newRow("ends before") << QStringLiteral("kl") << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void sourceResetIsAResetOfTheSlice()
    {
        QFETCH(QString, letters);
        Slice slice;
        const SignalRecorder recorder(slice.model, m_journal);
        slice.source.reset(letters);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit modelReset()") }));
        QTEST(shown(slice.model), "expected");
        QTEST(slice.view.letters(), "expected");
    }

    void longScriptsBreakNothing_data()
    {
        QTest::addColumn<unsigned>("seed");
        for (unsigned seed = 1; seed <= 20; ++seed) {
            QTest::addRow("seed %u", seed) << seed;
        }
    }

    void longScriptsBreakNothing()
    {
        QFETCH(unsigned, seed);
        std::mt19937 random(seed);
        Slice slice;
        QList<QPersistentModelIndex> held;
        for (int step = 0; step < 300; ++step) {
            takeStep(random, slice.source, slice.model);
            held.append(slice.model.index(0, 0));
            QCOMPARE(fault(slice.model), QString());
            QCOMPARE(slice.view.letters(), shown(slice.model));
        }
        slice.source.reset(slice.source.letters());
        QCOMPARE(shown(slice.model), slice.expected());
    }

    void sliceMayMoveInsideAResetOfItsSource_data()
    {
        QTest::addColumn<bool>("atItsEnd");
        QTest::addColumn<bool>("toldBeforeTheSlice");
        QTest::newRow("begin, before the slice knows") << false << true;
        QTest::newRow("begin, after the slice knows") << false << false;
        QTest::newRow("end, before the slice knows") << true << true;
        QTest::newRow("end, after the slice knows") << true << false;
    }

    void sliceMayMoveInsideAResetOfItsSource()
    {
        QFETCH(bool, atItsEnd);
        QFETCH(bool, toldBeforeTheSlice);
        Slice slice;
        const auto move = [&] { slice.model.setStartIndex(1); };
        if (atItsEnd) {
            connect(&slice.source, &QAbstractItemModel::modelReset, this, move);
        } else {
            connect(&slice.source, &QAbstractItemModel::modelAboutToBeReset, this, move);
        }
        if (toldBeforeTheSlice) {
            slice.model.setModel(nullptr);
            slice.model.setModel(&slice.source);
        }
        slice.source.reset(QStringLiteral("klmnopq"));
        QCOMPARE(shown(slice.model), QStringLiteral("lmn"));
        QCOMPARE(slice.view.letters(), QStringLiteral("lmn"));
        QCOMPARE(fault(slice.model), QString());
    }

    void sourceMayIgnoreTheParent()
    {
        LettersUnderEveryParent source(QStringLiteral("ABCDEFGHIJ"));
        PartialModel model;
        FlatView view(model);
        const QAbstractItemModelTester tester(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
        cut(model, source, 3, 3);
        QCOMPARE(shown(model), QStringLiteral("DEF"));
        source.insert(3, QStringLiteral("xy"));
        source.remove(0, 3);
        source.reset(QStringLiteral("klmnopq"));
        QCOMPARE(shown(model), QStringLiteral("nop"));
        model.setStartIndex(0);
        QCOMPARE(shown(model), QStringLiteral("klm"));
        QCOMPARE(fault(model), QString());
    }

private:
    /// One change of the source or of the slice, anywhere.
    static void takeStep(std::mt19937& random, Letters& source, PartialModel& model)
    {
        const auto pick = [&](int least, int most) { return std::uniform_int_distribution<>(least, most)(random); };
        const int size = source.letters().size();
        const int step = size < 2 ? 0 : pick(0, 9);
        const int first = size < 2 ? 0 : pick(0, size - 1);
        const int last = size < 2 ? 0 : pick(first, std::min(first + 4, size - 1));
        if (step <= 2) {
            source.insert(pick(0, size), QStringLiteral("UVWXYZ").left(pick(1, 6)));
        } else if (step <= 4) {
            source.remove(first, last);
        } else if (step == 5) {
            moveSomewhere(source, first, last, pick(0, size));
        } else if (step <= 7) {
            source.change(first, last);
        } else if (step == 8) {
            model.setStartIndex(pick(-2, size + 2));
        } else {
            model.setTestsCount(pick(-1, size + 2));
        }
    }

    static void moveSomewhere(Letters& source, int first, int last, int before)
    {
        if (before < first || before > last + 1) {
            source.move(first, last, before);
        }
    }
};

QTEST_GUILESS_MAIN(PartialModelSourceTest)
#include "PartialModelSourceTest.moc"
