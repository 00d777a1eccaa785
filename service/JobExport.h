#pragma once

#include "service/FileHandle.h"
#include "service/TransferBudget.h"

#include <string>

namespace job_service {

/// Writes a job's document into the folder as a file of its own, whole or not at all: to a file beside it first, which
/// is brought to the medium, read back and only then given its name. An earlier export of the same job is replaced,
/// another file never. Returns the file's name. Throws ApiError ("not_a_folder", "storage_full", "medium_read_only",
/// "medium_failed") and CutOff, and leaves no new file then.
std::string exportDocument(
    const FileHandle& folder, const std::string& jobId, const std::string& document, TransferBudget& budget);

} // namespace job_service
