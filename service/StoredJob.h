#pragma once

#include <string>

namespace job_service {

/// A job as the store holds it: its document, and what the job list needs, taken out of the document beforehand.
struct StoredJob
{
    std::string id;
    /// Fixed-width UTC; the job list is sorted by it.
    std::string modifiedOn;
    /// The job's entry in the job list, JSON text.
    std::string summary;
    /// The document, JSON text.
    std::string document;
};

} // namespace job_service
