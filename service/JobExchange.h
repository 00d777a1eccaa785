#pragma once

#include "service/DeviceLink.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace job_service {

/// The other side refuses the exchange, or does not keep to its order.
class ExchangeRefused : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Takes in the other side's document of the job and makes sure that it is kept. What it throws ends the exchange.
using TakeJob = std::function<void(const std::string& document)>;

/// Exchanges a job as the side that begins: sends `document`, receives the other side's version and hands it to `take`,
/// if there is one. Returns when both sides have what they need. Throws ExchangeRefused, DeviceFailed, FrameBroken and
/// CutOff; if that happens after `take`, the other side may lack what it was sent, and the exchange is to be repeated.
void beginExchange(DeviceLink& link, const std::string& jobId, const std::string& document, const TakeJob& take);

/// Answers one exchange as the other side. `versionOf` gives the own version of the job with this id, if there is one.
/// Throws as beginExchange.
void answerExchange(DeviceLink& link,
    const std::function<std::optional<std::string>(const std::string& jobId)>& versionOf, const TakeJob& take);

} // namespace job_service
