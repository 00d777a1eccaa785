#include "client/GuardedEndpoint.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

TEST(GuardedEndpointTest, anAddressAssignsAndConvertsLikeAText)
{
    GuardedAddress address(std::string("127.0.0.1"));
    EXPECT_EQ(std::string(address), "127.0.0.1");
    address = std::string("[::1]");
    const GuardedAddress copy(address);
    GuardedAddress other(std::string("x"));
    other = copy;
    EXPECT_EQ(std::string(other), "[::1]");
}

TEST(GuardedEndpointTest, aPortAssignsAndConvertsLikeANumber)
{
    GuardedPort port(8082);
    EXPECT_EQ(port, 8082);
    port = 1;
    const GuardedPort copy(port);
    GuardedPort other(2);
    other = copy;
    EXPECT_EQ(other, 1);
}

TEST(GuardedEndpointTest, anAssignmentToItselfChangesNothing)
{
    GuardedAddress address(std::string("127.0.0.1"));
    const GuardedAddress& same = address;
    address = same;
    EXPECT_EQ(std::string(address), "127.0.0.1");
}

TEST(GuardedEndpointTest, aReaderOnAnotherThreadSeesOneValueOrTheOther)
{
    const std::string one(100, '1');
    const std::string two(100, '2');
    GuardedAddress address(one);
    GuardedPort port(1);
    std::thread writer([&] {
        for (int i = 0; i < 2000; ++i) {
            address = i % 2 == 0 ? two : one;
            port = static_cast<unsigned short>(i % 2 + 1);
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const std::string read = address;
        EXPECT_TRUE(read == one || read == two);
        const unsigned short readPort = port;
        EXPECT_TRUE(readPort == 1 || readPort == 2);
    }
    writer.join();
}

} // namespace
