#pragma once

#include <string>

namespace job_client {

/// Where a job service listens.
struct Endpoint
{
    /// A literal address; an IPv6 address stands in brackets.
    std::string address;
    unsigned short port = 0;

    /// "127.0.0.1:8082", for addresses of requests and for people.
    std::string text() const { return address + ':' + std::to_string(port); }
};

inline bool operator==(const Endpoint& left, const Endpoint& right)
{
    return left.port == right.port && left.address == right.address;
}

} // namespace job_client
