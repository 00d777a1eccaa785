#pragma once

#include <chrono>

#ifndef JOBMANAGER_DEADLINE_FACTOR
#error "JOBMANAGER_DEADLINE_FACTOR comes from the build: see client/CMakeLists.txt"
#endif

/// How long a call may take, all in all: connecting, sending and the whole answer.
///
/// One factor stretches all deadlines, since a sanitizer makes everything several times slower.
namespace job_client::deadlines {

constexpr std::chrono::milliseconds stretched(int milliseconds)
{
    return std::chrono::milliseconds(static_cast<long>(milliseconds * JOBMANAGER_DEADLINE_FACTOR));
}

/// The change count and the other small requests that the main thread makes by itself: active job, settings,
/// group type, login configuration. Two of them missed must stay below 200 ms.
constexpr std::chrono::milliseconds small = stretched(90);

/// Lists, jobs, templates and writes.
constexpr std::chrono::milliseconds ordinary = stretched(5000);

/// Launches and transfers, which return when they have an outcome.
constexpr std::chrono::milliseconds lengthy = stretched(60000);

/// From the start of one probe to the start of the next. No deadline, therefore never stretched: a probe that
/// takes longer is followed by the next one at once.
constexpr std::chrono::milliseconds probePeriod{ 500 };

} // namespace job_client::deadlines
