#include "tests/support/Connection.h"

#include "tests/support/Deadline.h"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace jobmanager_test {

Connection::Connection(unsigned short port, std::chrono::milliseconds deadline)
    : m_descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    , m_end(Clock::now() + stretched(deadline))
{
    m_connected = connectTo(port);
}

Connection::~Connection()
{
    ::close(m_descriptor);
}

bool Connection::waitFor(short events) const
{
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(m_end - Clock::now()).count();
        if (left <= 0)
            return false;
        pollfd waiting{ m_descriptor, events, 0 };
        const int ready = ::poll(&waiting, 1, static_cast<int>(left));
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
    }
}

bool Connection::connectTo(unsigned short port) const
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return true;
    if (errno != EINPROGRESS || !waitFor(POLLOUT))
        return false;
    int error = 0;
    socklen_t size = sizeof error;
    return ::getsockopt(m_descriptor, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

bool Connection::step(const std::string& bytes, std::size_t& sent)
{
    const bool sending = sent < bytes.size();
    if (m_closed || !waitFor(static_cast<short>(sending ? POLLIN | POLLOUT : POLLIN)))
        return false;
    if (sending) {
        const ssize_t count = ::send(m_descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count > 0)
            sent += static_cast<std::size_t>(count);
        else if (errno != EAGAIN && errno != EINTR)
            sent = bytes.size();
    }
    char buffer[65536];
    const ssize_t count = ::recv(m_descriptor, buffer, sizeof buffer, 0);
    if (count > 0)
        m_received.append(buffer, static_cast<std::size_t>(count));
    else if (count == 0 || (errno != EAGAIN && errno != EINTR))
        m_closed = true;
    return !m_closed;
}

bool Connection::send(const std::string& bytes)
{
    std::size_t sent = 0;
    while (m_connected && sent < bytes.size()) {
        if (!waitFor(POLLOUT))
            return false;
        const ssize_t count = ::send(m_descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count > 0)
            sent += static_cast<std::size_t>(count);
        else if (errno != EAGAIN && errno != EINTR)
            return false;
    }
    return m_connected;
}

std::string Connection::exchange(const std::string& bytes)
{
    std::size_t sent = 0;
    while (m_connected && step(bytes, sent)) { }
    return std::move(m_received);
}

HttpReply Connection::request(const std::string& bytes)
{
    std::size_t sent = 0;
    std::size_t length = 0;
    HttpReply reply = parseHttpReply(m_received, length);
    while (reply.status == 0 && m_connected && step(bytes, sent))
        reply = parseHttpReply(m_received, length);
    m_received.erase(0, length);
    return reply;
}

HttpReply Connection::readReply()
{
    return request({});
}

bool Connection::waitForClose()
{
    std::size_t sent = 0;
    while (m_connected && step({}, sent))
        m_received.clear();
    return m_closed;
}

} // namespace jobmanager_test
