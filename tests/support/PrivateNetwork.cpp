#include "tests/support/PrivateNetwork.h"

#include <cerrno>
#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace jobmanager_test {

namespace {

std::string failure(const char* step)
{
    return std::string(step) + ": " + std::strerror(errno);
}

std::string raiseLoopback()
{
    const int socketHandle = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socketHandle < 0) {
        return failure("socket");
    }
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP | IFF_RUNNING;
    const bool up = ioctl(socketHandle, SIOCSIFFLAGS, &request) == 0;
    const std::string result = up ? std::string() : failure("SIOCSIFFLAGS");
    close(socketHandle);
    return result;
}

} // namespace

std::string enterPrivateNetwork()
{
    // Enough for root; anybody else needs a user namespace in which they may do it.
    if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
        return failure("unshare");
    }
    return raiseLoopback();
}

} // namespace jobmanager_test
