#include "client/HttpTransfer.h"

#include "client/ServiceAddress.h"

#include <algorithm>
#include <cctype>
#include <curl/curl.h>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>

namespace job_client {

namespace {

/// Enough for the few headers of a service, and an end to a server that never stops sending them.
constexpr std::size_t headerCap = std::size_t{ 64 } * 1024;

/// Seconds that an idle connection is kept: less than the service keeps it, so that the two do not meet.
constexpr long idleConnectionAge = 4;

using HeaderList = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

void require(bool done)
{
    if (!done)
        throw std::runtime_error("libcurl");
}

void initializeOnce()
{
    // Never undone: the host process may use libcurl as well.
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    require(result == CURLE_OK);
}

HeaderList headerList(std::initializer_list<const char*> lines)
{
    HeaderList list(nullptr, curl_slist_free_all);
    for (const char* line : lines) {
        curl_slist* const longer = curl_slist_append(list.get(), line);
        require(longer != nullptr);
        list.release(); // NOLINT(bugprone-unused-return-value): the longer list begins with it
        list.reset(longer);
    }
    return list;
}

/// What one answer has brought so far.
struct Intake
{
    std::string body;
    std::size_t bodyCap = 0;
    std::size_t headerBytes = 0;
};

std::size_t takeBody(char* data, std::size_t size, std::size_t count, void* target) noexcept
{
    auto& intake = *static_cast<Intake*>(target);
    const std::size_t bytes = size * count;
    if (bytes > intake.bodyCap - intake.body.size())
        return 0;
    try {
        intake.body.append(data, bytes);
    } catch (...) {
        return 0;
    }
    return bytes;
}

std::size_t takeHeader(char* /*data*/, std::size_t size, std::size_t count, void* target) noexcept
{
    auto& intake = *static_cast<Intake*>(target);
    intake.headerBytes += size * count;
    return intake.headerBytes > headerCap ? 0 : size * count;
}

/// Children that the host process starts must not inherit the connection.
curl_socket_t openSocket(void* /*context*/, curlsocktype /*purpose*/, curl_sockaddr* address) noexcept
{
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

bool namesJson(const char* contentType)
{
    if (contentType == nullptr)
        return false;
    std::string type(contentType);
    type.erase(std::min(type.find_first_of("; \t"), type.size()));
    std::transform(type.begin(), type.end(), type.begin(),
        [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return type == "application/json";
}

HttpOutcome::Kind kindOf(CURLcode result)
{
    switch (result) {
    case CURLE_OK:
        return HttpOutcome::Kind::Answered;
    case CURLE_OPERATION_TIMEDOUT:
        return HttpOutcome::Kind::DeadlineMissed;
    case CURLE_COULDNT_CONNECT:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        return HttpOutcome::Kind::NoConnection;
    default:
        return HttpOutcome::Kind::Unusable;
    }
}

} // namespace

class HttpTransfer::Private
{
public:
    Private();

    void prepare(const Endpoint& endpoint, const HttpRequest& request);
    CURLcode drive();
    HttpOutcome outcome(CURLcode result);

    Intake intake;
    std::atomic<bool> cancelled{ false };
    // Keeps the connections. Declared before the handle, which must be gone first.
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> multi{ nullptr, curl_multi_cleanup };

private:
    template <typename Value> void set(CURLoption option, Value value)
    {
        require(curl_easy_setopt(m_easy.get(), option, value) == CURLE_OK);
    }
    void setMethod(const HttpRequest& request);
    CURLcode driveAdded();

    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> m_easy{ nullptr, curl_easy_cleanup };
    HeaderList m_headers{ nullptr, curl_slist_free_all };
    HeaderList m_headersForBody{ nullptr, curl_slist_free_all };
};

HttpTransfer::Private::Private()
{
    initializeOnce();
    multi.reset(curl_multi_init());
    m_easy.reset(curl_easy_init());
    require(multi && m_easy);
    require(curl_multi_setopt(multi.get(), CURLMOPT_MAXCONNECTS, 1L) == CURLM_OK);
    // libcurl would wait up to a second for "100 Continue", and call the body of a POST a form.
    m_headers = headerList({ "Accept: application/json", "Expect:", "Content-Type:" });
    m_headersForBody = headerList({ "Accept: application/json", "Expect:", "Content-Type: application/json" });
}

void HttpTransfer::Private::prepare(const Endpoint& endpoint, const HttpRequest& request)
{
    intake = { {}, request.answerCap, 0 };

    curl_easy_reset(m_easy.get());
    set(CURLOPT_URL, ("http://" + endpoint.text() + request.path).c_str());
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_PROTOCOLS_STR, "http");
    set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_FOLLOWLOCATION, 0L);
    // Whatever the environment says.
    set(CURLOPT_NOPROXY, "*");
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(request.deadline.count()));
    set(CURLOPT_MAXAGE_CONN, idleConnectionAge);
    set(CURLOPT_OPENSOCKETFUNCTION, &openSocket);
    set(CURLOPT_HEADERFUNCTION, &takeHeader);
    set(CURLOPT_HEADERDATA, &intake);
    set(CURLOPT_WRITEFUNCTION, &takeBody);
    set(CURLOPT_WRITEDATA, &intake);
    set(CURLOPT_HTTPHEADER, request.body ? m_headersForBody.get() : m_headers.get());
    setMethod(request);
}

void HttpTransfer::Private::setMethod(const HttpRequest& request)
{
    const std::string_view method = request.method;
    if (method == "GET")
        return;
    // On a kept connection that turns out to be dead libcurl would send the request a second time.
    set(CURLOPT_FRESH_CONNECT, 1L);
    if (request.body || method == "POST") {
        const std::string_view body = request.body ? std::string_view(*request.body) : std::string_view("");
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        set(CURLOPT_POSTFIELDS, body.data());
    }
    if (method != "POST")
        set(CURLOPT_CUSTOMREQUEST, request.method);
}

CURLcode HttpTransfer::Private::drive()
{
    require(curl_multi_add_handle(multi.get(), m_easy.get()) == CURLM_OK);
    const CURLcode result = driveAdded();
    // Closes the connection of a transfer that has not come to its end.
    curl_multi_remove_handle(multi.get(), m_easy.get());
    return result;
}

CURLcode HttpTransfer::Private::driveAdded()
{
    // libcurl wakes up by itself for its own time limits; this one only bounds a wait that nobody ends.
    constexpr int longestWait = 1000;
    int running = 1;
    while (!cancelled) {
        if (curl_multi_perform(multi.get(), &running) != CURLM_OK)
            return CURLE_FAILED_INIT;
        if (running == 0)
            break;
        if (curl_multi_poll(multi.get(), nullptr, 0, longestWait, nullptr) != CURLM_OK)
            return CURLE_FAILED_INIT;
    }
    int left = 0;
    const CURLMsg* const message = curl_multi_info_read(multi.get(), &left);
    return message == nullptr ? CURLE_ABORTED_BY_CALLBACK : message->data.result;
}

HttpOutcome HttpTransfer::Private::outcome(CURLcode result)
{
    HttpOutcome outcome;
    outcome.kind = kindOf(result);
    if (outcome.kind == HttpOutcome::Kind::Answered) {
        const char* contentType = nullptr;
        require(curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &outcome.status) == CURLE_OK);
        require(curl_easy_getinfo(m_easy.get(), CURLINFO_CONTENT_TYPE, &contentType) == CURLE_OK);
        outcome.isJson = namesJson(contentType);
        outcome.body = std::move(intake.body);
    }
    return outcome;
}

HttpTransfer::HttpTransfer() : d(std::make_unique<Private>())
{
}

HttpTransfer::~HttpTransfer() = default;

HttpOutcome HttpTransfer::run(const Endpoint& endpoint, const HttpRequest& request)
{
    if (!isLiteralAddress(endpoint.address))
        return { HttpOutcome::Kind::NoConnection, 0, false, {} };
    d->prepare(endpoint, request);
    HttpOutcome outcome = d->outcome(d->drive());
    d->intake.body = {};
    return outcome;
}

void HttpTransfer::cancel() noexcept
{
    d->cancelled = true;
    curl_multi_wakeup(d->multi.get());
}

} // namespace job_client
