#include "service/LaunchStatus.h"

#include <initializer_list>

namespace job_service::launch_status {

namespace {

/// A parameter may hold anything but the separator; a character of the same looks stands for that.
std::string with(std::string code, std::initializer_list<std::string> parameters)
{
    for (const std::string& parameter : parameters) {
        code += '^';
        for (const char character : parameter) {
            if (character == '^')
                code += "\u02C6";
            else
                code += character;
        }
    }
    return code;
}

} // namespace

std::string option(const std::string& name)
{
    return with("ERROR_OPTION", { name });
}

std::string power()
{
    return "ERROR_POWER";
}

std::string module(const std::string& name)
{
    return with("ERROR_MODULE", { name });
}

std::string solutionVersion(const std::string& version, const std::string& module)
{
    return with("ERROR_SOLUTION_VERSION", { version, module });
}

std::string platformVersion(const std::string& version)
{
    return with("ERROR_PLATFORM_VERSION", { version });
}

std::string requiresFieldmate()
{
    return "ERROR_REQUIRES_FIELDMATE";
}

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

std::string unknown(const std::string& module)
{
    return with("ERROR_UNKNOWN", { module });
}

std::string customNonfatal(const std::string& sentence)
{
    return with("ERROR_CUSTOM_NONFATAL", { sentence });
}

std::string customFatal(const std::string& sentence)
{
    return with("ERROR_CUSTOM_FATAL", { sentence });
}

std::string configurationFile(const std::string& name)
{
    return with("ERROR_CONFIGURATION_FILE", { name });
}

std::string invalidTestConfiguration(const std::string& sentence)
{
    return with("ERROR_INVALID_TEST_CONFIGURATION", { sentence });
}

} // namespace job_service::launch_status
