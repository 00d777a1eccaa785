#include "service/ExchangeFrame.h"

#include <gtest/gtest.h>

using namespace job_service;

namespace {

const std::string hello = encoded({ FrameType::Hello, "hi" }, 0);

TEST(ExchangeFrameTest, aFrameHasItsDocumentedBytes)
{
    EXPECT_EQ(hello.substr(0, 14), std::string("QZX1\x01\x00\x00\x02\x00\x00\x00\x00hi", 14));
    EXPECT_EQ(hello.size(), 18u);
}

TEST(ExchangeFrameTest, theChecksumIsThatOfTheStandard)
{
    // CRC-32 of "123456789" is cbf43926; of this frame it was worked out by another program.
    EXPECT_EQ(hello.substr(14), std::string("\x6a\xee\xf8\x11", 4));
}

TEST(ExchangeFrameTest, aFrameIsReadBackByteByByte)
{
    FrameReader reader;
    for (std::size_t i = 0; i + 1 < hello.size(); ++i) {
        reader.feed(hello.substr(i, 1));
        EXPECT_FALSE(reader.next());
    }
    reader.feed(hello.substr(hello.size() - 1));
    const auto frame = reader.next();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->type, FrameType::Hello);
    EXPECT_EQ(frame->payload, "hi");
}

TEST(ExchangeFrameTest, severalFramesComeInOnePiece)
{
    FrameReader reader;
    reader.feed(
        hello + encoded({ FrameType::Data, std::string(largestPayload, 'x') }, 1) + encoded({ FrameType::End, {} }, 2));
    EXPECT_EQ(reader.next()->type, FrameType::Hello);
    EXPECT_EQ(reader.next()->payload.size(), largestPayload);
    EXPECT_EQ(reader.next()->type, FrameType::End);
    EXPECT_FALSE(reader.next());
}

TEST(ExchangeFrameTest, bytesBeforeTheFirstFrameArePassedOver)
{
    FrameReader reader;
    reader.feed("rest of something QZ QZX");
    EXPECT_FALSE(reader.next());
    reader.feed(" " + hello);
    EXPECT_EQ(reader.next()->payload, "hi");
}

TEST(ExchangeFrameTest, bytesWithoutEndAreAFault)
{
    FrameReader reader;
    reader.feed(std::string(3 * largestPayload, 'x'));
    EXPECT_THROW(reader.next(), FrameBroken);
}

class BrokenFrame : public testing::TestWithParam<std::string>
{
};

TEST_P(BrokenFrame, isRefused)
{
    FrameReader reader;
    reader.feed(hello + GetParam());
    EXPECT_TRUE(reader.next());
    EXPECT_THROW(reader.next(), FrameBroken);
}

std::string changed(std::string bytes, std::size_t at, char value)
{
    bytes[at] = value;
    return bytes;
}

const std::string second = encoded({ FrameType::Data, "data" }, 1);

INSTANTIATE_TEST_SUITE_P(Kinds, BrokenFrame,
    testing::Values("some bytes between", changed(second, second.size() - 1, 'x'), changed(second, 13, 'x'),
        changed(second, 4, '\0'), changed(second, 4, '\x06'), changed(second, 6, '\xff'), changed(second, 11, '\x02'),
        encoded({ FrameType::Data, "data" }, 0), encoded({ FrameType::Data, "data" }, 2)));

} // namespace
