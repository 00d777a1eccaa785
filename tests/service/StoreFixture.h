#pragma once

#include "service/JobDocument.h"
#include "service/JobStore.h"
#include "tests/service/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace jobmanager_test {

/// A job store in a folder of its own.
class StoreFixture : public testing::Test
{
protected:
    StoreFixture() { open(); }

    void open()
    {
        m_store.reset();
        m_store.emplace(m_folder.path());
    }
    void close() { m_store.reset(); }
    job_service::JobStore& store() { return *m_store; }
    std::filesystem::path file() const { return m_folder.path() / "jobs.sqlite"; }

    /// Adds a job with two tests, the second of which has two locations.
    void addJob(const std::string& id, const std::string& modifiedOn = "2026-03-01T08:15:00.000Z")
    {
        const nlohmann::json document{ { "details", { { "id", id }, { "modifiedOn", modifiedOn } } },
            { "tests",
                { { { "testType", "otdr" } },
                    { { "testType", "power" },
                        { "testLocations", { { { "location", "A" } }, { { "location", "B" } } } } } } } };
        ASSERT_TRUE(store().createJob(job_service::jobFromFile(document.dump(), "2026-03-02T00:00:00.000Z")));
    }
    nlohmann::json document(const std::string& id) { return nlohmann::json::parse(store().document(id).value()); }
    nlohmann::json jobList() { return nlohmann::json::parse(store().jobList()); }
    /// The list's entry of a job; null if it has none.
    nlohmann::json summary(const std::string& id)
    {
        for (const nlohmann::json& entry : jobList()) {
            if (entry.at("id") == id)
                return entry;
        }
        return nullptr;
    }

    TemporaryFolder m_folder;

private:
    std::optional<job_service::JobStore> m_store;
};

} // namespace jobmanager_test
