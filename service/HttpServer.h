#pragma once

#include "service/HttpMessages.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <stdexcept>

namespace job_service {

/// The port cannot be had.
class PortRefused : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// An HTTP/1.1 server on 127.0.0.1 that no peer can hold up or fill.
///
/// One thread, that of run(), does all input and output; a small pool with a limited queue runs the calls. Deadlines
/// are for whole heads, bodies and answers, so that dripping bytes do not stretch them. Head, body, connections
/// and waiting calls are limited.
class HttpServer
{
public:
    struct Limits
    {
        /// For the wait for a request together with its head, and the same again for its body.
        std::chrono::milliseconds requestDeadline = std::chrono::seconds(5);
        std::chrono::milliseconds responseDeadline = std::chrono::seconds(5);
        /// How long answers may still take when the server is told to stop.
        std::chrono::milliseconds stopDeadline = std::chrono::seconds(1);
        std::size_t headSize = 8192;
        /// One more, and the connection that has waited longest for its request makes room.
        std::size_t connections = 64;
        std::size_t waitingCalls = 64;
        std::size_t workers = 4;
    };

    /// Takes the port, 0 for any free one, without listening yet. Throws PortRefused.
    explicit HttpServer(unsigned short port);
    HttpServer(unsigned short port, const Limits& limits);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    unsigned short port() const;
    /// Begins to accept connections, which run() serves. `onHead` runs on the thread of run(); the answers of
    /// its calls run there or on a worker. An exception of either becomes a 500. Throws PortRefused.
    void listen(HttpHeadHandler onHead);
    /// Serves until stop(). Afterwards no call runs any more.
    void run();
    /// Ends run(): no new requests; calls that run end, and get their answers out if the stop deadline allows.
    /// From any thread.
    void stop();

private:
    class Listener;
    class Session;
    std::unique_ptr<Listener> m_listener;
};

} // namespace job_service
