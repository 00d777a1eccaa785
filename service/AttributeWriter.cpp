#include "service/AttributeWriter.h"

#include "service/ApiError.h"

#include <algorithm>

namespace job_service {

AttributeWriter::AttributeWriter(JobStore& store, AttributeRules rules) : m_store(store), m_rules(std::move(rules))
{
}

JobStore::Change AttributeWriter::update(const std::string& jobId, const nlohmann::json& update)
{
    std::vector<AttributeWrite> writes = attributeWrites(update);
    delay(writes);
    const bool altered = normalise(writes);
    return m_store.changeJobInSteps(jobId, [&](JsonTree& document) {
        for (const AttributeWrite& write : writes) {
            if (const auto& refusal = m_rules.ruleFor(write).refusal)
                throw ApiError(409, "attribute_refused", attributeSubject(write.name) + " stays: " + *refusal);
            writeAttribute(document, write);
        }
        return altered ? 2u : 1u;
    });
}

void AttributeWriter::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
    }
    m_wake.notify_all();
}

void AttributeWriter::delay(const std::vector<AttributeWrite>& writes)
{
    std::chrono::milliseconds longest{ 0 };
    for (const AttributeWrite& write : writes)
        longest = std::max(longest, m_rules.ruleFor(write).delay);
    if (longest.count() == 0)
        return;
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_wake.wait_for(lock, longest, [this] { return m_stopped; }))
        throw ApiError(503, "service_stopping", "The service is ending.");
}

bool AttributeWriter::normalise(std::vector<AttributeWrite>& writes) const
{
    bool altered = false;
    for (AttributeWrite& write : writes) {
        std::string value = m_rules.ruleFor(write).normalised(write.value);
        altered = altered || value != write.value;
        write.value = std::move(value);
    }
    return altered;
}

} // namespace job_service
