#include "client/ServiceAddress.h"

#include <gtest/gtest.h>

namespace {

using job_client::isLiteralAddress;
using job_client::serviceAddressOf;

TEST(ServiceAddressTest, anIpv4AddressIsTakenAsItIs)
{
    EXPECT_EQ(serviceAddressOf("127.0.0.1"), "127.0.0.1");
}

TEST(ServiceAddressTest, anIpv6AddressGetsBrackets)
{
    EXPECT_EQ(serviceAddressOf("::1"), "[::1]");
    EXPECT_EQ(serviceAddressOf("[::1]"), "[::1]");
}

TEST(ServiceAddressTest, localhostIsTheLoopbackAddress)
{
    EXPECT_EQ(serviceAddressOf("localhost"), "127.0.0.1");
}

TEST(ServiceAddressTest, anythingElseIsTakenAsItIs)
{
    EXPECT_EQ(serviceAddressOf("instrument.example"), "instrument.example");
    EXPECT_EQ(serviceAddressOf(""), "");
}

TEST(ServiceAddressTest, onlyAddressesAreLiteral)
{
    EXPECT_TRUE(isLiteralAddress("127.0.0.1"));
    EXPECT_TRUE(isLiteralAddress("[::1]"));
    for (const char* other :
        { "", "localhost", "127.0.0.1.example", "::1", "[::1", "[]", "127.0.0.1/x", "a@127.0.0.1" })
        EXPECT_FALSE(isLiteralAddress(other)) << other;
    EXPECT_FALSE(isLiteralAddress(std::string("127.0.0.1\0.example", 18)));
}

} // namespace
