#pragma once

#include <optional>
#include <string>
#include <vector>

namespace cdm {

/// A software option of an instrument or module. The instrument's records are only carried along.
struct SwOption
{
    std::string opaqueText1;
    std::optional<std::string> opaqueText2;
    std::string opaqueText3;
    std::optional<std::string> opaqueText4;
    std::optional<std::string> opaqueText5;
};

/// A firmware of an instrument.
struct FirmwareInfo
{
    std::optional<std::string> opaqueText1;
    std::optional<std::string> opaqueText2;
    std::optional<std::string> opaqueText3;
    std::optional<std::string> opaqueText4;
};

/// A piece of an instrument's hardware.
struct HardwareInfo
{
    std::optional<std::string> opaqueText1;
    std::optional<std::string> opaqueText2;
    std::optional<std::string> opaqueText3;
    std::optional<std::string> opaqueText4;
};

/// A test module of an instrument.
struct ModuleInfo
{
    std::string opaqueText1;
    std::string opaqueText2;
    std::optional<std::string> opaqueText3;
    std::optional<std::string> opaqueText4;
    std::optional<std::string> opaqueText5;
    std::optional<std::vector<SwOption>> swOptions;
    std::optional<std::vector<std::string>> opaqueTextList;
    std::optional<std::string> opaqueText6;
};

/// A remote unit of an instrument.
struct InstrumentRemote
{
    std::string opaqueText1;
    std::string opaqueText2;
    std::optional<std::string> opaqueText3;
    std::optional<std::string> opaqueText4;
    std::optional<std::string> opaqueText5;
    std::optional<std::string> opaqueText6;
    std::optional<std::vector<ModuleInfo>> modules;
    std::optional<std::vector<SwOption>> swOptions;
    std::optional<std::vector<std::string>> opaqueTextList;
    std::optional<std::string> opaqueText7;
};

/// The instrument that a job was sent to.
struct InstrumentInfo
{
    std::string opaqueText1;
    std::string opaqueText2;
    std::optional<std::string> opaqueText3;
    std::optional<std::string> opaqueText4;
    std::optional<std::string> opaqueText5;
    std::optional<std::string> opaqueText6;
    std::optional<std::string> opaqueText7;
    std::optional<std::vector<ModuleInfo>> modules;
    std::optional<std::vector<SwOption>> swOptions;
    std::optional<std::vector<std::string>> opaqueTextList;
    std::optional<std::vector<InstrumentRemote>> remotes;
    std::optional<std::vector<FirmwareInfo>> firmware;
    std::optional<std::string> opaqueText8;
    std::optional<std::string> opaqueText9;
    std::optional<std::string> opaqueText10;
    std::optional<std::string> opaqueText11;
    std::optional<std::string> opaqueText12;
    std::optional<std::string> opaqueText13;
    std::optional<std::vector<HardwareInfo>> hardware;
};

} // namespace cdm
