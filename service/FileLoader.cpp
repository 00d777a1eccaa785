#include "service/FileLoader.h"

#include "service/FileHandle.h"
#include "service/JobDocument.h"
#include "service/Log.h"
#include "service/UtcTime.h"

#include <algorithm>
#include <utility>

namespace job_service {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view jobSuffix = ".job.json";
constexpr std::string_view templateSuffix = ".tpl.json";

bool endsWith(const fs::path& path, std::string_view suffix)
{
    const std::string name = path.filename().string();
    return name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

void logSkipped(const fs::path& file, const std::string& reason)
{
    logLine("not loaded: " + printable(file.string()) + ": " + printable(reason));
}

/// Runs what reads one file; a fault of the file ends in the log and in a value of no use.
template <typename Reading> auto readOrSkip(const fs::path& file, Reading reading) -> std::optional<decltype(reading())>
{
    try {
        return reading();
    } catch (const DocumentRefused& refused) {
        logSkipped(file, refused.what());
    } catch (const FileUnreadable& unreadable) {
        logSkipped(file, unreadable.what());
    }
    return std::nullopt;
}

} // namespace

FileLoader::FileLoader(JobStore& store, std::function<void()> beforeEach)
    : m_store(store)
    , m_beforeEach(std::move(beforeEach))
{
}

void FileLoader::load(const fs::path& fileOrFolder)
{
    if (!fs::exists(fileOrFolder))
        throw fs::filesystem_error(
            "nothing to load", fileOrFolder, std::make_error_code(std::errc::no_such_file_or_directory));
    std::vector<fs::path> jobFiles;
    for (const fs::path& file : filesOf(fileOrFolder)) {
        if (endsWith(file, jobSuffix))
            jobFiles.push_back(file);
        else if (endsWith(file, templateSuffix))
            loadTemplate(file, Links::Followed);
        else
            logSkipped(file, "its name ends neither in .job.json nor in .tpl.json");
    }
    loadJobs(jobFiles);
}

std::vector<fs::path> FileLoader::filesOf(const fs::path& fileOrFolder) const
{
    if (!fs::is_directory(fs::status(fileOrFolder)))
        return { fileOrFolder };
    std::vector<fs::path> files;
    const auto options = fs::directory_options::skip_permission_denied;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fileOrFolder, options)) {
        m_beforeEach();
        if (endsWith(entry.path(), jobSuffix) || endsWith(entry.path(), templateSuffix))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void FileLoader::loadTemplates(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        if (endsWith(entry.path(), templateSuffix))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files)
        loadTemplate(file, Links::Refused);
}

void FileLoader::loadTemplate(const fs::path& file, Links links)
{
    m_beforeEach();
    readOrSkip(file, [&] {
        const std::string text = contentOf(openedForReading(file, links), maximumDocumentSize);
        const std::string name = checkedTemplateName(text);
        if (isTaken(name, file))
            throw FileUnreadable("another file has a template of the name " + name);
        m_store.putTemplate(name, text);
        m_templateFolder = file.parent_path();
        return true;
    });
}

bool FileLoader::isTaken(const std::string& templateName, const fs::path& file)
{
    const fs::path& first = m_templateFiles.emplace(templateName, file).first->second;
    std::error_code ignored;
    return !fs::equivalent(first, file, ignored);
}

void FileLoader::loadJobs(const std::vector<fs::path>& files)
{
    const std::string now = utcNow();
    std::size_t index = 0;
    const auto next = [&]() -> std::optional<StoredJob> {
        while (index < files.size()) {
            m_beforeEach();
            const fs::path& file = files[index++];
            if (std::optional<StoredJob> job = readOrSkip(
                    file, [&] { return jobFromFile(contentOf(openedForReading(file), maximumDocumentSize), now); }))
                return job;
        }
        return std::nullopt;
    };
    const auto kept = [](const std::string& id) { logLine("already there and kept as it is: job " + printable(id)); };
    const std::size_t added = m_store.addJobs(next, kept);
    logLine(std::to_string(added) + (added == 1 ? " job loaded" : " jobs loaded"));
}

} // namespace job_service
