#pragma once

#include "service/JobStore.h"
#include "service/TransferBudget.h"

#include <cstddef>
#include <string>
#include <vector>

namespace job_service {

class FileHandle;

/// What an import has brought.
struct ImportResult
{
    /// Jobs that are new, or newer than the ones that they replaced.
    std::size_t imported = 0;
    /// Jobs that were there and stayed as they were.
    std::size_t kept = 0;
    std::size_t templates = 0;
    /// Files that were passed over, each with its reason in the log.
    std::size_t skipped = 0;
    /// Why not everything was looked at; empty if it was.
    std::string cutOff = {};
};

/// Takes jobs and templates from a medium into the store: the files *.job.json and *.tpl.json of a folder and the
/// folders below it, in any letter case. Hidden entries are passed over in silence; links, what is mounted below and
/// every file that is not good with a reason in the log.
///
/// Nothing that was recorded here is lost: a job that the store has stays, unless the file is newer and the job has no
/// results. Jobs come into the store a few at a time, so that no other request has to wait; a template replaces the one
/// of its name.
class JobImport
{
public:
    /// `store` and `budget` must outlive the object.
    JobImport(JobStore& store, TransferBudget& budget);

    /// Imports a folder, or one file with this name. What was taken before the budget is used up stays taken.
    /// Throws ApiError ("not_a_job_file") and SqliteError.
    ImportResult run(const FileHandle& opened, const std::string& name);

private:
    struct Place;
    /// A job that waits for its turn, and whether its file says when it was last modified.
    struct Candidate
    {
        StoredJob job;
        bool dated;
    };

    JobStore& m_store;
    TransferBudget& m_budget;
    ImportResult m_result;
    std::vector<Candidate> m_batch;
    std::size_t m_batchSize = 0;
    std::size_t m_files = 0;

    void takeAll(const FileHandle& opened, const std::string& name);
    void takeFolder(const Place& place, std::size_t depth);
    void takeSubfolder(const Place& parent, const std::string& name, std::size_t depth);
    std::vector<std::string> namesIn(const Place& place);
    void takeFile(const FileHandle& file, const std::string& shown);
    void takeJob(const std::string& text);
    void storeBatch();
    void skip(const std::string& shown, const std::string& reason);
};

} // namespace job_service
