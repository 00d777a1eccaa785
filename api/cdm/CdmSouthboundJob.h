#pragma once

#include "api/cdm/Attributes.h"
#include "api/cdm/Instrument.h"
#include "api/cdm/Iso8601.h"
#include "api/cdm/Test.h"

#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace cdm {

/// The technician of a job.
struct TechInfo
{
    std::string techId;
    std::optional<std::string> opaqueText1;
    std::optional<std::string> opaqueText2;
};

/// Carried along unread.
struct TextBlock
{
    std::optional<std::string> opaqueText1;
    std::optional<std::string> opaqueText2;
    std::optional<std::string> opaqueText3;
    std::optional<std::string> opaqueText4;
    std::optional<std::string> opaqueText5;
    std::optional<std::string> opaqueText6;
    std::optional<std::string> opaqueText7;
    std::optional<std::string> opaqueText8;
    std::optional<std::string> opaqueText9;
    std::optional<std::string> opaqueText10;
};

/// Carried along unread.
struct NestedTextBlock
{
    struct Inner
    {
        std::optional<std::string> opaqueText1;
        std::optional<std::string> opaqueText2;
        std::optional<std::string> opaqueText3;
    };

    std::optional<Inner> opaqueInner;
    std::optional<std::string> opaqueText;
};

/// Carried along unread.
struct TextEntry
{
    std::string opaqueText1;
    std::string opaqueText2;
    std::optional<std::string> opaqueText3;
};

/// What describes a job, its tests apart.
struct JobDetails
{
    std::array<unsigned char, 16> opaqueValue{};
    /// The job's id.
    std::string id;
    std::optional<std::string> opaqueText1;
    std::optional<std::string> opaqueText2;
    std::optional<std::string> opaqueText3;
    Iso8601 timestamp;
    std::optional<std::string> opaqueText4;
    std::optional<TechInfo> techInfo;
    std::optional<TextBlock> opaqueBlock;
    std::optional<std::map<std::string, std::string>> opaqueMap;
    std::optional<NestedTextBlock> opaqueNested;
    std::optional<std::string> contractorId;
    std::optional<std::string> opaqueText5;
    /// The job's optional properties.
    std::optional<Attributes> attributes;
    std::optional<Attributes> opaqueAttributes;
    std::optional<std::vector<Attribute>> opaqueAttributeList;
    std::optional<std::string> opaqueText6;
    std::optional<std::string> opaqueText7;
    std::optional<TextEntry> opaqueEntry;
};

/// A whole job as the job service delivers it. A plain value that owns all it holds.
struct CdmSouthboundJob
{
    /// In the service's order.
    std::optional<std::vector<Test>> tests;
    JobDetails details;
    std::optional<InstrumentInfo> instrument;
    /// Version of the record format.
    std::string cdmVersion = "2.2";
    std::optional<nlohmann::json> opaqueJson;
    std::optional<Iso8601> opaqueTimestamp;
};

} // namespace cdm
