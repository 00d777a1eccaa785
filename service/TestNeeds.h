#pragma once

#include "service/DottedVersion.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace job_service {

/// A version that is needed, at least.
struct NeededVersion
{
    /// As the test states it.
    std::string text;
    DottedVersion version;
};

/// What a test needs of an instrument: its member `requirements` (docs/job-file-format.md).
struct TestNeeds
{
    struct Module
    {
        std::string name;
        std::optional<NeededVersion> version;
    };

    /// The test is made with the companion app, on no instrument.
    bool fieldmate = false;
    std::optional<NeededVersion> platformVersion;
    std::vector<std::string> options;
    std::vector<Module> modules;
    std::vector<std::string> configurationFiles;
    /// Watts.
    std::optional<double> power;

    /// Reads the needs of a test of a job document. Throws FieldRefused if they are not of their form.
    static TestNeeds of(const nlohmann::json& test);
};

} // namespace job_service
