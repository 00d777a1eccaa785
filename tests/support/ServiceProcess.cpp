#include "tests/support/ServiceProcess.h"

#include "tests/support/Deadline.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace jobmanager_test {

namespace {

using Clock = std::chrono::steady_clock;

std::filesystem::path makeTemporaryFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "job-service-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    return pattern;
}

} // namespace

ServiceProcess::ServiceProcess(std::vector<std::string> arguments)
    : m_folder(makeTemporaryFolder())
    , m_dataFolder(m_folder / "data")
    , m_arguments(std::move(arguments))
{
}

ServiceProcess::~ServiceProcess()
{
    kill();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

bool ServiceProcess::start()
{
    if (!launch())
        return false;
    if (const std::optional<unsigned short> port = readPort()) {
        m_port = *port;
        return true;
    }
    return false;
}

bool ServiceProcess::launch()
{
    return !isRunning() && spawn();
}

std::optional<int> ServiceProcess::terminate()
{
    if (!isRunning())
        return std::nullopt;
    ::kill(m_pid, SIGTERM);
    return reap(stretched(std::chrono::seconds(10)));
}

void ServiceProcess::kill()
{
    if (!isRunning())
        return;
    ::kill(m_pid, SIGKILL);
    reap(stretched(std::chrono::seconds(10)));
}

void ServiceProcess::stop()
{
    if (!isRunning())
        return;
    ::kill(m_pid, SIGSTOP);
    // The signal is delivered when the child is seen stopped, not when it was sent.
    int status = 0;
    while (::waitpid(m_pid, &status, WUNTRACED) < 0 && errno == EINTR) { }
    if (!WIFSTOPPED(status)) {
        m_pid = -1;
        closeOutput();
    }
}

void ServiceProcess::resume()
{
    if (isRunning())
        ::kill(m_pid, SIGCONT);
}

bool ServiceProcess::restart()
{
    kill();
    return start();
}

std::optional<int> ServiceProcess::waitForEnd(std::chrono::milliseconds deadline)
{
    return isRunning() ? reap(stretched(deadline)) : std::nullopt;
}

void ServiceProcess::setArguments(std::vector<std::string> arguments)
{
    m_arguments = std::move(arguments);
}

void ServiceProcess::setDataFolder(std::filesystem::path folder)
{
    m_dataFolder = std::move(folder);
}

std::string ServiceProcess::log() const
{
    std::ifstream file(m_folder / "log");
    return { std::istreambuf_iterator<char>(file), {} };
}

bool ServiceProcess::spawn()
{
    std::vector<std::string> arguments{ JOBMANAGER_SERVICE_BINARY, "--port", std::to_string(m_port), "--data",
        m_dataFolder.string() };
    arguments.insert(arguments.end(), m_arguments.begin(), m_arguments.end());
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);

    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const std::string logFile = (m_folder / "log").string();
    const int log = ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const pid_t parent = ::getpid();

    // Not posix_spawn: the child has to ask for its own end when the test dies. Only calls that are safe
    // between fork and exec follow.
    m_pid = ::fork();
    if (m_pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent || ::dup2(ends[1], STDOUT_FILENO) < 0 || ::dup2(log, STDERR_FILENO) < 0)
            ::_exit(127);
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    ::close(log);
    m_output = ends[0];
    return m_pid > 0;
}

std::optional<unsigned short> ServiceProcess::readPort()
{
    const Clock::time_point end = Clock::now() + stretched(std::chrono::seconds(30));
    std::string line;
    while (line.find('\n') == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waiting{ m_output, POLLIN, 0 };
        char buffer[256];
        ssize_t count = 0;
        if (left > 0 && ::poll(&waiting, 1, static_cast<int>(left)) > 0)
            count = ::read(m_output, buffer, sizeof buffer);
        if (count <= 0)
            return std::nullopt;
        line.append(buffer, static_cast<std::size_t>(count));
    }
    const std::string expected = "job-service: listening on 127.0.0.1:";
    if (line.compare(0, expected.size(), expected) != 0)
        return std::nullopt;
    return static_cast<unsigned short>(std::atoi(line.c_str() + expected.size()));
}

std::optional<int> ServiceProcess::reap(std::chrono::milliseconds deadline)
{
    const Clock::time_point end = Clock::now() + deadline;
    int status = 0;
    pid_t ended = 0;
    while ((ended = ::waitpid(m_pid, &status, WNOHANG)) == 0) {
        if (Clock::now() >= end)
            ::kill(m_pid, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    m_pid = -1;
    closeOutput();
    if (ended < 0 || !WIFEXITED(status))
        return std::nullopt;
    return WEXITSTATUS(status);
}

void ServiceProcess::closeOutput()
{
    if (m_output >= 0)
        ::close(m_output);
    m_output = -1;
}

} // namespace jobmanager_test
