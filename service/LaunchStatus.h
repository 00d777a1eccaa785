#pragma once

#include <string>

namespace job_service {

/// The status strings that a launch ends in: a code and its parameters, "^" between them. Empty stands for a run that
/// has started.
namespace launch_status {

std::string option(const std::string& name);
std::string power();
std::string module(const std::string& name);
std::string solutionVersion(const std::string& version, const std::string& module);
std::string platformVersion(const std::string& version);
std::string requiresFieldmate();
std::string failedToRun();
std::string testNotFound();
std::string invalidLaunchParameters();
/// The module is there, but cannot take the test now.
std::string unknown(const std::string& module);
/// `sentence` is what the technician reads, here and below.
std::string customNonfatal(const std::string& sentence);
std::string customFatal(const std::string& sentence);
std::string configurationFile(const std::string& name);
std::string invalidTestConfiguration(const std::string& sentence);

} // namespace launch_status

} // namespace job_service
