#include "service/JobImport.h"

#include "service/ApiError.h"
#include "service/JobDocument.h"
#include "service/JobFileName.h"
#include "service/Log.h"
#include "service/MediaPath.h"
#include "service/UtcTime.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace job_service {

namespace {

/// So many jobs, or so many bytes of them, go into the store at once.
constexpr std::size_t batchJobs = 32;
constexpr std::size_t batchBytes = 4 * 1024 * 1024;
/// After so many files the log tells how far the import is.
constexpr std::size_t progressFiles = 500;
/// Older than every job: stands for the time of a file that names none.
constexpr const char* noTime = "0000-01-01T00:00:00.000Z";

bool isFolder(const FileHandle& opened)
{
    struct stat status
    {
    };
    return ::fstat(opened.get(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string whyNotOpened(int reason)
{
    if (reason == ELOOP)
        return "it is a link";
    if (reason == EXDEV)
        return "it lies on another medium";
    return std::strerror(reason);
}

bool hasResults(const nlohmann::json& item)
{
    const auto results = item.find("results");
    return results != item.end() && !results->is_null();
}

/// Whether anything has been recorded for the job of a document that the store has accepted.
bool hasRecordedResults(const nlohmann::json& document)
{
    const auto tests = document.find("tests");
    if (tests == document.end())
        return false;
    return std::any_of(tests->begin(), tests->end(), [](const nlohmann::json& test) {
        const auto locations = test.find("testLocations");
        const bool atLocation =
            locations != test.end() && std::any_of(locations->begin(), locations->end(), hasResults);
        return atLocation || hasResults(test);
    });
}

/// Whether a job from a file is newer than the store's, and nothing recorded is lost if it takes its place.
bool mayReplace(const std::string& storedDocument, const StoredJob& job)
{
    const nlohmann::json stored = nlohmann::json::parse(storedDocument);
    return job.modifiedOn > stored.at("details").at("modifiedOn").get<std::string>() && !hasRecordedResults(stored);
}

} // namespace

/// A folder that is being walked: its handle, and how it is called in the log.
struct JobImport::Place
{
    const FileHandle& folder;
    std::string shown;
};

JobImport::JobImport(JobStore& store, TransferBudget& budget) : m_store(store), m_budget(budget)
{
}

ImportResult JobImport::run(const FileHandle& opened, const std::string& name)
{
    try {
        takeAll(opened, name);
    } catch (const CutOff& cutOff) {
        m_result.cutOff = cutOff.what();
    }
    storeBatch();
    if (!m_result.cutOff.empty())
        logLine("import: not everything was looked at: " + m_result.cutOff);
    logLine("import: " + std::to_string(m_result.imported) + " jobs taken, " + std::to_string(m_result.kept)
        + " kept as they were, " + std::to_string(m_result.templates) + " templates taken, "
        + std::to_string(m_result.skipped) + " files passed over");
    return m_result;
}

void JobImport::takeAll(const FileHandle& opened, const std::string& name)
{
    if (isFolder(opened))
        takeFolder({ opened, name }, 0);
    else if (isJobFileName(name) || isTemplateFileName(name))
        takeFile(opened, name);
    else
        throw ApiError(
            400, "not_a_job_file", "The names of job files end in .job.json, those of templates in .tpl.json.");
}

void JobImport::takeFolder(const Place& place, std::size_t depth)
{
    for (const std::string& name : namesIn(place)) {
        m_budget.checkTime();
        const std::string shown = place.shown + "/" + name;
        struct stat status
        {
        };
        if (::fstatat(place.folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            skip(shown, std::strerror(errno));
        } else if (S_ISDIR(status.st_mode)) {
            takeSubfolder(place, name, depth + 1);
        } else if (isJobFileName(name) || isTemplateFileName(name)) {
            const FileHandle file = openBeneath(place.folder, name, O_RDONLY, true);
            if (file)
                takeFile(file, shown);
            else
                skip(shown, whyNotOpened(errno));
        }
    }
}

void JobImport::takeSubfolder(const Place& parent, const std::string& name, std::size_t depth)
{
    const std::string shown = parent.shown + "/" + name;
    if (depth > m_budget.depth()) {
        skip(shown, "it lies too deep");
        m_result.cutOff = "folders lie too deep";
        return;
    }
    const FileHandle folder = openBeneath(parent.folder, name, O_RDONLY | O_DIRECTORY, true);
    if (folder)
        takeFolder({ folder, shown }, depth);
    else
        skip(shown, whyNotOpened(errno));
}

std::vector<std::string> JobImport::namesIn(const Place& place)
{
    // The stream closes its handle.
    const int handle = ::openat(place.folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(handle < 0 ? nullptr : ::fdopendir(handle), &::closedir);
    if (!stream) {
        skip(place.shown, std::strerror(errno));
        return {};
    }
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        if (entry->d_name[0] == '.')
            continue;
        if (!m_budget.takeEntry()) {
            m_result.cutOff = "there are too many entries";
            break;
        }
        m_budget.checkTime();
        names.emplace_back(entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        skip(place.shown, std::strerror(errno));
    std::sort(names.begin(), names.end());
    return names;
}

void JobImport::takeFile(const FileHandle& file, const std::string& shown)
{
    if (++m_files % progressFiles == 0)
        logLine("import: " + std::to_string(m_files) + " files so far");
    try {
        const std::string text = contentOf(file, maximumDocumentSize);
        m_budget.takeBytes(text.size());
        if (isTemplateFileName(shown)) {
            m_store.putTemplate(checkedTemplateName(text), text);
            ++m_result.templates;
        } else {
            takeJob(text);
        }
    } catch (const DocumentRefused& refused) {
        skip(shown, refused.what());
    } catch (const FileUnreadable& unreadable) {
        skip(shown, unreadable.what());
    }
}

void JobImport::takeJob(const std::string& text)
{
    StoredJob job = jobFromFile(text, noTime);
    const bool dated = job.modifiedOn != noTime;
    m_batch.push_back({ dated ? std::move(job) : jobFromFile(text, utcNow()), dated });
    m_batchSize += text.size();
    if (m_batch.size() == batchJobs || m_batchSize >= batchBytes)
        storeBatch();
}

void JobImport::storeBatch()
{
    std::size_t index = 0;
    const auto next = [&]() -> std::optional<StoredJob> {
        if (index == m_batch.size())
            return std::nullopt;
        return std::move(m_batch[index++].job);
    };
    const auto kept = [this](const std::string& id) {
        ++m_result.kept;
        logLine("import: already there and kept as it is: job " + printable(id));
    };
    const auto replaces = [&](const std::string& storedDocument, const StoredJob& job) {
        return m_batch[index - 1].dated && mayReplace(storedDocument, job);
    };
    if (!m_batch.empty())
        m_result.imported += m_store.addJobs(next, kept, replaces);
    m_batch.clear();
    m_batchSize = 0;
}

void JobImport::skip(const std::string& shown, const std::string& reason)
{
    ++m_result.skipped;
    logLine("import: passed over: " + printable(shown) + ": " + printable(reason));
}

} // namespace job_service
