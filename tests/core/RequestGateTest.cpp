#include "core/RequestGate.h"
#include "tests/support/Journal.h"
#include "tests/support/MessageCollector.h"

#include <memory>
#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QSemaphore>
#include <QThread>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const auto ownEvent = static_cast<QEvent::Type>(QEvent::User + 1);

/// Notes the events of its own that reach it.
class Guarded : public QObject
{
public:
    explicit Guarded(Journal& journal) : m_journal(journal) { }
    ~Guarded() override { m_journal.add(QStringLiteral("deleted")); }

protected:
    void customEvent(QEvent* /*event*/) override { m_journal.add(QStringLiteral("event")); }

private:
    Journal& m_journal;
};

} // namespace

/// An object behind the gate lives on a thread of its own. What is queued before that thread starts is taken up in
/// one go, and would all be delivered even if the thread were told to quit meanwhile.
class RequestGateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_thread = std::make_unique<QThread>();
        m_guarded = new Guarded(m_journal); // deleted with its thread's end, or by the test
        m_guarded->installEventFilter(new RequestGate(m_guarded));
        m_guarded->moveToThread(m_thread.get());
        connect(m_thread.get(), &QThread::finished, m_guarded, &QObject::deleteLater);
    }

    void cleanup()
    {
        end();
        QVERIFY(m_guarded.isNull());
        QCOMPARE(m_messages.take(), QStringList());
    }

    void callsPassInTheirOrderWhileNobodyInterrupts()
    {
        call(QStringLiteral("one"));
        m_thread->start();
        call(QStringLiteral("two"));
        call(QStringLiteral("three"));
        QVERIFY(m_journal.waitFor(QStringLiteral("three")));
        QCOMPARE(
            m_journal.take(), (QStringList{ QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three") }));
    }

    void waitingCallsAreDroppedAfterAnInterruption()
    {
        queueHeldCall();
        call(QStringLiteral("one"));
        call(QStringLiteral("two"));
        interruptDuringTheHeldCall();
        end();
        QCOMPARE(m_journal.take(), (QStringList{ QStringLiteral("held call ends"), QStringLiteral("deleted") }));
    }

    void otherEventsPassAfterAnInterruption()
    {
        queueHeldCall();
        QCoreApplication::postEvent(m_guarded, new QEvent(ownEvent));
        interruptDuringTheHeldCall();
        QVERIFY(m_journal.waitFor(QStringLiteral("event")));
    }

    void objectCanBeDeletedLaterAfterAnInterruption()
    {
        queueHeldCall();
        call(QStringLiteral("one"));
        m_guarded->deleteLater();
        interruptDuringTheHeldCall();
        QVERIFY(m_journal.waitFor(QStringLiteral("deleted")));
        QCOMPARE(m_journal.take(), (QStringList{ QStringLiteral("held call ends"), QStringLiteral("deleted") }));
    }

private:
    void call(const QString& entry)
    {
        QMetaObject::invokeMethod(
            m_guarded, [this, entry] { m_journal.add(entry); }, Qt::QueuedConnection);
    }

    /// A call that does not return before the test lets it.
    void queueHeldCall()
    {
        QMetaObject::invokeMethod(
            m_guarded,
            [this] {
                m_entered.release();
                m_released.acquire();
                m_journal.add(QStringLiteral("held call ends"));
            },
            Qt::QueuedConnection);
    }

    void interruptDuringTheHeldCall()
    {
        m_thread->start();
        m_entered.acquire();
        m_thread->requestInterruption();
        m_released.release();
    }

    void end()
    {
        m_thread->quit();
        m_thread->wait();
    }

    Journal m_journal;
    MessageCollector m_messages;
    std::unique_ptr<QThread> m_thread;
    QPointer<Guarded> m_guarded;
    QSemaphore m_entered;
    QSemaphore m_released;
};

QTEST_GUILESS_MAIN(RequestGateTest)
#include "RequestGateTest.moc"
