#include "ofp/vlan.h"

#include <cstdlib>

#include "double/platform.h"

using namespace test;

namespace {

class VlanMask : public PlatformTest {
protected:
    VlanMask() { Bitmap_SetRange(map, &all); }

    // The ids that a VLAN id with a mask stands for.
    std::vector<uint32_t> ids(uint16_t vlan_id, uint16_t mask)
    {
        const OfpVlanMask vlan = {vlan_id, mask};
        OFP_util_GetBitmapFromVlanMask(&vlan, map);
        std::vector<uint32_t> found;
        for (uint32_t id = 0; id < 4096; ++id)
            if (Bitmap_Check(map, id))
                found.push_back(id);
        return found;
    }

    // The same, told plainly.
    static std::vector<uint32_t> matching(uint32_t vlan_id, uint32_t mask)
    {
        std::vector<uint32_t> found;
        for (uint32_t id = 1; id <= 4094; ++id)
            if ((id & mask) == (vlan_id & mask))
                found.push_back(id);
        return found;
    }

private:
    static constexpr BitmapRange all = {1, 0, 4095}; // what is there before is cleared
    alignas(8) uint8_t buffer[1024] = {};
    Bitmap *map = Bitmap_CreateFromBuffer(4094, buffer, sizeof buffer);
};

using Ids = std::vector<uint32_t>;

// In a process of its own, where nothing was asked before.
[[noreturn]] void ask_for_the_smallest_id()
{
    platform.min_vlan = 0xffff;
    const bool unknown = OFP_util_GetMinVlanID() == 0xffff && OFP_util_GetMinVlanID() == 0xffff;
    const bool asked_again = platform.calls("VLAN_GetMinVlanID").size() == 2;
    platform.min_vlan = 2;
    const bool known = OFP_util_GetMinVlanID() == 2;
    platform.min_vlan = 3;
    const bool kept = OFP_util_GetMinVlanID() == 2;
    const bool asked_once_more = platform.calls("VLAN_GetMinVlanID").size() == 3;
    std::_Exit(unknown && asked_again && known && kept && asked_once_more ? 0 : 1);
}

} // namespace

TEST(MinVlanIDDeathTest, IsAskedForUntilItIsKnown)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(ask_for_the_smallest_id(), testing::ExitedWithCode(0), "");
}

TEST(MaxVlanID, Is4094)
{
    EXPECT_EQ(OFP_util_GetMaxVlanID(), 4094);
    EXPECT_EQ(OFP_util_GetMaxVlanID(), 4094);
}

TEST_F(VlanMask, OfAllBitsStandsForTheIdAlone)
{
    EXPECT_EQ(ids(100, 0x0fff), Ids({100}));
    EXPECT_EQ(ids(100, 0xffff), Ids({100}));
    EXPECT_EQ(ids(0, 0xffff), Ids({0})); // usable or not
    EXPECT_EQ(ids(4095, 0x0fff), Ids({4095}));
}

TEST_F(VlanMask, OfNoBitsStandsForEveryUsableId)
{
    EXPECT_EQ(ids(0x0fff, 0), matching(0, 0));
    EXPECT_EQ(ids(0, 0), matching(0, 0));
    const Call range = {"Bitmap_SetRange", {1, 1, 4094}};
    EXPECT_EQ(platform.calls("Bitmap_SetRange").back(), range);
    EXPECT_TRUE(platform.calls("Bitmap_Set").back() == range) << "set one by one";
}

TEST_F(VlanMask, OfSomeBitsStandsForTheIdsThatAgreeOnThem)
{
    EXPECT_EQ(ids(100, 0x0ff0),
              Ids({96, 97, 98, 99, 100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111}));
    EXPECT_EQ(ids(5, 0x000f), matching(5, 0x000f));       // with holes
    EXPECT_EQ(ids(0, 0x0ff0), matching(0, 0x0ff0));       // from the smallest id
    EXPECT_EQ(ids(4095, 0x0ff0), matching(4095, 0x0ff0)); // to the largest
    EXPECT_EQ(ids(0x0123, 0x0fff & ~0x0404), matching(0x0123, 0x0fff & ~0x0404));
}

TEST_F(VlanMask, OfAllUsedBitsButForAnUnusableIdStandsForNone)
{
    EXPECT_EQ(ids(0, 0x1fff), Ids());
    EXPECT_EQ(ids(4095, 0x1fff), Ids());
}

TEST_F(VlanMask, OfNoIdStandsForNone)
{
    for (uint16_t mask : std::initializer_list<uint16_t>{0, 0x0ff0, 0x0fff, 0xffff})
        EXPECT_EQ(ids(0xffff, mask), Ids()) << mask;
}

TEST(AllBitMasked, IsOneForNoBytesAndForAllOnes)
{
    EXPECT_EQ(OFP_util_IsAllBitMasked(nullptr, 0), 1);
    EXPECT_EQ(OFP_util_IsAllBitMasked(hex("ffffff").data(), 3), 1);
    EXPECT_EQ(OFP_util_IsAllBitMasked(hex("ff7fff").data(), 3), 0);
    EXPECT_EQ(OFP_util_IsAllBitMasked(hex("7fffff").data(), 3), 0);
    EXPECT_EQ(OFP_util_IsAllBitMasked(hex("fffffe").data(), 3), 0);
    EXPECT_EQ(OFP_util_IsAllBitMasked(hex("ffff00").data(), 2), 1); // none beyond the length
}

TEST(AllBitMasked, EndsForEveryLength)
{
    for (size_t length : {255u, 256u, 257u, 512u, 70'000u}) {
        Bytes mask(length, 0xff);
        EXPECT_EQ(OFP_util_IsAllBitMasked(mask.data(), length), 1) << length;
        mask.back() = 0;
        EXPECT_EQ(OFP_util_IsAllBitMasked(mask.data(), length), 0) << length;
    }
}
