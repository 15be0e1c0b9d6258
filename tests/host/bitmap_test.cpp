#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "ofp/platform.h"

namespace {

using Bytes = std::vector<uint8_t>;

/* A map at an odd address of a block whose end the address sanitizer watches. */
struct Map {
    explicit Map(uint32_t bits, uint32_t size = 1024)
        : bytes(size + 1, 0xee), map(Bitmap_CreateFromBuffer(bits, bytes.data() + 1, size))
    {}

    uint32_t word(size_t at) const
    {
        uint32_t value = 0;
        memcpy(&value, bytes.data() + 1 + at, sizeof value);
        return value;
    }

    Bytes bytes;
    Bitmap *map;
};

Map hostile(uint32_t byte_count, uint32_t bits, size_t size)
{
    Map result(0, 8);
    result.bytes.assign(size + 1, 0xee);
    memcpy(result.bytes.data() + 1, &byte_count, 4);
    memcpy(result.bytes.data() + 5, &bits, 4);
    result.map = reinterpret_cast<Bitmap *>(result.bytes.data() + 1);
    return result;
}

uint32_t count(const Bitmap *map)
{
    uint32_t set = 0;
    for (uint32_t bit = 0; bit < 9000; ++bit) {
        set += Bitmap_Check(map, bit);
    }
    return set;
}

TEST(Bitmap, RoomIsRoundedUpToWholeWords)
{
    EXPECT_EQ(Map(0).word(0), 0u);
    EXPECT_EQ(Map(1).word(0), 4u);
    EXPECT_EQ(Map(32).word(0), 4u);
    EXPECT_EQ(Map(33).word(0), 8u);
    EXPECT_EQ(Map(4094).word(0), 512u);
    EXPECT_EQ(Map(4094).word(4), 4094u);
}

TEST(Bitmap, MapOf4094BitsKeepsVlan4094)
{
    Map m(4094);
    Bitmap_Set(m.map, 4094);
    Bitmap_Set(m.map, 4095);
    Bitmap_Set(m.map, 4096);
    EXPECT_EQ(Bitmap_Check(m.map, 4094), 1);
    EXPECT_EQ(Bitmap_Check(m.map, 4095), 1);
    EXPECT_EQ(Bitmap_Check(m.map, 4096), 0);
    EXPECT_EQ(count(m.map), 2u);
}

TEST(Bitmap, BufferTooSmallGivesNone)
{
    EXPECT_EQ(Map(4094, 519).map, nullptr);
    EXPECT_NE(Map(4094, 520).map, nullptr);
    EXPECT_EQ(Map(1, 7).map, nullptr);
    EXPECT_EQ(Map(UINT32_MAX, 1024).map, nullptr);
    EXPECT_EQ(Bitmap_CreateFromBuffer(1, nullptr, 100), nullptr);
}

TEST(Bitmap, NoMapIsLargerThanTheValueItTravelsIn)
{
    EXPECT_NE(Map(8128, 4096).map, nullptr);
    EXPECT_EQ(Map(8129, 4096).map, nullptr);
}

TEST(Bitmap, IsCreatedEmptyWithinItsRoom)
{
    Map m(40, 24);
    EXPECT_EQ(count(m.map), 0u);
    EXPECT_EQ(m.bytes[1 + 15], 0x00);
    EXPECT_EQ(m.bytes[1 + 16], 0xee);
}

TEST(Bitmap, BitsLieInBytesLowestFirst)
{
    Map m(16);
    Bitmap_Set(m.map, 0);
    Bitmap_Set(m.map, 9);
    Bitmap_Set(m.map, 15);
    EXPECT_EQ(m.bytes[1 + 8], 0x01);
    EXPECT_EQ(m.bytes[1 + 9], 0x82);
    Bitmap_Clear(m.map, 9);
    EXPECT_EQ(m.bytes[1 + 9], 0x80);
}

TEST(Bitmap, OnlyTheHeaderChangesOrder)
{
    Map m(4094);
    BitmapRange range{1, 100, 2000};
    Bitmap_SetRange(m.map, &range);
    Bytes before = m.bytes;
    Bitmap_H2N(m.map);
    const uint8_t header[] = {0x00, 0x00, 0x02, 0x00,  // 512 bytes of bits
                              0x00, 0x00, 0x0f, 0xfe}; // 4094 bits
    EXPECT_EQ(memcmp(m.bytes.data() + 1, header, sizeof header), 0);
    EXPECT_TRUE(std::equal(m.bytes.begin() + 9, m.bytes.end(), before.begin() + 9));
    Bitmap_H2N(m.map);
    EXPECT_EQ(m.bytes, before);
}

TEST(Bitmap, RangesEqualTheirBitsOneByOne)
{
    constexpr uint32_t edges[] = {0, 1, 7, 8, 9, 15, 16, 31, 63, 64, 94, 95, 96, 97, 5000};
    for (uint32_t first : edges) {
        for (uint32_t last : edges) {
            Map ranged(95);
            Map single(95);
            BitmapRange range{1, first, last};
            Bitmap_SetRange(ranged.map, &range);
            for (uint32_t bit = first; bit <= last; ++bit) {
                Bitmap_Set(single.map, bit);
            }
            EXPECT_EQ(ranged.bytes, single.bytes) << first << " to " << last;
        }
    }
}

TEST(Bitmap, RangeEndsAtTheRoomAndMayBeEmpty)
{
    Map m(4094);
    BitmapRange whole{1, 0, UINT32_MAX};
    BitmapRange reversed{1, 7, 3};
    BitmapRange none{0, 0, 100};
    Bitmap_SetRange(m.map, &reversed);
    Bitmap_SetRange(m.map, &none);
    Bitmap_SetRange(m.map, nullptr);
    EXPECT_EQ(count(m.map), 0u);
    Bitmap_SetRange(m.map, &whole);
    EXPECT_EQ(count(m.map), 4096u);
    EXPECT_EQ(m.bytes[1 + 520], 0xee);
}

TEST(Bitmap, CopyKeepsTheTargetsRoom)
{
    Map wide(4094);
    Map narrow(64);
    BitmapRange range{1, 0, 4095};
    Bitmap_SetRange(wide.map, &range);
    Bitmap_Copy(narrow.map, wide.map);
    EXPECT_EQ(count(narrow.map), 64u);
    EXPECT_EQ(narrow.bytes[1 + 16], 0xee);
    Bitmap_Copy(wide.map, narrow.map);
    EXPECT_EQ(count(wide.map), 64u);
    EXPECT_EQ(wide.word(0), 512u);
}

TEST(Bitmap, ForgedByteCountsReachNothing)
{
    for (uint32_t bytes : {1017u, 1024u, 0x00020000u, 0x7fffffffu, 0x80000000u, UINT32_MAX}) {
        Map forged = hostile(bytes, UINT32_MAX, 1024);
        Bytes before = forged.bytes;
        BitmapRange range{1, 0, UINT32_MAX};
        Bitmap_Set(forged.map, 8000);
        Bitmap_Clear(forged.map, 8000);
        Bitmap_SetRange(forged.map, &range);
        Bitmap_Zero(forged.map);
        EXPECT_EQ(Bitmap_Check(forged.map, 0), 0);
        EXPECT_EQ(forged.bytes, before) << bytes;

        Map target(4094);
        Bitmap_Set(target.map, 5);
        Bitmap_Copy(target.map, forged.map);
        EXPECT_EQ(count(target.map), 0u) << bytes;
        Bitmap_H2N(forged.map);
        Bitmap_H2N(forged.map);
        EXPECT_EQ(forged.bytes, before) << bytes;
    }
}

TEST(Bitmap, LargestBelievableByteCountStaysInThe1024ByteValue)
{
    Map received = hostile(1016, 8128, 1024);
    Map target(8128);
    Bitmap_Set(received.map, 8127);
    EXPECT_EQ(Bitmap_Check(received.map, 8127), 1);
    EXPECT_EQ(Bitmap_Check(received.map, 8128), 0);
    Bitmap_Copy(target.map, received.map);
    EXPECT_EQ(Bitmap_Check(target.map, 8127), 1);
}

TEST(Bitmap, NullIsNoMap)
{
    Map m(8);
    Bitmap_Set(m.map, 1);
    Bitmap_Zero(nullptr);
    Bitmap_Set(nullptr, 1);
    Bitmap_H2N(nullptr);
    Bitmap_Copy(nullptr, m.map);
    Bitmap_Copy(m.map, nullptr);
    EXPECT_EQ(Bitmap_Check(nullptr, 1), 0);
    EXPECT_EQ(count(m.map), 0u);
}

} // namespace
