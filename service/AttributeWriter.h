#pragma once

#include "service/AttributeRules.h"
#include "service/JobStore.h"

#include <condition_variable>
#include <mutex>

namespace job_service {

/// Writes the attributes of jobs for the HTTP interface. Safe for concurrent use.
class AttributeWriter
{
public:
    /// `store` must outlive the object.
    AttributeWriter(JobStore& store, AttributeRules rules);

    /// Merges an update into a job, whole or not at all. The count moves by one, and by two if the service has
    /// altered a value: its writer does not hold then what the service does, and must not take the step for its own.
    /// Throws ApiError. Takes as long as the rules delay it.
    JobStore::Change update(const std::string& jobId, const nlohmann::json& update);

    /// Ends the delays; the updates that wait, and all later ones that would, are refused.
    void stop();

private:
    JobStore& m_store;
    const AttributeRules m_rules;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopped = false;

    void delay(const std::vector<AttributeWrite>& writes);
    /// Puts the values into the form in which they are kept; returns whether that altered one.
    bool normalise(std::vector<AttributeWrite>& writes) const;
};

} // namespace job_service
