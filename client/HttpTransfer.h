#pragma once

#include "client/Endpoint.h"
#include "client/HttpOutcome.h"
#include "client/HttpRequest.h"

#include <atomic>
#include <memory>

namespace job_client {

/// Makes requests one after the other and keeps the connection between them. One thread at a time; only cancel()
/// may be called from another one.
class HttpTransfer
{
public:
    /// Connects nowhere. Throws if libcurl cannot give what a transfer needs.
    HttpTransfer();
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    /// Makes one request and blocks until its outcome, at most until its deadline. Anything but a GET is sent at
    /// most once. Throws if memory ends.
    HttpOutcome run(const Endpoint& endpoint, const HttpRequest& request);

    /// Ends the request in progress at once, and every later one before it begins. Thread-safe.
    void cancel() noexcept;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace job_client
