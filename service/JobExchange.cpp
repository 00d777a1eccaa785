#include "service/JobExchange.h"

#include "api/cdm/JsonText.h"
#include "service/JobDocument.h"

#include <algorithm>

namespace job_service {

namespace {

constexpr int protocolVersion = 1;

/// What the first frame of each side says.
struct Hello
{
    std::string jobId;
    /// Bytes of the document that follows; nought if this side has none.
    std::size_t size = 0;
};

[[noreturn]] void refuse(DeviceLink& link, const std::string& reason)
{
    link.send({ FrameType::Refusal, reason });
    throw ExchangeRefused(reason);
}

/// The next frame, which must be of this type. A refusal by the other side ends the exchange.
std::string expect(DeviceLink& link, FrameType type)
{
    ExchangeFrame frame = link.receive();
    if (frame.type == FrameType::Refusal)
        throw ExchangeRefused("the other side refuses: " + frame.payload);
    if (frame.type != type)
        refuse(link, "a message out of its turn");
    return std::move(frame.payload);
}

void sendHello(DeviceLink& link, const std::string& jobId, const std::string& document)
{
    link.send({ FrameType::Hello,
        cdm::dumpJson({ { "protocol", protocolVersion }, { "jobId", jobId }, { "size", document.size() } }) });
}

Hello receiveHello(DeviceLink& link)
{
    cdm::DocumentError error;
    const auto hello = cdm::parseJson(expect(link, FrameType::Hello), error);
    if (!hello || !hello->is_object())
        refuse(link, "a greeting that makes no sense");
    const auto protocol = hello->find("protocol");
    if (protocol == hello->end() || *protocol != protocolVersion)
        refuse(link, "another version of the protocol");
    const auto jobId = hello->find("jobId");
    const auto size = hello->find("size");
    if (jobId == hello->end() || !jobId->is_string() || size == hello->end() || !size->is_number_unsigned())
        refuse(link, "a greeting that makes no sense");
    if (*size > maximumDocumentSize)
        refuse(link, "the job is too large");
    return { jobId->get<std::string>(), size->get<std::size_t>() };
}

void sendDocument(DeviceLink& link, const std::string& document)
{
    for (std::size_t sent = 0; sent < document.size(); sent += largestPayload)
        link.send({ FrameType::Data, document.substr(sent, largestPayload) });
    link.send({ FrameType::End, {} });
}

std::string receiveDocument(DeviceLink& link, std::size_t size)
{
    std::string document;
    while (document.size() < size) {
        const std::string piece = expect(link, FrameType::Data);
        if (piece.empty() || piece.size() > size - document.size())
            refuse(link, "not as many bytes as announced");
        document += piece;
    }
    expect(link, FrameType::End);
    return document;
}

} // namespace

void beginExchange(DeviceLink& link, const std::string& jobId, const std::string& document, const TakeJob& take)
{
    link.drain();
    sendHello(link, jobId, document);
    const Hello other = receiveHello(link);
    if (other.jobId != jobId)
        refuse(link, "another job");
    sendDocument(link, document);
    const std::string version = receiveDocument(link, other.size);
    if (!version.empty())
        take(version);
    link.send({ FrameType::Done, {} });
    expect(link, FrameType::Done);
}

void answerExchange(DeviceLink& link,
    const std::function<std::optional<std::string>(const std::string& jobId)>& versionOf, const TakeJob& take)
{
    const Hello other = receiveHello(link);
    const std::string version = versionOf(other.jobId).value_or(std::string());
    sendHello(link, other.jobId, version);
    const std::string document = receiveDocument(link, other.size);
    sendDocument(link, version);
    expect(link, FrameType::Done);
    take(document);
    link.send({ FrameType::Done, {} });
}

} // namespace job_service
