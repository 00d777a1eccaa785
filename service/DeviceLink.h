#pragma once

#include "service/ExchangeFrame.h"
#include "service/FileHandle.h"
#include "service/TransferBudget.h"

#include <chrono>
#include <cstdint>
#include <stdexcept>

namespace job_service {

/// The device is gone, silent, or takes nothing.
class DeviceFailed : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Frames over a character device that does not block. Throws DeviceFailed, FrameBroken, and CutOff when the budget's
/// time is up, however slowly bytes drip.
class DeviceLink
{
public:
    /// Takes over the device. `budget` must outlive the object. `patience` is how long the other side may be silent.
    DeviceLink(FileHandle device, const TransferBudget& budget, std::chrono::milliseconds patience);

    /// Throws away what the other side has sent so far.
    void drain();
    void send(const ExchangeFrame& frame);
    ExchangeFrame receive();

private:
    FileHandle m_device;
    const TransferBudget& m_budget;
    std::chrono::milliseconds m_patience;
    FrameReader m_reader;
    std::uint32_t m_sent = 0;

    /// Waits until the device can be read or written (POLLIN, POLLOUT).
    void waitFor(short events);
};

/// Opens a character device, a link to one included, for this program alone and without any treatment of its bytes.
/// Throws ApiError ("device_not_found", "not_a_device", "device_busy").
FileHandle openDevice(const std::string& path);

} // namespace job_service
