#pragma once

#include "service/JsonTree.h"

#include <memory>
#include <optional>
#include <string>

namespace job_service {

class StopSignal;

/// A test, or a test at one location, that is to run: what the job document says of it at the moment of the launch.
struct TestToRun
{
    std::string jobId;
    /// When the job was made, as its document tells; empty if it does not.
    std::string jobTimestamp;
    /// Index string of the test ("2") or of the location ("2_1").
    std::string uiIndex;
    JsonTree test;
    /// Nothing for the test as a whole.
    std::optional<JsonTree> location;

    /// Where the results of this run go: the location if there is one.
    const JsonTree& target() const { return location ? *location : test; }
};

/// What came of a run.
struct TestOutcome
{
    /// The verdict, a status token such as "pass". Empty if the run came to none.
    std::string status;
    /// Result data of a run with a verdict, an object.
    JsonTree data;
    /// Why the run came to no verdict: a sentence for people.
    std::string failure;

    static TestOutcome failed(std::string why) { return { {}, {}, std::move(why) }; }
};

/// A run that has started. Its end ends whatever still belongs to it.
class TestRun
{
public:
    virtual ~TestRun() = default;
    /// Waits for the end of the run. Nothing if `stop` was raised before. Called once.
    virtual std::optional<TestOutcome> finish(const StopSignal& stop) = 0;
};

/// What runs tests. Used from one thread at a time.
class TestBench
{
public:
    virtual ~TestBench() = default;
    /// Starts a run and waits until it has begun. Null if it could not begin, or `stop` was raised before.
    virtual std::unique_ptr<TestRun> start(const TestToRun& test, const StopSignal& stop) = 0;
};

} // namespace job_service
