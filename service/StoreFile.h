#pragma once

#include "service/SqliteDatabase.h"

#include <filesystem>
#include <stdexcept>

namespace job_service {

/// The store cannot be used, and must not be touched: the service does not start. The text is a whole sentence.
class StoreRefused : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A database that is ready for use.
struct OpenedStore
{
    SqliteDatabase database;
    /// Whether an unusable file was put aside and the store begins empty.
    bool replaced = false;
    /// Whether the store has just been made.
    bool created = false;
};

/// Opens the database of a data folder and checks it through. A file that is damaged, or is no store of ours,
/// is renamed to the first free "<name>.corrupt-<N>", never deleted, and a new store begins.
/// Throws StoreRefused for a store of a newer version, SqliteError for a file that cannot be read or written.
OpenedStore openStoreFile(const std::filesystem::path& file);

/// A further connection to an opened store, which only reads.
SqliteDatabase openStoreReader(const std::filesystem::path& file);

} // namespace job_service
