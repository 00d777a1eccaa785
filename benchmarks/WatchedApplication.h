#pragma once

#include <chrono>
#include <QGuiApplication>

/// An application that measures how long each turn of its event loop holds the main thread: from the beginning of the
/// first event that the turn delivers to the end of the last one. So long no screen can be drawn.
///
/// Time in which the thread was ready to run but the system ran others is no hold of ours, and left out: the measure
/// is for a machine that is shared. Main thread.
class WatchedApplication : public QGuiApplication
{
    Q_OBJECT
    Q_DISABLE_COPY(WatchedApplication)

public:
    /// The longest of several turns, each measure for itself.
    struct Longest
    {
        /// How long one turn held the thread.
        std::chrono::nanoseconds held{ 0 };
        /// For how long one turn computed; for the rest it waited, for the job service or a lock.
        std::chrono::nanoseconds computing{ 0 };
    };

    WatchedApplication(int& argc, char** argv);
    ~WatchedApplication() override;

    /// Forgets what was measured so far.
    void forgetHolds() { m_longest = {}; }
    /// What was measured since then; of a turn under way, what its events before this one took.
    Longest longestHold() const { return m_longest; }

    bool notify(QObject* receiver, QEvent* event) override;

private:
    struct Moment
    {
        std::chrono::nanoseconds clock{ 0 };
        std::chrono::nanoseconds computing{ 0 };
        std::chrono::nanoseconds ready{ 0 };
    };

    Moment now() const;
    std::chrono::nanoseconds readyTime() const;

    int m_schedulerFile;
    int m_depth = 0;
    bool m_turnBegun = false;
    Moment m_turnBegin;
    Longest m_longest;
};
