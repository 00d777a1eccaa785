// The map of a test's optional properties: how it is built, what an edit does, and how long it lives.

#include "models/Test.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <QPointer>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString typed = QStringLiteral("typed");

} // namespace

/// Calls, the test object's signals and messages go into one journal.
class TestOptionalPropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>(m_journal);
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_api->setAnswer(QStringLiteral("getAllOptionalTestProperties"), QStringList{ a, b });
        store(a, QStringLiteral("old"));
        m_test = std::make_unique<Test>(m_api, QStringLiteral("J"), 7);
        m_recorder = std::make_unique<SignalRecorder>(*m_test, m_journal);
        m_journal.take();
    }

    void cleanup()
    {
        QCOMPARE(m_journal.take().filter(QStringLiteral("warning: ")), QStringList());
        m_recorder.reset();
        m_test.reset();
        m_api.reset();
        m_messages.reset();
        m_journal.take();
    }

    // Building.

    void firstReadBuildsTheMapInOrderAndTellsNothing()
    {
        QVERIFY(map() != nullptr);
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call getAllOptionalTestProperties("J", 7)
call getOptionalTestProperty("J", 7, "a")
call getOptionalTestProperty("J", 7, "b"))"));
    }

    void furtherReadsGiveTheSameMap()
    {
        QQmlPropertyMap* const before = map();
        m_journal.take();
        QCOMPARE(map(), before);
        QCOMPARE(m_test->property("optionalProperties").value<QQmlPropertyMap*>(), before);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void mapIsTheTestsChild() { QCOMPARE(map()->parent(), m_test.get()); }

    void testWithoutPropertiesHasAnEmptyMap()
    {
        m_api->setAnswer(QStringLiteral("getAllOptionalTestProperties"), QStringList());
        QVERIFY(map() != nullptr);
        QVERIFY(map()->isEmpty());
    }

    void valuesAreHeldAsTheyCame()
    {
        store(a, 1.5);
        QCOMPARE(map()->value(a), QVariant(1.5));
        QCOMPARE(map()->value(a).userType(), int(QMetaType::Double));
        QVERIFY(map()->contains(b));
        QVERIFY(!map()->value(b).isValid());
    }

    void displayInfosAreNotAskedFor()
    {
        map();
        QCOMPARE(m_api->count(QStringLiteral("getOptionalTestPropertyDisplayInfo")), 0);
    }

    // Edits.

    void acceptedEditIsWrittenOnceAndTellsNothing()
    {
        accept(true);
        map();
        m_journal.take();
        QVERIFY(map()->setProperty("a", typed));
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(debug: Updating test property via API:  "a"
call setOptionalTestProperty("J", 7, "a", "typed"))"));
        QCOMPARE(map()->value(a), QVariant(typed));
    }

    void refusedEditRestoresTheOldValueAndTellsSo()
    {
        accept(false);
        map();
        m_journal.take();
        edit(a, typed);
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(debug: Updating test property via API:  "a"
call setOptionalTestProperty("J", 7, "a", "typed")
debug: Failed to set test property  "a"  to value:  QVariant(QString, "typed")
call getOptionalTestProperty("J", 7, "a")
emit optionalPropertiesChanged())"));
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("old")));
    }

    void oldValueIsBackWhenTheRefusalIsTold()
    {
        accept(false);
        QVariant seen;
        const QObject receiver;
        connect(m_test.get(), &Test::optionalPropertiesChanged, &receiver, [&] { seen = map()->value(a); });
        edit(a, typed);
        QCOMPARE(seen, QVariant(QStringLiteral("old")));
    }

    void valueThatIsHeldAlreadyIsNoEditOfTheMapButOneOfTheSlot()
    {
        accept(true);
        map();
        m_journal.take();
        edit(a, QStringLiteral("old"));
        QCOMPARE(m_journal.take(), QStringList());
        m_test->onPropertyValueChanged(a, QStringLiteral("old"));
        QCOMPARE(m_api->count(QStringLiteral("setOptionalTestProperty")), 1);
    }

    void slotWritesBeforeThereIsAMap()
    {
        accept(false);
        m_test->onPropertyValueChanged(a, typed);
        QCOMPARE(m_journal.take().constLast(), QStringLiteral("emit optionalPropertiesChanged()"));
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("old")));
    }

    void fillingAndRestoringWriteNothing()
    {
        accept(false);
        map();
        QCOMPARE(m_api->count(QStringLiteral("setOptionalTestProperty")), 0);
        edit(a, typed);
        QCOMPARE(m_api->count(QStringLiteral("setOptionalTestProperty")), 1);
    }

    // The life of a map.

    void updateFreesTheMapAtOnceAndTellsAfterwards()
    {
        const QPointer<QQmlPropertyMap> old = map();
        bool gone = false;
        const QObject receiver;
        connect(m_test.get(), &Test::testIndexChanged, &receiver, [&] { gone = old.isNull(); });
        store(a, QStringLiteral("newer"));
        m_test->updateDataFromAPI();
        QVERIFY(gone);
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("newer")));
    }

    void updateAfterARefusedEditFreesTheMapAtOnce()
    {
        accept(false);
        const QPointer<QQmlPropertyMap> old = map();
        edit(a, typed);
        m_test->updateDataFromAPI();
        QVERIFY(old.isNull());
    }

    void testTakesItsMapAlong()
    {
        const QPointer<QQmlPropertyMap> old = map();
        m_recorder.reset();
        m_test.reset();
        QVERIFY(old.isNull());
    }

    void handlerOfTheRefusalThatUpdatesDropsTheMapAtOnceAndItEndsWithTheDelivery()
    {
        accept(false);
        const QPointer<QQmlPropertyMap> old = map();
        const QObject receiver;
        connect(m_test.get(), &Test::optionalPropertiesChanged, &receiver, [&, once = true]() mutable {
            if (std::exchange(once, false)) {
                m_test->updateDataFromAPI();
            }
        });
        edit(a, typed);
        QVERIFY(map() != old);
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("old")));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(old.isNull());
    }

    void receiverOfTheRefusalMayEndTheTest()
    {
        accept(false);
        const QPointer<QQmlPropertyMap> old = map();
        m_recorder.reset();
        const QObject receiver;
        connect(m_test.get(), &Test::optionalPropertiesChanged, &receiver, [&] { m_test.reset(); });
        old->setProperty("a", typed);
        QVERIFY(m_test == nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(old.isNull());
    }

private:
    QQmlPropertyMap* map() { return m_test->optionalProperties(); }

    void store(const QString& name, const QVariant& value)
    {
        m_api->setAnswer(QStringLiteral("getOptionalTestProperty(\"J\", 7, \"%1\")").arg(name), value);
    }

    void accept(bool accepted) { m_api->setAnswer(QStringLiteral("setOptionalTestProperty"), accepted); }

    void edit(const QString& name, const QVariant& value) { map()->setProperty(name.toUtf8().constData(), value); }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<Test> m_test;
    std::unique_ptr<SignalRecorder> m_recorder;
};

QTEST_GUILESS_MAIN(TestOptionalPropertiesTest)
#include "TestOptionalPropertiesTest.moc"
