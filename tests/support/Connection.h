#pragma once

#include "tests/support/HttpRequest.h"

#include <chrono>
#include <string>

namespace jobmanager_test {

/// A TCP connection to 127.0.0.1 that sends and receives exact bytes. All waiting ends at one deadline after the
/// construction, which sanitizer builds stretch.
class Connection
{
public:
    explicit Connection(unsigned short port, std::chrono::milliseconds deadline = std::chrono::seconds(10));
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isConnected() const { return m_connected; }
    int descriptor() const { return m_descriptor; }
    /// Sends all bytes. Returns false if the other side has closed or time is up.
    bool send(const std::string& bytes);
    /// Sends while it receives, until the other side closes, and returns everything received.
    std::string exchange(const std::string& bytes);
    /// Reads the next whole answer; what follows it stays for the next call. Status 0 if none comes.
    HttpReply readReply();
    /// Sends and reads one answer; a server that refuses early may answer before it has read everything.
    HttpReply request(const std::string& bytes);
    /// Reads until the other side closes and drops what comes. Returns false if time is up before.
    bool waitForClose();

private:
    using Clock = std::chrono::steady_clock;

    int m_descriptor;
    Clock::time_point m_end;
    bool m_connected = false;
    bool m_closed = false;
    std::string m_received;

    bool waitFor(short events) const;
    bool connectTo(unsigned short port) const;
    /// Sends some, receives some. Returns false when nothing more will come.
    bool step(const std::string& bytes, std::size_t& sent);
};

} // namespace jobmanager_test
