#include <array>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "ofp/platform.h"

namespace {

using Bytes = std::vector<uint8_t>;

TEST(Tlv, HeaderIsTypeThenValueLengthInNetworkOrder)
{
    uint8_t buffer[8] = {};
    const uint8_t value[] = {0xaa, 0xbb, 0xcc};
    EXPECT_EQ(STLV_Set(buffer, sizeof buffer, 0x0123, 3, value), 7u);
    const uint8_t expected[] = {0x01, 0x23,       // type
                                0x00, 0x03,       // length of the value alone
                                0xaa, 0xbb, 0xcc, // value
                                0x00};
    EXPECT_EQ(memcmp(buffer, expected, sizeof buffer), 0);
}

TEST(Tlv, ThatDoesNotFitWritesNothing)
{
    const uint8_t value[4] = {1, 2, 3, 4};
    for (uint32_t space = 0; space < 8; ++space) {
        Bytes buffer(8, 0x55);
        EXPECT_EQ(STLV_Set(buffer.data(), space, 1, 4, value), 0u) << space;
        EXPECT_EQ(buffer, Bytes(8, 0x55)) << space;
    }
    Bytes exact(8);
    EXPECT_EQ(STLV_Set(exact.data(), 8, 1, 4, value), 8u);
}

TEST(Tlv, LengthThatTheHeaderCannotTellIsRefused)
{
    Bytes buffer(80'000);
    Bytes value(70'000);
    EXPECT_EQ(STLV_Set(buffer.data(), 80'000, 1, 65'536, value.data()), 0u);
    EXPECT_EQ(STLV_Set(buffer.data(), UINT32_MAX, 1, UINT32_MAX, value.data()), 0u);
    EXPECT_EQ(STLV_Set(buffer.data(), 80'000, 1, 65'535, value.data()), 65'539u);
}

TEST(Tlv, NullValueKeepsTheBytesThatStandThere)
{
    uint8_t buffer[] = {0, 0, 0, 0, 0xde, 0xad, 0xbe, 0xef};
    EXPECT_EQ(STLV_Set(buffer, sizeof buffer, 122, 4, nullptr), 8u);
    const uint8_t expected[] = {0x00, 0x7a, 0x00, 0x04, 0xde, 0xad, 0xbe, 0xef};
    EXPECT_EQ(memcmp(buffer, expected, sizeof buffer), 0);
}

TEST(Tlv, ValueMayStandWhereTheHeaderGoes)
{
    uint8_t buffer[8] = {1, 2, 3, 4};
    EXPECT_EQ(STLV_Set(buffer, sizeof buffer, 9, 4, buffer), 8u);
    const uint8_t expected[] = {0x00, 0x09, 0x00, 0x04, 1, 2, 3, 4};
    EXPECT_EQ(memcmp(buffer, expected, sizeof buffer), 0);
}

TEST(Tlv, GetPointsIntoTheBuffer)
{
    uint8_t buffer[] = {0x12, 0x34, 0x00, 0x02, 0xaa, 0xbb, 0x99};
    uint16_t type = 0;
    uint16_t length = 0;
    void *value = nullptr;
    EXPECT_EQ(STLV_Get(buffer, sizeof buffer, &type, &length, &value), 6u);
    EXPECT_EQ(type, 0x1234);
    EXPECT_EQ(length, 2);
    EXPECT_EQ(value, buffer + 4);
}

TEST(Tlv, EmptyValueIsAWholeTlv)
{
    uint8_t buffer[4] = {};
    uint16_t type = 0;
    uint16_t length = 1;
    void *value = nullptr;
    EXPECT_EQ(STLV_Set(buffer, 4, 7, 0, nullptr), 4u);
    EXPECT_EQ(STLV_Get(buffer, 4, &type, &length, &value), 4u);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(value, buffer + 4);
}

TEST(Tlv, CutShortAnywhereYieldsNothingAndANullValue)
{
    uint8_t buffer[] = {0x00, 0x01, 0x00, 0x04, 1, 2, 3, 4};
    for (uint32_t available = 0; available < sizeof buffer; ++available) {
        Bytes cut(buffer, buffer + available); // its end is watched by the address sanitizer
        uint16_t type = 0;
        uint16_t length = 0;
        void *value = buffer;
        EXPECT_EQ(STLV_Get(cut.data(), available, &type, &length, &value), 0u) << available;
        EXPECT_EQ(value, nullptr) << available;
    }
}

TEST(Tlv, OddAddressesWork)
{
    uint8_t buffer[16] = {};
    uint16_t type = 0;
    uint16_t length = 0;
    void *value = nullptr;
    EXPECT_EQ(STLV_Set(buffer + 1, 15, 0xfffe, 5, "hello"), 9u);
    EXPECT_EQ(STLV_Get(buffer + 1, 15, &type, &length, &value), 9u);
    EXPECT_EQ(type, 0xfffe);
    EXPECT_EQ(memcmp(value, "hello", 5), 0);
}

} // namespace
