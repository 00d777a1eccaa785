#pragma once

#include "service/ProgramBench.h"
#include "service/SimulatedBench.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace job_service {

/// How many jobs, of how many tests each, --generate is to make.
struct GenerateSize
{
    std::size_t jobs = 0;
    std::size_t tests = 0;
};

/// How tests are run.
struct TestOptions
{
    /// Empty for the standard instrument.
    std::filesystem::path instrument;
    SimulatedBench::Settings simulation;
    /// Without a program, tests are simulated.
    ProgramBench::Settings program;
};

/// What the command line asks for.
struct CommandLine
{
    bool help = false;
    bool version = false;
    unsigned short port = 8082;
    /// Empty for the default folder.
    std::filesystem::path data;
    std::vector<std::filesystem::path> load;
    std::optional<GenerateSize> generate;
    std::string techId;
    /// Where media are mounted: jobs are exported and imported only there.
    std::vector<std::filesystem::path> mediaRoots;
    /// The device with which the active job is exchanged.
    std::string exchangeDevice = "/dev/qzx";
    /// Empty for no rules.
    std::filesystem::path attributeRules;
    TestOptions tests;
    /// Empty for the folder of the templates that are loaded.
    std::filesystem::path templates;
};

/// The command line makes no sense.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments behind the program's name. Throws UsageError.
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

/// The text of --help.
const char* usageText();

} // namespace job_service
