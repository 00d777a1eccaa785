#include "client/TransferPool.h"

namespace job_client {

namespace {

/// The main thread and the worker, and as many again.
constexpr std::size_t mostIdle = 4;

} // namespace

HttpOutcome TransferPool::run(const Endpoint& endpoint, const HttpRequest& request)
{
    auto transfer = take();
    HttpOutcome outcome = transfer->run(endpoint, request);
    keep(std::move(transfer));
    return outcome;
}

std::unique_ptr<HttpTransfer> TransferPool::take()
{
    {
        const std::lock_guard lock(m_mutex);
        if (!m_idle.empty()) {
            auto transfer = std::move(m_idle.back());
            m_idle.pop_back();
            return transfer;
        }
    }
    return std::make_unique<HttpTransfer>();
}

void TransferPool::keep(std::unique_ptr<HttpTransfer> transfer)
{
    const std::lock_guard lock(m_mutex);
    if (m_idle.size() < mostIdle)
        m_idle.push_back(std::move(transfer));
}

} // namespace job_client
