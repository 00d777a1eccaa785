// Every operation with every way in which a service can go wrong, as far as it shows at once: the result, and that
// time and memory are bounded.

#include "client/Deadlines.h"
#include "client/RestApiJobManager.h"
#include "tests/client/Faults.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iterator>

namespace {

using namespace std::chrono_literals;

/// The kernel takes this much of an answer that nobody reads.
constexpr std::size_t socketBuffers = 16 * 1024 * 1024;

using Case = std::tuple<Fault, Operation>;

std::string caseName(const testing::TestParamInfo<Case>& info)
{
    return std::get<0>(info.param).name + "_" + std::get<1>(info.param).name;
}

std::string operationName(const testing::TestParamInfo<Operation>& info)
{
    return info.param.name;
}

class EachFault : public testing::TestWithParam<Case>
{
protected:
    const Fault& fault() const { return std::get<0>(GetParam()); }
    const Operation& operation() const { return std::get<1>(GetParam()); }

    RawServer server;
    RestApiJobManager client{ "127.0.0.1", server.port() };
};

TEST_P(EachFault, givesTheFailureResult)
{
    fault().apply(server, operation());

    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(operation().call(client), operation().failedResult);
    EXPECT_LT(std::chrono::steady_clock::now() - begun,
        job_client::deadlines::stretched(operation().deadlineMilliseconds) + 1s);
    EXPECT_LE(server.bytesSent(), operation().answerCap + socketBuffers);
}

TEST_P(EachFault, givesTheLastGoodAnswerIfItIsToBeRemembered)
{
    server.reply(operation().route, operation().goodReply());
    ASSERT_EQ(operation().call(client), operation().goodResult);
    fault().apply(server, operation());

    EXPECT_EQ(operation().call(client), operation().isRemembered ? operation().goodResult : operation().failedResult);
    if (operation().isWrite()) {
        EXPECT_LE(server.count(operation().route), 2u) << "a write was sent more than once";
    }
}

TEST_P(EachFault, movesTheChangeCountOnceIfItIsAnOutageAndNotAtAllOtherwise)
{
    const std::string countRoute = "GET /api/v1/change-count";
    const RawReply count = jsonReply(200, R"({"changeCount": 40})");
    server.reply(countRoute, count);
    ASSERT_EQ(client.getChangeCount(), 40);

    fault().apply(server, operation());
    operation().call(client);
    operation().call(client);
    if (fault().name == "refused")
        server.restart();
    server.reply(countRoute, count);

    const int moved = client.getChangeCount();
    if (fault().isOutage)
        EXPECT_GE(std::abs(moved - 40), 2);
    else
        EXPECT_EQ(moved, 40);
    EXPECT_EQ(client.getChangeCount(), moved);
}

INSTANTIATE_TEST_SUITE_P(RestApiJobManager, EachFault,
    testing::Combine(testing::ValuesIn(quickFaults()), testing::ValuesIn(operations())), caseName);

class EachOperation : public testing::TestWithParam<Operation>
{
protected:
    RawServer server;
    RestApiJobManager client{ "127.0.0.1", server.port() };
};

TEST_P(EachOperation, bytesBehindAnAnswerAreNoPartOfIt)
{
    RawReply reply = GetParam().goodReply();
    reply.bytes += "HTTP/1.1 500 Extra\r\nContent-Length: 0\r\n\r\n";
    server.replyToAll(reply);

    EXPECT_EQ(GetParam().call(client), GetParam().goodResult);
    EXPECT_EQ(GetParam().call(client), GetParam().goodResult);
}

TEST_P(EachOperation, anAnswerWithoutLengthIsGoodIfItIsWhole)
{
    RawReply reply = GetParam().goodReply();
    const auto length = reply.bytes.find("Content-Length");
    if (length != std::string::npos)
        reply.bytes.erase(length, reply.bytes.find("\r\n", length) + 2 - length);
    reply.then = RawReply::Then::Close;
    server.replyToAll(reply);

    EXPECT_EQ(GetParam().call(client), GetParam().goodResult);
}

TEST_P(EachOperation, theTypeMayNameTheCharacterSet)
{
    RawReply reply = GetParam().goodReply();
    const auto type = reply.bytes.find("application/json");
    if (type != std::string::npos)
        reply.bytes.replace(type, 16, "Application/JSON; charset=utf-8");
    server.replyToAll(reply);

    EXPECT_EQ(GetParam().call(client), GetParam().goodResult);
}

/// The operations whose answer has a body.
class EachBody : public EachOperation
{
};

TEST_P(EachBody, anAnswerOverTheCapIsNotTaken)
{
    const std::size_t rest = GetParam().answerCap - GetParam().goodBody.size();
    server.replyToAll(jsonReply(GetParam().goodStatus, GetParam().goodBody + std::string(rest + 1, ' ')));

    EXPECT_EQ(GetParam().call(client), GetParam().failedResult);
}

TEST_P(EachBody, anAnswerAsLongAsTheCapIsTaken)
{
    const std::size_t rest = GetParam().answerCap - GetParam().goodBody.size();
    server.replyToAll(jsonReply(GetParam().goodStatus, GetParam().goodBody + std::string(rest, ' ')));

    EXPECT_EQ(GetParam().call(client), GetParam().goodResult);
}

INSTANTIATE_TEST_SUITE_P(RestApiJobManager, EachOperation, testing::ValuesIn(operations()), operationName);

std::vector<Operation> operationsWithBody()
{
    std::vector<Operation> list;
    std::copy_if(operations().begin(), operations().end(), std::back_inserter(list),
        [](const Operation& operation) { return operation.goodStatus != 204; });
    return list;
}

INSTANTIATE_TEST_SUITE_P(RestApiJobManager, EachBody, testing::ValuesIn(operationsWithBody()), operationName);

} // namespace
