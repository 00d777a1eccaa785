#include "service/JobExport.h"

#include "api/cdm/JsonText.h"
#include "service/ApiError.h"
#include "service/ExportFileName.h"
#include "service/JobDocument.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace job_service {

namespace {

constexpr std::size_t chunkSize = 64 * 1024;

[[noreturn]] void refuse(int reason)
{
    if (reason == ENOSPC || reason == EDQUOT || reason == EFBIG)
        throw ApiError(507, "storage_full", "There is no room left on the medium.");
    if (reason == EROFS || reason == EACCES || reason == EPERM)
        throw ApiError(403, "medium_read_only", "Nothing may be written to the medium.");
    throw ApiError(503, "medium_failed", "The medium cannot be written.");
}

/// The id of the job in a file; nothing if there is none in it.
std::optional<std::string> jobIn(const FileHandle& file)
{
    try {
        cdm::DocumentError error;
        const auto document = cdm::parseJson(contentOf(file, maximumDocumentSize), error);
        return document ? std::optional(document->at("details").at("id").get<std::string>()) : std::nullopt;
    } catch (const FileUnreadable&) {
        return std::nullopt;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

/// Whether the name is free in the folder, or taken by an earlier export of the same job.
bool isFreeFor(const FileHandle& folder, const std::string& name, const std::string& jobId)
{
    struct stat status
    {
    };
    if (::fstatat(folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY;
    return S_ISREG(status.st_mode) && jobIn(FileHandle(::openat(folder.get(), name.c_str(), flags))) == jobId;
}

std::string nameFor(const FileHandle& folder, const std::string& jobId)
{
    for (const std::string& name : { exportFileName(jobId), numberedExportFileName(jobId) }) {
        if (isFreeFor(folder, name, jobId))
            return name;
    }
    throw ApiError(409, "name_taken", "Another file on the medium has the name of the export.");
}

/// A file that is being written. It is gone at the end unless it has been given its name.
class PartFile
{
public:
    PartFile(const FileHandle& folder, const std::string& finalName)
        : m_folder(folder)
        , m_finalName(finalName)
        , m_name("." + finalName + ".part")
    {
        // What an interrupted export has left.
        ::unlinkat(folder.get(), m_name.c_str(), 0);
        m_file = FileHandle(
            ::openat(folder.get(), m_name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!m_file)
            refuse(errno);
    }
    ~PartFile()
    {
        if (m_file && !m_named)
            ::unlinkat(m_folder.get(), m_name.c_str(), 0);
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    void write(const std::string& content, const TransferBudget& budget)
    {
        for (std::size_t written = 0; written < content.size();) {
            budget.checkTime();
            const std::size_t size = std::min(chunkSize, content.size() - written);
            const ssize_t count = ::write(m_file.get(), content.data() + written, size);
            if (count < 0 && errno != EINTR)
                refuse(errno);
            written += count < 0 ? 0 : static_cast<std::size_t>(count);
        }
        // Others than the service's user read the medium elsewhere. A medium without permissions refuses this.
        ::fchmod(m_file.get(), 0644);
        if (::fsync(m_file.get()) != 0)
            refuse(errno);
    }

    /// A medium can take bytes and not have them: reads them back from it.
    void check(const std::string& content) const
    {
        ::posix_fadvise(m_file.get(), 0, 0, POSIX_FADV_DONTNEED);
        if (::lseek(m_file.get(), 0, SEEK_SET) != 0)
            refuse(errno);
        bool same = false;
        try {
            same = contentOf(m_file, content.size()) == content;
        } catch (const FileUnreadable&) {
            same = false;
        }
        if (!same)
            refuse(EIO);
    }

    void giveName()
    {
        if (::renameat(m_folder.get(), m_name.c_str(), m_folder.get(), m_finalName.c_str()) != 0)
            refuse(errno);
        m_named = true;
        // Some file systems do not know this for a folder.
        if (::fsync(m_folder.get()) != 0 && errno != EINVAL)
            refuse(errno);
    }

private:
    const FileHandle& m_folder;
    const std::string m_finalName;
    const std::string m_name;
    FileHandle m_file;
    bool m_named = false;
};

} // namespace

std::string exportDocument(
    const FileHandle& folder, const std::string& jobId, const std::string& document, TransferBudget& budget)
{
    struct stat status
    {
    };
    if (::fstat(folder.get(), &status) != 0 || !S_ISDIR(status.st_mode))
        throw ApiError(400, "not_a_folder", "A job is exported to a folder.");
    const std::string name = nameFor(folder, jobId);
    PartFile file(folder, name);
    file.write(document, budget);
    file.check(document);
    budget.checkTime();
    file.giveName();
    return name;
}

} // namespace job_service
