#include "tests/client/RawReply.h"

namespace {

std::string statusLine(int status)
{
    return "HTTP/1.1 " + std::to_string(status) + " Whatever\r\n";
}

} // namespace

RawReply jsonReply(int status, const std::string& body)
{
    RawReply reply;
    reply.bytes = statusLine(status)
        + "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    return reply;
}

RawReply emptyReply(int status)
{
    RawReply reply;
    reply.bytes = statusLine(status) + (status == 204 ? "\r\n" : "Content-Length: 0\r\n\r\n");
    return reply;
}

RawReply errorReply(int status, const std::string& code)
{
    return jsonReply(status, R"({"error": {"code": ")" + code + R"(", "message": "A sentence for people."}})");
}
