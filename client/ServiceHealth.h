#pragma once

namespace job_client {

/// What the outcomes of calls tell about one service: whether it is lost, whether it hangs, and whether an outage
/// has passed that the caller has not been told of. Knows no clock and no thread; not thread-safe.
class ServiceHealth
{
public:
    /// What an outcome changed, for the log.
    enum class News { None, Lost, Back };

    /// A point in the service's history, to tell later whether it was lost since.
    using Moment = unsigned long;

    Moment now() const { return m_losses; }

    /// Whether calls fail at once. So it is from the moment when the service is found to hang until probeAnswered().
    bool isHanging() const { return m_hanging; }

    /// A call that was begun at `begun` was answered. If the service was lost since, that answer is no sign that
    /// it is back: it may have been on its way before.
    News answered(Moment begun);

    /// A call found no connection, or lost it.
    News disconnected();

    /// A call missed its deadline. Two of them without an answer in between, or one if `isEnough`, and the service
    /// hangs.
    News deadlineMissed(bool isEnough);

    /// A probe was answered: the service neither hangs nor is lost.
    News probeAnswered();

    /// Nobody can probe: the service counts as not hanging until the next missed deadline.
    void probeImpossible();

    /// True once for each outage that is over.
    bool takePastOutage();

private:
    News lost();
    News back();

    Moment m_losses = 0;
    bool m_lost = false;
    bool m_hanging = false;
    bool m_outageUntold = false;
    int m_deadlinesMissed = 0;
};

} // namespace job_client
