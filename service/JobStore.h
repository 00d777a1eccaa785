#pragma once

#include "service/SqliteDatabase.h"
#include "service/StoredJob.h"
#include "service/StoreState.h"

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace job_service {

class JsonTree;
struct OpenedStore;

/// The jobs and what else outlives the service, in one database file.
///
/// Every change of jobs or of the active job is one transaction, which also moves the change count, by exactly one
/// unless the change asks for more, also when it alters nothing; a refused one moves nothing. When a changing operation
/// returns, the change is on disk. Settings, the group type and templates do not move the count.
///
/// Safe for concurrent use; a reader does not wait for a writer. Operations throw SqliteError when the
/// database fails.
class JobStore
{
public:
    enum class Change { Done, NoSuchJob };

    /// Opens the store in this folder, which must exist, and moves the change count by two.
    /// Throws StoreRefused or SqliteError.
    explicit JobStore(const std::filesystem::path& folder);
    /// Leaves one tidy file behind.
    ~JobStore();
    JobStore(const JobStore&) = delete;
    JobStore& operator=(const JobStore&) = delete;

    /// From 0 to 2^31 - 1, and round again. Answers at once, without the database.
    int changeCount() const noexcept { return m_changeCount.load(std::memory_order_acquire); }
    StoreState state() const;

    /// The job list, newest first: JSON text of an array.
    std::string jobList() const;
    /// The document of a job.
    std::optional<std::string> document(const std::string& id) const;
    /// Adds a job. Returns false if there is one with its id, which stays as it is.
    bool createJob(const StoredJob& job);
    /// Decides whether `job` may take the place of the one whose document the store has.
    using MayReplace = std::function<bool(const std::string& storedDocument, const StoredJob& job)>;
    /// Adds all jobs that `next` gives until it gives none, as one change. A job whose id is known stays as it is, and
    /// `kept` is told, unless `mayReplace` lets the new one take its place. Returns how many were added or replaced.
    std::size_t addJobs(const std::function<std::optional<StoredJob>()>& next,
        const std::function<void(const std::string& id)>& kept, const MayReplace& mayReplace = neverReplace);
    static bool neverReplace(const std::string& /*storedDocument*/, const StoredJob& /*job*/) { return false; }
    /// Lets `patch` change the document of a job and sets its time of modification. What `patch` throws leaves
    /// this operation and changes nothing; so does the DocumentRefused of a document that has become unfit.
    Change changeJob(const std::string& id, const std::function<void(JsonTree& document)>& patch);
    /// The same, but `patch` answers by how much the change moves the count.
    Change changeJobInSteps(const std::string& id, const std::function<unsigned(JsonTree& document)>& patch);
    /// Removes a job. If it was the active one, there is none afterwards.
    Change removeJob(const std::string& id);

    /// Empty if there is none.
    std::string activeJob() const;
    /// The empty id stands for none.
    Change setActiveJob(const std::string& id);

    std::map<std::string, std::string> settings() const;
    void writeSetting(const std::string& id, const std::string& value);
    std::string groupType() const;
    void setGroupType(const std::string& groupType);

    /// The documents of all templates, in the order of their names.
    std::vector<std::string> templateDocuments() const;
    /// The document of a template.
    std::optional<std::string> templateDocument(const std::string& name) const;
    /// Adds a template or replaces the one of that name.
    void putTemplate(const std::string& name, const std::string& document);

private:
    class CountedChange;

    mutable std::mutex m_writeMutex;
    mutable SqliteDatabase m_writer;
    mutable std::mutex m_readMutex;
    mutable SqliteDatabase m_reader;
    std::atomic<int> m_changeCount{ 0 };
    mutable std::mutex m_stateMutex;
    mutable StoreState m_state;

    JobStore(const std::filesystem::path& file, OpenedStore opened);
    void moveCountAtStart(bool created);
    template <typename Operation> auto read(Operation operation) const;
    template <typename Operation> auto write(Operation operation);
    void noteDamage(const SqliteError& error) const;
};

} // namespace job_service
