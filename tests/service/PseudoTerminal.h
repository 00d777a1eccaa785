#pragma once

#include "service/FileHandle.h"

#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <stdlib.h>
#include <termios.h>

namespace jobmanager_test {

/// A device for exchanges: the test is at its near side, the service at the far one, to which a link leads. The link
/// is the caller's to remove.
class PseudoTerminal
{
public:
    explicit PseudoTerminal(const std::filesystem::path& link)
    {
        near = job_service::FileHandle(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
        if (!near || ::grantpt(near.get()) != 0 || ::unlockpt(near.get()) != 0)
            throw std::runtime_error("no pseudo terminal");
        const char* name = ::ptsname(near.get());
        std::filesystem::create_symlink(name, link);
        far = job_service::FileHandle(::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
        termios settings{};
        ::tcgetattr(far.get(), &settings);
        ::cfmakeraw(&settings);
        ::tcsetattr(far.get(), TCSANOW, &settings);
    }

    job_service::FileHandle near;
    /// Keeps the far side open, so that the near one can wait for somebody there.
    job_service::FileHandle far;
};

} // namespace jobmanager_test
