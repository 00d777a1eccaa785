#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Measures from inside the event loop how long it was held: a precise timer ticks every few milliseconds, and
/// whatever a tick comes late is time in which no screen could be drawn. Main thread.
class EventLoopWatch : public QObject
{
    Q_OBJECT

public:
    EventLoopWatch()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(tickMilliseconds);
        connect(&m_timer, &QTimer::timeout, this, &EventLoopWatch::tick);
        m_sinceTick.start();
        m_timer.start();
    }

    /// Forgets what was measured so far.
    void restart()
    {
        m_longestHold = 0;
        m_held = 0;
        m_sinceTick.start();
    }

    /// The longest single hold, in milliseconds.
    qint64 longestHold() const { return m_longestHold; }

    /// All holds of more than a frame together, in milliseconds.
    qint64 held() const { return m_held; }

private:
    static constexpr int tickMilliseconds = 5;
    static constexpr qint64 frameMilliseconds = 16;

    void tick()
    {
        const qint64 hold = m_sinceTick.restart() - tickMilliseconds;
        m_longestHold = std::max(m_longestHold, hold);
        if (hold > frameMilliseconds)
            m_held += hold;
    }

    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longestHold = 0;
    qint64 m_held = 0;
};
