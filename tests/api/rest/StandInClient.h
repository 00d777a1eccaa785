#pragma once

#include "client/RestApiJobManager.h"

#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace jobmanager_test {

/// One call that reached a client, its construction ("RestApiJobManager") included.
struct ClientCall
{
    std::string operation;
    /// In the order of the declaration; a flag is "true" or "false", a port a number.
    std::vector<std::string> arguments;
    std::thread::id thread;
    /// Which client was called; no two clients of a process share a number.
    int client = 0;
    /// Where the client stood at that moment. Each client derives an address of its own from its host.
    std::string address;
    unsigned short port = 0;
};

/// What all clients of the process answer.
struct ClientAnswers
{
    std::vector<RestApiJobManager::MinimalJobInfo> jobList;
    /// By the id that is asked for; a job that is not here is answered with a default record.
    std::map<std::string, cdm::CdmSouthboundJob> jobs;
    int changeCount = 0;
    std::string activeWorkorderID;
    /// Answer of the operations that say whether they succeeded, by their names; true where there is none.
    std::map<std::string, bool> success;
    std::string exportPath;
    int importedJobs = 0;
    std::vector<std::string> templates;
    int templateNumberOfTests = 0;
    std::string templateWorkOrderLabel;
    std::map<std::string, std::string> settings;
    RestApiJobManager::InstrumentLoginConfig loginConfig;
    RestApiJobManager::LaunchTestResult launchResult;
};

/// Controls the stand-in of the client library: RestApiJobManager objects that reach no service, answer by script
/// and record who called them. One script and one record serve all clients of the process; safe on any thread.
class StandInClient
{
public:
    /// Forgets answers, calls and the hook.
    static void reset();
    static void setAnswers(ClientAnswers answers);
    /// Runs on the calling thread after a call was recorded and before it is answered; may block.
    static void setHook(std::function<void(const ClientCall&)> hook);
    static std::vector<ClientCall> calls();
    /// The calls of one operation.
    static std::vector<ClientCall> calls(const std::string& operation);
    /// The names of all calls, in order.
    static std::vector<std::string> operations();
    static void forgetCalls();
};

} // namespace jobmanager_test
