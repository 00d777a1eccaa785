#include "service/ExchangeFrame.h"

#include <algorithm>
#include <boost/crc.hpp>

namespace job_service {

namespace {

constexpr std::string_view mark = "QZX1";
constexpr std::size_t headSize = 12;
constexpr std::size_t checksumSize = 4;
/// So much of an earlier exchange can still be on its way.
constexpr std::size_t mostPassedOver = 2 * largestPayload;

void appendNumber(std::string& bytes, std::uint32_t number, int size)
{
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>((number >> shift) & 0xffu);
}

std::uint32_t numberAt(std::string_view bytes, std::size_t at, std::size_t size)
{
    std::uint32_t number = 0;
    for (const char byte : bytes.substr(at, size))
        number = number << 8u | static_cast<unsigned char>(byte);
    return number;
}

std::uint32_t checksumOf(std::string_view bytes)
{
    boost::crc_32_type sum;
    sum.process_bytes(bytes.data(), bytes.size());
    return sum.checksum();
}

} // namespace

std::string encoded(const ExchangeFrame& frame, std::uint32_t number)
{
    std::string bytes(mark);
    bytes += static_cast<char>(frame.type);
    bytes += '\0';
    appendNumber(bytes, static_cast<std::uint32_t>(frame.payload.size()), 2);
    appendNumber(bytes, number, 4);
    bytes += frame.payload;
    appendNumber(bytes, checksumOf(bytes), 4);
    return bytes;
}

void FrameReader::findStart()
{
    if (m_number > 0)
        return;
    std::size_t start = m_bytes.find(mark);
    if (start == std::string::npos)
        start = m_bytes.size() - std::min(m_bytes.size(), mark.size() - 1);
    m_passedOver += start;
    m_bytes.erase(0, start);
    if (m_passedOver > mostPassedOver)
        throw FrameBroken("the device sends no frames");
}

std::optional<ExchangeFrame> FrameReader::next()
{
    findStart();
    if (m_number > 0 && std::string_view(m_bytes).substr(0, mark.size()) != mark.substr(0, m_bytes.size()))
        throw FrameBroken("bytes between two frames");
    if (m_bytes.size() < headSize)
        return std::nullopt;
    const auto type = static_cast<unsigned char>(m_bytes[4]);
    const std::size_t length = numberAt(m_bytes, 6, 2);
    if (type < static_cast<unsigned char>(FrameType::Hello) || type > static_cast<unsigned char>(FrameType::Done))
        throw FrameBroken("a frame of an unknown type");
    if (length > largestPayload)
        throw FrameBroken("a frame is too long");
    const std::size_t size = headSize + length + checksumSize;
    if (m_bytes.size() < size)
        return std::nullopt;
    const std::string_view frame(m_bytes.data(), headSize + length);
    if (numberAt(m_bytes, headSize + length, 4) != checksumOf(frame))
        throw FrameBroken("a wrong checksum");
    if (numberAt(m_bytes, 8, 4) != m_number)
        throw FrameBroken("a frame is missing or out of its turn");
    ++m_number;
    ExchangeFrame result{ static_cast<FrameType>(type), std::string(frame.substr(headSize)) };
    m_bytes.erase(0, size);
    return result;
}

} // namespace job_service
