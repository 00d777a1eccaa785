#pragma once

#include "service/DottedVersion.h"

#include <filesystem>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace job_service {

/// The description of an instrument cannot be used. The text is a whole sentence.
class InstrumentRefused : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What an instrument has to offer to tests, as docs/job-service-api.md describes its file.
struct Instrument
{
    struct Module
    {
        std::string name;
        DottedVersion version;
        /// Whether it can take a test now.
        bool ready = true;
    };

    DottedVersion platformVersion;
    std::set<std::string> options;
    /// The modules that are attached.
    std::vector<Module> modules;
    std::set<std::string> configurationFiles;
    /// Watts that a test may draw; nothing for as many as it wants.
    std::optional<double> availablePower;
    /// The types of test that the instrument knows; nothing for all.
    std::optional<std::set<std::string>> testTypes;
    /// Why the instrument can run nothing at all, a sentence; empty if it can.
    std::string fault;

    /// The module of this name; null if none is attached.
    const Module* module(const std::string& name) const;

    /// The instrument that samples/instrument.json describes.
    static Instrument standard();
    /// Throws InstrumentRefused.
    static Instrument fromFile(const std::filesystem::path& file);
    /// Throws InstrumentRefused.
    static Instrument fromText(const std::string& text);
};

} // namespace job_service
