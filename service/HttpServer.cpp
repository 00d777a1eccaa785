#include "service/HttpServer.h"

#include "service/Log.h"
#include "service/WorkerPool.h"

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/version.hpp>
#include <cctype>
#include <fcntl.h>
#include <list>
#include <optional>
#include <unordered_set>

namespace job_service {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using tcp = net::ip::tcp;
using ErrorCode = boost::system::error_code;

namespace {

/// What is still read of a refused request, so that the refusal reaches its sender.
constexpr std::size_t mostDiscarded = 16 * 1024 * 1024;

void closeOnExec(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
        [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return result;
}

HttpHead headOf(const http::request_parser<http::string_body>& parser)
{
    const auto& message = parser.get();
    HttpHead head;
    head.method = std::string(message.method_string());
    head.target = std::string(message.target());
    for (const auto& field : message)
        head.fields.emplace_back(lowerCase(field.name_string()), std::string(field.value()));
    if (const auto length = parser.content_length())
        head.contentLength = *length;
    head.chunked = parser.chunked();
    return head;
}

/// Whether the peer expects "100 Continue" before it sends the body. HTTP/1.0 does not know of it.
bool awaitsContinue(const http::request_parser<http::string_body>& parser)
{
    return parser.get().version() == 11 && beast::iequals(parser.get()[http::field::expect], "100-continue");
}

/// The answer to bytes that are no request.
HttpResponse brokenRequest(const ErrorCode& error)
{
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return errorResponse(431, "head_too_large", "The head of the request is too large.");
    if (error == http::error::body_limit)
        return errorResponse(413, "body_too_large", "The body of the request is too large.");
    return errorResponse(400, "bad_request", "This is no HTTP/1.1 request.");
}

HttpResponse internalError()
{
    return errorResponse(500, "internal_error", "The service failed.");
}

/// What leaves a handler becomes an answer; the detail goes to the log alone.
template <typename Handler> auto guarded(Handler handler) -> decltype(handler())
{
    try {
        return handler();
    } catch (const std::exception& error) {
        logLine(std::string("a request failed: ") + printable(error.what()));
    }
    return internalError();
}

http::response<http::string_body> messageFor(HttpResponse&& response, bool keepAlive)
{
    http::response<http::string_body> message(http::int_to_status(static_cast<unsigned>(response.status)), 11);
    message.set(http::field::cache_control, "no-store");
    message.set("X-Content-Type-Options", "nosniff");
    for (const auto& [name, value] : response.fields)
        message.set(name, value);
    if (!response.body.empty())
        message.set(http::field::content_type, "application/json");
    message.body() = std::move(response.body);
    message.keep_alive(keepAlive);
    if (message.result() != http::status::no_content)
        message.prepare_payload();
    return message;
}

} // namespace

/// Accepts connections and knows all of them.
class HttpServer::Listener
{
public:
    Listener(unsigned short port, const Limits& serverLimits);

    unsigned short port() const { return m_port; }
    void listen(HttpHeadHandler onHead);
    void run();
    void stop();
    /// A session is no longer open.
    void forget(Session* session);

    const Limits limits;
    HttpHeadHandler headHandler;
    bool stopping = false;

    // Sessions reach for these until the end of `context`, which therefore comes behind them.
    std::unordered_set<Session*> open;
    /// Open sessions that wait for their peer, the one that has waited longest first. Any of them may be closed.
    std::list<Session*> waiting;

    net::io_context context{ 1 };
    WorkerPool workers;

private:
    tcp::acceptor m_acceptor{ context };
    net::steady_timer m_timer{ context };
    unsigned short m_port = 0;

    void accept();
    void accepted(const ErrorCode& error, tcp::socket socket);
    bool makeRoom();
    void beginStop();
};

/// One connection. Lives as long as an operation of it is under way.
class HttpServer::Session : public std::enable_shared_from_this<Session>
{
public:
    Session(Listener& listener, tcp::socket&& socket) : m_listener(listener), m_stream(std::move(socket))
    {
        m_listener.open.insert(this);
    }

    ~Session() { leave(); }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void readHead()
    {
        m_parser.emplace();
        m_parser->header_limit(static_cast<std::uint32_t>(m_listener.limits.headSize));
        // The limit of the body is that of the route, and known only behind the head.
        m_parser->body_limit(boost::none);
        beginWaiting();
        m_stream.expires_after(m_listener.limits.requestDeadline);
        http::async_read_header(m_stream, m_buffer, *m_parser,
            [self = shared_from_this()](const ErrorCode& error, std::size_t) { self->onHead(error); });
    }

    void close()
    {
        leave();
        ErrorCode ignored;
        m_stream.socket().close(ignored);
    }

private:
    Listener& m_listener;
    beast::tcp_stream m_stream;
    beast::flat_buffer m_buffer{ 64 * 1024 };
    std::optional<http::request_parser<http::string_body>> m_parser;
    std::optional<std::list<Session*>::iterator> m_place;
    HttpCall m_call;
    std::size_t m_discarded = 0;
    std::optional<http::response<http::string_body>> m_response;

    void leave()
    {
        endWaiting();
        m_listener.forget(this);
    }

    void beginWaiting() { m_place = m_listener.waiting.insert(m_listener.waiting.end(), this); }

    void endWaiting()
    {
        if (m_place)
            m_listener.waiting.erase(*m_place);
        m_place.reset();
    }

    void onHead(const ErrorCode& error)
    {
        if (error) {
            refuseBytes(error);
            return;
        }
        if (m_parser->get().version() != 10 && m_parser->get().version() != 11) {
            respond(errorResponse(505, "version_not_supported", "The service speaks HTTP/1.1."), false);
            return;
        }
        const HttpHead head = headOf(*m_parser);
        auto decision = guarded([&]() -> std::variant<HttpResponse, HttpCall> { return m_listener.headHandler(head); });
        if (auto* refusal = std::get_if<HttpResponse>(&decision)) {
            respond(std::move(*refusal), !head.hasBody() && m_parser->keep_alive());
            return;
        }
        m_call = std::move(std::get<HttpCall>(decision));
        if (head.contentLength.value_or(0) > m_call.maximumBody) {
            refuseBytes(http::error::body_limit);
            return;
        }
        m_parser->body_limit(m_call.maximumBody);
        if (m_parser->is_done()) {
            onRequest();
            return;
        }
        m_stream.expires_after(m_listener.limits.requestDeadline);
        if (awaitsContinue(*m_parser))
            askForBody();
        else
            readBody();
    }

    /// The peer holds the body back until it is told that it is welcome, or has waited a while.
    void askForBody()
    {
        m_response.emplace(http::status::continue_, 11);
        http::async_write(m_stream, *m_response, [self = shared_from_this()](const ErrorCode& error, std::size_t) {
            self->m_response.reset();
            if (error)
                self->close();
            else
                self->readBody();
        });
    }

    void readBody()
    {
        http::async_read(
            m_stream, m_buffer, *m_parser, [self = shared_from_this()](const ErrorCode& bodyError, std::size_t) {
                if (bodyError)
                    self->refuseBytes(bodyError);
                else
                    self->onRequest();
            });
    }

    /// Answers what broke the protocol; a peer that has gone or was too slow gets nothing.
    void refuseBytes(const ErrorCode& error)
    {
        const bool brokeProtocol = error.category() == make_error_code(http::error::bad_method).category()
            && error != http::error::end_of_stream && error != http::error::partial_message;
        if (brokeProtocol)
            respond(brokenRequest(error), false);
        else
            close();
    }

    void onRequest()
    {
        endWaiting();
        if (m_call.answersAtOnce) {
            respond(answer(), m_parser->keep_alive());
            return;
        }
        m_stream.expires_never();
        const bool queued = m_listener.workers.submit([self = shared_from_this()]() mutable {
            HttpResponse response = self->answer();
            net::io_context& context = self->m_listener.context;
            // The session goes along, so that it ends on the thread of its listener.
            net::post(context, [session = std::move(self), response = std::move(response)]() mutable {
                session->respond(std::move(response), session->m_parser->keep_alive());
            });
        });
        if (!queued) {
            HttpResponse busy = errorResponse(503, "busy", "The service has too much to do; try again.");
            busy.fields.emplace_back("Retry-After", "1");
            respond(std::move(busy), m_parser->keep_alive());
        }
    }

    HttpResponse answer()
    {
        return guarded([this] { return m_call.answer(m_parser->get().body()); });
    }

    void respond(HttpResponse&& response, bool keepAlive)
    {
        endWaiting();
        keepAlive = keepAlive && !m_listener.stopping;
        if (m_parser->get().method() == http::verb::head)
            response.body.clear();
        m_response = messageFor(std::move(response), keepAlive);
        m_stream.expires_after(m_listener.limits.responseDeadline);
        http::async_write(
            m_stream, *m_response, [self = shared_from_this(), keepAlive](const ErrorCode& error, std::size_t) {
                self->m_response.reset();
                self->m_call = {};
                if (error)
                    self->close();
                else if (keepAlive && !self->m_listener.stopping)
                    self->readHead();
                else
                    self->closeGently();
            });
    }

    /// Unread bytes at the close would make the kernel take back an answer that is still on its way.
    void closeGently()
    {
        ErrorCode ignored;
        m_stream.socket().shutdown(tcp::socket::shutdown_send, ignored);
        m_stream.expires_after(std::chrono::seconds(1));
        m_buffer.clear();
        beginWaiting();
        discard();
    }

    void discard()
    {
        m_stream.async_read_some(
            m_buffer.prepare(16 * 1024), [self = shared_from_this()](const ErrorCode& error, std::size_t size) {
                self->m_discarded += size;
                if (error || self->m_discarded > mostDiscarded)
                    self->close();
                else
                    self->discard();
            });
    }
};

HttpServer::Listener::Listener(unsigned short port, const Limits& serverLimits)
    : limits(serverLimits)
    , workers(serverLimits.workers, serverLimits.waitingCalls)
{
    const tcp::endpoint endpoint(net::ip::address_v4::loopback(), port);
    ErrorCode error;
    m_acceptor.open(endpoint.protocol(), error);
    if (!error) {
        closeOnExec(m_acceptor.native_handle());
        m_acceptor.set_option(tcp::acceptor::reuse_address(true), error);
        m_acceptor.bind(endpoint, error);
    }
    if (error)
        throw PortRefused("Port " + std::to_string(port) + " cannot be had: " + error.message() + ".");
    m_port = m_acceptor.local_endpoint().port();
}

void HttpServer::Listener::listen(HttpHeadHandler onHead)
{
    headHandler = std::move(onHead);
    ErrorCode error;
    m_acceptor.listen(net::socket_base::max_listen_connections, error);
    if (error)
        throw PortRefused("Port " + std::to_string(m_port) + " cannot be had: " + error.message() + ".");
    accept();
}

void HttpServer::Listener::run()
{
    context.run();
    workers.stop();
}

void HttpServer::Listener::stop()
{
    net::post(context, [this] { beginStop(); });
}

void HttpServer::Listener::accept()
{
    m_acceptor.async_accept([this](const ErrorCode& error, tcp::socket socket) { accepted(error, std::move(socket)); });
}

void HttpServer::Listener::accepted(const ErrorCode& error, tcp::socket socket)
{
    if (!m_acceptor.is_open())
        return;
    if (error) {
        // Out of descriptors, most likely: trying again at once would only burn time.
        m_timer.expires_after(std::chrono::milliseconds(100));
        m_timer.async_wait([this](const ErrorCode& aborted) {
            if (!aborted && m_acceptor.is_open())
                accept();
        });
        return;
    }
    if (makeRoom()) {
        closeOnExec(socket.native_handle());
        ErrorCode ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        std::make_shared<Session>(*this, std::move(socket))->readHead();
    }
    accept();
}

/// Whether one more connection fits in. Where none waits, all are being answered, which has a deadline.
bool HttpServer::Listener::makeRoom()
{
    if (open.size() < limits.connections)
        return true;
    if (waiting.empty())
        return false;
    waiting.front()->close();
    return true;
}

void HttpServer::Listener::forget(Session* session)
{
    open.erase(session);
    if (stopping && open.empty() && !context.stopped())
        m_timer.cancel();
}

void HttpServer::Listener::beginStop()
{
    stopping = true;
    ErrorCode ignored;
    m_acceptor.close(ignored);
    while (!waiting.empty())
        waiting.front()->close();
    if (open.empty()) {
        m_timer.cancel();
        return;
    }
    m_timer.expires_after(limits.stopDeadline);
    m_timer.async_wait([this](const ErrorCode& aborted) {
        if (!aborted)
            context.stop();
    });
}

HttpServer::HttpServer(unsigned short port) : HttpServer(port, Limits())
{
}

HttpServer::HttpServer(unsigned short port, const Limits& limits) : m_listener(std::make_unique<Listener>(port, limits))
{
}

HttpServer::~HttpServer() = default;

unsigned short HttpServer::port() const
{
    return m_listener->port();
}

void HttpServer::listen(HttpHeadHandler onHead)
{
    m_listener->listen(std::move(onHead));
}

void HttpServer::run()
{
    m_listener->run();
}

void HttpServer::stop()
{
    m_listener->stop();
}

} // namespace job_service
