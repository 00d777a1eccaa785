#include "tests/models/Letters.h"
#include "tests/models/Slices.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/QmlObject.h"
#include "tests/support/SignalRecorder.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <QQmlContext>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString alphabet = QStringLiteral("ABCDEFGHIJ");

} // namespace

/// What a slice of a source that keeps still shows and emits.
class PartialModelTest : public SliceFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

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
        cut(model, source, 2, 3);
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
        cut(model, source, 2, 3);
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
        cut(model, source, 2, 3);
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
        cut(model, source, 2, 3);
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
        cut(model, source, 2, 3);
        const SignalRecorder recorder(model, m_journal);
        model.setModel(&source);
        QCOMPARE(m_journal.take().count(QStringLiteral("emit modelChanged()")), 1);
        QCOMPARE(shown(model), QStringLiteral("CDE"));
    }

    void noModelShowsNothing()
    {
        Letters source(alphabet);
        PartialModel model;
        cut(model, source, 2, 3);
        const Follower view(model);
        const SignalRecorder recorder(model, m_journal);
        model.setModel(nullptr);
        QCOMPARE(m_journal.take().constLast(), QStringLiteral("emit modelChanged()"));
        QCOMPARE(model.model(), nullptr);
        QCOMPARE(view.letters(), QString());
        model.setStartIndex(1);
        QCOMPARE(shown(model), QString());
    }

    void endOfTheModelEndsTheRows()
    {
        auto source = std::make_unique<Letters>(alphabet);
        PartialModel model;
        cut(model, *source, 2, 3);
        QCOMPARE(shown(model), QStringLiteral("CDE"));
        source.reset();
        QCOMPARE(model.model(), nullptr);
        QCOMPARE(shown(model), QString());
        model.setTestsCount(5);
        QCOMPARE(shown(model), QString());
    }

    void slicesOfOneSourceAreIndependent()
    {
        Letters source(alphabet);
        PartialModel first;
        PartialModel second;
        cut(first, source, 0, 4);
        cut(second, source, 4, 6);
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
        const std::unique_ptr<QObject> root = qmlObject(engine, R"(
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
            })");
        QCOMPARE(read(*root), QStringLiteral("CDE"));
        root->setProperty("first", 8);
        QCOMPARE(read(*root), QStringLiteral("IJ"));
        source.reset(QStringLiteral("klmnopqrstuvw"));
        QCOMPARE(read(*root), QStringLiteral("stu"));
    }

private:
    static QString read(QObject& root)
    {
        QVariant letters;
        QMetaObject::invokeMethod(&root, "read", Q_RETURN_ARG(QVariant, letters));
        return letters.toString();
    }
};

QTEST_GUILESS_MAIN(PartialModelTest)
#include "PartialModelTest.moc"
