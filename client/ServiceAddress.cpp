#include "client/ServiceAddress.h"

#include <arpa/inet.h>

namespace job_client {

namespace {

bool isAddress(int family, const std::string& text)
{
    in6_addr roomForBoth{};
    return text.find('\0') == std::string::npos && inet_pton(family, text.c_str(), &roomForBoth) == 1;
}

} // namespace

std::string serviceAddressOf(std::string host)
{
    if (host == "localhost")
        return "127.0.0.1";
    if (isAddress(AF_INET6, host))
        return '[' + host + ']';
    return host;
}

bool isLiteralAddress(const std::string& address)
{
    if (address.size() > 2 && address.front() == '[' && address.back() == ']')
        return isAddress(AF_INET6, address.substr(1, address.size() - 2));
    return isAddress(AF_INET, address);
}

} // namespace job_client
