#pragma once

#include <string>

namespace job_service {

/// How the store is, for the status route.
struct StoreState
{
    enum class Kind {
        /// All is well.
        Ok,
        /// An unusable file was put aside at the start, and the store began empty.
        Replaced,
        /// The database was found damaged while running.
        Damaged
    };

    Kind kind = Kind::Ok;
    /// Since when, fixed-width UTC.
    std::string since;
};

} // namespace job_service
