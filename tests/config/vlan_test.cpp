#include "config/setting.h"

using namespace test;

namespace {

const Codes with_bitmap = {{"Bitmap_CreateFromBuffer", OFP_RC_FAILED}};

// A bitmap object in network order: bytes of bits, bits, then the bits of the ids that are set.
Bytes map_of(std::initializer_list<BitmapRange> ranges)
{
    Bytes map = hex("00000200 00000ffe") + Bytes(512);
    for (const BitmapRange &range : ranges)
        for (uint32_t id = range.first; id <= range.last; ++id)
            map[8 + id / 8] |= static_cast<uint8_t>(1u << id % 8);
    return map;
}

const OfpVlanRangeList vlans = {
    .range = {{1, 10}, {100, 100}, {4000, 4094}, {7, 9}}, .count = 3, .instance_id = 0x0102};

OfpInstFilter filter(uint16_t kind)
{
    OfpInstFilter filter{.instance_id = 0x0102, .filter_kind = kind, .ext = 0x0708090a};
    filter.param_a = 0x0b0c;
    filter.param_b = 0x0d0e;
    return filter;
}

const Bytes vlan_list = hex("0001 0004 00000003"
                            "0003 0110 00000000 00000000 00000000 0102 0304") +
                        Bytes(256);

uint32_t set_list(uint16_t kind) { return with(OFP_set_VlanList, filter(kind), 0x0304); }

const std::vector<Setting> settings = {
    {"VlanList", [] { return set_list(0); }, vlan_list + hex("007c 0008 0102 0000 0708090a")},
    {"VlanListOfAPair", [] { return set_list(1); },
     vlan_list + hex("007c 0008 0102 0001 0708090a"
                     "007d 0008 00000000 0b0c 0d0e")},
    {"VlanListOfANumber", [] { return set_list(2); },
     vlan_list + hex("007c 0008 0102 0002 0708090a"
                     "007e 0004 0d0e0b0c")},
    {"VlanListOfAnInstance", [] { return set_list(3); },
     vlan_list + hex("007c 0008 0102 0003 0708090a")},
    {"VlanListOfAnotherPair", [] { return set_list(4); },
     vlan_list + hex("007c 0008 0102 0004 0708090a"
                     "007d 0008 00000000 0b0c 0d0e")},
    {"VlanListOfAnotherNumber", [] { return set_list(5); },
     vlan_list + hex("007c 0008 0102 0005 0708090a"
                     "007e 0004 0d0e0b0c")},
    {"VlanListOfNoKind", [] { return set_list(6); },
     vlan_list + hex("007c 0008 0102 0006 0708090a")},
    {.name = "InManageVlan",
     .call = [] { return with(OFP_set_InManageVlan, vlans); },
     .datagram = hex("0001 0004 00000011"
                     "0004 0004 0102 0000"
                     "005a 0208") +
                 map_of({{1, 1, 10}, {1, 100, 100}, {1, 4000, 4094}}),
     .codes = with_bitmap},
    {.name = "NormalForwardVlan",
     .call = [] { return with(OFP_set_NormalForwardVlan, vlans); },
     .datagram = hex("0001 0004 0000002f"
                     "005a 0208") +
                 map_of({{1, 1, 10}, {1, 100, 100}, {1, 4000, 4094}}),
     .codes = with_bitmap},
    {"QinQNetEnable", [] { return OFP_set_QinQNetEnable(0x0102, 0x0304); },
     hex("0001 0004 00000019"
         "00a4 0004 0304 0102")}, // the second argument first
    {"MacLearning", [] { return OFP_set_MacLearning(0x0102, 0x0304); },
     hex("0001 0004 00000012"
         "005c 0004 0102 0304")},
    {"DynMac", [] { return with(OFP_set_DynMac, {.instance_id = 0x0102, .enable = 0x0304}); },
     hex("0001 0004 0000000b"
         "0044 0004 0102 0304")},
};

INSTANTIATE_TEST_SUITE_P(Vlan, Setter, testing::ValuesIn(settings), name_of);

using SetRanges = uint32_t (*)(const OfpVlanRangeList *);

// What holds for both calls with a range list.
class VlanRanges : public PlatformTest, public testing::WithParamInterface<SetRanges> {
protected:
    VlanRanges() { platform.reply(result_reply(OFP_RC_OK)); }

    uint32_t set(const OfpVlanRangeList &list) { return GetParam()(&list); }
    // The bitmap that was sent, with its TLV header.
    Bytes sent() { return platform.sent.at(0).slice(GetParam() == OFP_set_InManageVlan ? 16 : 8); }
};

INSTANTIATE_TEST_SUITE_P(InManageVlan, VlanRanges, testing::Values(OFP_set_InManageVlan));
INSTANTIATE_TEST_SUITE_P(NormalForwardVlan, VlanRanges, testing::Values(OFP_set_NormalForwardVlan));

} // namespace

TEST_P(VlanRanges, LayOutAMapOfEveryUsableId)
{
    EXPECT_EQ(set(vlans), OFP_RC_OK);
    const auto ranges = platform.calls("Bitmap_SetRange");
    EXPECT_EQ(platform.calls("Bitmap_Create"),
              std::vector({Call{"Bitmap_CreateFromBuffer", {4094, 1024}}}));
    EXPECT_EQ(ranges, std::vector({Call{"Bitmap_SetRange", {1, 1, 10}},
                                   Call{"Bitmap_SetRange", {1, 100, 100}},
                                   Call{"Bitmap_SetRange", {1, 4000, 4094}}}));
}

TEST_P(VlanRanges, AreAnEmptyMapWithoutAPair)
{
    EXPECT_EQ(set({.range = {{1, 10}}, .count = 0}), OFP_RC_OK);
    EXPECT_EQ(sent(), hex("005a 0208") + map_of({}));
}

TEST_P(VlanRanges, AreReadForTenPairsAtMost)
{
    for (uint32_t count : {10u, 11u, 0xffffffffu}) {
        platform = Platform();
        platform.reply(result_reply(OFP_RC_OK));
        OfpVlanRangeList list{.count = count, .instance_id = 0xffff};
        for (uint16_t i = 0; i < 10; ++i)
            list.range[i] = {static_cast<uint16_t>(i * 100), static_cast<uint16_t>(i * 100)};
        EXPECT_EQ(set(list), OFP_RC_OK);
        EXPECT_EQ(platform.calls("Bitmap_SetRange").size(), 10u);
    }
}

TEST_P(VlanRanges, KeepTheLastIds)
{
    EXPECT_EQ(set({.range = {{4094, 4095}}, .count = 1}), OFP_RC_OK);
    EXPECT_EQ(sent(), hex("005a 0208") + map_of({{1, 4094, 4095}}));
}

TEST_P(VlanRanges, RefuseWhatIsNoVlanId)
{
    EXPECT_EQ(set({.range = {{1, 4096}}, .count = 1}), OFP_RC_FAILED);
    EXPECT_EQ(set({.range = {{1, 2}, {65535, 1}}, .count = 2}), OFP_RC_FAILED);
    EXPECT_EQ(platform.sockets_opened, 0u);
}

TEST_P(VlanRanges, FailBeforeAnythingIsSentWithoutAMap)
{
    platform.next("Bitmap_CreateFromBuffer", {0});
    EXPECT_EQ(set(vlans), OFP_RC_FAILED);
    EXPECT_EQ(platform.sequence(), "");
    EXPECT_EQ(platform.sequence("SERVICE_"), "");
}
