#pragma once

#include "service/JobStore.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace job_service {

/// Loads job and template files into the store.
///
/// A file that cannot be read or breaks its format is told to the log with the offending member, and passed over;
/// so is a job that the store already has, since nothing that was recorded for it may be lost. A template replaces
/// the one of its name.
class FileLoader
{
public:
    /// `store` must outlive the object. `beforeEach` runs before each file; what it throws ends the loading, of which
    /// the templates that were read stay.
    explicit FileLoader(
        JobStore& store, std::function<void()> beforeEach = [] {});

    /// Loads a file, or the files of a folder and its subfolders in the order of their names. Throws SqliteError,
    /// and std::filesystem::filesystem_error if there is nothing of this name or the folder cannot be read.
    void load(const std::filesystem::path& fileOrFolder);

private:
    JobStore& m_store;
    std::function<void()> m_beforeEach;

    std::vector<std::filesystem::path> filesOf(const std::filesystem::path& fileOrFolder) const;
    void loadTemplate(const std::filesystem::path& file);
    void loadJobs(const std::vector<std::filesystem::path>& files);
};

} // namespace job_service
