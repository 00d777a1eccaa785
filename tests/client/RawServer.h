#pragma once

#include "tests/client/RawReply.h"

#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A server on 127.0.0.1 that sends exactly the bytes it is told to, right or wrong, and keeps every request as it
/// came. Each connection has a thread of its own. Thread-safe.
class RawServer
{
public:
    static constexpr const char* threadName = "raw-server";

    /// Listens on the port, 0 for a free one, and answers every request with 404 until told otherwise.
    explicit RawServer(unsigned short port = 0);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    unsigned short port() const { return m_port; }

    /// Answers requests with this method and path ("GET /api/v1/jobs") so from now on.
    void reply(const std::string& route, RawReply reply);
    /// Answers every request so, whatever reply() said before.
    void replyToAll(RawReply reply);

    /// Has every request answered by the function, whatever was said before. It runs on the connection's thread.
    void answerWith(std::function<RawReply(const std::string& request)> answer);

    /// Refuses connections and closes those there are, as if the process had ended. The port stays ours.
    void stop();
    /// Listens again, on the same port.
    void restart();

    /// Does nothing any more, as if the process had been stopped: connections and requests are taken by the kernel
    /// and stay unread.
    void freeze();
    /// Goes on, first with what has come in the meantime.
    void thaw();

    /// Every request that was read until now, to the byte.
    std::vector<std::string> requests() const;
    /// How many of them have this method and path.
    std::size_t count(const std::string& route) const;
    /// Waits until this many requests with this method and path were read. False if they do not come.
    bool awaitCount(const std::string& route, std::size_t count) const;
    /// How many connections were accepted until now.
    std::size_t connections() const;
    /// How many bytes of answers the kernel took until now.
    std::size_t bytesSent() const;

private:
    struct Connection
    {
        int socket = -1;
        std::thread thread;
    };

    void acceptAll();
    void serve(Connection& connection);
    std::string readRequest(int socket, std::string& received);
    /// False if the connection is to be closed.
    bool send(int socket, const RawReply& reply);
    bool sendBytes(int socket, const char* data, std::size_t size);
    bool waitUnlessStopped(std::chrono::milliseconds time);
    void waitWhileFrozen();
    RawReply replyTo(const std::string& request);

    int m_listener;
    int m_wakeUp = -1;
    unsigned short m_port = 0;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    bool m_stopped = true;
    bool m_frozen = false;
    RawReply m_otherwise;
    std::map<std::string, RawReply> m_replies;
    std::function<RawReply(const std::string& request)> m_answer;
    std::vector<std::string> m_requests;
    std::size_t m_bytesSent = 0;
    std::size_t m_accepted = 0;
    std::list<Connection> m_connections;
    std::thread m_acceptor;
};
