#pragma once

#include <string>

namespace job_client {

/// The address under which a host is asked: the host as it is, but an IPv6 address stands in brackets, and
/// "localhost" becomes "127.0.0.1". Names are never looked up: a resolver that hangs knows no deadline.
std::string serviceAddressOf(std::string host);

/// Whether an address can be connected to without a look-up: an IPv4 address, or an IPv6 address in brackets.
bool isLiteralAddress(const std::string& address);

} // namespace job_client
