#include "service/DataFolder.h"

#include "service/Log.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace job_service {

DataFolder::DataFolder(const std::filesystem::path& path) : m_path(path)
{
    const std::string name = printable(path.string());
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error)
        throw DataFolderRefused("The data folder " + name + " cannot be made: " + error.message() + ".");
    const std::filesystem::path lock = path / "lock";
    m_lock = ::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_lock < 0)
        throw DataFolderRefused("The data folder " + name + " cannot be written to.");
    if (::flock(m_lock, LOCK_EX | LOCK_NB) != 0) {
        ::close(m_lock);
        throw DataFolderRefused("Another job-service is using the data folder " + name + ".");
    }
}

DataFolder::~DataFolder()
{
    ::close(m_lock);
}

std::filesystem::path DataFolder::defaultPath()
{
    // A relative XDG_DATA_HOME counts as none.
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome && dataHome[0] == '/')
        return std::filesystem::path(dataHome) / "job-service";
    const char* home = std::getenv("HOME");
    if (!home || home[0] != '/')
        throw DataFolderRefused("There is no home folder; name a data folder with --data.");
    return std::filesystem::path(home) / ".local" / "share" / "job-service";
}

} // namespace job_service
