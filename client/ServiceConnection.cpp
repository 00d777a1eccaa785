#include "client/ServiceConnection.h"

#include "client/Answers.h"
#include "client/Requests.h"

namespace job_client {

ServiceConnection::ServiceConnection(Endpoint endpoint, std::atomic<int>& givenCount)
    : m_endpoint(std::move(endpoint))
    , m_log(m_endpoint)
    , m_counter(givenCount)
    , m_prober(m_endpoint, [this] { probeAnswered(); })
{
}

HttpOutcome ServiceConnection::exchange(const HttpRequest& request)
{
    ServiceHealth::Moment begun = 0;
    {
        const std::lock_guard lock(m_mutex);
        if (m_health.isHanging())
            return { HttpOutcome::Kind::NotAsked, 0, false, {} };
        begun = m_health.now();
    }
    HttpOutcome outcome = m_transfers.run(m_endpoint, request);
    learn(outcome, request, begun);
    return outcome;
}

int ServiceConnection::changeCount()
{
    const auto counted = readChangeCount();
    const std::lock_guard lock(m_mutex);
    return counted ? m_counter.answered(*counted, m_health.takePastOutage()) : m_counter.unanswered();
}

std::optional<std::int64_t> ServiceConnection::readChangeCount()
{
    try {
        const HttpOutcome outcome = exchange(requests::changeCount());
        return answers::isJsonAnswer(outcome, 200) ? answers::changeCount(outcome.body) : std::nullopt;
    } catch (...) {
        return std::nullopt;
    }
}

void ServiceConnection::retire() noexcept
{
    {
        const std::lock_guard lock(m_mutex);
        m_retired = true;
    }
    m_prober.stop();
}

void ServiceConnection::learn(const HttpOutcome& outcome, const HttpRequest& request, ServiceHealth::Moment begun)
{
    const std::lock_guard lock(m_mutex);
    const bool wasHanging = m_health.isHanging();
    tell(judge(outcome, request, begun));
    if (m_health.isHanging() && !wasHanging)
        startProbing();
}

ServiceHealth::News ServiceConnection::judge(
    const HttpOutcome& outcome, const HttpRequest& request, ServiceHealth::Moment begun)
{
    switch (outcome.kind) {
    case HttpOutcome::Kind::Answered:
        return m_health.answered(begun);
    case HttpOutcome::Kind::NoConnection:
        return m_health.disconnected();
    case HttpOutcome::Kind::DeadlineMissed:
        return m_health.deadlineMissed(request.hangsOnFirstMiss);
    case HttpOutcome::Kind::Unusable:
    case HttpOutcome::Kind::NotAsked:
        break;
    }
    return ServiceHealth::News::None;
}

void ServiceConnection::probeAnswered()
{
    const std::lock_guard lock(m_mutex);
    tell(m_health.probeAnswered());
}

void ServiceConnection::tell(ServiceHealth::News news)
{
    if (m_retired)
        return;
    if (news == ServiceHealth::News::Lost)
        m_log.lost();
    if (news == ServiceHealth::News::Back)
        m_log.back();
}

void ServiceConnection::startProbing()
{
    try {
        m_prober.start();
    } catch (...) {
        m_health.probeImpossible();
    }
}

} // namespace job_client
