#include "tests/client/RawServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// For waits that only end a test that has failed.
constexpr std::chrono::seconds patience{ 60 };

void require(bool done)
{
    if (!done)
        throw std::runtime_error("RawServer cannot be set up");
}

std::string routeOf(const std::string& request)
{
    const auto method = request.find(' ');
    return request.substr(0, method == std::string::npos ? method : request.find(' ', method + 1));
}

std::size_t bodySize(const std::string& head)
{
    const std::string name = "\r\nContent-Length: ";
    const auto field = head.find(name);
    return field == std::string::npos ? 0 : std::stoul(head.substr(field + name.size()));
}

int boundSocket(unsigned short port)
{
    const int bound = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int again = 1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    require(bound >= 0 && setsockopt(bound, SOL_SOCKET, SO_REUSEADDR, &again, sizeof again) == 0);
    require(bind(bound, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0);
    return bound;
}

} // namespace

RawServer::RawServer(unsigned short port) : m_listener(boundSocket(port)), m_otherwise(errorReply(404, "not_scripted"))
{
    m_wakeUp = eventfd(0, EFD_CLOEXEC);
    require(m_wakeUp >= 0);
    sockaddr_in address{};
    socklen_t size = sizeof address;
    require(getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) == 0);
    m_port = ntohs(address.sin_port);
    restart();
}

RawServer::~RawServer()
{
    stop();
    close(m_listener);
    close(m_wakeUp);
}

void RawServer::reply(const std::string& route, RawReply reply)
{
    const std::lock_guard lock(m_mutex);
    m_replies[route] = std::move(reply);
}

void RawServer::replyToAll(RawReply reply)
{
    const std::lock_guard lock(m_mutex);
    m_replies.clear();
    m_otherwise = std::move(reply);
}

void RawServer::answerWith(std::function<RawReply(const std::string& request)> answer)
{
    const std::lock_guard lock(m_mutex);
    m_answer = std::move(answer);
}

void RawServer::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_stopped)
            return;
        m_stopped = true;
        m_frozen = false;
        m_changed.notify_all();
    }
    require(eventfd_write(m_wakeUp, 1) == 0);
    m_acceptor.join();
    eventfd_t woken = 0;
    require(eventfd_read(m_wakeUp, &woken) == 0);
    close(m_listener);
    // Bound but not listening, it refuses connections and keeps the port from others.
    m_listener = boundSocket(m_port);
    // Nobody adds to the list any more.
    for (Connection& connection : m_connections)
        shutdown(connection.socket, SHUT_RDWR);
    for (Connection& connection : m_connections) {
        connection.thread.join();
        close(connection.socket);
    }
    m_connections.clear();
}

void RawServer::restart()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = false;
    }
    require(listen(m_listener, 512) == 0);
    m_acceptor = std::thread(&RawServer::acceptAll, this);
    // From here: whoever looks at the threads next must not take it for one of its own.
    pthread_setname_np(m_acceptor.native_handle(), threadName);
}

void RawServer::freeze()
{
    const std::lock_guard lock(m_mutex);
    m_frozen = true;
}

void RawServer::thaw()
{
    const std::lock_guard lock(m_mutex);
    m_frozen = false;
    m_changed.notify_all();
}

std::vector<std::string> RawServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

std::size_t RawServer::count(const std::string& route) const
{
    const auto all = requests();
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [&](const std::string& request) { return routeOf(request) == route; }));
}

bool RawServer::awaitCount(const std::string& route, std::size_t count) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, patience, [&] {
        std::size_t found = 0;
        for (const std::string& request : m_requests)
            found += routeOf(request) == route ? 1 : 0;
        return found >= count;
    });
}

std::size_t RawServer::connections() const
{
    const std::lock_guard lock(m_mutex);
    return m_accepted;
}

std::size_t RawServer::bytesSent() const
{
    const std::lock_guard lock(m_mutex);
    return m_bytesSent;
}

void RawServer::acceptAll()
{
    for (;;) {
        pollfd watched[] = { { m_listener, POLLIN, 0 }, { m_wakeUp, POLLIN, 0 } };
        poll(watched, 2, -1);
        waitWhileFrozen();
        if (watched[1].revents != 0)
            return;
        const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        const int noDelay = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
        {
            const std::lock_guard lock(m_mutex);
            ++m_accepted;
        }
        Connection& connection = m_connections.emplace_back();
        connection.socket = socket;
        connection.thread = std::thread(&RawServer::serve, this, std::ref(connection));
    }
}

void RawServer::serve(Connection& connection)
{
    pthread_setname_np(pthread_self(), threadName);
    std::string received;
    for (;;) {
        const std::string request = readRequest(connection.socket, received);
        if (request.empty() || !send(connection.socket, replyTo(request)))
            break;
    }
    // The descriptor itself is closed by stop(), so that its number is not used again before.
    shutdown(connection.socket, SHUT_RDWR);
}

std::string RawServer::readRequest(int socket, std::string& received)
{
    for (;;) {
        waitWhileFrozen();
        const auto headEnd = received.find("\r\n\r\n");
        if (headEnd != std::string::npos) {
            const std::size_t size = headEnd + 4 + bodySize(received.substr(0, headEnd));
            if (received.size() >= size) {
                const std::string request = received.substr(0, size);
                received.erase(0, size);
                return request;
            }
        }
        char buffer[16384];
        pollfd readable{ socket, POLLIN, 0 };
        poll(&readable, 1, -1);
        waitWhileFrozen();
        const ssize_t size = recv(socket, buffer, sizeof buffer, 0);
        if (size <= 0)
            return {};
        received.append(buffer, static_cast<std::size_t>(size));
    }
}

bool RawServer::send(int socket, const RawReply& reply)
{
    if (reply.drip.count() > 0) {
        for (std::size_t i = 0; i + 1 < reply.bytes.size(); ++i) {
            if (!sendBytes(socket, &reply.bytes[i], 1) || !waitUnlessStopped(reply.drip))
                return false;
        }
    } else {
        if (!sendBytes(socket, reply.bytes.data(), reply.bytes.size()))
            return false;
        for (std::size_t i = 0; i < reply.fillerTimes; ++i) {
            if (!sendBytes(socket, reply.filler.data(), reply.filler.size()))
                return false;
        }
    }
    switch (reply.then) {
    case RawReply::Then::KeepOpen:
        return true;
    case RawReply::Then::Close:
        return false;
    case RawReply::Then::Reset: {
        // Disconnecting a socket resets the connection and leaves the descriptor alone.
        sockaddr none{};
        none.sa_family = AF_UNSPEC;
        connect(socket, &none, sizeof none);
        return false;
    }
    case RawReply::Then::Hang: {
        char ignored = 0;
        while (recv(socket, &ignored, 1, 0) > 0) { }
        return false;
    }
    }
    return false;
}

bool RawServer::sendBytes(int socket, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t sent = ::send(socket, data, size, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        data += sent;
        size -= static_cast<std::size_t>(sent);
        const std::lock_guard lock(m_mutex);
        m_bytesSent += static_cast<std::size_t>(sent);
    }
    return true;
}

bool RawServer::waitUnlessStopped(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, time, [this] { return m_stopped; });
}

void RawServer::waitWhileFrozen()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_frozen; });
}

RawReply RawServer::replyTo(const std::string& request)
{
    std::unique_lock lock(m_mutex);
    m_requests.push_back(request);
    m_changed.notify_all();
    if (m_answer) {
        const auto answer = m_answer;
        lock.unlock();
        return answer(request);
    }
    const auto scripted = m_replies.find(routeOf(request));
    return scripted == m_replies.end() ? m_otherwise : scripted->second;
}
