#pragma once

#include "api/cdm/Attributes.h"

#include <array>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace cdm {

/// Outcome of a test, or of a test at one location. Fields named "opaque" are only carried along, here and in all
/// records.
struct TestResults
{
    /// Status token, as the service gives it.
    std::string status;
    /// When the test ran, ISO 8601.
    std::string time;
    std::array<unsigned char, 8> opaqueValue1{};
    std::optional<std::string> opaqueText;
    /// Recorded answer of a manual step.
    std::optional<std::string> response;
    std::array<unsigned char, 16> opaqueValue2{};
    std::array<unsigned char, 8> opaqueValue3{};
    /// Free result data; the boolean "ijm_additionalTest" of an object marks a test that was added in the field.
    std::optional<nlohmann::json> data;
};

/// One place at which a test is to run.
struct TestLocation
{
    std::array<unsigned char, 16> opaqueValue{};
    std::string location;
    /// Optional properties; they go before those of the test.
    std::optional<Attributes> attributes;
    std::map<std::string, std::string> opaqueMap;
    /// Goes before the flag of the test.
    std::optional<bool> required;
    std::optional<std::int32_t> opaqueNumber;
    std::optional<TestResults> results;
    /// Index string of this location ("2_1").
    std::optional<std::string> uiIndex;
    /// Configuration lines, separated by a newline.
    std::optional<std::string> configuration;
};

/// A kind of instrument on which a test can run.
struct DeployableTo
{
    std::string name;
    std::optional<std::string> version;
};

/// One test of a job.
struct Test
{
    /// Type token; "manual" marks a manual test.
    std::string testType;
    std::optional<std::string> testTypeDisplayName;
    std::optional<std::string> description;
    std::optional<std::string> site;
    std::array<unsigned char, 16> opaqueValue1{};
    /// Prompt description of a manual test.
    std::optional<nlohmann::json> configurationData;
    /// Results of a test without locations, or of the test as a whole.
    std::optional<TestResults> results;
    std::optional<Attributes> attributes;
    std::optional<Attributes> opaqueAttributes;
    std::optional<std::vector<TestLocation>> testLocations;
    std::optional<std::vector<DeployableTo>> deployableTo;
    std::optional<std::string> opaqueText1;
    std::optional<std::vector<std::string>> opaqueTextList;
    std::array<unsigned char, 8> opaqueValue2{};
    std::optional<bool> opaqueFlag1;
    std::optional<bool> opaqueFlag2;
    /// Path of the guide file.
    std::optional<std::string> guideFile;
    std::optional<std::string> opaqueText2;
    /// A test without the flag is required.
    std::optional<bool> required;
    std::optional<std::int32_t> opaqueNumber;
    std::optional<std::string> opaqueText3;
    /// Index string of this test ("2"), the only key by which it is found.
    std::optional<std::string> uiIndex;
    /// Configuration lines, separated by a newline.
    std::optional<std::string> configuration;
};

} // namespace cdm
