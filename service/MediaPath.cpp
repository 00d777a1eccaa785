#include "service/MediaPath.h"

#include "service/ApiError.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace job_service {

namespace {

namespace fs = std::filesystem;

constexpr int openingFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// The path without "." and double or trailing slashes; empty if it is not absolute or has a "..".
fs::path tidied(const std::string& text)
{
    const fs::path path(text);
    if (!path.is_absolute() || text.find('\0') != std::string::npos
        || std::find(path.begin(), path.end(), "..") != path.end())
        return {};
    fs::path result = path.lexically_normal();
    return result.has_filename() ? result : result.parent_path();
}

/// What is left of `path` below `root`: "." for the root itself, empty if it does not lie there.
std::string relativeTo(const fs::path& root, const fs::path& path)
{
    const auto parted = std::mismatch(root.begin(), root.end(), path.begin(), path.end());
    if (path.empty() || parted.first != root.end())
        return {};
    return path.lexically_relative(root).string();
}

[[noreturn]] void refuseOutside()
{
    throw ApiError(403, "path_not_allowed", "Jobs are transferred only to and from the folders of media.");
}

[[noreturn]] void refuse(int reason)
{
    if (reason == ENOENT || reason == ENOTDIR || reason == ENAMETOOLONG)
        throw ApiError(404, "path_not_found", "There is nothing with this path.");
    if (reason == ELOOP || reason == EXDEV)
        refuseOutside();
    throw ApiError(503, "path_unreadable", "What has this path cannot be opened.");
}

} // namespace

FileHandle openBeneath(const FileHandle& base, const std::string& path, int flags, bool sameMedium)
{
    open_how how{};
    how.flags = static_cast<unsigned>(flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    if (sameMedium)
        how.resolve |= RESOLVE_NO_XDEV;
    return FileHandle(static_cast<int>(::syscall(SYS_openat2, base.get(), path.c_str(), &how, sizeof how)));
}

MediaRoots::MediaRoots(std::vector<fs::path> roots)
{
    for (const fs::path& root : roots)
        m_roots.push_back(tidied(fs::absolute(root).lexically_normal().string()));
}

FileHandle MediaRoots::open(const std::string& path) const
{
    const fs::path wanted = tidied(path);
    for (const fs::path& root : m_roots) {
        const std::string below = relativeTo(root, wanted);
        if (below.empty())
            continue;
        const FileHandle base(::open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        FileHandle opened = base ? openBeneath(base, below, openingFlags, false) : FileHandle();
        if (!opened)
            refuse(errno);
        return opened;
    }
    refuseOutside();
}

} // namespace job_service
