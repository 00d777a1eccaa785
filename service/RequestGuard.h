#pragma once

#include "service/HttpMessages.h"

#include <optional>

namespace job_service {

/// Refuses what a web page in a browser could send: a foreign Host (a rebound name), a foreign Origin or a
/// cross-site fetch. Nothing if the request may pass. `port` is the one that the service listens on.
std::optional<HttpResponse> refuseForeign(const HttpHead& head, unsigned short port);

/// Refuses a body that is encoded in any way.
std::optional<HttpResponse> refuseEncoded(const HttpHead& head);

/// Refuses a body that is missing or not declared as JSON, which a browser cannot send to us unasked.
std::optional<HttpResponse> refuseOtherThanJson(const HttpHead& head);

} // namespace job_service
