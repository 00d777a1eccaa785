#pragma once

#include "service/FileHandle.h"

#include <filesystem>
#include <string>
#include <vector>

namespace job_service {

/// Opens what `path` names below the directory `base`, without following any link and without leaving it: neither "..",
/// nor an absolute path, nor a link that somebody puts there meanwhile leads out. With `sameMedium`, what is mounted
/// below is out of reach too. A handle that is none if that fails, with the reason in errno: ELOOP for a link, EXDEV
/// for a way out. Opening does not wait on what is no plain file.
FileHandle openBeneath(const FileHandle& base, const std::string& path, int flags, bool sameMedium);

/// The places on which media are mounted: nothing outside is read or written for a transfer.
class MediaRoots
{
public:
    explicit MediaRoots(std::vector<std::filesystem::path> roots);

    /// Opens the folder or file with this absolute path, which must be one of the roots or lie below one. Throws
    /// ApiError
    /// ("path_not_allowed", "path_not_found", "path_unreadable").
    FileHandle open(const std::string& path) const;

private:
    std::vector<std::filesystem::path> m_roots;
};

} // namespace job_service
