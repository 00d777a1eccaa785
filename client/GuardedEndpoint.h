#pragma once

#include "client/JobManagerExport.h"

#include <atomic>
#include <mutex>
#include <string>
#include <utility>

/// A text that one thread may assign while another reads it; assigns and converts like the std::string it stands for.
class GuardedAddress
{
public:
    GuardedAddress(std::string value) : m_value(std::move(value)) { }
    GuardedAddress(const GuardedAddress& other) : m_value(other) { }
    GuardedAddress& operator=(const GuardedAddress& other) { return *this = std::string(other); }
    GuardedAddress& operator=(std::string value)
    {
        const std::lock_guard lock(m_mutex);
        m_value = std::move(value);
        return *this;
    }
    operator std::string() const
    {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

private:
    mutable std::mutex m_mutex;
    std::string m_value;
};

/// A port number that one thread may assign while another reads it.
class GuardedPort
{
public:
    GuardedPort(unsigned short value) : m_value(value) { }
    GuardedPort(const GuardedPort& other) : m_value(other.m_value.load()) { }
    GuardedPort& operator=(const GuardedPort& other) { return *this = static_cast<unsigned short>(other); }
    GuardedPort& operator=(unsigned short value)
    {
        m_value = value;
        return *this;
    }
    operator unsigned short() const { return m_value; }

private:
    std::atomic<unsigned short> m_value;
};
