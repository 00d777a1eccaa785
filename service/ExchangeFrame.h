#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace job_service {

/// What two devices say to one another while they exchange a job (docs/exchange-protocol.md).
enum class FrameType : unsigned char { Hello = 1, Data = 2, End = 3, Refusal = 4, Done = 5 };

struct ExchangeFrame
{
    FrameType type = FrameType::Hello;
    /// At most `largestPayload` bytes.
    std::string payload = {};
};

constexpr std::size_t largestPayload = 32 * 1024;

/// Bytes that are no frame, or not the one that is due.
class FrameBroken : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The bytes of a frame with this number in its direction.
std::string encoded(const ExchangeFrame& frame, std::uint32_t number);

/// Takes frames out of the bytes of one direction, which come in any pieces.
class FrameReader
{
public:
    void feed(std::string_view bytes) { m_bytes.append(bytes); }
    /// The next frame once it is complete. Before the first one, bytes that belong to none are passed over: the rest of
    /// an exchange that broke off. Afterwards they are a fault. Throws FrameBroken for a wrong checksum, length, number
    /// or type, and when too many bytes have been passed over.
    std::optional<ExchangeFrame> next();

private:
    std::string m_bytes;
    std::uint32_t m_number = 0;
    std::size_t m_passedOver = 0;

    void findStart();
};

} // namespace job_service
