#pragma once

#include <filesystem>
#include <stdexcept>

namespace job_service {

/// The data folder cannot be used. The text is a whole sentence.
class DataFolderRefused : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The folder that the service keeps its data in, held for one service alone until the object ends, by whatever end.
class DataFolder
{
public:
    /// Makes the folder if it is missing, for this user only. Throws DataFolderRefused.
    explicit DataFolder(const std::filesystem::path& path);
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    /// job-service/ below XDG_DATA_HOME or ~/.local/share. Throws DataFolderRefused if neither is known.
    static std::filesystem::path defaultPath();

private:
    std::filesystem::path m_path;
    int m_lock = -1;
};

} // namespace job_service
