#include "openflow/oxm.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "openflow/build.h"

namespace {

using namespace openflow;
using build::hex;
using build::Message;

std::optional<Error> check(const Message &bytes)
{
    const auto match = parse_match(bytes);
    return match ? check_match(*match) : std::optional(match.error());
}

std::optional<Error> check(std::initializer_list<Message> entries)
{
    return check(build::match(entries));
}

Error bad_match(BadMatchCode code) { return {OFPET_BAD_MATCH, code}; }

const Message ETH_TYPE_IPV4 = build::oxm16(OFPXMT_ETH_TYPE, 0x0800);
const Message ETH_TYPE_IPV6 = build::oxm16(OFPXMT_ETH_TYPE, 0x86dd);
const Message ETH_TYPE_ARP = build::oxm16(OFPXMT_ETH_TYPE, 0x0806);
const Message ETH_TYPE_MPLS = build::oxm16(OFPXMT_ETH_TYPE, 0x8847);
const Message ETH_TYPE_PBB = build::oxm16(OFPXMT_ETH_TYPE, 0x88e7);

Message ip_proto(uint8_t proto) { return build::oxm8(OFPXMT_IP_PROTO, proto); }

TEST(OxmWalk, GivesClassFieldValueAndMaskOfEachEntry)
{
    const Message bytes = hex("80 00 00 04  00 00 00 07"                // in_port 7
                              "80 00 0d 04  10 64 1f ff"                // vlan_vid 100, masked
                              "ff ff 4a 08  00 00 0f e2  00 00 00 05"); // item 37
    OxmWalk walk(bytes);
    auto oxm = walk.next();
    ASSERT_TRUE(oxm);
    EXPECT_EQ(oxm->oxm_class, OFPXMC_OPENFLOW_BASIC);
    EXPECT_EQ(oxm->field, OFPXMT_IN_PORT);
    EXPECT_FALSE(oxm->has_mask);
    EXPECT_EQ(load32(oxm->value.data()), 7U);
    oxm = walk.next();
    ASSERT_TRUE(oxm);
    EXPECT_EQ(oxm->field, OFPXMT_VLAN_VID);
    EXPECT_TRUE(oxm->has_mask);
    EXPECT_EQ(load16(oxm->value.data()), 0x1064);
    EXPECT_EQ(load16(oxm->mask.data()), 0x1fff);
    oxm = walk.next();
    ASSERT_TRUE(oxm);
    EXPECT_EQ(oxm->oxm_class, OFPXMC_EXPERIMENTER);
    EXPECT_EQ(oxm->field, 37);
    EXPECT_EQ(oxm->value.size(), 8U);
    EXPECT_EQ(oxm->entry.size(), 12U);
    EXPECT_FALSE(walk.next());
    EXPECT_FALSE(walk.truncated());
}

TEST(OxmWalk, EndsAtAnEntryThatIsCutShort)
{
    const Message bytes = hex("80 00 00 04  00 00 00");
    OxmWalk walk(bytes);
    EXPECT_FALSE(walk.next());
    EXPECT_TRUE(walk.truncated());
    EXPECT_FALSE(walk.next());
}

TEST(Match, NeedsTypeOxm)
{
    EXPECT_EQ(check(hex("00 00 00 04  00 00 00 00")), bad_match(OFPBMC_BAD_TYPE));
}

TEST(Match, NeedsALengthThatHoldsItsHeaderAndFitsWithItsPadding)
{
    EXPECT_EQ(check(hex("00 01 00 03  00 00 00 00")), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check(hex("00 01 00 09  00 00 00 00")), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check(hex("00 01 00 0c  80 00 00 04  00 00 00 07")), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check(hex("00 01 00")), bad_match(OFPBMC_BAD_LEN));
}

TEST(Match, MayBeEmptyAndItsPadBytesAreAnything)
{
    EXPECT_FALSE(check(hex("00 01 00 04  ff ff ff ff")));
    const auto match = parse_match(hex("00 01 00 04  ff ff ff ff  00 03"));
    ASSERT_TRUE(match);
    EXPECT_EQ(match->bytes.size(), 8U);
    EXPECT_TRUE(match->entries.empty());
}

TEST(Match, RefusesAnEntryLongerThanWhatIsLeft)
{
    EXPECT_EQ(check(hex("00 01 00 0b  80 00 00 04  00 00 00  00 00 00 00 00")),
              bad_match(OFPBMC_BAD_LEN));
}

// Items without a known form announce data that does not follow.
TEST(Match, RefusesAnItemThatAnnouncesMoreThanFollows)
{
    EXPECT_EQ(check(hex("00 01 00 0c  ff ff 14 08  00 00 0f e2  00 00 00 00")),
              bad_match(OFPBMC_BAD_LEN));
}

TEST(Match, RefusesUnknownClassesAndFields)
{
    const std::array<uint8_t, 4> four = {};
    EXPECT_EQ(check({build::oxm_bytes(0x8001, 0, four)}), bad_match(OFPBMC_BAD_FIELD));
    EXPECT_EQ(check({build::oxm_bytes(0x0000, 0, four)}), bad_match(OFPBMC_BAD_FIELD));
    EXPECT_EQ(check({build::oxm_bytes(OFPXMC_OPENFLOW_BASIC, 40, four)}),
              bad_match(OFPBMC_BAD_FIELD));
    EXPECT_EQ(check({build::item(65, four)}), bad_match(OFPBMC_BAD_FIELD));
}

TEST(Match, RefusesTheSameFieldTwice)
{
    EXPECT_EQ(check({build::oxm32(OFPXMT_IN_PORT, 1), build::oxm32(OFPXMT_IN_PORT, 1)}),
              bad_match(OFPBMC_DUP_FIELD));
    const std::array<uint8_t, 4> data = {0, 0, 0, 1};
    EXPECT_EQ(check({build::item(37, data), build::item(37, data)}), bad_match(OFPBMC_DUP_FIELD));
    EXPECT_EQ(check({build::item(64, data), build::item(64, data)}), bad_match(OFPBMC_DUP_FIELD));
    EXPECT_FALSE(check({build::item(37, data), build::item(64, data)}));
}

struct FormCase {
    const char *name;
    Message entry;
    std::vector<Message> before; // what the entry needs
};

std::vector<FormCase> all_basic_fields()
{
    const std::vector<Message> ip = {ETH_TYPE_IPV4};
    const std::vector<Message> arp = {ETH_TYPE_ARP};
    const std::vector<Message> ip6 = {ETH_TYPE_IPV6};
    const std::vector<Message> mpls = {ETH_TYPE_MPLS};
    const auto proto = [](const Message &eth_type, uint8_t number) {
        return std::vector<Message>{eth_type, ip_proto(number)};
    };
    const auto nd = [](uint8_t type) {
        return std::vector<Message>{ETH_TYPE_IPV6, ip_proto(58),
                                    build::oxm8(OFPXMT_ICMPV6_TYPE, type)};
    };
    const std::array<uint8_t, 6> mac = {2, 0, 0, 0, 0, 1};
    const std::array<uint8_t, 16> ipv6 = {0x20, 1};
    const auto bytes = [](uint8_t field, std::span<const uint8_t> value) {
        return build::oxm_bytes(OFPXMC_OPENFLOW_BASIC, field, value);
    };
    return {
        {"in_port", build::oxm32(0, 1), {}},
        {"in_phy_port", build::oxm32(1, 1), {build::oxm32(0, 1)}},
        {"metadata", build::oxm64(2, 1), {}},
        {"eth_dst", bytes(3, mac), {}},
        {"eth_src", bytes(4, mac), {}},
        {"eth_type", build::oxm16(5, 0x0800), {}},
        {"vlan_vid", build::oxm16(6, 0x1001), {}},
        {"vlan_pcp", build::oxm8(7, 7), {build::oxm16(6, 0x1001)}},
        {"ip_dscp", build::oxm8(8, 63), ip},
        {"ip_ecn", build::oxm8(9, 3), ip},
        {"ip_proto", build::oxm8(10, 255), ip},
        {"ipv4_src", build::oxm32(11, 1), ip},
        {"ipv4_dst", build::oxm32(12, 1), ip},
        {"tcp_src", build::oxm16(13, 1), proto(ETH_TYPE_IPV4, 6)},
        {"tcp_dst", build::oxm16(14, 1), proto(ETH_TYPE_IPV6, 6)},
        {"udp_src", build::oxm16(15, 1), proto(ETH_TYPE_IPV4, 17)},
        {"udp_dst", build::oxm16(16, 1), proto(ETH_TYPE_IPV6, 17)},
        {"sctp_src", build::oxm16(17, 1), proto(ETH_TYPE_IPV4, 132)},
        {"sctp_dst", build::oxm16(18, 1), proto(ETH_TYPE_IPV6, 132)},
        {"icmpv4_type", build::oxm8(19, 1), proto(ETH_TYPE_IPV4, 1)},
        {"icmpv4_code", build::oxm8(20, 1), proto(ETH_TYPE_IPV4, 1)},
        {"arp_op", build::oxm16(21, 1), arp},
        {"arp_spa", build::oxm32(22, 1), arp},
        {"arp_tpa", build::oxm32(23, 1), arp},
        {"arp_sha", bytes(24, mac), arp},
        {"arp_tha", bytes(25, mac), arp},
        {"ipv6_src", bytes(26, ipv6), ip6},
        {"ipv6_dst", bytes(27, ipv6), ip6},
        {"ipv6_flabel", build::oxm32(28, 0xfffff), ip6},
        {"icmpv6_type", build::oxm8(29, 135), proto(ETH_TYPE_IPV6, 58)},
        {"icmpv6_code", build::oxm8(30, 1), proto(ETH_TYPE_IPV6, 58)},
        {"ipv6_nd_target", bytes(31, ipv6), nd(135)},
        {"ipv6_nd_sll", bytes(32, mac), nd(135)},
        {"ipv6_nd_tll", bytes(33, mac), nd(136)},
        {"mpls_label", build::oxm32(34, 0xfffff), mpls},
        {"mpls_tc", build::oxm8(35, 7), mpls},
        {"mpls_bos", build::oxm8(36, 1), mpls},
        {"pbb_isid", build::oxm32(37, 0xffffff), {ETH_TYPE_PBB}},
        {"tunnel_id", build::oxm64(38, 1), {}},
        {"ipv6_exthdr", build::oxm16(39, 0x1ff), ip6},
    };
}

Message with(const std::vector<Message> &before, const Message &entry)
{
    std::vector<Message> all = before;
    all.push_back(entry);
    return build::match(std::span<const Message>(all));
}

TEST(BasicField, IsAcceptedBehindWhatItNeedsAndRefusedWithout)
{
    for (const FormCase &each : all_basic_fields()) {
        EXPECT_EQ(oxm_name(OFPXMC_OPENFLOW_BASIC, each.entry[2] >> 1), each.name);
        EXPECT_FALSE(check(with(each.before, each.entry))) << each.name;
        for (size_t kept = 0; kept < each.before.size(); kept++) {
            const std::vector<Message> part(each.before.begin(),
                                            each.before.begin() + static_cast<long>(kept));
            EXPECT_EQ(check(with(part, each.entry)), bad_match(OFPBMC_BAD_PREREQ)) << each.name;
        }
    }
}

TEST(BasicField, MustHaveItsLength)
{
    for (const FormCase &each : all_basic_fields()) {
        Message longer = each.entry;
        longer[3]++;
        longer.push_back(0);
        EXPECT_EQ(check(with(each.before, longer)), bad_match(OFPBMC_BAD_LEN)) << each.name;
        Message shorter = each.entry;
        shorter[3]--;
        shorter.pop_back();
        EXPECT_EQ(check(with(each.before, shorter)), bad_match(OFPBMC_BAD_LEN)) << each.name;
    }
}

// Value and a mask of all the field's bits.
Message masked(const Message &entry)
{
    Message result = entry;
    result[2] |= 1;
    result[3] = static_cast<uint8_t>(result[3] * 2);
    result.insert(result.end(), entry.begin() + 4, entry.end());
    return result;
}

TEST(BasicField, TakesAMaskWhereItMayHaveOne)
{
    const std::vector<uint8_t> maskable = {2,  3,  4,  6,  11, 12, 13, 14, 15, 16, 17,
                                           18, 22, 23, 24, 25, 26, 27, 28, 37, 38, 39};
    for (const FormCase &each : all_basic_fields()) {
        const uint8_t field = each.entry[2] >> 1;
        const bool may = std::find(maskable.begin(), maskable.end(), field) != maskable.end();
        const auto error = check(with(each.before, masked(each.entry)));
        EXPECT_EQ(error, may ? std::nullopt : std::optional(bad_match(OFPBMC_BAD_MASK)))
            << each.name;
    }
}

TEST(BasicField, RefusesAMaskOfAnotherLengthThanTheValue)
{
    EXPECT_EQ(check(hex("00 01 00 0f  80 00 05 07  00 00 00 00 00 00 00  00")),
              bad_match(OFPBMC_BAD_LEN));
}

TEST(BasicField, RefusesValueBitsBeyondItsWidth)
{
    const auto refused = [](const std::vector<Message> &before, const Message &entry) {
        EXPECT_EQ(check(with(before, entry)), bad_match(OFPBMC_BAD_VALUE));
    };
    refused({}, build::oxm16(OFPXMT_VLAN_VID, 0x2000));
    refused({build::oxm16(OFPXMT_VLAN_VID, 0x1001)}, build::oxm8(OFPXMT_VLAN_PCP, 8));
    refused({ETH_TYPE_IPV4}, build::oxm8(OFPXMT_IP_DSCP, 64));
    refused({ETH_TYPE_IPV4}, build::oxm8(OFPXMT_IP_ECN, 4));
    refused({ETH_TYPE_IPV6}, build::oxm32(OFPXMT_IPV6_FLABEL, 0x100000));
    refused({ETH_TYPE_MPLS}, build::oxm32(OFPXMT_MPLS_LABEL, 0x100000));
    refused({ETH_TYPE_MPLS}, build::oxm8(OFPXMT_MPLS_TC, 8));
    refused({ETH_TYPE_MPLS}, build::oxm8(OFPXMT_MPLS_BOS, 2));
    refused({ETH_TYPE_PBB}, build::oxm32(OFPXMT_PBB_ISID, 0x1000000));
    refused({ETH_TYPE_IPV6}, build::oxm16(OFPXMT_IPV6_EXTHDR, 0x200));
}

TEST(BasicField, RefusesMaskBitsBeyondItsWidth)
{
    EXPECT_EQ(check({build::oxm16(OFPXMT_VLAN_VID, 0x1001, 0x3fff)}), bad_match(OFPBMC_BAD_MASK));
    EXPECT_EQ(check({ETH_TYPE_PBB, build::oxm32(OFPXMT_PBB_ISID, 1, 0xffffffff)}),
              bad_match(OFPBMC_BAD_MASK));
}

TEST(BasicField, RefusesValueBitsOutsideTheMask)
{
    EXPECT_EQ(check({ETH_TYPE_IPV4, build::oxm32(OFPXMT_IPV4_SRC, 0x0a000005, 0xffffff00)}),
              bad_match(OFPBMC_BAD_WILDCARDS));
    EXPECT_FALSE(check({ETH_TYPE_IPV4, build::oxm32(OFPXMT_IPV4_SRC, 0x0a000000, 0xffffff00)}));
}

TEST(BasicField, KnowsWhichPortsAPacketCanComeFrom)
{
    for (const uint32_t port :
         {uint32_t{1}, uint32_t{OFPP_MAX}, uint32_t{OFPP_LOCAL}, uint32_t{OFPP_CONTROLLER}}) {
        EXPECT_FALSE(check({build::oxm32(OFPXMT_IN_PORT, port)})) << port;
    }
    for (const uint32_t port :
         {uint32_t{0}, OFPP_MAX + uint32_t{1}, uint32_t{OFPP_IN_PORT}, uint32_t{OFPP_ANY}}) {
        EXPECT_EQ(check({build::oxm32(OFPXMT_IN_PORT, port)}), bad_match(OFPBMC_BAD_VALUE)) << port;
    }
}

TEST(BasicField, TakesAVlanIdWithThePresentBitOrNone)
{
    EXPECT_FALSE(check({build::oxm16(OFPXMT_VLAN_VID, 0x1064)}));
    EXPECT_FALSE(check({build::oxm16(OFPXMT_VLAN_VID, OFPVID_NONE)}));
    EXPECT_FALSE(check({build::oxm16(OFPXMT_VLAN_VID, 0x1000, 0x1000)}));
    EXPECT_EQ(check({build::oxm16(OFPXMT_VLAN_VID, 0x0064)}), bad_match(OFPBMC_BAD_VALUE));
}

TEST(BasicField, HasNoPriorityBitsWithoutAVlanTag)
{
    EXPECT_EQ(check({build::oxm16(OFPXMT_VLAN_VID, OFPVID_NONE), build::oxm8(OFPXMT_VLAN_PCP, 1)}),
              bad_match(OFPBMC_BAD_PREREQ));
}

TEST(PrivateField, HasItsSizeAndNoMaskExceptTheCustomerVlan)
{
    const std::array<uint8_t, 80> range = {};
    const std::array<uint8_t, 2> two = {0x10, 0x64};
    const std::array<uint8_t, 1> one = {1};
    const std::array<uint8_t, 4> four = {0, 0, 0, 9};
    const std::array<uint8_t, 2> vid_mask = {0x1f, 0xff};
    EXPECT_FALSE(check(
        {build::private_field(PRIVATE_IP_RANGE, range), build::private_field(PRIVATE_VRF, two),
         build::private_field(PRIVATE_FRAGMENT, one), build::private_field(PRIVATE_OUT_PORT, four),
         build::private_field(PRIVATE_CVLAN_VID, two, vid_mask)}));
    EXPECT_EQ(check({build::private_field(PRIVATE_VRF, four)}), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check({build::private_field(PRIVATE_FRAGMENT, two)}), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check({build::private_field(PRIVATE_IP_RANGE, four)}), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check({build::private_field(PRIVATE_OUT_PORT, two)}), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check({build::private_field(PRIVATE_CVLAN_VID, four)}), bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check({build::private_field(PRIVATE_VRF, two, vid_mask)}),
              bad_match(OFPBMC_BAD_MASK));
}

TEST(PrivateField, HoldsTheCustomerVlanToTheRulesOfVlanIds)
{
    const std::array<uint8_t, 2> wide = {0x20, 0x01};
    const std::array<uint8_t, 2> absent = {0x00, 0x64};
    const std::array<uint8_t, 2> vid = {0x10, 0x64};
    const std::array<uint8_t, 2> low_bits = {0x10, 0x0f};
    EXPECT_EQ(check({build::private_field(PRIVATE_CVLAN_VID, wide)}), bad_match(OFPBMC_BAD_VALUE));
    EXPECT_EQ(check({build::private_field(PRIVATE_CVLAN_VID, absent)}),
              bad_match(OFPBMC_BAD_VALUE));
    EXPECT_EQ(check({build::private_field(PRIVATE_CVLAN_VID, vid, low_bits)}),
              bad_match(OFPBMC_BAD_WILDCARDS));
}

TEST(ExperimenterItem, BeginsWithTheExperimenterIdAndHasNoMask)
{
    EXPECT_FALSE(check(hex("00 01 00 0c  ff ff 14 04  00 00 0f e2  00 00 00 00"))); // type 10
    EXPECT_EQ(check(hex("00 01 00 0c  ff ff 14 04  00 00 0f e3  00 00 00 00")),
              bad_match(OFPBMC_BAD_FIELD));
    EXPECT_EQ(check(hex("00 01 00 0a  ff ff 14 02  00 00  00 00 00 00 00 00")),
              bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check(hex("00 01 00 10  ff ff 15 08  00 00 0f e2  ff ff ff ff")),
              bad_match(OFPBMC_BAD_MASK));
}

TEST(BatchInterfaces, GoOnInTheNextEntryOnlyWhenTheLastIsFull)
{
    std::vector<uint32_t> indexes(130);
    EXPECT_FALSE(check({build::interfaces(indexes)}));
    indexes.resize(124);
    EXPECT_FALSE(check({build::interfaces(indexes)}));
    indexes.resize(10);
    EXPECT_EQ(check({build::interfaces(indexes), build::interfaces(indexes)}),
              bad_match(OFPBMC_DUP_FIELD));
    indexes.resize(62);
    const std::array<uint8_t, 2> vrf = {0, 1};
    EXPECT_EQ(check({build::interfaces(indexes), build::private_field(PRIVATE_VRF, vrf),
                     build::interfaces(indexes)}),
              bad_match(OFPBMC_DUP_FIELD));
    EXPECT_EQ(check({build::interfaces(indexes), build::oxm32(OFPXMT_IN_PORT, 1),
                     build::interfaces(indexes)}),
              bad_match(OFPBMC_DUP_FIELD));
}

TEST(BatchInterfaces, AreWholeIndexesAndAtLeastOne)
{
    EXPECT_EQ(check(hex("00 01 00 0c  ff ff 76 04  00 00 0f e2  00 00 00 00")),
              bad_match(OFPBMC_BAD_LEN));
    EXPECT_EQ(check(hex("00 01 00 0e  ff ff 76 06  00 00 0f e2  00 01  00 00")),
              bad_match(OFPBMC_BAD_LEN));
    EXPECT_FALSE(check(hex("00 01 00 10  ff ff 76 08  00 00 0f e2  00 00 00 01")));
}

TEST(OxmName, KnowsPrivateFieldsAndItems)
{
    EXPECT_EQ(oxm_name(OFPXMC_EXPERIMENTER, PRIVATE_VRF), "vrf");
    EXPECT_EQ(oxm_name(OFPXMC_EXPERIMENTER, PRIVATE_CVLAN_VID), "cvlan_vid");
    EXPECT_EQ(oxm_name(OFPXMC_EXPERIMENTER, 37), "experimenter");
    EXPECT_EQ(oxm_name(OFPXMC_EXPERIMENTER, 64), "experimenter");
    EXPECT_EQ(oxm_name(OFPXMC_EXPERIMENTER, 65), "");
    EXPECT_EQ(oxm_name(OFPXMC_OPENFLOW_BASIC, 40), "");
}

} // namespace
