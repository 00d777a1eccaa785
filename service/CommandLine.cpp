#include "service/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <limits>

namespace job_service {

namespace {

constexpr std::size_t mostJobs = 1000000;
constexpr std::size_t mostTests = 10000;

/// A plain decimal number up to `greatest`; nothing otherwise.
std::optional<std::size_t> number(const std::string& text, std::size_t greatest)
{
    std::size_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || stopped != end || value > greatest)
        return std::nullopt;
    return value;
}

unsigned short parsePort(const std::string& text)
{
    const std::optional<std::size_t> port = number(text, 65535);
    if (!port)
        throw UsageError("--port takes a number from 0 to 65535, not \"" + text + "\"");
    return static_cast<unsigned short>(*port);
}

/// Reads one "name=number" of a list.
void parseSize(const std::string& item, GenerateSize& size)
{
    const std::size_t equals = item.find('=');
    const std::string name = item.substr(0, equals);
    const std::string value = equals == std::string::npos ? std::string() : item.substr(equals + 1);
    const bool jobs = name == "jobs";
    const std::optional<std::size_t> count = number(value, jobs ? mostJobs : mostTests);
    if ((!jobs && name != "tests") || !count)
        throw UsageError("--generate takes jobs=N,tests=M (up to 1000000 and 10000), not \"" + item + "\"");
    (jobs ? size.jobs : size.tests) = *count;
}

GenerateSize parseGenerate(const std::string& text)
{
    GenerateSize size;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        parseSize(text.substr(start, end - start), size);
        start = end + 1;
    }
    return size;
}

/// Seconds, with or without a fraction, up to a day.
std::chrono::milliseconds parseSeconds(const std::string& name, const std::string& text)
{
    double seconds = -1;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, seconds);
    if (error != std::errc() || stopped != end || !(seconds >= 0 && seconds <= 86400))
        throw UsageError(name + " takes seconds from 0 to 86400, not \"" + text + "\"");
    return std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
}

std::uint32_t parseSeed(const std::string& text)
{
    const std::optional<std::size_t> seed = number(text, std::numeric_limits<std::uint32_t>::max());
    if (!seed)
        throw UsageError("--seed takes a number from 0 to 4294967295, not \"" + text + "\"");
    return static_cast<std::uint32_t>(*seed);
}

/// Takes an option that tells how tests are run. Returns false if it is none.
template <typename Value, typename Path>
bool takeTestOption(const std::string& name, Value value, Path path, TestOptions& options)
{
    if (name == "--instrument")
        options.instrument = path();
    else if (name == "--start-seconds")
        options.simulation.startDuration = parseSeconds(name, value());
    else if (name == "--run-seconds")
        options.simulation.runDuration = parseSeconds(name, value());
    else if (name == "--test-command")
        options.program.program = path();
    else if (name == "--test-argument")
        options.program.arguments.push_back(value());
    else if (name == "--test-seconds")
        options.program.longestRun = parseSeconds(name, value());
    else if (name == "--seed")
        options.simulation.seed = parseSeed(value());
    else
        return false;
    return true;
}

} // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments)
{
    CommandLine line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string name = arguments[i];
        std::optional<std::string> attached;
        const std::size_t equals = name.find('=');
        if (name.compare(0, 2, "--") == 0 && equals != std::string::npos) {
            attached = name.substr(equals + 1);
            name.resize(equals);
        }
        const auto value = [&] {
            if (attached)
                return *attached;
            if (i + 1 == arguments.size())
                throw UsageError(name + " needs a value");
            return arguments[++i];
        };
        const auto path = [&] {
            std::string text = value();
            if (text.empty())
                throw UsageError(name + " needs a value");
            return text;
        };

        if (arguments[i] == "--help" || arguments[i] == "-h")
            line.help = true;
        else if (arguments[i] == "--version")
            line.version = true;
        else if (name == "--port")
            line.port = parsePort(value());
        else if (name == "--data")
            line.data = path();
        else if (name == "--load")
            line.load.emplace_back(path());
        else if (name == "--templates")
            line.templates = path();
        else if (name == "--generate")
            line.generate = parseGenerate(value());
        else if (name == "--tech-id")
            line.techId = value();
        else if (name == "--media-root")
            line.mediaRoots.emplace_back(path());
        else if (name == "--exchange-device")
            line.exchangeDevice = path();
        else if (name == "--attribute-rules")
            line.attributeRules = path();
        else if (!takeTestOption(name, value, path, line.tests))
            throw UsageError("there is no option \"" + arguments[i] + "\"");
    }
    if (line.mediaRoots.empty())
        line.mediaRoots.emplace_back("/media");
    return line;
}

const char* usageText()
{
    return "Usage: job-service [OPTION]...\n"
           "The local job service: HTTP on 127.0.0.1 with JSON, jobs in an SQLite file.\n"
           "\n"
           "  --port PORT                port to listen on (default 8082); 0 picks a free one\n"
           "  --data DIR                 folder of the data (default: job-service/ below $XDG_DATA_HOME\n"
           "                             or ~/.local/share)\n"
           "  --load FILE-OR-DIR         load job files (*.job.json) and template files (*.tpl.json) before\n"
           "                             listening; a job that is known stays as it is; may be repeated\n"
           "  --templates DIR            folder of templates, which are loaded, and of the lists of locations that go\n"
           "                             with them (default: where --load finds templates)\n"
           "  --generate jobs=N,tests=M  make N jobs of M tests each, always the same ones\n"
           "  --tech-id ID               technician of the login configuration\n"
           "  --attribute-rules FILE     refuse, normalise or delay writes of chosen attributes, to try clients\n"
           "                             out (docs/job-service-api.md)\n"
           "  --media-root DIR           folder below which jobs are exported and imported (default /media);\n"
           "                             may be repeated\n"
           "  --exchange-device PATH     device to exchange the active job with, or a link to it (default /dev/qzx)\n"
           "  --instrument FILE          the instrument that tests are checked against (docs/job-service-api.md;\n"
           "                             default: that of samples/instrument.json)\n"
           "  --start-seconds S          how long a simulated test takes to start (default 0.5)\n"
           "  --run-seconds S            how long a simulated test runs (default 3)\n"
           "  --seed N                   decides what simulated tests come to (default 0)\n"
           "  --test-command PROGRAM     run tests by this program instead (docs/job-service-api.md)\n"
           "  --test-argument ARG        argument of that program; may be repeated\n"
           "  --test-seconds S           how long that program may take (default 600)\n"
           "  --help                     this text\n"
           "  --version                  the version\n"
           "\n"
           "When it listens, it writes one line with its address. SIGTERM or SIGINT ends it.\n"
           "Exit codes: 0 ended by a signal, 1 could not start, 2 wrong usage.\n";
}

} // namespace job_service
