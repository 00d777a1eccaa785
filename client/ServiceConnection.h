#pragma once

#include "client/ChangeCounter.h"
#include "client/Endpoint.h"
#include "client/HttpOutcome.h"
#include "client/HttpRequest.h"
#include "client/LastAnswers.h"
#include "client/OutageLog.h"
#include "client/Prober.h"
#include "client/ServiceHealth.h"
#include "client/TransferPool.h"

#include <atomic>
#include <mutex>

namespace job_client {

/// One service, as long as the client is pointed at it: its connections, its health, and what it answered last.
///
/// All that is remembered of a service lives here, so that nothing of it is left when the client turns to another
/// one, and answers that come late are remembered where nobody looks. Thread-safe; no lock is held during a request.
class ServiceConnection
{
public:
    /// `givenCount` is the change count that the caller was given last. It must outlive the connection.
    ServiceConnection(Endpoint endpoint, std::atomic<int>& givenCount);

    /// Makes a request, or fails at once while the service hangs. Throws if memory ends.
    HttpOutcome exchange(const HttpRequest& request);

    /// The change count as it is to be given: see ChangeCounter.
    int changeCount();

    LastAnswers& lastAnswers() { return m_lastAnswers; }
    const Endpoint& endpoint() const { return m_endpoint; }

    /// The client has turned away: calls that are still under way tell nobody about the service any more.
    void retire() noexcept;

private:
    std::optional<std::int64_t> readChangeCount();
    void learn(const HttpOutcome& outcome, const HttpRequest& request, ServiceHealth::Moment begun);
    ServiceHealth::News judge(const HttpOutcome& outcome, const HttpRequest& request, ServiceHealth::Moment begun);
    void probeAnswered();
    void tell(ServiceHealth::News news);
    void startProbing();

    const Endpoint m_endpoint;
    TransferPool m_transfers;
    LastAnswers m_lastAnswers;
    const OutageLog m_log;

    std::mutex m_mutex;
    ServiceHealth m_health;
    ChangeCounter m_counter;
    bool m_retired = false;

    // The last member: its thread uses the others.
    Prober m_prober;
};

} // namespace job_client
