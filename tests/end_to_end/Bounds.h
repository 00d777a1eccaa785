#pragma once

#include "tests/support/Deadline.h"

/// The port that the module turns to by itself.
constexpr unsigned short modulePort = 8082;

/// A time bound in milliseconds, stretched in builds that run slower.
inline int stretched(int milliseconds)
{
    return static_cast<int>(jobmanager_test::stretched(std::chrono::milliseconds(milliseconds)).count());
}
