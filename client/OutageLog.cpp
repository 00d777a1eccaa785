#include "client/OutageLog.h"

#include <iostream>

namespace job_client {

namespace {

void write(const std::string& line) noexcept
{
    try {
        std::cerr << line;
    } catch (...) {
        // The host may have told the stream to throw. A log that cannot be written is no failure of ours.
    }
}

} // namespace

OutageLog::OutageLog(const Endpoint& endpoint)
    : m_lost("job_manager: the job service at " + endpoint.text() + " does not answer\n")
    , m_back("job_manager: the job service at " + endpoint.text() + " answers again\n")
{
}

void OutageLog::lost() const
{
    write(m_lost);
}

void OutageLog::back() const
{
    write(m_back);
}

} // namespace job_client
