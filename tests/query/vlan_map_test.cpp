#include "query/vlan_map.h"

#include "query/query_case.h"

using namespace test;

namespace {

class VlanMap : public PlatformTest {
protected:
    VlanMap() : map(Bitmap_CreateFromBuffer(96, room, sizeof room)) { Bitmap_Set(map, 7); }

    // Copies a value and returns the caller's bits, which were those of VLAN 7.
    Bytes copied(const Bytes &value)
    {
        const ofp::Tlv tlv{90, static_cast<uint16_t>(value.size()), value.data()};
        ofp::copy_vlan_map(tlv, map);
        EXPECT_EQ(bytes_of(room).slice(20), Bytes(12)); // behind the bits
        return bytes_of(room).slice(8, 12);
    }

    alignas(8) uint8_t room[32] = {};
    Bitmap *map;
};

const Bytes untouched = hex("80") + Bytes(11);

} // namespace

TEST_F(VlanMap, IsCopiedIntoTheCallersBitmap)
{
    EXPECT_EQ(copied(hex("0000000c 00000060 0102 0304 0506 0708 090a 0b0c")),
              hex("0102 0304 0506 0708 090a 0b0c"));
}

TEST_F(VlanMap, ASmallerOneLeavesTheRestEmpty)
{
    EXPECT_EQ(copied(hex("00000004 00000020 01020304")), hex("01020304") + Bytes(8));
    EXPECT_EQ(copied(hex("00000000 00000000")), Bytes(12));
}

TEST_F(VlanMap, ALargerOneIsCopiedAsFarAsThereIsRoom)
{
    EXPECT_EQ(copied(hex("00000010 00000080") + counting(16)), counting(12));
    EXPECT_EQ(copied(hex("000003f8 00001fc0") + Bytes(1016, 0x55)), Bytes(12, 0x55));
    EXPECT_EQ(platform.calls("Bitmap_Copy")[1].arguments[1], 12u); // never more than the caller's
}

TEST_F(VlanMap, BitsThatDidNotArriveAreZero)
{
    EXPECT_EQ(copied(hex("0000000c 00000060 01020304")), hex("01020304") + Bytes(8));
}

TEST_F(VlanMap, OneThatClaimsMoreThanItCanHoldIsLeftOut)
{
    for (const char *length : {"000003f9", "00001000", "ffffffff", "80000000", "0c000000"})
        EXPECT_EQ(copied(hex(length) + Bytes(1020, 0x55)), untouched);
    EXPECT_EQ(copied({}), untouched);
    EXPECT_EQ(copied(hex("00 00 00")), untouched);
    EXPECT_TRUE(platform.calls("Bitmap_H2N").empty());
}

TEST_F(VlanMap, NothingIsCopiedWithoutABitmap)
{
    map = nullptr;
    EXPECT_EQ(copied(hex("00000004 00000020 01020304")), untouched);
}
