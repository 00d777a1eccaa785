#include "service/FileHandle.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace job_service {

FileHandle::~FileHandle()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

FileHandle openedForReading(const std::filesystem::path& path, Links links)
{
    const int follow = links == Links::Refused ? O_NOFOLLOW : 0;
    return FileHandle(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | follow));
}

std::string contentOf(const FileHandle& file, std::size_t greatestSize)
{
    struct stat status
    {
    };
    if (!file || ::fstat(file.get(), &status) != 0)
        throw FileUnreadable(std::strerror(errno));
    if (!S_ISREG(status.st_mode))
        throw FileUnreadable("it is no plain file");
    std::string content;
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw FileUnreadable(std::strerror(errno));
        if (count == 0)
            return content;
        content.append(buffer, static_cast<std::size_t>(count));
        if (content.size() > greatestSize)
            throw FileUnreadable("it is larger than " + std::to_string(greatestSize / (1024 * 1024)) + " MiB");
    }
}

} // namespace job_service
