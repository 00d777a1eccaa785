#include "models/PartialModel.h"
#include "tests/models/Letters.h"
#include "tests/support/Journal.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/SignalRecorder.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <QAbstractItemModelTester>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtTest>
#include <random>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

QString shown(const QAbstractItemModel& model)
{
    QString letters;
    for (int row = 0; row < model.rowCount(); ++row) {
        letters += model.index(row, 0).data().toString();
    }
    return letters;
}

/// What a view would show that believes the model's signals.
class Follower
{
public:
    explicit Follower(const QAbstractItemModel& model) : m_model(model), m_letters(shown(model))
    {
        const auto readAll = [this] { m_letters = shown(m_model); };
        QObject::connect(&model, &QAbstractItemModel::modelReset, readAll);
        QObject::connect(&model, &QAbstractItemModel::layoutChanged, readAll);
        QObject::connect(&model, &QAbstractItemModel::rowsMoved, readAll);
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, [this](const QModelIndex&, int first, int last) {
            for (int row = first; row <= last; ++row) {
                m_letters.insert(row, letter(row));
            }
        });
        QObject::connect(&model, &QAbstractItemModel::rowsRemoved,
            [this](const QModelIndex&, int first, int last) { m_letters.remove(first, last - first + 1); });
        QObject::connect(
            &model, &QAbstractItemModel::dataChanged, [this](const QModelIndex& from, const QModelIndex& to) {
                for (int row = from.row(); row <= to.row(); ++row) {
                    m_letters[row] = letter(row);
                }
            });
    }

    const QString& letters() const { return m_letters; }

private:
    QChar letter(int row) const { return m_model.index(row, 0).data().toString().at(0); }

    const QAbstractItemModel& m_model;
    QString m_letters;
};

/// What makes the slice no view of its source: empty if each of its rows is one row of the source, in its order.
QString fault(const PartialModel& slice)
{
    int previous = -1;
    for (int row = 0; row < slice.rowCount(); ++row) {
        const QModelIndex index = slice.index(row, 0);
        const QModelIndex source = slice.mapToSource(index);
        if (!source.isValid() || source.row() <= previous || source.row() >= slice.model()->rowCount()) {
            return QStringLiteral("row %1 stands for row %2 after row %3").arg(row).arg(source.row()).arg(previous);
        }
        if (slice.mapFromSource(source) != index) {
            return QStringLiteral("row %1 does not lead back").arg(row);
        }
        if (index.data() != source.data()) {
            return QStringLiteral("row %1 shows another row's letter").arg(row);
        }
        previous = source.row();
    }
    return {};
}

/// The letters of the slice, counted anew.
QString slice(const QString& letters, int start, int count)
{
    QString result;
    for (int row = std::max(start, 0); row < std::min(start + count, letters.size()); ++row) {
        result += letters.at(row);
    }
    return result;
}

const QString alphabet = QStringLiteral("ABCDEFGHIJ");

using Script = std::function<void(Letters&)>;

} // namespace

Q_DECLARE_METATYPE(Script)

class PartialModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_journal.take();
    }

    void cleanup()
    {
        const QStringList messages = m_messages->take();
        m_messages.reset();
        QCOMPARE(messages, QStringList());
    }

    void newSliceShowsNothing()
    {
        PartialModel model;
        QCOMPARE(model.model(), nullptr);
        QCOMPARE(model.startIndex(), 0);
        QCOMPARE(model.testsCount(), 0);
        QCOMPARE(model.rowCount(), 0);
        Letters letters(alphabet);
        model.setModel(&letters);
        QCOMPARE(shown(model), QString());
    }

    void propertiesStandInOrder()
    {
        QCOMPARE(propertyLines(PartialModel::staticMetaObject),
            QStringLiteral("QAbstractItemModel* model modelChanged writable\n"
                           "int startIndex startIndexChanged writable\n"
                           "int testsCount testsCountChanged writable"));
    }

    void signalsStandInOrder()
    {
        QCOMPARE(methodLines(PartialModel::staticMetaObject),
            QStringLiteral("signal modelChanged()\nsignal startIndexChanged()\nsignal testsCountChanged()"));
    }

    void sliceShowsItsRows_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("letters");
        const int most = std::numeric_limits<int>::max();
        const int least = std::numeric_limits<int>::min();
        QTest::newRow("inside") << 2 << 3 << QStringLiteral("CDE");
        QTest::newRow("over the end") << 8 << 5 << QStringLiteral("IJ");
        QTest::newRow("no rows") << 2 << 0 << QString();
        QTest::newRow("over the beginning") << -1 << 3 << QStringLiteral("AB");
        QTest::newRow("all") << 0 << 10 << alphabet;
        QTest::newRow("the first") << 0 << 1 << QStringLiteral("A");
        QTest::newRow("the last") << 9 << 1 << QStringLiteral("J");
        QTest::newRow("behind the end") << 10 << 3 << QString();
        QTest::newRow("before the beginning") << -3 << 3 << QString();
        QTest::newRow("below no rows") << 2 << -1 << QString();
        QTest::newRow("everything there can be") << 0 << most << alphabet;
        QTest::newRow("from far below") << least << most << QString();
        QTest::newRow("a sum that wraps") << 2 << most << QString();
    }

    void sliceShowsItsRows()
    {
        QFETCH(int, start);
        QFETCH(int, count);
        QFETCH(QString, letters);
        Letters source(alphabet);
        PartialModel model;
        model.setModel(&source);
        model.setStartIndex(start);
        model.setTestsCount(count);
        QCOMPARE(shown(model), letters);
        QCOMPARE(fault(model), QString());
    }

    void orderOfSettingDoesNotMatter_data()
    {
        QTest::addColumn<QStringList>("order");
        QStringList order{ QStringLiteral("model"), QStringLiteral("startIndex"), QStringLiteral("testsCount") };
        do {
            QTest::newRow(qPrintable(order.join(QStringLiteral(", ")))) << order;
        } while (std::next_permutation(order.begin(), order.end()));
    }

    void orderOfSettingDoesNotMatter()
    {
        QFETCH(QStringList, order);
        Letters source(alphabet);
        PartialModel model;
        const Follower view(model);
        const QHash<QString, QVariant> values{ { QStringLiteral("startIndex"), 3 }, { QStringLiteral("testsCount"), 2 },
            { QStringLiteral("model"), QVariant::fromValue<QAbstractItemModel*>(&source) } };
        for (const QString& name : qAsConst(order)) {
            QVERIFY(model.setProperty(name.toLatin1(), values.value(name)));
        }
        QCOMPARE(shown(model), QStringLiteral("DE"));
        QCOMPARE(view.letters(), QStringLiteral("DE"));
    }

    void rolesAreTheSources()
    {
        Letters source(alphabet);
        PartialModel model;
        model.setModel(&source);
        QCOMPARE(model.roleNames(), source.roleNames());
    }

    // Signals.

    void newNumberResetsAndIsSignalledLast_data()
    {
        QTest::addColumn<QByteArray>("property");
        QTest::newRow("startIndex") << QByteArray("startIndex");
        QTest::newRow("testsCount") << QByteArray("testsCount");
    }

    void newNumberResetsAndIsSignalledLast()
    {
        QFETCH(QByteArray, property);
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 2, 3);
        const SignalRecorder recorder(model, m_journal);
        QVERIFY(model.setProperty(property, 4));
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit modelReset()"),
                QStringLiteral("emit %1Changed()").arg(QString::fromLatin1(property)) }));
    }

    void newNumberIsNotYetThereWhenTheResetBegins()
    {
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 2, 3);
        QStringList seen;
        connect(&model, &QAbstractItemModel::modelAboutToBeReset, this,
            [&] { seen.append(QStringLiteral("%1 %2").arg(model.startIndex()).arg(shown(model))); });
        connect(&model, &QAbstractItemModel::modelReset, this,
            [&] { seen.append(QStringLiteral("%1 %2").arg(model.startIndex()).arg(shown(model))); });
        model.setStartIndex(5);
        QCOMPARE(seen, (QStringList{ QStringLiteral("2 CDE"), QStringLiteral("5 FGH") }));
    }

    void sameNumberDoesNothing()
    {
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 2, 3);
        const SignalRecorder recorder(model, m_journal);
        model.setStartIndex(2);
        model.setTestsCount(3);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void newModelIsSignalledAfterTheReset()
    {
        Letters source(alphabet);
        Letters other(QStringLiteral("KLMNOP"));
        PartialModel model;
        fill(model, source, 2, 3);
        const SignalRecorder recorder(model, m_journal);
        QVERIFY(model.setProperty("model", QVariant::fromValue<QAbstractItemModel*>(&other)));
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.first(), QStringLiteral("emit modelAboutToBeReset()"));
        QCOMPARE(entries.last(), QStringLiteral("emit modelChanged()"));
        QCOMPARE(entries.count(QStringLiteral("emit modelReset()")), 1);
        QCOMPARE(entries.count(QStringLiteral("emit modelChanged()")), 1);
        QCOMPARE(shown(model), QStringLiteral("MNO"));
    }

    void sameModelIsSignalledToo()
    {
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 2, 3);
        const SignalRecorder recorder(model, m_journal);
        model.setModel(&source);
        QCOMPARE(m_journal.take().count(QStringLiteral("emit modelChanged()")), 1);
        QCOMPARE(shown(model), QStringLiteral("CDE"));
    }

    void noModelShowsNothing()
    {
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 2, 3);
        const Follower view(model);
        const SignalRecorder recorder(model, m_journal);
        model.setModel(nullptr);
        QCOMPARE(m_journal.take().last(), QStringLiteral("emit modelChanged()"));
        QCOMPARE(model.model(), nullptr);
        QCOMPARE(view.letters(), QString());
        model.setStartIndex(1);
        QCOMPARE(shown(model), QString());
    }

    void endOfTheModelEndsTheRows()
    {
        auto source = std::make_unique<Letters>(alphabet);
        PartialModel model;
        fill(model, *source, 2, 3);
        QCOMPARE(shown(model), QStringLiteral("CDE"));
        source.reset();
        QCOMPARE(model.model(), nullptr);
        QCOMPARE(shown(model), QString());
        model.setTestsCount(5);
        QCOMPARE(shown(model), QString());
    }

    // The source changes. The slice is "DEF", the rows 3 to 5 of ABCDEFGHIJ.

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
        QTest::newRow("change before") << change(0, 1) << QStringLiteral("DEF");
        QTest::newRow("change across the first edge") << change(2, 3) << QStringLiteral("dEF");
        QTest::newRow("change inside") << change(4, 4) << QStringLiteral("DeF");
        QTest::newRow("change across the last edge") << change(5, 6) << QStringLiteral("DEf");
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
        QFETCH(QString, letters);
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 3, 3);
        const Follower view(model);
        // The tester asks for no children of a row. Over a model that counts its rows whatever the parent is, as a
        // TestList does, the slice has rows under each of its rows, which the tester calls a fault: there it may not
        // be used, and sourceMayIgnoreTheParent below looks at the rows alone.
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        script(source);
        QCOMPARE(shown(model), letters);
        QCOMPARE(view.letters(), letters);
        QCOMPARE(fault(model), QString());
    }

    void resetPutsTheSliceRight_data() { sliceStaysConsistentOverRowSignals_data(); }

    void resetPutsTheSliceRight()
    {
        QFETCH(Script, script);
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 3, 3);
        const Follower view(model);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        script(source);
        source.reset(source.letters());
        QCOMPARE(shown(model), slice(source.letters(), 3, 3));
        QCOMPARE(view.letters(), shown(model));
    }

    void newNumberPutsTheSliceRight_data() { sliceStaysConsistentOverRowSignals_data(); }

    void newNumberPutsTheSliceRight()
    {
        QFETCH(Script, script);
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 3, 3);
        const Follower view(model);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        script(source);
        model.setTestsCount(4);
        QCOMPARE(shown(model), slice(source.letters(), 3, 4));
        QCOMPARE(view.letters(), shown(model));
    }

    void sourceResetIsAResetOfTheSlice_data()
    {
        QTest::addColumn<QString>("letters");
        QTest::addColumn<QString>("expected");
        QTest::newRow("same") << alphabet << QStringLiteral("DEF");
        QTest::newRow("others") << QStringLiteral("klmnopq") << QStringLiteral("nop");
        QTest::newRow("ends inside") << QStringLiteral("klmno") << QStringLiteral("no");
        QTest::newRow("ends before") << QStringLiteral("kl") << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void sourceResetIsAResetOfTheSlice()
    {
        QFETCH(QString, letters);
        QFETCH(QString, expected);
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 3, 3);
        const Follower view(model);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const SignalRecorder recorder(model, m_journal);
        source.reset(letters);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit modelReset()") }));
        QCOMPARE(shown(model), expected);
        QCOMPARE(view.letters(), expected);
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
        Letters source(alphabet);
        PartialModel model;
        fill(model, source, 3, 3);
        const Follower view(model);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QList<QPersistentModelIndex> held;
        for (int step = 0; step < 300; ++step) {
            takeStep(random, source, model);
            held.append(model.index(0, 0));
            QCOMPARE(fault(model), QString());
            QCOMPARE(view.letters(), shown(model));
        }
        source.reset(source.letters());
        QCOMPARE(shown(model), slice(source.letters(), model.startIndex(), model.testsCount()));
    }

    void sourceMayIgnoreTheParent()
    {
        LettersUnderEveryParent source(alphabet);
        PartialModel model;
        fill(model, source, 3, 3);
        QCOMPARE(shown(model), QStringLiteral("DEF"));
        source.reset(QStringLiteral("klmnopq"));
        QCOMPARE(shown(model), QStringLiteral("nop"));
        model.setStartIndex(0);
        QCOMPARE(shown(model), QStringLiteral("klm"));
        QCOMPARE(fault(model), QString());
    }

    void slicesOfOneSourceAreIndependent()
    {
        Letters source(alphabet);
        PartialModel first;
        PartialModel second;
        fill(first, source, 0, 4);
        fill(second, source, 4, 6);
        QCOMPARE(shown(first) + shown(second), alphabet);
        const SignalRecorder recorder(second, m_journal);
        first.setTestsCount(2);
        QCOMPARE(m_journal.take(), QStringList());
        QCOMPARE(shown(second), QStringLiteral("EFGHIJ"));
    }

    void qmlCreatesASliceAndBindsItsNumbers()
    {
        qmlRegisterType<PartialModel>("Slices", 1, 0, "PartialModel");
        Letters source(alphabet);
        QQmlEngine engine;
        engine.rootContext()->setContextProperty(QStringLiteral("letters"), &source);
        QQmlComponent component(&engine);
        component.setData(R"(
            import QtQml 2.15
            import Slices 1.0
            QtObject {
                id: root
                property int first: 2
                property string shown
                property PartialModel slice: PartialModel { model: letters; startIndex: root.first; testsCount: 3 }
                property Instantiator rows: Instantiator {
                    model: root.slice
                    delegate: QtObject { property string text: model.letter }
                }
                function read() {
                    shown = ""
                    for (var i = 0; i < rows.count; ++i)
                        shown += rows.objectAt(i).text
                    return shown
                }
            })",
            QUrl());
        const std::unique_ptr<QObject> root(component.create());
        QVERIFY2(root != nullptr, qPrintable(component.errorString()));
        QCOMPARE(read(*root), QStringLiteral("CDE"));
        root->setProperty("first", 8);
        QCOMPARE(read(*root), QStringLiteral("IJ"));
        source.reset(QStringLiteral("klmnopqrstuvw"));
        QCOMPARE(read(*root), QStringLiteral("stu"));
    }

private:
    static void fill(PartialModel& model, Letters& source, int start, int count)
    {
        model.setModel(&source);
        model.setStartIndex(start);
        model.setTestsCount(count);
    }

    static QString read(QObject& root)
    {
        QVariant letters;
        QMetaObject::invokeMethod(&root, "read", Q_RETURN_ARG(QVariant, letters));
        return letters.toString();
    }

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

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
};

QTEST_GUILESS_MAIN(PartialModelTest)
#include "PartialModelTest.moc"
