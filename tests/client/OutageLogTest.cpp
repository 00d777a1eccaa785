#include "client/OutageLog.h"

#include <gtest/gtest.h>
#include <iostream>

namespace {

using job_client::OutageLog;

/// Takes no character.
class BrokenBuffer : public std::streambuf
{
};

TEST(OutageLogTest, tellsInOneLineEach)
{
    const OutageLog log({ "127.0.0.1", 8082 });
    testing::internal::CaptureStderr();
    log.lost();
    log.back();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
        "job_manager: the job service at 127.0.0.1:8082 does not answer\n"
        "job_manager: the job service at 127.0.0.1:8082 answers again\n");
}

TEST(OutageLogTest, aStreamThatThrowsIsNoFailure)
{
    const OutageLog log({ "127.0.0.1", 8082 });
    BrokenBuffer broken;
    std::streambuf* const before = std::cerr.rdbuf(&broken);
    std::cerr.exceptions(std::ios::badbit);
    EXPECT_NO_THROW(log.lost());
    EXPECT_TRUE(std::cerr.bad());
    std::cerr.exceptions(std::ios::goodbit);
    std::cerr.rdbuf(before);
    std::cerr.clear();
}

} // namespace
