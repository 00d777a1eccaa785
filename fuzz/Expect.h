#pragma once

#include <cstdio>
#include <cstdlib>

namespace jobmanager_fuzz {

/// Ends the process with a line that says which promise was broken; the fuzzer keeps the input that broke it.
inline void expect(bool holds, const char* promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

} // namespace jobmanager_fuzz
