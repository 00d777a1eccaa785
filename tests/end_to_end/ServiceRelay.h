#pragma once

#include "tests/client/RawServer.h"

#include <condition_variable>
#include <mutex>
#include <set>
#include <string>

/// Stands on the module's own port between a front end and a job service on another one: hands every request on and
/// the answer back, counts the requests, and can keep some of them back. Thread-safe.
class ServiceRelay
{
public:
    /// Starts to listen, for the service on this port of 127.0.0.1.
    explicit ServiceRelay(unsigned short servicePort);
    /// Lets everything go that is kept back, and closes all connections.
    ~ServiceRelay();
    ServiceRelay(const ServiceRelay&) = delete;
    ServiceRelay& operator=(const ServiceRelay&) = delete;

    /// How many requests with this method and path ("GET /api/v1/jobs") have come until now.
    int count(const std::string& route) const;
    /// Keeps requests with this method and path back from now on, before the service sees them.
    void hold(const std::string& route);
    /// Waits until one is kept back, and tells whether that came about.
    bool awaitHeld(const std::string& route);
    /// Lets those go that are kept back, and all that come from now on.
    void release(const std::string& route);

private:
    RawReply handOn(const std::string& request);

    unsigned short m_servicePort;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::set<std::string> m_holds;
    std::multiset<std::string> m_held;
    bool m_ending = false;
    /// Last, so that its threads end before what they use.
    RawServer m_server;
};
