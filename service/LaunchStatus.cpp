#include "service/LaunchStatus.h"

namespace job_service::launch_status {

namespace {

/// A parameter may hold anything but the separator; a character of the same looks stands for that.
std::string with(std::string code, const std::string& parameter)
{
    code += '^';
    for (const char character : parameter) {
        if (character == '^')
            code += "\u02C6";
        else
            code += character;
    }
    return code;
}

} // namespace

std::string failedToRun()
{
    return "ERROR_CAN_LAUNCH_FAILED_TO_RUN";
}

std::string testNotFound()
{
    return "ERROR_TEST_NOT_FOUND";
}

std::string invalidLaunchParameters()
{
    return "ERROR_INVALID_LAUNCH_PARAMETERS";
}

std::string customNonfatal(const std::string& sentence)
{
    return with("ERROR_CUSTOM_NONFATAL", sentence);
}

} // namespace job_service::launch_status
