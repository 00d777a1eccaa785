#pragma once

#include "tests/client/Operations.h"
#include "tests/client/RawServer.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

/// A way in which a service can go wrong.
struct Fault
{
    std::string name;
    /// Makes the server go wrong in this way with this operation.
    std::function<void(RawServer&, const Operation&)> apply;
    /// Whether the answer does not come: an outage. Otherwise it comes, and nobody can use it.
    bool isOutage = false;
};

/// Faults that show at once.
const std::vector<Fault>& quickFaults();

/// Faults that only a deadline ends.
const std::vector<Fault>& hangingFaults();

std::ostream& operator<<(std::ostream& stream, const Fault& fault);
