#include "service/Instrument.h"

#include "tests/service/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

using namespace job_service;
using nlohmann::json;

namespace {

/// Why a description is refused; empty if it is not.
std::string refusalOf(const std::string& text)
{
    try {
        Instrument::fromText(text);
    } catch (const InstrumentRefused& refused) {
        return refused.what();
    }
    return {};
}

std::string fileRefusalOf(const std::filesystem::path& file)
{
    try {
        Instrument::fromFile(file);
    } catch (const InstrumentRefused& refused) {
        return refused.what();
    }
    return {};
}

TEST(InstrumentTest, everyMemberIsRead)
{
    const Instrument instrument = Instrument::fromText(R"({"name":"x","platformVersion":"1.2","options":["O","P"],
        "modules":[{"name":"M","version":"3"},{"name":"N","version":"4.5","ready":false}],
        "configurationFiles":["a/b.cfg"],"availablePower":2.5,"testTypes":["otdr"],"fault":"Too hot.","more":[]})");
    EXPECT_FALSE(instrument.platformVersion < *DottedVersion::fromText("1.2"));
    EXPECT_EQ(instrument.options, (std::set<std::string>{ "O", "P" }));
    ASSERT_NE(instrument.module("M"), nullptr);
    EXPECT_TRUE(instrument.module("M")->ready);
    EXPECT_FALSE(instrument.module("N")->ready);
    EXPECT_TRUE(instrument.module("M")->version < instrument.module("N")->version);
    EXPECT_EQ(instrument.module("m"), nullptr);
    EXPECT_EQ(instrument.configurationFiles, (std::set<std::string>{ "a/b.cfg" }));
    EXPECT_EQ(instrument.availablePower, 2.5);
    EXPECT_EQ(instrument.testTypes, (std::set<std::string>{ "otdr" }));
    EXPECT_EQ(instrument.fault, "Too hot.");
}

TEST(InstrumentTest, thePlatformVersionIsEnough)
{
    const Instrument instrument = Instrument::fromText(R"({"platformVersion":"1","options":null})");
    EXPECT_TRUE(instrument.options.empty());
    EXPECT_TRUE(instrument.modules.empty());
    EXPECT_FALSE(instrument.availablePower);
    EXPECT_FALSE(instrument.testTypes);
    EXPECT_EQ(instrument.fault, "");
}

TEST(InstrumentTest, theStandardInstrumentIsAUsefulOne)
{
    const Instrument instrument = Instrument::standard();
    EXPECT_FALSE(instrument.options.empty());
    EXPECT_GE(instrument.modules.size(), 2u);
    EXPECT_FALSE(instrument.configurationFiles.empty());
    EXPECT_EQ(instrument.fault, "");
}

struct BadDescription
{
    const char* text;
    const char* sentence;
};

TEST(InstrumentTest, whatBreaksTheFormIsRefusedByName)
{
    for (const auto& [text, sentence] : {
             BadDescription{ R"([])", "The document has to be an object." },
             BadDescription{ R"({})", "platformVersion has to be a text that is not empty." },
             BadDescription{ R"({"platformVersion":24})", "platformVersion has to be a text that is not empty." },
             BadDescription{ R"({"platformVersion":"x"})", "platformVersion has to be a version such as \"24.2.1\"." },
             BadDescription{ R"({"platformVersion":"1","options":"O"})", "options has to be a list." },
             BadDescription{
                 R"({"platformVersion":"1","options":["O",""]})", "options/1 has to be a text that is not empty." },
             BadDescription{ R"({"platformVersion":"1","modules":[1]})", "modules/0 has to be an object." },
             BadDescription{ R"({"platformVersion":"1","modules":[{"name":"M"}]})",
                 "modules/0/version has to be a text that is not empty." },
             BadDescription{ R"({"platformVersion":"1","modules":[{"name":"M","version":"1","ready":"yes"}]})",
                 "modules/0/ready has to be true or false." },
             BadDescription{ R"({"platformVersion":"1","availablePower":-1})",
                 "availablePower has to be a number that is not negative." },
             BadDescription{ R"({"platformVersion":"1","fault":""})", "fault has to be a text that is not empty." },
         })
        EXPECT_EQ(refusalOf(text), std::string("The description of the instrument cannot be used: ") + sentence);
    EXPECT_NE(refusalOf("{").find("The description of the instrument cannot be used: "), std::string::npos);
}

TEST(InstrumentTest, aFileIsRead)
{
    const jobmanager_test::TemporaryFolder folder;
    const auto file = folder.write("i.json", R"({"platformVersion":"7"})");
    EXPECT_FALSE(Instrument::fromFile(file).platformVersion < *DottedVersion::fromText("7"));
}

TEST(InstrumentTest, aFileThatCannotBeReadIsRefused)
{
    const jobmanager_test::TemporaryFolder folder;
    const std::string begin = "The description of the instrument cannot be read: ";
    EXPECT_EQ(fileRefusalOf(folder.path() / "none"), begin + "No such file or directory.");
    EXPECT_EQ(fileRefusalOf(folder.path()), begin + "it is no plain file.");
    EXPECT_EQ(
        fileRefusalOf(folder.write("large", std::string(1024 * 1024 + 1, ' '))), begin + "it is larger than 1 MiB.");
    const std::filesystem::path pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(fileRefusalOf(pipe), begin + "it is no plain file.");
}

} // namespace
