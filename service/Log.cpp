#include "service/Log.h"

#include <unistd.h>

namespace job_service {

void logLine(const std::string& text)
{
    const std::string line = "job-service: " + text + "\n";
    // One write, so that lines of different threads do not mix. A log that cannot be written stops nobody.
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

std::string printable(std::string_view text)
{
    std::string result(text);
    for (char& character : result) {
        if (static_cast<unsigned char>(character) < 0x20 || character == 0x7f)
            character = '?';
    }
    return result;
}

} // namespace job_service
