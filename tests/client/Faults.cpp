#include "tests/client/Faults.h"

namespace {

using Then = RawReply::Then;

constexpr bool outage = true;
constexpr bool ownReason = false;

/// More than the deadline of any operation with a small answer leaves room for, so that only the client ends it.
constexpr std::chrono::milliseconds dripPause{ 5 };

/// The status of the good answer, as far as an answer with a body can have it.
int statusOf(const Operation& operation)
{
    return operation.goodStatus == 204 ? 200 : operation.goodStatus;
}

std::string bodyOf(const Operation& operation)
{
    return operation.goodBody.empty() ? R"({"id": "W-2"})" : operation.goodBody;
}

std::string head(const Operation& operation, const std::string& fields)
{
    return "HTTP/1.1 " + std::to_string(statusOf(operation)) + " Whatever\r\n" + fields + "\r\n";
}

const std::string json = "Content-Type: application/json\r\n";

std::string lengthField(std::size_t length)
{
    return "Content-Length: " + std::to_string(length) + "\r\n";
}

/// The same bytes for every operation.
Fault bytes(const std::string& name, const std::string& sent, bool isOutage, Then then = Then::Close)
{
    return { name,
        [=](RawServer& server, const Operation&) {
            server.replyToAll({ sent, {}, 0, {}, then });
        },
        isOutage };
}

/// Bytes made of the good answer.
Fault made(const std::string& name, const std::function<std::string(const Operation&)>& make, bool isOutage,
    Then then = Then::Close)
{
    return { name,
        [=](RawServer& server, const Operation& operation) {
            server.replyToAll({ make(operation), {}, 0, {}, then });
        },
        isOutage };
}

/// A body of the right status and type that is no good answer.
Fault body(const std::string& name, const std::string& text)
{
    return { name,
        [=](RawServer& server, const Operation& operation) { server.replyToAll(jsonReply(statusOf(operation), text)); },
        ownReason };
}

Fault answer(const std::string& name, const RawReply& reply)
{
    return { name, [=](RawServer& server, const Operation&) { server.replyToAll(reply); }, ownReason };
}

/// An answer of 100 MB.
Fault huge(const std::string& name, const std::string& fields, const std::string& piece)
{
    constexpr std::size_t pieces = 1600;
    return { name,
        [=](RawServer& server, const Operation& operation) {
            server.replyToAll({ head(operation, json + fields), piece, pieces, {}, Then::Close });
        },
        ownReason };
}

std::vector<Fault> brokenTransfers()
{
    const auto halfBody = [](const Operation& operation) {
        const std::string whole = bodyOf(operation);
        return head(operation, json + lengthField(whole.size())) + whole.substr(0, whole.size() / 2);
    };
    return {
        { "refused", [](RawServer& server, const Operation&) { server.stop(); }, outage },
        bytes("closedWithoutAnswer", "", outage),
        bytes("resetWithoutAnswer", "", outage, Then::Reset),
        bytes("cutInStatusLine", "HTTP/1.1 2", outage, Then::Reset),
        made("halfABody", halfBody, outage),
        made("resetInBody", halfBody, outage, Then::Reset),
        made(
            "longerLengthThanBody",
            [](const Operation& operation) {
                return head(operation, json + lengthField(bodyOf(operation).size() + 1)) + bodyOf(operation);
            },
            outage),
        made(
            "cutInChunk",
            [](const Operation& operation) {
                return head(operation, json + "Transfer-Encoding: chunked\r\n") + "100\r\n"
                    + bodyOf(operation).substr(1);
            },
            outage),
        made(
            "cutBetweenChunks",
            [](const Operation& operation) {
                return head(operation, json + "Transfer-Encoding: chunked\r\n") + "2\r\n{}\r\n";
            },
            outage),
    };
}

std::vector<Fault> uselessAnswers()
{
    return {
        made(
            "cutWithoutLength",
            [](const Operation& operation) {
                return head(operation, json) + bodyOf(operation).substr(0, bodyOf(operation).size() - 1);
            },
            ownReason),
        made(
            "shorterLengthThanBody",
            [](const Operation& operation) {
                return head(operation, json + lengthField(bodyOf(operation).size() - 1)) + bodyOf(operation);
            },
            ownReason),
        made(
            "wrongType",
            [](const Operation& operation) {
                return head(operation, "Content-Type: text/plain\r\n" + lengthField(bodyOf(operation).size()))
                    + bodyOf(operation);
            },
            ownReason),
        made(
            "noType",
            [](const Operation& operation) {
                return head(operation, lengthField(bodyOf(operation).size())) + bodyOf(operation);
            },
            ownReason),
        made(
            "typeThatOnlyBeginsLikeJson",
            [](const Operation& operation) {
                return head(operation, "Content-Type: application/json5\r\n" + lengthField(bodyOf(operation).size()))
                    + bodyOf(operation);
            },
            ownReason),
        made(
            "html",
            [](const Operation& operation) {
                return head(operation, "Content-Type: text/html\r\nContent-Length: 15\r\n") + "<html>ok</html>";
            },
            ownReason),
        bytes("garbage", "\x01\x02 no HTTP at all\r\n\r\n", ownReason),
        bytes("http09", R"({"changeCount": 5, "id": "x", "jobs": []})", ownReason),
        body("emptyBody", ""),
        body("null", "null"),
        body("list", "[]"),
        body("emptyObject", "{}"),
        body("membersOfWrongTypes",
            R"({"changeCount": "5", "id": 5, "jobs": {}, "settings": [], "techId": null, "templates": {}, "path": 1,
                "workOrderLabel": 1, "numberOfTests": "1", "success": "true", "imported": true, "details": []})"),
        body("noUtf8", "{\"changeCount\": 5, \"id\": \"\xFF\"}"),
        body("tooDeep",
            R"({"changeCount": 5, "id": "x", "jobs": [], "deep": )" + std::string(100000, '[')
                + std::string(100000, ']') + "}"),
        body("trailingGarbage", R"({"changeCount": 5, "id": "x", "jobs": []} x)"),
    };
}

std::vector<Fault> errorAnswers()
{
    std::vector<Fault> faults;
    for (const int status : { 400, 401, 403, 404, 405, 409, 413, 500, 501, 503, 507 }) {
        faults.push_back(answer("status" + std::to_string(status), errorReply(status, "some_code")));
    }
    faults.push_back(bytes("htmlNotFound",
        "HTTP/1.1 404 Not Found\r\nContent-Type: text/html\r\nContent-Length: 15\r\n\r\n<html>no</html>", ownReason));
    faults.push_back(bytes("busyWithRetryAfter", "HTTP/1.1 503 Busy\r\nRetry-After: 1\r\nContent-Length: 0\r\n\r\n",
        ownReason, Then::KeepOpen));
    faults.push_back(bytes("redirectToAFile",
        "HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\nContent-Length: 0\r\n\r\n", ownReason));
    return faults;
}

std::vector<Fault> hugeAnswers()
{
    constexpr std::size_t pieceSize = 65536;
    const std::string blanks(pieceSize, ' ');
    return {
        huge("hugeWithLength", lengthField(1600 * pieceSize), blanks),
        huge("hugeWithoutLength", "", blanks),
        huge("hugeInChunks", "Transfer-Encoding: chunked\r\n", "10000\r\n" + blanks + "\r\n"),
        { "hugeHeader",
            [](RawServer& server, const Operation& operation) {
                const std::string field = "X-Filler: " + std::string(1000, 'x') + "\r\n";
                server.replyToAll({ "HTTP/1.1 " + std::to_string(statusOf(operation)) + " Whatever\r\n", field, 100000,
                    {}, Then::Close });
            },
            ownReason },
        { "continuesForEver",
            [](RawServer& server, const Operation&) {
                server.replyToAll({ "", "HTTP/1.1 100 Continue\r\n\r\n", 100000000, {}, Then::Close });
            },
            ownReason },
    };
}

} // namespace

const std::vector<Fault>& quickFaults()
{
    static const std::vector<Fault> all = [] {
        std::vector<Fault> list;
        for (const auto& part : { brokenTransfers(), uselessAnswers(), errorAnswers(), hugeAnswers() })
            list.insert(list.end(), part.begin(), part.end());
        return list;
    }();
    return all;
}

const std::vector<Fault>& hangingFaults()
{
    static const std::vector<Fault> all = {
        { "frozen", [](RawServer& server, const Operation&) { server.freeze(); }, outage },
        bytes("silent", "", outage, Then::Hang),
        bytes("silentInHeader", "HTTP/1.1 200 OK\r\nContent-", outage, Then::Hang),
        made(
            "silentInBody",
            [](const Operation& operation) {
                return head(operation, json + lengthField(bodyOf(operation).size())) + bodyOf(operation).substr(1);
            },
            outage, Then::Hang),
        { "drippedHeader",
            [](RawServer& server, const Operation&) {
                server.replyToAll(
                    { "HTTP/1.1 200 OK\r\nX-Filler: " + std::string(30000, 'x'), {}, 0, dripPause, Then::Hang });
            },
            outage },
        { "drippedBody",
            [](RawServer& server, const Operation& operation) {
                server.replyToAll({ head(operation, json + lengthField(30000)) + std::string(30000, ' '), {}, 0,
                    dripPause, Then::Hang });
            },
            outage },
    };
    return all;
}

std::ostream& operator<<(std::ostream& stream, const Fault& fault)
{
    return stream << fault.name;
}
