// Runs a test program for the service and sees to its end: the program and everything that it has started end when the
// program itself does, when the service asks for it, and when the service is gone, by whatever end. A process of its
// own, since only one that outlives a service that was killed can do so.
//
// Usage: job-service-guard PROGRAM [ARGUMENT]...
//
// The standard descriptors are the program's. Descriptor 3 is a pipe whose other end the service holds: it closes when
// the program is to end. Into descriptor 4 goes the error number if the program cannot be started; it closes without a
// word once the program runs. Ends as the program has ended.

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int lifeline = 3;
constexpr int startReport = 4;
constexpr int usageFault = 126;

/// In the child: becomes the program, or tells why not.
[[noreturn]] void becomeProgram(char** arguments, const sigset_t& signals)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::sigprocmask(SIG_SETMASK, &signals, nullptr);
    ::close(lifeline);
    ::fcntl(startReport, F_SETFD, FD_CLOEXEC);
    ::execv(arguments[0], arguments);
    const int error = errno;
    [[maybe_unused]] const ssize_t written = ::write(startReport, &error, sizeof error);
    ::_exit(usageFault);
}

std::vector<pid_t> children()
{
    std::vector<pid_t> result;
    if (FILE* file = std::fopen("/proc/thread-self/children", "re")) {
        for (int child = 0; std::fscanf(file, "%d", &child) == 1;)
            result.push_back(child);
        std::fclose(file);
    }
    return result;
}

/// Children of children that end become our own, so that each round gets at the next generation.
void endAll()
{
    do {
        for (const pid_t child : children())
            ::kill(child, SIGKILL);
    } while (::waitpid(-1, nullptr, 0) > 0 || errno == EINTR);
}

/// Collects children that have ended. The status of the program, if it is among them.
std::optional<int> collect(pid_t program)
{
    std::optional<int> result;
    int status = 0;
    for (pid_t child = 0; (child = ::waitpid(-1, &status, WNOHANG)) > 0;) {
        if (child == program)
            result = status;
    }
    return result;
}

/// Waits for the end of the program. Nothing if the service wants the end, or is gone.
std::optional<int> watch(pid_t program, int childSignals)
{
    for (;;) {
        pollfd waiting[] = { { lifeline, POLLIN, 0 }, { childSignals, POLLIN, 0 } };
        ::poll(waiting, 2, -1);
        if (waiting[0].revents != 0)
            return std::nullopt;
        signalfd_siginfo ignored;
        [[maybe_unused]] const ssize_t taken = ::read(childSignals, &ignored, sizeof ignored);
        if (const std::optional<int> status = collect(program))
            return status;
    }
}

[[noreturn]] void endAs(int status)
{
    if (WIFEXITED(status))
        ::_exit(WEXITSTATUS(status));
    const rlimit noCore{ 0, 0 };
    ::setrlimit(RLIMIT_CORE, &noCore);
    std::signal(WTERMSIG(status), SIG_DFL);
    ::raise(WTERMSIG(status));
    ::_exit(usageFault);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return usageFault;
    ::setsid();
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    sigset_t before;
    sigset_t childEnds;
    sigemptyset(&childEnds);
    sigaddset(&childEnds, SIGCHLD);
    ::sigprocmask(SIG_BLOCK, &childEnds, &before);
    const int childSignals = ::signalfd(-1, &childEnds, SFD_CLOEXEC | SFD_NONBLOCK);

    const pid_t program = ::fork();
    if (program == 0)
        becomeProgram(argv + 1, before);
    for (const int descriptor : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO, startReport })
        ::close(descriptor);
    const std::optional<int> status = program > 0 ? watch(program, childSignals) : std::nullopt;
    endAll();
    if (status)
        endAs(*status);
    return usageFault;
}
