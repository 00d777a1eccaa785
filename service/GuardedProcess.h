#pragma once

#include "service/FileHandle.h"

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace job_service {

class StopSignal;

/// A program under the guard (test_guard.cpp), with pipes to its standard descriptors. Its end, and that of everything
/// that it has started, is the end of the object.
class GuardedProcess
{
public:
    /// Starts the guard with a command: the path of a program and its arguments. Throws std::system_error.
    explicit GuardedProcess(const std::vector<std::string>& command);
    ~GuardedProcess();
    GuardedProcess(GuardedProcess&& other) noexcept;
    GuardedProcess& operator=(GuardedProcess&&) = delete;

    /// Waits until the program runs. Returns false if `stop` was raised or the time has passed before.
    /// Throws std::system_error if the program cannot be started.
    bool waitForStart(const StopSignal& stop, std::chrono::milliseconds longest);

    /// The service's ends of the pipes, none of which blocks.
    FileHandle input;
    FileHandle output;
    FileHandle errors;

    /// Readable once everything has ended.
    int end() const { return m_end.get(); }
    /// Ends everything that still runs. Returns the status of the program as waitpid() has it.
    int finish();

private:
    FileHandle m_lifeline;
    FileHandle m_startReport;
    FileHandle m_end;
    pid_t m_guard = -1;
};

} // namespace job_service
