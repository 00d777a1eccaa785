// The other side of an exchange of jobs, behind a pseudo terminal: for development and tests.
#include "service/DeviceLink.h"
#include "service/ExportFileName.h"
#include "service/JobDocument.h"
#include "service/JobExchange.h"
#include "service/JobExport.h"
#include "service/JobMerge.h"
#include "service/JsonTree.h"
#include "service/Log.h"
#include "service/UtcTime.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <vector>

using namespace job_service;

namespace {

namespace fs = std::filesystem;

constexpr const char* usage = "Usage: job-exchange-peer --link PATH --jobs DIR [--once]\n"
                              "Answers exchanges of jobs at a pseudo terminal, to which it makes the link PATH.\n"
                              "\n"
                              "  --link PATH  the link to make; a link of that name is replaced\n"
                              "  --jobs DIR   folder of its versions of jobs, one file a job, as an export names it\n"
                              "  --once       ends after one exchange: 0 if it succeeded, 1 if not\n";

std::atomic<bool> endRequested{ false };

struct Options
{
    fs::path link;
    fs::path jobs;
    bool once = false;
};

bool readOptions(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--once")
            options.once = true;
        else if (name == "--link" && i + 1 < argc)
            options.link = argv[++i];
        else if (name == "--jobs" && i + 1 < argc)
            options.jobs = argv[++i];
        else
            return false;
    }
    return !options.link.empty() && !options.jobs.empty();
}

/// A pseudo terminal with a link to its far side. Keeps the far side open: without anybody there, nobody could wait.
class Terminal
{
public:
    explicit Terminal(fs::path link) : m_link(std::move(link))
    {
        m_near = FileHandle(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
        if (!m_near || ::grantpt(m_near.get()) != 0 || ::unlockpt(m_near.get()) != 0)
            throw std::runtime_error("there is no pseudo terminal to be had");
        m_name = ::ptsname(m_near.get());
        m_far = FileHandle(::open(m_name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        termios settings{};
        ::tcgetattr(m_far.get(), &settings);
        ::cfmakeraw(&settings);
        ::tcsetattr(m_far.get(), TCSANOW, &settings);
        if (fs::is_symlink(m_link))
            fs::remove(m_link);
        fs::create_symlink(m_name, m_link);
    }
    ~Terminal()
    {
        std::error_code ignored;
        fs::remove(m_link, ignored);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    const std::string& name() const { return m_name; }
    /// Waits for the first bytes; false if the program is to end.
    bool waitForBytes() const
    {
        while (!endRequested) {
            pollfd waiting{ m_near.get(), POLLIN, 0 };
            if (::poll(&waiting, 1, 200) > 0)
                return true;
        }
        return false;
    }
    /// Waits until the other side has closed the far side: what it has not read by the end of the terminal is lost.
    void waitForClose()
    {
        m_far = FileHandle();
        pollfd waiting{ m_near.get(), 0, 0 };
        ::poll(&waiting, 1, 5000);
    }
    FileHandle handle() const { return FileHandle(::fcntl(m_near.get(), F_DUPFD_CLOEXEC, 0)); }

private:
    const fs::path m_link;
    std::string m_name;
    FileHandle m_near;
    FileHandle m_far;
};

/// The peer's versions of jobs, one file each.
class Versions
{
public:
    explicit Versions(const fs::path& folder) : m_folder(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        if (!m_folder)
            throw std::runtime_error("the folder of the jobs cannot be opened");
    }

    std::optional<std::string> find(const std::string& jobId) const
    {
        const FileHandle file(::openat(m_folder.get(), exportFileName(jobId).c_str(), O_RDONLY | O_CLOEXEC));
        return file ? std::optional(contentOf(file, maximumDocumentSize)) : std::nullopt;
    }

    void take(const std::string& document) const
    {
        const StoredJob job = jobFromFile(document, utcNow());
        JsonTree merged = JsonTree::fromText(job.document);
        if (const std::optional<std::string> own = find(job.id)) {
            merged = JsonTree::fromText(*own);
            mergeJob(merged, JsonTree::fromText(job.document));
        }
        TransferBudget budget({}, endRequested);
        exportDocument(m_folder, job.id, merged.text(), budget);
    }

private:
    FileHandle m_folder;
};

bool answerOnce(const Terminal& terminal, const Versions& versions)
{
    try {
        const TransferBudget budget({}, endRequested);
        DeviceLink link(terminal.handle(), budget, std::chrono::seconds(10));
        answerExchange(
            link, [&](const std::string& jobId) { return versions.find(jobId); },
            [&](const std::string& document) { versions.take(document); });
        std::puts("job-exchange-peer: exchanged");
        return true;
    } catch (const std::exception& failure) {
        std::printf("job-exchange-peer: failed: %s\n", printable(failure.what()).c_str());
        return false;
    }
}

int serve(const Options& options)
{
    Terminal terminal(options.link);
    const Versions versions(options.jobs);
    std::printf("job-exchange-peer: waiting at %s\n", terminal.name().c_str());
    std::fflush(stdout);
    while (terminal.waitForBytes()) {
        const bool exchanged = answerOnce(terminal, versions);
        std::fflush(stdout);
        if (options.once) {
            terminal.waitForClose();
            return exchanged ? 0 : 1;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!readOptions(argc, argv, options)) {
        std::fputs(usage, stderr);
        return 2;
    }
    for (const int signal : { SIGTERM, SIGINT })
        std::signal(signal, [](int) { endRequested = true; });
    try {
        return serve(options);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "job-exchange-peer: %s\n", failure.what());
        return 1;
    }
}
