#pragma once

#include <string>

namespace job_client {

/// What came of one request.
struct HttpOutcome
{
    enum class Kind {
        /// A complete answer, whatever its status.
        Answered,
        /// An answer that nobody can use: too large, or no HTTP. Also a request that could not be made at all.
        Unusable,
        /// There was no connection, or it broke before the answer was complete.
        NoConnection,
        /// The answer was not complete in time.
        DeadlineMissed,
        /// Nothing was sent, because the service hangs.
        NotAsked,
    };

    Kind kind = Kind::Unusable;
    /// HTTP status, set if answered.
    long status = 0;
    /// Whether the answer says that its body is JSON, set if answered.
    bool isJson = false;
    /// Set if answered.
    std::string body;
};

} // namespace job_client
