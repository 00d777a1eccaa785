#pragma once

#include "client/Endpoint.h"

#include <string>

namespace job_client {

/// Tells on standard error when a service is lost and when it is back, one line each.
class OutageLog
{
public:
    explicit OutageLog(const Endpoint& endpoint);

    void lost() const;
    void back() const;

private:
    std::string m_lost;
    std::string m_back;
};

} // namespace job_client
