#include "tests/end_to_end/Bounds.h"

#include "tests/support/Deadline.h"

#include <algorithm>
#include <fstream>
#include <thread>

namespace {

/// How many threads of the whole machine want to run for each processor, over the last minute or now; at least 1.
double crowding()
{
    double lastMinute = 0;
    double lastFiveMinutes = 0;
    double lastFifteenMinutes = 0;
    double now = 0;
    std::ifstream load("/proc/loadavg");
    load >> lastMinute >> lastFiveMinutes >> lastFifteenMinutes >> now;
    const unsigned int processors = std::max(1U, std::thread::hardware_concurrency());
    return std::max(1.0, std::max(lastMinute, now) / processors);
}

} // namespace

int stretched(int milliseconds)
{
    const auto bound = jobmanager_test::stretched(std::chrono::milliseconds(milliseconds));
    return static_cast<int>(static_cast<double>(bound.count()) * crowding());
}
