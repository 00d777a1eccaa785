#pragma once

#include <string>

namespace job_service {

/// The status strings that a launch ends in: a code and its parameters, "^" between them. Empty stands for a run that
/// has started.
namespace launch_status {

std::string failedToRun();
std::string testNotFound();
std::string invalidLaunchParameters();
/// `sentence` is what the technician reads.
std::string customNonfatal(const std::string& sentence);

} // namespace launch_status

} // namespace job_service
