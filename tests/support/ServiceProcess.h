#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace jobmanager_test {

/// A job-service of the test's own: a child process on a free port with a data folder that ends with the object.
///
/// The child is killed when the thread that started it ends, so start it from a thread that outlives
/// its use (the test's main thread). Not safe for use from two threads at once.
class ServiceProcess
{
public:
    /// Starts nothing. `arguments` go to each start after --port and --data.
    explicit ServiceProcess(std::vector<std::string> arguments = {});
    /// Kills the service if it runs, and removes the data folder.
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    /// Starts the service and waits until it says that it listens. The first start picks a free port, later ones
    /// use the same. Returns false if it ended or said nothing in time; log() then tells why.
    bool start();
    /// Starts the service without waiting until it listens. Returns false if there is no process.
    bool launch();
    /// Asks the service to end (SIGTERM) and waits for it. Returns its exit code, nothing if a signal ended it.
    std::optional<int> terminate();
    /// Ends the service with SIGKILL, as a crash would.
    void kill();
    /// Stops the service without ending it (SIGSTOP): it accepts connections and never answers.
    void stop();
    /// Lets a stopped service go on (SIGCONT).
    void resume();
    /// Kills the service and starts it again on the same port and data.
    bool restart();
    /// Waits until the process has ended by itself. Returns its exit code; nothing if a signal or the wait's
    /// end (then it is killed) ended it.
    std::optional<int> waitForEnd(std::chrono::milliseconds deadline = std::chrono::seconds(10));

    bool isRunning() const { return m_pid > 0; }
    /// Replaces the arguments for the next start.
    void setArguments(std::vector<std::string> arguments);
    /// Sets the port for the next start; 0 picks a free one.
    void setPort(unsigned short port) { m_port = port; }
    /// Uses a folder of the caller instead of the own temporary one, which then outlives this object.
    void setDataFolder(std::filesystem::path folder);

    int pid() const { return m_pid; }
    unsigned short port() const { return m_port; }
    const std::filesystem::path& dataFolder() const { return m_dataFolder; }
    /// Everything that the service has written to standard error, over all starts.
    std::string log() const;

private:
    std::filesystem::path m_folder;
    std::filesystem::path m_dataFolder;
    std::vector<std::string> m_arguments;
    int m_pid = -1;
    int m_output = -1;
    unsigned short m_port = 0;

    bool spawn();
    std::optional<unsigned short> readPort();
    std::optional<int> reap(std::chrono::milliseconds deadline);
    void closeOutput();
};

} // namespace jobmanager_test
