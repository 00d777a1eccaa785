#include "tests/support/HttpRequest.h"

#include "tests/support/Deadline.h"

#include <arpa/inet.h>
#include <cctype>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace jobmanager_test {

namespace {

using Clock = std::chrono::steady_clock;

class Socket
{
public:
    Socket() : m_descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) { }
    ~Socket()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    int descriptor() const { return m_descriptor; }

    bool waitFor(short events, Clock::time_point end) const
    {
        for (;;) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
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

    bool connectTo(unsigned short port, Clock::time_point end) const
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            return true;
        if (errno != EINPROGRESS || !waitFor(POLLOUT, end))
            return false;
        int error = 0;
        socklen_t size = sizeof error;
        return ::getsockopt(m_descriptor, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
    }

private:
    int m_descriptor;
};

/// Sends and receives at once: a server that refuses early answers before it has read everything.
std::string transfer(const Socket& socket, const std::string& bytes, Clock::time_point end, bool untilComplete)
{
    std::string answer;
    std::size_t sent = 0;
    for (;;) {
        const bool sending = sent < bytes.size();
        if (!socket.waitFor(static_cast<short>(sending ? POLLIN | POLLOUT : POLLIN), end))
            return answer;
        if (sending) {
            const ssize_t count = ::send(socket.descriptor(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (count > 0)
                sent += static_cast<std::size_t>(count);
            else if (errno != EAGAIN && errno != EINTR)
                sent = bytes.size();
        }
        char buffer[65536];
        const ssize_t count = ::recv(socket.descriptor(), buffer, sizeof buffer, 0);
        if (count > 0)
            answer.append(buffer, static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            return answer;
        if (untilComplete && parseHttpReply(answer).status != 0)
            return answer;
    }
}

std::string lowerCase(std::string text)
{
    for (char& character : text)
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    return text;
}

} // namespace

HttpReply parseHttpReply(const std::string& bytes)
{
    const std::size_t headEnd = bytes.find("\r\n\r\n");
    if (headEnd == std::string::npos || bytes.compare(0, 7, "HTTP/1.") != 0 || bytes.size() < 12)
        return {};
    HttpReply reply;
    std::size_t line = bytes.find("\r\n") + 2;
    while (line < headEnd + 2) {
        const std::size_t lineEnd = bytes.find("\r\n", line);
        const std::size_t colon = bytes.find(':', line);
        if (colon != std::string::npos && colon < lineEnd) {
            const std::size_t value = bytes.find_first_not_of(' ', colon + 1);
            reply.headers[lowerCase(bytes.substr(line, colon - line))] =
                value < lineEnd ? bytes.substr(value, lineEnd - value) : std::string();
        }
        line = lineEnd + 2;
    }
    const auto length = reply.headers.find("content-length");
    const std::size_t expected = length == reply.headers.end() ? 0 : std::stoul("0" + length->second);
    if (bytes.size() < headEnd + 4 + expected)
        return {};
    reply.body = bytes.substr(headEnd + 4, expected);
    reply.status = std::atoi(bytes.c_str() + 9);
    return reply;
}

HttpReply httpRequest(unsigned short port, const std::string& method, const std::string& path, const std::string& body,
    std::chrono::milliseconds deadline)
{
    const Clock::time_point end = Clock::now() + stretched(deadline);
    const Socket socket;
    if (!socket.connectTo(port, end))
        return {};
    std::string request =
        method + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\nConnection: close\r\n";
    if (!body.empty())
        request += "Content-Type: application/json\r\n";
    if (!body.empty() || (method != "GET" && method != "HEAD"))
        request += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    return parseHttpReply(transfer(socket, request + "\r\n" + body, end, true));
}

std::string rawExchange(unsigned short port, const std::string& bytes, std::chrono::milliseconds deadline)
{
    const Clock::time_point end = Clock::now() + stretched(deadline);
    const Socket socket;
    if (!socket.connectTo(port, end))
        return {};
    return transfer(socket, bytes, end, false);
}

} // namespace jobmanager_test
