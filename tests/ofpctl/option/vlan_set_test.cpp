#include <string>
#include <variant>

#include <gtest/gtest.h>

#include "option/vlan_set.h"

namespace ofpctl {
namespace {

VlanSet good(std::string_view text)
{
    auto parsed = parse_vlans(text);
    EXPECT_TRUE(std::holds_alternative<VlanSet>(parsed)) << std::get<std::string>(parsed);
    return std::get<VlanSet>(parsed);
}

std::string bad(std::string_view text)
{
    auto parsed = parse_vlans(text);
    EXPECT_TRUE(std::holds_alternative<std::string>(parsed)) << text;
    return std::get<std::string>(parsed);
}

TEST(VlanSet, IsSortedAndMerged)
{
    EXPECT_EQ(good("20,1-10,11,5-7"), (VlanSet{{1, 11}, {20, 20}}));
    EXPECT_EQ(format_vlans(good("4094,1")), "1,4094");
    EXPECT_EQ(format_vlans(good("3-3")), "3");
}

TEST(VlanSet, MayBeEmpty)
{
    EXPECT_EQ(good("none"), VlanSet{});
    EXPECT_EQ(format_vlans({}), "none");
}

TEST(VlanSet, HoldsIdsFrom1To4094)
{
    EXPECT_EQ(good("1-4094"), (VlanSet{{1, 4094}}));
    for (const std::string_view text : {"0", "4095", "4096", "x", "5-", "-5", "10-5", "1--2", "01"})
        EXPECT_NE(bad(text).find("is no VLAN from 1 to 4094"), std::string::npos) << bad(text);
    for (const std::string_view text : {"", "1,", ","})
        EXPECT_NE(bad(text).find("is no list of VLANs"), std::string::npos) << bad(text);
    EXPECT_NE(bad("1,,2").find("\"\" is no VLAN"), std::string::npos);
}

TEST(VlanSet, HasAtMostTheTenRangesOfARequest)
{
    EXPECT_EQ(good("1,3,5,7,9,11,13,15,17,19").size(), 10U);
    EXPECT_EQ(bad("1,3,5,7,9,11,13,15,17,19,21"), "11 ranges of VLANs; a request takes at most 10");
    EXPECT_EQ(good("1,2,3,4,5,6,7,8,9,10,11,12").size(), 1U) << "neighbours are one range";
}

TEST(VlanRangeList, CountsItsRanges)
{
    const OfpVlanRangeList list = vlan_range_list({{1, 10}, {20, 20}}, 7);
    EXPECT_EQ(list.count, 2U);
    EXPECT_EQ(list.instance_id, 7);
    EXPECT_EQ(list.range[1].first, 20);
    EXPECT_EQ(list.range[1].last, 20);
}

TEST(VlanMap, GivesBackWhatWasSet)
{
    VlanMap map;
    EXPECT_EQ(map.vlans(), VlanSet{});
    const BitmapRange range{1, 4000, 4094};
    Bitmap_SetRange(map.bitmap(), &range);
    Bitmap_Set(map.bitmap(), 1);
    EXPECT_EQ(map.vlans(), (VlanSet{{1, 1}, {4000, 4094}}));
}

TEST(VlanMap, ReadsWhatTravelledHoweverShort)
{
    const uint8_t travelled[] = {
        0x00, 0x00, 0x00, 0x04, // four bytes of bits
        0x00, 0x00, 0x00, 0x20, // 32 bits
        0x02, 0x01, 0x00, 0x00, // VLANs 1 and 8
    };
    EXPECT_EQ(VlanMap(travelled).vlans(), (VlanSet{{1, 1}, {8, 8}}));
    EXPECT_EQ(VlanMap(std::span(travelled).first(3)).vlans(), VlanSet{});
    EXPECT_EQ(VlanMap(std::span<const uint8_t>()).vlans(), VlanSet{});
    const uint8_t huge[] = {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff};
    EXPECT_EQ(VlanMap(huge).vlans(), VlanSet{}) << "a length that no map has";
}

} // namespace
} // namespace ofpctl
