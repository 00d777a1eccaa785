#pragma once

#include <string>
#include <string_view>

namespace job_service {

/// Writes one line to standard error, "job-service: " before it. Safe from every thread.
void logLine(const std::string& text);

/// A text for the log, control characters replaced: neither a file name nor a job id may forge a line.
std::string printable(std::string_view text);

} // namespace job_service
