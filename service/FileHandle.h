#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

namespace job_service {

/// A descriptor that is closed at the end.
class FileHandle
{
public:
    FileHandle() = default;
    /// Takes over `descriptor`; a negative one stands for none.
    explicit FileHandle(int descriptor) : m_descriptor(descriptor) { }
    ~FileHandle();
    FileHandle(FileHandle&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) { }
    FileHandle& operator=(FileHandle&& other) noexcept;

    int get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

enum class Links { Followed, Refused };

/// Opens a file for reading, without waiting on what is no plain file. `links` is about the file itself, not about the
/// folders on its path. A closed handle, with the reason in errno, if that fails.
FileHandle openedForReading(const std::filesystem::path& path, Links links = Links::Followed);

/// A file cannot be read, or is none that may be read.
class FileUnreadable : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The content of a plain file of at most `greatestSize` bytes. The file may change meanwhile: what is read is what
/// counts. Throws FileUnreadable for a closed handle (with the reason in errno), anything but a plain file and one that
/// is too large.
std::string contentOf(const FileHandle& file, std::size_t greatestSize);

} // namespace job_service
