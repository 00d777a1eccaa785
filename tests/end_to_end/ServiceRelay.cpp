#include "tests/end_to_end/ServiceRelay.h"

#include "tests/support/Connection.h"

namespace {

std::string routeOf(const std::string& request)
{
    return request.substr(0, request.find(' ', request.find(' ') + 1));
}

/// The service answers only to its own address.
std::string readdressed(std::string request, unsigned short from, unsigned short to)
{
    const std::string here = "Host: 127.0.0.1:" + std::to_string(from);
    const auto host = request.find(here);
    if (host != std::string::npos)
        request.replace(host, here.size(), "Host: 127.0.0.1:" + std::to_string(to));
    return request;
}

std::string bytesOf(const jobmanager_test::HttpReply& reply)
{
    std::string bytes = "HTTP/1.1 " + std::to_string(reply.status) + " Relayed\r\n";
    for (const auto& [name, value] : reply.headers)
        bytes += name + ": " + value + "\r\n";
    return bytes + "\r\n" + reply.body;
}

} // namespace

ServiceRelay::ServiceRelay(unsigned short servicePort, unsigned short port) : m_servicePort(servicePort), m_server(port)
{
    m_server.answerWith([this](const std::string& request) { return handOn(request); });
}

ServiceRelay::~ServiceRelay()
{
    const std::lock_guard lock(m_mutex);
    m_ending = true;
    m_changed.notify_all();
}

int ServiceRelay::count(const std::string& route) const
{
    return static_cast<int>(m_server.count(route));
}

void ServiceRelay::hold(const std::string& route)
{
    const std::lock_guard lock(m_mutex);
    m_holds.insert(route);
}

bool ServiceRelay::awaitHeld(const std::string& route)
{
    std::unique_lock lock(m_mutex);
    const std::chrono::milliseconds patience(stretched(10000));
    return m_changed.wait_for(lock, patience, [&] { return m_held.count(route) > 0; });
}

void ServiceRelay::release(const std::string& route)
{
    const std::lock_guard lock(m_mutex);
    m_holds.erase(route);
    m_changed.notify_all();
}

void ServiceRelay::loseAnswers(const std::string& route)
{
    const std::lock_guard lock(m_mutex);
    m_lost.insert(route);
}

bool ServiceRelay::isAnswerLost(const std::string& route) const
{
    const std::lock_guard lock(m_mutex);
    return m_lost.count(route) > 0;
}

RawReply ServiceRelay::handOn(const std::string& request)
{
    const std::string route = routeOf(request);
    {
        std::unique_lock lock(m_mutex);
        const auto kept = m_held.insert(route);
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_holds.count(route) == 0 || m_ending; });
        m_held.erase(kept);
    }
    const jobmanager_test::HttpReply reply =
        jobmanager_test::Connection(m_servicePort).request(readdressed(request, port(), m_servicePort));
    RawReply relayed;
    if (reply.status == 0 || isAnswerLost(route)) {
        relayed.then = RawReply::Then::Close;
        return relayed;
    }
    relayed.bytes = bytesOf(reply);
    return relayed;
}
