#pragma once

#include <chrono>

namespace jobmanager_test {

/// A bound for a waiting test, stretched in builds that run slower (JOBMANAGER_DEADLINE_FACTOR).
inline std::chrono::milliseconds stretched(std::chrono::milliseconds bound)
{
    return bound * JOBMANAGER_DEADLINE_FACTOR;
}

} // namespace jobmanager_test
