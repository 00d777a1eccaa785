#pragma once

#include "service/FileHandle.h"
#include "service/JobStore.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace job_service {

/// Loads job and template files into the store.
///
/// A file that cannot be read or breaks its format is told to the log with the offending member, and passed over;
/// so is a job that the store already has, since nothing that was recorded for it may be lost. A template replaces
/// the one of its name that the store has; of two files with templates of one name, the first counts.
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
    /// Loads the templates that lie in a folder itself, and none that are links. Throws as load().
    void loadTemplates(const std::filesystem::path& folder);

    /// The folder of the template that was loaded last; empty if none was.
    const std::filesystem::path& templateFolder() const { return m_templateFolder; }

private:
    JobStore& m_store;
    std::function<void()> m_beforeEach;
    std::filesystem::path m_templateFolder;
    /// Where the templates of each name were read.
    std::map<std::string, std::filesystem::path> m_templateFiles;

    std::vector<std::filesystem::path> filesOf(const std::filesystem::path& fileOrFolder) const;
    void loadTemplate(const std::filesystem::path& file, Links links);
    /// Tells whether the template of this name comes from another file of the same load.
    bool isTaken(const std::string& templateName, const std::filesystem::path& file);
    void loadJobs(const std::vector<std::filesystem::path>& files);
};

} // namespace job_service
