#include <gtest/gtest.h>

#include "double/bytes.h"
#include "ofp/util.h"

using namespace test;

TEST(GetEffData, CopiesTheSmallerLength)
{
    Bytes source = counting(12), destination(12);
    EXPECT_EQ(OFP_util_GetEffData(source.data(), 12, 8, destination.data()), 8u);
    EXPECT_EQ(destination, counting(8) + Bytes(4));
    EXPECT_EQ(OFP_util_GetEffData(source.data(), 3, 8, destination.data() + 8), 3u);
    EXPECT_EQ(destination, counting(8) + counting(3) + Bytes(1));
    EXPECT_EQ(OFP_util_GetEffData(nullptr, 0, 8, nullptr), 0u);
}

TEST(IsMemZero, IsOneForNoBytesAndForZeroBytes)
{
    EXPECT_EQ(OFP_util_IsMemZero(nullptr, 0), 1);
    for (size_t length = 1; length < 40; ++length) {
        Bytes bytes(length);
        EXPECT_EQ(OFP_util_IsMemZero(bytes.data(), length), 1) << length;
        for (size_t at = 0; at < length; ++at) {
            bytes[at] = 0x80;
            EXPECT_EQ(OFP_util_IsMemZero(bytes.data(), length), 0) << at << " of " << length;
            bytes[at] = 0;
        }
    }
}

TEST(IsMemZero, LooksAtNoByteBeyondTheLength)
{
    Bytes bytes = Bytes(8) + hex("ff");
    EXPECT_EQ(OFP_util_IsMemZero(bytes.data(), 8), 1);
}
