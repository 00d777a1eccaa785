// Makes the seeds of the fuzz targets from the samples: MakeSeeds <samples> <seeds>

#include "api/cdm/JsonText.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// A longer seed slows the fuzzer down and shows it nothing new, as do the many tests of a large job.
constexpr std::size_t longestSeed = 2048;
constexpr std::size_t testsOfAJob = 8;

json read(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string text{ std::istreambuf_iterator<char>(stream), {} };
    cdm::DocumentError error;
    std::optional<json> document = cdm::parseJson(text, error);
    if (!document)
        throw std::runtime_error(file.string() + ": " + error.message);
    return std::move(*document);
}

/// The seeds of one target: files, and beside the folder a list of them.
class Seeds
{
public:
    explicit Seeds(fs::path folder) : m_folder(std::move(folder)) { fs::create_directories(m_folder); }

    /// The same seed twice is one.
    void add(const json& value)
    {
        const std::string text = cdm::dumpJson(value);
        if (text.size() > longestSeed)
            return;
        const fs::path file = m_folder / std::to_string(std::hash<std::string>()(text));
        const bool known = fs::exists(file);
        write(file, text);
        if (!known)
            m_list += (m_list.empty() ? "" : ",") + file.string();
    }
    void writeList() const { write(m_folder.string() + ".list", m_list); }

private:
    fs::path m_folder;
    std::string m_list;

    static void write(const fs::path& file, const std::string& text)
    {
        if (!(std::ofstream(file, std::ios::binary) << text))
            throw std::runtime_error("cannot write " + file.string());
    }
};

/// The job without its tests, and each test as the only one of a job.
void addJobs(Seeds& seeds, json document)
{
    const json tests = std::exchange(document["tests"], json::array());
    seeds.add(document);
    for (const json& test : tests)
        seeds.add({ { "details", { { "id", "x" } } }, { "tests", json::array({ test }) } });
}

/// The members of every object that is called like a set of attributes, however deep.
void addAttributes(Seeds& seeds, const json& value)
{
    for (const auto& [name, member] : value.items()) {
        if (name == "jobManagerAttributes" || name == "attributes") {
            for (const json& attribute : member)
                seeds.add(attribute);
        } else if (member.is_structured()) {
            addAttributes(seeds, member);
        }
    }
}

void makeSeeds(const fs::path& samples, const fs::path& folder)
{
    fs::remove_all(folder);
    Seeds jobs(folder / "JobCodecFuzz");
    Seeds attributes(folder / "AttributeFuzz");
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(samples)) {
        if (entry.path().extension() != ".json")
            continue;
        json document = read(entry.path());
        if (document["tests"].size() > testsOfAJob)
            document["tests"].erase(
                document["tests"].begin() + static_cast<std::ptrdiff_t>(testsOfAJob), document["tests"].end());
        addJobs(jobs, document);
        addAttributes(attributes, document);
    }
    jobs.writeList();
    attributes.writeList();
}

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc != 3)
            throw std::runtime_error("usage: MakeSeeds <samples> <seeds>");
        makeSeeds(argv[1], argv[2]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "MakeSeeds: %s\n", error.what());
        return 1;
    }
}
