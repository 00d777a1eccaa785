#include "service/GuardedProcess.h"

#include "service/StopSignal.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace job_service {

namespace {

constexpr const char* guardName = "job-service-guard";
/// How long the guard may take to end everything. It waits for nobody but the kernel.
constexpr int longestEndMs = 5000;

void check(int error, const char* what)
{
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

struct Pipe
{
    FileHandle readEnd;
    FileHandle writeEnd;
};

/// Out of the way of the descriptors that the guard gets.
FileHandle raised(const FileHandle& low)
{
    constexpr int firstFree = 10;
    FileHandle high(::fcntl(low.get(), F_DUPFD_CLOEXEC, firstFree));
    check(high ? 0 : errno, "no descriptor");
    return high;
}

Pipe makePipe()
{
    int ends[2];
    check(::pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno, "no pipe");
    const FileHandle readEnd(ends[0]);
    const FileHandle writeEnd(ends[1]);
    return { raised(readEnd), raised(writeEnd) };
}

void neverBlock(const FileHandle& handle)
{
    ::fcntl(handle.get(), F_SETFL, O_NONBLOCK);
}

/// The descriptors and signals that the guard begins with.
class SpawnPlan
{
public:
    SpawnPlan()
    {
        check(::posix_spawn_file_actions_init(&m_actions), "no memory");
        check(::posix_spawnattr_init(&m_attributes), "no memory");
        // The service ignores some signals and blocks others, which is nobody else's affair.
        sigset_t none;
        sigset_t ignored;
        sigemptyset(&none);
        sigemptyset(&ignored);
        sigaddset(&ignored, SIGPIPE);
        sigaddset(&ignored, SIGXFSZ);
        ::posix_spawnattr_setsigmask(&m_attributes, &none);
        ::posix_spawnattr_setsigdefault(&m_attributes, &ignored);
        ::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnPlan()
    {
        ::posix_spawnattr_destroy(&m_attributes);
        ::posix_spawn_file_actions_destroy(&m_actions);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    /// Gives these descriptors as 0, 1, 2, ..., and no others.
    void pass(const std::array<int, 5>& descriptors)
    {
        int number = 0;
        for (const int descriptor : descriptors)
            check(::posix_spawn_file_actions_adddup2(&m_actions, descriptor, number++), "no memory");
        check(::posix_spawn_file_actions_addclosefrom_np(&m_actions, number), "no memory");
    }

    pid_t spawn(const std::string& program, const std::vector<std::string>& arguments)
    {
        std::vector<std::string> words{ program };
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        for (std::string& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        pid_t child = -1;
        check(::posix_spawn(&child, program.c_str(), &m_actions, &m_attributes, pointers.data(), environ), guardName);
        return child;
    }

private:
    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

/// The guard lies beside the program that this is part of.
std::string guardPath()
{
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / guardName).string();
}

} // namespace

GuardedProcess::GuardedProcess(const std::vector<std::string>& command)
{
    Pipe toProgram = makePipe();
    Pipe fromProgram = makePipe();
    Pipe fromErrors = makePipe();
    Pipe life = makePipe();
    Pipe report = makePipe();
    SpawnPlan plan;
    plan.pass({ toProgram.readEnd.get(), fromProgram.writeEnd.get(), fromErrors.writeEnd.get(), life.readEnd.get(),
        report.writeEnd.get() });
    m_guard = plan.spawn(guardPath(), command);
    m_lifeline = std::move(life.writeEnd);
    m_startReport = std::move(report.readEnd);
    m_end = FileHandle(static_cast<int>(::syscall(SYS_pidfd_open, m_guard, 0)));
    if (!m_end) {
        const int error = errno;
        finish();
        check(error, "no descriptor of a process");
    }
    input = std::move(toProgram.writeEnd);
    output = std::move(fromProgram.readEnd);
    errors = std::move(fromErrors.readEnd);
    for (const FileHandle* handle : { &input, &output, &errors })
        neverBlock(*handle);
}

GuardedProcess::GuardedProcess(GuardedProcess&& other) noexcept
    : input(std::move(other.input))
    , output(std::move(other.output))
    , errors(std::move(other.errors))
    , m_lifeline(std::move(other.m_lifeline))
    , m_startReport(std::move(other.m_startReport))
    , m_end(std::move(other.m_end))
    , m_guard(std::exchange(other.m_guard, -1))
{
}

GuardedProcess::~GuardedProcess()
{
    finish();
}

bool GuardedProcess::waitForStart(const StopSignal& stop, std::chrono::milliseconds longest)
{
    const auto end = std::chrono::steady_clock::now() + longest;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        if (left <= 0)
            return false;
        pollfd waiting[] = { { m_startReport.get(), POLLIN, 0 }, { stop.descriptor(), POLLIN, 0 } };
        if (::poll(waiting, 2, static_cast<int>(left)) <= 0)
            continue;
        if (waiting[1].revents != 0)
            return false;
        int error = 0;
        const ssize_t count = ::read(m_startReport.get(), &error, sizeof error);
        check(count == static_cast<ssize_t>(sizeof error) ? error : 0, "the program");
        return true;
    }
}

int GuardedProcess::finish()
{
    if (m_guard < 0)
        return 0;
    m_lifeline = FileHandle();
    pollfd waiting{ m_end.get(), POLLIN, 0 };
    while (::poll(&waiting, 1, longestEndMs) < 0 && errno == EINTR) { }
    if (waiting.revents == 0)
        ::kill(m_guard, SIGKILL);
    int status = 0;
    while (::waitpid(m_guard, &status, 0) < 0 && errno == EINTR) { }
    m_guard = -1;
    return status;
}

} // namespace job_service
