// Every operation with every way in which a service can leave its caller waiting. The client of this program has a
// twentieth of its time.

#include "client/Deadlines.h"
#include "client/RestApiJobManager.h"
#include "tests/client/Faults.h"
#include "tests/client/ProcessState.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <thread>

namespace {

using namespace std::chrono_literals;
using job_client::deadlines::stretched;
using Clock = std::chrono::steady_clock;

class EachHangingFault : public testing::TestWithParam<Fault>
{
};

void callOnce(const Fault& fault, const Operation& operation)
{
    RawServer server;
    RestApiJobManager client("127.0.0.1", server.port());
    fault.apply(server, operation);
    const auto deadline = stretched(operation.deadlineMilliseconds);

    const auto begun = Clock::now();
    EXPECT_EQ(operation.call(client), operation.failedResult) << operation;
    const auto taken = Clock::now() - begun;

    EXPECT_GE(taken, deadline - 2ms) << operation;
    EXPECT_LT(taken, deadline + stretched(5000)) << operation;
    EXPECT_LE(server.count(operation.route), 1u) << operation;
}

TEST_P(EachHangingFault, endsWithTheDeadlineAndTheFailureResult)
{
    // All at once: nearly all of it is waiting.
    std::vector<std::thread> threads;
    for (const Operation& operation : operations())
        threads.emplace_back([&] { callOnce(GetParam(), operation); });
    for (std::thread& thread : threads)
        thread.join();
}

INSTANTIATE_TEST_SUITE_P(RestApiJobManager, EachHangingFault, testing::ValuesIn(hangingFaults()),
    [](const testing::TestParamInfo<Fault>& testCase) { return testCase.param.name; });

/// The operations whose single missed deadline says that the service hangs, and the others.
class EachOperation : public testing::TestWithParam<Operation>
{
};

TEST_P(EachOperation, probesAfterOneMissIfItIsTheListOrAJobAndOtherwiseAfterTwo)
{
    RawServer server;
    RestApiJobManager client("127.0.0.1", server.port());
    server.replyToAll({ "", {}, 0, {}, RawReply::Then::Hang });
    const bool oneIsEnough = GetParam().name == "getJobList" || GetParam().name == "getJob";

    GetParam().call(client);
    EXPECT_TRUE(oneIsEnough ? probingBegins() : !isProbing());
    GetParam().call(client);
    EXPECT_TRUE(probingBegins());
}

/// Those that are not given so long that waiting for them twice takes too long.
std::vector<Operation> briefOperations()
{
    std::vector<Operation> list;
    std::copy_if(operations().begin(), operations().end(), std::back_inserter(list),
        [](const Operation& operation) { return operation.deadlineMilliseconds < 60000; });
    return list;
}

INSTANTIATE_TEST_SUITE_P(RestApiJobManager, EachOperation, testing::ValuesIn(briefOperations()),
    [](const testing::TestParamInfo<Operation>& testCase) { return testCase.param.name; });

} // namespace
