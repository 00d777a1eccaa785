#pragma once

#include "tests/client/RawServer.h"
#include "tests/end_to_end/Bounds.h"

#include <condition_variable>
#include <mutex>
#include <set>
#include <string>

/// Stands on a port of its own between a front end and a job service: hands every request on and the answer back,
/// counts the requests, can keep some of them back and lose the answers to some. Thread-safe.
class ServiceRelay
{
public:
    /// Starts to listen on `port`, 0 for a free one, for the service on this port of 127.0.0.1.
    explicit ServiceRelay(unsigned short servicePort, unsigned short port = modulePort);
    /// Lets everything go that is kept back, and closes all connections.
    ~ServiceRelay();
    ServiceRelay(const ServiceRelay&) = delete;
    ServiceRelay& operator=(const ServiceRelay&) = delete;

    /// Where it listens.
    unsigned short port() const { return m_server.port(); }
    /// How many requests with this method and path ("GET /api/v1/jobs") have come until now.
    int count(const std::string& route) const;
    /// Keeps requests with this method and path back from now on, before the service sees them.
    void hold(const std::string& route);
    /// Waits until one is kept back, and tells whether that came about.
    bool awaitHeld(const std::string& route);
    /// Lets those go that are kept back, and all that come from now on.
    void release(const std::string& route);
    /// From now on hands requests with this method and path on as ever, but closes the connection instead of giving
    /// the service's answer back.
    void loseAnswers(const std::string& route);

private:
    RawReply handOn(const std::string& request);
    bool isAnswerLost(const std::string& route) const;

    unsigned short m_servicePort;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::set<std::string> m_holds;
    std::multiset<std::string> m_held;
    std::set<std::string> m_lost;
    bool m_ending = false;
    /// Last, so that its threads end before what they use.
    RawServer m_server;
};
