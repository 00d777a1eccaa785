#include "tests/client/ProcessState.h"

#include "tests/client/RawServer.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>

std::vector<std::string> threadNames()
{
    std::vector<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        // A thread may end while we look.
        if (std::getline(std::ifstream(task.path() / "comm"), name) && name != RawServer::threadName)
            names.push_back(name);
    }
    return names;
}

bool isProbing()
{
    const auto names = threadNames();
    return std::find(names.begin(), names.end(), "job-probe") != names.end();
}

namespace {

/// Waits until isProbing() answers `probing`. False if it never does.
bool probingBecomes(bool probing)
{
    using namespace std::chrono_literals;
    const auto begun = std::chrono::steady_clock::now();
    while (isProbing() != probing && std::chrono::steady_clock::now() - begun < 60s)
        std::this_thread::sleep_for(1ms);
    return isProbing() == probing;
}

} // namespace

bool probingBegins()
{
    return probingBecomes(true);
}

bool probingEnds()
{
    return probingBecomes(false);
}

std::vector<int> socketsTo(unsigned short port)
{
    std::vector<int> sockets;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 && peer.sin_family == AF_INET
            && ntohs(peer.sin_port) == port)
            sockets.push_back(descriptor);
    }
    return sockets;
}
