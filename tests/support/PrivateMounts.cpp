#include "tests/support/PrivateMounts.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace jobmanager_test {

namespace {

std::string failureOf(const std::string& step)
{
    return step + ": " + std::strerror(errno);
}

void write(const char* file, const std::string& text)
{
    std::ofstream(file) << text;
}

/// Enough for root; anybody else needs a user namespace in which they are root.
bool unshareMounts()
{
    if (unshare(CLONE_NEWNS) == 0) {
        return true;
    }
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    write("/proc/self/setgroups", "deny");
    write("/proc/self/uid_map", "0 " + user + " 1");
    write("/proc/self/gid_map", "0 " + group + " 1");
    return true;
}

} // namespace

std::string enterPrivateMounts()
{
    if (!unshareMounts()) {
        return failureOf("unshare");
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 ? std::string() : failureOf("make private");
}

EmptyMount::EmptyMount(std::string directory) : m_directory(std::move(directory))
{
    if (mount("tmpfs", m_directory.c_str(), "tmpfs", 0, "mode=0755") != 0) {
        m_failure = failureOf("mount over " + m_directory);
    }
}

EmptyMount::~EmptyMount()
{
    if (m_failure.empty()) {
        umount2(m_directory.c_str(), MNT_DETACH);
    }
}

BareDevices::BareDevices()
    : m_terminals(open("/dev/pts", O_PATH | O_CLOEXEC))
    , m_mount("/dev")
    , m_failure(m_mount.failure())
{
    if (m_failure.empty()) {
        bringTerminals();
    }
}

void BareDevices::bringTerminals()
{
    const std::string source = "/proc/self/fd/" + std::to_string(m_terminals);
    if (mkdir("/dev/pts", 0755) != 0 || mount(source.c_str(), "/dev/pts", nullptr, MS_BIND, nullptr) != 0
        || symlink("pts/ptmx", "/dev/ptmx") != 0) {
        m_failure = failureOf("pseudo terminals");
    }
    close(m_terminals);
}

EmptyRoot::EmptyRoot() : m_mount("/mnt"), m_failure(m_mount.failure())
{
    if (m_failure.empty()) {
        enter();
    }
}

void EmptyRoot::enter()
{
    m_oldRoot = open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_oldRoot < 0 || chroot("/mnt") != 0 || chdir("/") != 0) {
        m_failure = failureOf("chroot");
    }
}

EmptyRoot::~EmptyRoot()
{
    if (m_oldRoot < 0) {
        return;
    }
    // The handle still leads to the root that there was.
    if (fchdir(m_oldRoot) == 0 && chroot(".") == 0) {
        close(m_oldRoot);
    }
}

} // namespace jobmanager_test
