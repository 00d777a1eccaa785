#pragma once

#include <string>

namespace jobmanager_test {

/// Gives the process a view of the file system of its own: what it mounts from here on nobody else sees, and it is
/// gone when the process ends. To be called in main() before any thread exists. Returns an empty text, or why the
/// system does not permit it.
std::string enterPrivateMounts();

/// An empty file system in memory over an existing directory, for as long as it lives.
class EmptyMount
{
public:
    explicit EmptyMount(std::string directory);
    ~EmptyMount();
    EmptyMount(const EmptyMount&) = delete;
    EmptyMount& operator=(const EmptyMount&) = delete;

    /// Why the mount failed; empty if it stands.
    const std::string& failure() const { return m_failure; }

private:
    const std::string m_directory;
    std::string m_failure;
};

/// An empty device folder /dev, with nothing in it but the pseudo terminals, for as long as it lives.
class BareDevices
{
public:
    BareDevices();

    /// Why it failed; empty if it stands.
    const std::string& failure() const { return m_failure; }

private:
    const int m_terminals;
    EmptyMount m_mount;
    std::string m_failure;

    void bringTerminals();
};

/// Makes an empty file system in memory the root for as long as it lives: no directory of the system exists then.
class EmptyRoot
{
public:
    EmptyRoot();
    ~EmptyRoot();
    EmptyRoot(const EmptyRoot&) = delete;
    EmptyRoot& operator=(const EmptyRoot&) = delete;

    /// Why it failed; empty if the root is empty now.
    const std::string& failure() const { return m_failure; }

private:
    void enter();

    EmptyMount m_mount;
    int m_oldRoot = -1;
    std::string m_failure;
};

} // namespace jobmanager_test
