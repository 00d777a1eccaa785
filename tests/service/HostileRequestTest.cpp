// What a browser, a scanner or a broken program may send, against the service as it runs.

#include "tests/support/Connection.h"
#include "tests/support/Deadline.h"
#include "tests/support/ServiceProcess.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <list>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <sys/socket.h>
#include <vector>

using namespace std::chrono_literals;
using jobmanager_test::Connection;
using jobmanager_test::HttpReply;
using jobmanager_test::httpRequest;
using jobmanager_test::ServiceProcess;
using jobmanager_test::stretched;
using nlohmann::json;

namespace {

const std::string target = "/api/v1/jobs";

class HostileRequestTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        service = std::make_unique<ServiceProcess>(std::vector<std::string>{ "--generate", "jobs=3,tests=2" });
        ASSERT_TRUE(service->start()) << service->log();
    }
    static void TearDownTestSuite() { service.reset(); }

    void SetUp() override { m_count = changeCount(); }

    /// Whatever was sent: the service lives, nothing has changed, and no file of the machine is named.
    void TearDown() override
    {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(changeCount(), m_count);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, stretched(1s));
        EXPECT_EQ(httpRequest(port(), "GET", target).status, 200);
    }

    static unsigned short port() { return service->port(); }
    static std::string host() { return "Host: 127.0.0.1:" + std::to_string(port()) + "\r\n"; }

    static int changeCount()
    {
        const HttpReply reply = httpRequest(port(), "GET", "/api/v1/change-count");
        return reply.status == 200 ? json::parse(reply.body).at("changeCount").get<int>() : -1;
    }

    /// Resident memory of the service in MiB.
    static long residentMemory()
    {
        std::ifstream status("/proc/" + std::to_string(service->pid()) + "/status");
        std::string word;
        long kilobytes = 0;
        while (status >> word) {
            if (word == "VmHWM:")
                status >> kilobytes;
        }
        return kilobytes / 1024;
    }

    static void expectError(const HttpReply& reply, const std::set<int>& statuses)
    {
        EXPECT_TRUE(statuses.count(reply.status)) << reply.status << ' ' << reply.body;
        const json body = json::parse(reply.body, nullptr, false);
        ASSERT_FALSE(body.is_discarded()) << reply.body;
        EXPECT_TRUE(body.at("error").at("code").is_string());
        EXPECT_TRUE(body.at("error").at("message").is_string());
        EXPECT_EQ(reply.body.find("/tmp"), std::string::npos);
        EXPECT_EQ(reply.headers.at("content-type"), "application/json");
        for (const auto& [name, value] : reply.headers)
            EXPECT_EQ(name.find("access-control"), std::string::npos) << value;
    }

    static std::unique_ptr<ServiceProcess> service;

private:
    int m_count = 0;
};

std::unique_ptr<ServiceProcess> HostileRequestTest::service;

/// "HOST" in the bytes stands for the right Host line, "JSON" for the right type.
struct RequestCase
{
    const char* name;
    std::string bytes;
    std::set<int> statuses;
};

void PrintTo(const RequestCase& requestCase, std::ostream* stream)
{
    *stream << requestCase.name;
}

std::string replaced(std::string text, const std::string& what, const std::string& with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

class RefusedRequest : public HostileRequestTest, public testing::WithParamInterface<RequestCase>
{
};

TEST_P(RefusedRequest, getsAnError)
{
    const std::string bytes =
        replaced(replaced(GetParam().bytes, "HOST", host()), "JSON", "Content-Type: application/json\r\n");
    expectError(Connection(port()).request(bytes), GetParam().statuses);
}

std::string get(const std::string& path, const std::string& fields = "HOST")
{
    return "GET " + path + " HTTP/1.1\r\n" + fields + "\r\n";
}

std::string post(const std::string& fields, const std::string& body = {})
{
    return "POST /api/v1/jobs HTTP/1.1\r\nHOST" + fields + "\r\n" + body;
}

INSTANTIATE_TEST_SUITE_P(Origins, RefusedRequest,
    testing::Values(RequestCase{ "foreignHost", get(target, "Host: evil.example\r\n"), { 403 } },
        RequestCase{ "hostAsPrefix", get(target, "Host: 127.0.0.1.evil.com\r\n"), { 403 } },
        RequestCase{ "hostAsSubdomain", get(target, "Host: localhost.evil\r\n"), { 403 } },
        RequestCase{ "emptyHost", get(target, "Host:\r\n"), { 403 } },
        RequestCase{ "noHost", get(target, ""), { 403 } },
        RequestCase{ "twoHosts", get(target, "HOSTHost: evil.example\r\n"), { 400, 403 } },
        RequestCase{ "foreignOrigin", get(target, "HOSTOrigin: http://evil.example\r\n"), { 403 } },
        RequestCase{ "nullOrigin", get(target, "HOSTOrigin: null\r\n"), { 403 } },
        RequestCase{ "crossSiteFetch", get(target, "HOSTSec-Fetch-Site: cross-site\r\n"), { 403 } },
        RequestCase{ "textForm", post("Content-Type: text/plain\r\nContent-Length: 2\r\n", "{}"), { 415 } },
        RequestCase{ "multipartForm",
            post("Content-Type: multipart/form-data; boundary=x\r\nContent-Length: 2\r\n", "{}"), { 415 } },
        RequestCase{ "formWithoutUse",
            "POST /api/v1/jobs/GEN-0000001/archive HTTP/1.1\r\nHOSTContent-Type: text/plain\r\nContent-Length: "
            "1\r\n\r\nx",
            { 415 } },
        RequestCase{ "preflight", "OPTIONS /api/v1/jobs HTTP/1.1\r\nHOSTAccess-Control-Request-Method: DELETE\r\n\r\n",
            { 405 } }),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(Heads, RefusedRequest,
    testing::Values(RequestCase{ "lineOfAMegabyte", get("/" + std::string(1 << 20, 'x')), { 414, 431 } },
        RequestCase{ "pathOfNineKilobytes", get(target + "/" + std::string(9000, 'x')), { 414, 431 } },
        RequestCase{ "headerOfAMegabyte", get(target, "HOSTX: " + std::string(1 << 20, 'x') + "\r\n"), { 431 } },
        RequestCase{ "bareLineFeeds", "GET /api/v1/jobs HTTP/1.1\nHost: x\n\n", { 400 } },
        RequestCase{ "noVersion", "GET /api/v1/jobs\r\n\r\n", { 400 } },
        RequestCase{ "versionNine", "GET /api/v1/jobs HTTP/9.9\r\nHOST\r\n", { 400, 505 } },
        RequestCase{
            "tlsHello", std::string("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", 11) + "\r\n\r\n", { 400 } },
        RequestCase{ "spaceBeforeColon", get(target, "HOSTX : y\r\n"), { 400 } },
        RequestCase{ "nulInHeader", get(target, "HOSTX: a" + std::string(1, '\0') + "b\r\n"), { 400 } },
        RequestCase{ "unknownMethod", "BREW /api/v1/jobs HTTP/1.1\r\nHOST\r\n", { 405, 501 } },
        RequestCase{ "trace", "TRACE /api/v1/jobs HTTP/1.1\r\nHOST\r\n", { 405 } },
        RequestCase{ "connect", "CONNECT 127.0.0.1:80 HTTP/1.1\r\nHOST\r\n", { 400, 404, 405 } }),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(Targets, RefusedRequest,
    testing::Values(RequestCase{ "encodedDots", get("/api/v1/%2e%2e/%2e%2e/etc/passwd"), { 404 } },
        RequestCase{ "dotsAsAnId", get("/api/v1/jobs/%2e%2e%2f%2e%2e%2fetc%2fpasswd"), { 404 } },
        RequestCase{ "plainDots", get("/api/v1/../../etc/passwd"), { 404 } },
        RequestCase{ "encodedNul", get("/api/v1/jobs/GEN-0000001%00"), { 400 } },
        RequestCase{ "twoSlashes", get("//api/v1/jobs"), { 404 } },
        RequestCase{ "absoluteForm", get("http://127.0.0.1/api/v1/jobs"), { 400 } },
        RequestCase{ "asterisk", "GET * HTTP/1.1\r\nHOST\r\n", { 400 } },
        RequestCase{ "brokenEscape", get("/api/v1/jobs/%zz"), { 400 } },
        RequestCase{ "cutEscape", get("/api/v1/jobs/%4"), { 400 } },
        RequestCase{ "overlongUtf8", get("/api/v1/jobs/%c0%ae%c0%ae"), { 400 } },
        RequestCase{ "rawBytes", get("/api/v1/jobs/\xff\xfe"), { 400 } }),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(Bodies, RefusedRequest,
    testing::Values(RequestCase{ "negativeLength", post("JSONContent-Length: -1\r\n"), { 400 } },
        RequestCase{ "lengthWithLetter", post("JSONContent-Length: 3x\r\n", "{}x"), { 400 } },
        RequestCase{ "lengthOf2To64", post("JSONContent-Length: 18446744073709551616\r\n"), { 400 } },
        RequestCase{ "greatestLength", post("JSONContent-Length: 18446744073709551615\r\n"), { 400, 413 } },
        RequestCase{ "twoLengths", post("JSONContent-Length: 2\r\nContent-Length: 3\r\n", "{}x"), { 400 } },
        RequestCase{ "lengthAndChunks",
            post("JSONContent-Length: 2\r\nTransfer-Encoding: chunked\r\n", "2\r\n{}\r\n0\r\n\r\n"), { 400 } },
        RequestCase{ "chunksOfGzip", post("JSONTransfer-Encoding: gzip, chunked\r\n", "0\r\n\r\n"), { 400, 415, 501 } },
        RequestCase{ "negativeChunk", post("JSONTransfer-Encoding: chunked\r\n", "-2\r\n{}\r\n0\r\n\r\n"), { 400 } },
        RequestCase{
            "greatestChunk", post("JSONTransfer-Encoding: chunked\r\n", "ffffffffffffffff\r\n{}"), { 400, 413 } },
        RequestCase{
            "chunkSizeOverflow", post("JSONTransfer-Encoding: chunked\r\n", "1ffffffffffffffff\r\n{}"), { 400 } },
        RequestCase{ "gzip", post("JSONContent-Encoding: gzip\r\nContent-Length: 2\r\n", "xx"), { 415 } },
        RequestCase{ "bodyOverTheCap", post("JSONContent-Length: 70000\r\n", std::string(70000, ' ')), { 413 } },
        RequestCase{ "lengthOverTheCapAlone", post("JSONContent-Length: 70000\r\n"), { 413 } },
        RequestCase{ "noLength", post("JSON"), { 411 } },
        RequestCase{ "emptyBody", post("JSONContent-Length: 0\r\n"), { 400 } }),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(HostileRequestTest, aHundredThousandHeadersAreRefused)
{
    std::string fields = "HOST";
    for (int i = 0; i < 100000; ++i)
        fields += "X-" + std::to_string(i) + ": y\r\n";
    expectError(Connection(port()).request(replaced(get(target, fields), "HOST", host())), { 431 });
}

TEST_F(HostileRequestTest, aFoldedFieldIsRefusedOrReadAsOne)
{
    const HttpReply reply = Connection(port()).request(get(target, host() + "X: a\r\n b\r\n"));
    EXPECT_TRUE(reply.status == 200 || reply.status == 400) << reply.status;
    const HttpReply folded =
        Connection(port()).request(get(target, "Host: 127.0.0.1\r\n :" + std::to_string(port()) + "\r\n"));
    EXPECT_TRUE(folded.status == 400 || folded.status == 403) << folded.status;
}

TEST_F(HostileRequestTest, twoHundredMegabytesOfChunksAreStoppedAndNotKept)
{
    Connection connection(port());
    ASSERT_TRUE(connection.send("PUT /api/v1/jobs/GEN-0000001/attributes HTTP/1.1\r\n" + host()
        + "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n"));
    const std::string chunk = "100000\r\n" + std::string(1 << 20, ' ') + "\r\n";
    int sent = 0;
    while (sent < 200 && connection.send(chunk))
        ++sent;
    EXPECT_LT(sent, 200);
    EXPECT_LT(residentMemory(), 64 * JOBMANAGER_DEADLINE_FACTOR * JOBMANAGER_DEADLINE_FACTOR);
}

TEST_F(HostileRequestTest, sixtyFourHalfOpenAndIdleConnectionsKeepNobodyOut)
{
    std::list<Connection> connections;
    for (int i = 0; i < 64; ++i) {
        connections.emplace_back(port());
        if (i % 2)
            connections.back().send("GET /api/v1/jo");
    }
    for (int i = 0; i < 20; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(httpRequest(port(), "GET", "/api/v1/change-count").status, 200);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, stretched(100ms));
    }
}

TEST_F(HostileRequestTest, aThousandPipelinedRequestsAreAllAnswered)
{
    std::string bytes;
    for (int i = 0; i < 1000; ++i)
        bytes += get("/api/v1/change-count", host());
    Connection connection(port(), 20s);
    EXPECT_EQ(connection.request(bytes).status, 200);
    for (int i = 1; i < 1000; ++i)
        ASSERT_EQ(connection.readReply().status, 200) << i;
}

TEST_F(HostileRequestTest, clientsThatVanishDoNoHarm)
{
    for (int i = 0; i < 50; ++i) {
        Connection connection(port());
        ASSERT_TRUE(connection.send(get(target, host())));
        const linger reset{ 1, 0 };
        ::setsockopt(connection.descriptor(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    }
}

TEST_F(HostileRequestTest, aNameAsTextIsAsGoodAsTheAddress)
{
    for (const char* name : { "localhost", "LOCALHOST", "[::1]" }) {
        EXPECT_EQ(Connection(port())
                      .request(get(target, "Host: " + std::string(name) + ":" + std::to_string(port()) + "\r\n"))
                      .status,
            200)
            << name;
    }
}

/// The addresses of this table of the kernel on which the port is listened to.
std::vector<std::string> listeningAddresses(const char* table, unsigned short port)
{
    char suffix[8];
    std::snprintf(suffix, sizeof suffix, ":%04X", static_cast<unsigned>(port));
    std::ifstream lines(table);
    std::string line;
    std::vector<std::string> addresses;
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        std::string number;
        std::string local;
        std::string remote;
        std::string state;
        words >> number >> local >> remote >> state;
        const std::size_t end = local.find(suffix);
        if (end != std::string::npos && state == "0A")
            addresses.push_back(local.substr(0, end));
    }
    return addresses;
}

TEST_F(HostileRequestTest, theServiceListensOnTheLoopbackAddressAlone)
{
    EXPECT_EQ(listeningAddresses("/proc/net/tcp", port()), std::vector<std::string>{ "0100007F" });
    EXPECT_EQ(listeningAddresses("/proc/net/tcp6", port()), std::vector<std::string>{});
}

} // namespace
