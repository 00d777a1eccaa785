#pragma once

#include <string>
#include <string_view>

namespace job_service {

/// The name of the file to which a job is exported, "<id>.job.json": the id itself where every file system of a medium
/// takes it as a name, else a safe and short text like it that ends in a number of the id's own.
std::string exportFileName(std::string_view jobId);

/// The name with the number in any case, for a medium where another job has the plain name.
std::string numberedExportFileName(std::string_view jobId);

} // namespace job_service
