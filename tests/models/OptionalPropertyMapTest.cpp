#include "models/OptionalPropertyMap.h"
#include "tests/support/QmlObject.h"

#include <QEventLoop>
#include <QPointer>
#include <QQmlContext>
#include <QQmlEngine>
#include <QSignalSpy>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString typed = QStringLiteral("typed");

/// Drops the map when QML or a test says so.
class Owner : public QObject
{
    Q_OBJECT

public:
    OptionalPropertyMapPointer map{ new OptionalPropertyMap };

    Q_INVOKABLE void drop() { map.reset(); }
};

} // namespace

class OptionalPropertyMapTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_owner = std::make_unique<Owner>();
        m_map = m_owner->map.get();
        m_map->show(a, QStringLiteral("old"));
        m_map->show(b, QStringLiteral("old"));
    }

    void cleanup()
    {
        freeWhatIsDue();
        m_owner.reset();
        // Whatever the test did, nothing stays.
        QVERIFY(m_map.isNull());
    }

    // Values.

    void shownValueIsThereAndTellsNoWrite()
    {
        const QSignalSpy writes(m_map, &QQmlPropertyMap::valueChanged);
        m_map->show(a, QStringLiteral("newer"));
        m_map->show(QStringLiteral("c"), 1.5);
        QCOMPARE(m_map->value(a), QVariant(QStringLiteral("newer")));
        QCOMPARE(m_map->value(QStringLiteral("c")), QVariant(1.5));
        QCOMPARE(writes.count(), 0);
    }

    void writeIsToldWithItsNameAndValue()
    {
        QSignalSpy writes(m_map, &QQmlPropertyMap::valueChanged);
        m_map->setProperty("a", typed);
        QCOMPARE(writes.count(), 1);
        QCOMPARE(writes.first(), (QVariantList{ a, typed }));
    }

    void equalValueIsNoWrite()
    {
        const QSignalSpy writes(m_map, &QQmlPropertyMap::valueChanged);
        m_map->setProperty("a", QStringLiteral("old"));
        QCOMPARE(writes.count(), 0);
        m_owner->drop();
        QVERIFY(m_map.isNull());
    }

    void bindingFollowsShownAndWrittenValues()
    {
        const std::unique_ptr<QObject> form = makeForm("property string shown: map['a']");
        QCOMPARE(form->property("shown").toString(), QStringLiteral("old"));
        m_map->show(a, QStringLiteral("newer"));
        QCOMPARE(form->property("shown").toString(), QStringLiteral("newer"));
        QMetaObject::invokeMethod(form.get(), "type");
        QCOMPARE(form->property("shown").toString(), typed);
    }

    void namesMayHoldWhatAnIdentifierMayNot()
    {
        const QString name = QStringLiteral("attributes/Größe in m²");
        m_map->show(name, 1);
        m_map->setProperty(name.toUtf8().constData(), 2);
        QCOMPARE(m_map->value(name), QVariant(2));
        m_owner->drop();
        QVERIFY(m_map.isNull());
    }

    // The end outside of a delivery.

    void mapEndsAtOnce()
    {
        m_owner->drop();
        QVERIFY(m_map.isNull());
    }

    void mapEndsAtOnceAfterWritesAndShownValues()
    {
        m_map->setProperty("a", typed);
        m_map->show(a, QStringLiteral("old"));
        m_map->show(a, QStringLiteral("old"));
        m_map->setProperty("b", typed);
        m_owner->drop();
        QVERIFY(m_map.isNull());
    }

    void mapEndsAtOnceAfterAWriteToANameThatWasNeverShown()
    {
        // The job has lost the property since the screen has read it.
        m_map->setProperty("gone", typed);
        const std::unique_ptr<QObject> form = makeForm("function write() { map['lost'] = 'typed' }");
        QVERIFY(QMetaObject::invokeMethod(form.get(), "write"));
        QCOMPARE(m_map->value(QStringLiteral("lost")), QVariant(typed));
        m_owner->drop();
        QVERIFY(m_map.isNull());
    }

    void mapEndsAtOnceThoughItsValuesWereCorrectedInsideADelivery()
    {
        // As an owner does that puts back what was refused.
        connect(m_map, &QQmlPropertyMap::valueChanged, this,
            [this](const QString& name) { m_map->show(name, QStringLiteral("old")); });
        m_map->setProperty("a", typed);
        m_map->setProperty("a", typed);
        QCOMPARE(m_map->value(a), QVariant(QStringLiteral("old")));
        m_owner->drop();
        QVERIFY(m_map.isNull());
    }

    void parentTakesItsMapAlong()
    {
        auto parent = std::make_unique<QObject>();
        const QPointer<OptionalPropertyMap> child = new OptionalPropertyMap(parent.get());
        parent.reset();
        QVERIFY(child.isNull());
    }

    // The end inside a delivery.

    void mapThatEndsInsideItsDeliveryIsFreedWhenThatIsOver()
    {
        bool reachedTheNext = false;
        connect(m_map, &QQmlPropertyMap::valueChanged, this, [this] {
            m_owner->drop();
            QVERIFY(!m_map.isNull());
        });
        const QObject receiver;
        connect(m_map, &QQmlPropertyMap::valueChanged, &receiver, [&] { reachedTheNext = true; });
        m_map->setProperty("a", typed);
        QVERIFY(reachedTheNext);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    void endedMapLeavesItsParent()
    {
        QObject parent;
        m_map->setParent(&parent);
        connect(m_map, &QQmlPropertyMap::valueChanged, this, [this] { m_owner->drop(); });
        m_map->setProperty("a", typed);
        QVERIFY(!m_map.isNull());
        QCOMPARE(m_map->parent(), nullptr);
    }

    void eventLoopInsideTheDeliveryFreesNothing()
    {
        connect(m_map, &QQmlPropertyMap::valueChanged, this, [this] {
            m_owner->drop();
            QEventLoop loop;
            QTimer::singleShot(0, &loop, &QEventLoop::quit);
            loop.exec();
            freeWhatIsDue();
            QVERIFY(!m_map.isNull());
        });
        m_map->setProperty("a", typed);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    void mapThatEndsAfterAWriteInsideItsDeliveryStaysForTheOuterOne_data()
    {
        QTest::addColumn<QString>("inner");
        QTest::newRow("same property") << a;
        QTest::newRow("other property") << b;
    }

    void mapThatEndsAfterAWriteInsideItsDeliveryStaysForTheOuterOne()
    {
        QFETCH(QString, inner);
        const QObject receiver;
        connect(m_map, &QQmlPropertyMap::valueChanged, &receiver, [&, once = true]() mutable {
            if (std::exchange(once, false)) {
                m_map->setProperty(inner.toUtf8().constData(), QStringLiteral("corrected"));
                m_owner->drop();
                QVERIFY(!m_map.isNull());
            }
        });
        m_map->setProperty("a", typed);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    void mapThatEndsInAWriteInsideItsDeliveryStaysForTheOuterOne()
    {
        connect(m_map, &QQmlPropertyMap::valueChanged, this, [this](const QString& name) {
            if (name == b) {
                m_owner->drop();
                return;
            }
            m_map->setProperty("b", typed);
            freeWhatIsDue();
            QVERIFY(!m_map.isNull());
        });
        m_map->setProperty("a", typed);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    void mapThatEndsAfterAValueShownInsideItsDeliveryStaysForIt()
    {
        connect(m_map, &QQmlPropertyMap::valueChanged, this, [this] {
            m_map->show(a, QStringLiteral("old"));
            m_owner->drop();
            QVERIFY(!m_map.isNull());
        });
        m_map->setProperty("a", typed);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    // The end by QML, which hears of a change before all others.

    void handlerInQmlMayEndTheMap()
    {
        const std::unique_ptr<QObject> form =
            makeForm("property var handler: Connections { target: map; function onValueChanged() { owner.drop() } }");
        QMetaObject::invokeMethod(form.get(), "type");
        QVERIFY(m_owner->map == nullptr);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    void functionConnectedInQmlMayEndTheMap()
    {
        const std::unique_ptr<QObject> form =
            makeForm("Component.onCompleted: map.valueChanged.connect(function() { owner.drop() })");
        QMetaObject::invokeMethod(form.get(), "type");
        QVERIFY(m_owner->map == nullptr);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    void bindingInQmlMayEndTheMap_data()
    {
        QTest::addColumn<bool>("write");
        QTest::newRow("by a write") << true;
        QTest::newRow("by a shown value") << false;
    }

    void bindingInQmlMayEndTheMap()
    {
        QFETCH(bool, write);
        const std::unique_ptr<QObject> form =
            makeForm("property string shown: map ? map['a'] : ''; onShownChanged: if (shown !== 'old') owner.drop()");
        if (write) {
            QMetaObject::invokeMethod(form.get(), "type");
        } else {
            m_map->show(a, typed);
        }
        QVERIFY(m_owner->map == nullptr);
        freeWhatIsDue();
        QVERIFY(m_map.isNull());
    }

    void mapOutlivesTheCollectorOfJavaScript() { QVERIFY(outlivesTheCollector(m_map)); }

private:
    /// An object of QML that writes the property "a" when `type` is called.
    std::unique_ptr<QObject> makeForm(const QByteArray& content)
    {
        m_engine.rootContext()->setContextProperty(QStringLiteral("owner"), m_owner.get());
        m_engine.rootContext()->setContextProperty(QStringLiteral("map"), m_map);
        return qmlObject(m_engine, "QtObject { function type() { map['a'] = 'typed' }\n" + content + "\n}");
    }

    /// The event loop's turn for objects whose end was put off.
    static void freeWhatIsDue() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    QQmlEngine m_engine;
    std::unique_ptr<Owner> m_owner;
    QPointer<OptionalPropertyMap> m_map;
};

QTEST_GUILESS_MAIN(OptionalPropertyMapTest)
#include "OptionalPropertyMapTest.moc"
