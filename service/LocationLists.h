#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace job_service {

/// The plain files of a folder, the templates' one, that list locations, one a line.
class LocationLists
{
public:
    /// No folder, and so no lists.
    LocationLists() = default;
    explicit LocationLists(std::filesystem::path folder) : m_folder(std::move(folder)) { }

    /// The locations of the list with this file name, in its order; blank lines, and blanks around a location, do not
    /// count. Throws the ApiError of a name that leaves the folder, a file that is not there, or one that is no such
    /// list.
    std::vector<std::string> locations(const std::string& fileName) const;

private:
    std::filesystem::path m_folder;
};

} // namespace job_service
