#include "client/ServiceHealth.h"

namespace job_client {

namespace {

constexpr int missesOfHangingService = 2;

} // namespace

ServiceHealth::News ServiceHealth::answered(Moment begun)
{
    m_deadlinesMissed = 0;
    return begun == m_losses && !m_hanging ? back() : News::None;
}

ServiceHealth::News ServiceHealth::disconnected()
{
    return lost();
}

ServiceHealth::News ServiceHealth::deadlineMissed(bool isEnough)
{
    ++m_deadlinesMissed;
    if (isEnough || m_deadlinesMissed >= missesOfHangingService)
        m_hanging = true;
    return lost();
}

ServiceHealth::News ServiceHealth::probeAnswered()
{
    m_hanging = false;
    m_deadlinesMissed = 0;
    return back();
}

void ServiceHealth::probeImpossible()
{
    m_hanging = false;
}

bool ServiceHealth::takePastOutage()
{
    if (m_lost || !m_outageUntold)
        return false;
    m_outageUntold = false;
    return true;
}

ServiceHealth::News ServiceHealth::lost()
{
    ++m_losses;
    m_outageUntold = true;
    if (m_lost)
        return News::None;
    m_lost = true;
    return News::Lost;
}

ServiceHealth::News ServiceHealth::back()
{
    if (!m_lost)
        return News::None;
    m_lost = false;
    return News::Back;
}

} // namespace job_client
