#pragma once

#include "client/HttpTransfer.h"

#include <memory>
#include <mutex>
#include <vector>

namespace job_client {

/// Keeps a few transfers, with their connections, for the threads that make requests at the same time. Thread-safe.
class TransferPool
{
public:
    /// Makes one request with a transfer that nobody else has meanwhile. Throws if memory ends.
    HttpOutcome run(const Endpoint& endpoint, const HttpRequest& request);

private:
    std::unique_ptr<HttpTransfer> take();
    void keep(std::unique_ptr<HttpTransfer> transfer);

    std::mutex m_mutex;
    std::vector<std::unique_ptr<HttpTransfer>> m_idle;
};

} // namespace job_client
