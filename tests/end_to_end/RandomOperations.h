#pragma once

#include <vector>

class RandomSession;

/// One thing that may be done to a front end, or to the service behind it.
struct RandomOperation
{
    /// For the account of a sequence that went wrong.
    const char* name;
    /// How often it is chosen, measured by the others.
    int weight;
    /// Does it, with what chance picks.
    void (*run)(RandomSession& session);
};

/// Everything that may be done. What JobManager learns to do joins this table.
const std::vector<RandomOperation>& randomOperations();

/// Lets chance choose one of them.
const RandomOperation& randomOperation(RandomSession& session);
