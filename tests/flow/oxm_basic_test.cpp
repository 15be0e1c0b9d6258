#include <cstring>

#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

using Encoder = uint64_t (*)(const OfpFRMatch *match, uint64_t room, uint8_t *out);

constexpr uint8_t untouched = 0xee;

// The field alone on the wire, and with its mask bit set; ee where nothing is written.
struct Row {
    unsigned bit;
    Encoder encode;
    const char *plain;
    const char *masked;
};

// clang-format off
const Row rows[] = {
    {0, OFP_encodeoxm_InPort,         "8000 00 04 01020304",          "8000 01 08 01020304 eeeeeeee"},
    {1, OFP_encodeoxm_InPhyPort,      "8000 02 04 05060708",          "8000 03 08 05060708 eeeeeeee"},
    {2, OFP_encodeoxm_MetaData,       "8000 04 08 0102030405060708",  "8000 05 10 0102030405060708 ff00000000000001"},
    {3, OFP_encodeoxm_EthDst,         "8000 06 06 111213141516",      "8000 07 0c 111213141516 ffffff000001"},
    {4, OFP_encodeoxm_EthSrc,         "8000 08 06 212223242526",      "8000 09 0c 212223242526 ffffff000002"},
    {5, OFP_encodeoxm_EthType,        "8000 0a 02 86dd",              "8000 0b 04 86dd eeee"},
    {6, OFP_encodeoxm_VlanID,         "8000 0c 02 1064",              "8000 0d 04 1064 1fff"},
    {7, OFP_encodeoxm_VlanPcp,        "8000 0e 01 05",                "8000 0f 02 05 ee"},
    {8, OFP_encodeoxm_IpDscp,         "8000 10 01 2e",                "8000 11 02 2e ee"},
    {9, OFP_encodeoxm_IpEcn,          "8000 12 01 02",                "8000 13 02 02 ee"},
    {10, OFP_encodeoxm_IpProto,       "8000 14 01 11",                "8000 15 02 11 ee"},
    {11, OFP_encodeoxm_Ipv4Src,       "8000 16 04 0a000001",          "8000 17 08 0a000001 ff000000"},
    {12, OFP_encodeoxm_Ipv4Dst,       "8000 18 04 c0a80102",          "8000 19 08 c0a80102 ffffff00"},
    {13, OFP_encodeoxm_TcpSrc,        "8000 1a 02 1001",              "8000 1b 04 1001 f001"},
    {14, OFP_encodeoxm_TcpDst,        "8000 1c 02 1002",              "8000 1d 04 1002 f002"},
    {15, OFP_encodeoxm_UdpSrc,        "8000 1e 02 1003",              "8000 1f 04 1003 f003"},
    {16, OFP_encodeoxm_UdpDst,        "8000 20 02 1004",              "8000 21 04 1004 f004"},
    {17, OFP_encodeoxm_SctpSrc,       "8000 22 02 1005",              "8000 23 04 1005 f005"},
    {18, OFP_encodeoxm_SctpDst,       "8000 24 02 1006",              "8000 25 04 1006 f006"},
    {19, OFP_encodeoxm_IcmpV4Type,    "8000 26 01 08",                "8000 27 02 08 ee"},
    {20, OFP_encodeoxm_IcmpV4Code,    "8000 28 01 09",                "8000 29 02 09 ee"},
    {21, OFP_encodeoxm_ArpOp,         "8000 2a 02 0102",              "8000 2b 04 0102 eeee"},
    {22, OFP_encodeoxm_ArpSpa,        "8000 2c 04 0a000003",          "8000 2d 08 0a000003 ffff0001"},
    {23, OFP_encodeoxm_ArpTpa,        "8000 2e 04 0a000004",          "8000 2f 08 0a000004 ffff0002"},
    {24, OFP_encodeoxm_ArpSha,        "8000 30 06 313233343536",      "8000 31 0c 313233343536 ffffff000003"},
    {25, OFP_encodeoxm_ArpTha,        "8000 32 06 414243444546",      "8000 33 0c 414243444546 ffffff000004"},
    {26, OFP_encodeoxm_Ipv6Src,       "8000 34 10 20010db8000000000000000000000001",
                                      "8000 35 20 20010db8000000000000000000000001 ffffffff000000000000000000000000"},
    {27, OFP_encodeoxm_Ipv6Dst,       "8000 36 10 20010db8000000000000000000000002",
                                      "8000 37 20 20010db8000000000000000000000002 ffffffffffff00000000000000000000"},
    {28, OFP_encodeoxm_Ipv6Flabel,    "8000 38 04 00012345",          "8000 39 08 00012345 000fff00"},
    {29, OFP_encodeoxm_IcmpV6Type,    "8000 3a 01 87",                "8000 3b 02 87 ee"},
    {30, OFP_encodeoxm_IcmpV6Code,    "8000 3c 01 01",                "8000 3d 02 01 ee"},
    {31, OFP_encodeoxm_Ipv6NdTarget,  "8000 3e 10 fe800000000000000000000000000003",
                                      "8000 3f 20 fe800000000000000000000000000003 eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee"},
    {32, OFP_encodeoxm_Ipv6NdSll,     "8000 40 06 515253545556",      "8000 41 0c 515253545556 eeeeeeeeeeee"},
    {33, OFP_encodeoxm_Ipv6NdTll,     "8000 42 06 616263646566",      "8000 43 0c 616263646566 eeeeeeeeeeee"},
    {34, OFP_encodeoxm_MplsLabel,     "8000 44 04 000abcde",          "8000 45 08 000abcde eeeeeeee"},
    {35, OFP_encodeoxm_MplsTc,        "8000 46 01 07",                "8000 47 02 07 ee"},
    {36, OFP_encodeoxm_MplsBos,       "8000 48 01 01",                "8000 49 02 01 ee"},
    {37, OFP_encodeoxm_PbbIsid,       "8000 4a 04 00654321",          "8000 4b 08 00654321 00ffff00"},
    {38, OFP_encodeoxm_TunnelId,      "8000 4c 08 0000000000001388",  "8000 4d 10 0000000000001388 00000000ffffffff"},
    {39, OFP_encodeoxm_Ipv6Ext,       "8000 4e 02 0155",              "8000 4f 04 0155 01fe"},
};
// clang-format on

template <size_t N>
void set(uint8_t (&bytes)[N], const char *digits)
{
    const Bytes value = hex(digits);
    ASSERT_EQ(value.size(), N);
    std::memcpy(bytes, value.data(), N);
}

// Every field has a value; bits that do not travel are set where there are such bits.
class OxmBasic : public ::testing::TestWithParam<Row> {
protected:
    OxmBasic()
    {
        set_link_layer(rule.item.match, rule.mask);
        set_network_layer(rule.item.match, rule.mask);
        set_ipv6(rule.ipv6, rule.mask);
    }

    static void set_link_layer(OfpFRMatch &match, OfpMatchMask &mask)
    {
        match.in_port = 0x01020304;
        match.in_phy_port = 0x05060708;
        match.metadata = 0x0102030405060708;
        mask.metadata = 0xff00000000000001;
        set(match.eth_dst, "111213141516");
        set(mask.eth_dst, "ffffff000001");
        set(match.eth_src, "212223242526");
        set(mask.eth_src, "ffffff000002");
        match.eth_type = 0x86dd;
        match.vlan_vid = 0xe064;
        mask.vlan_vid = 0xefff;
        match.vlan_pcp = 0xfd;
        match.mpls_label = 0xabcde;
        match.mpls_tc = 7;
        match.mpls_bos = 1;
        match.pbb_isid = 0x654321;
        mask.pbb_isid = 0xffff00;
        match.tunnel_id = 5000;
        mask.tunnel_id = 0xffffffff;
        set(match.arp_sha, "313233343536");
        set(mask.arp_sha, "ffffff000003");
        set(match.arp_tha, "414243444546");
        set(mask.arp_tha, "ffffff000004");
    }

    static void set_network_layer(OfpFRMatch &match, OfpMatchMask &mask)
    {
        match.ip_dscp = 0xee;
        match.ip_ecn = 0xfe;
        match.ip_proto = 0x11;
        match.ipv4_src = 0x0a000001;
        mask.ipv4_src = 0xff000000;
        match.ipv4_dst = 0xc0a80102;
        mask.ipv4_dst = 0xffffff00;
        match.tcp_src = 0x1001;
        mask.tcp_src = 0xf001;
        match.tcp_dst = 0x1002;
        mask.tcp_dst = 0xf002;
        match.udp_src = 0x1003;
        mask.udp_src = 0xf003;
        match.udp_dst = 0x1004;
        mask.udp_dst = 0xf004;
        match.sctp_src = 0x1005;
        mask.sctp_src = 0xf005;
        match.sctp_dst = 0x1006;
        mask.sctp_dst = 0xf006;
        match.icmpv4_type = 8;
        match.icmpv4_code = 9;
        match.arp_op = 0x0102;
        match.arp_spa = 0x0a000003;
        mask.arp_spa = 0xffff0001;
        match.arp_tpa = 0x0a000004;
        mask.arp_tpa = 0xffff0002;
    }

    static void set_ipv6(OfpMatchIpv6 &ipv6, OfpMatchMask &mask)
    {
        set(ipv6.ipv6_src, "20010db8000000000000000000000001");
        set(mask.ipv6_src, "ffffffff000000000000000000000000");
        set(ipv6.ipv6_dst, "20010db8000000000000000000000002");
        set(mask.ipv6_dst, "ffffffffffff00000000000000000000");
        ipv6.ipv6_flabel = 0xfff12345;
        mask.ipv6_flabel = 0xffffff00;
        ipv6.ipv6_exthdr = 0xfd55;
        mask.ipv6_exthdr = 0xfffe;
        ipv6.icmpv6_type = 0x87;
        ipv6.icmpv6_code = 1;
        set(ipv6.ipv6_nd_target, "fe800000000000000000000000000003");
        set(ipv6.ipv6_nd_sll, "515253545556");
        set(ipv6.ipv6_nd_tll, "616263646566");
    }

    void expect(const char *digits)
    {
        const Bytes expected = hex(digits);
        Bytes out(64, untouched);
        EXPECT_EQ(GetParam().encode(&rule.item.match, out.size(), out.data()), expected.size());
        EXPECT_EQ(out, expected + Bytes(64 - expected.size(), untouched));
    }

    Rule rule;
};

} // namespace

TEST_P(OxmBasic, WritesNothingWhileItsBitIsClear)
{
    rule.item.match.fields = ~(uint64_t{1} << GetParam().bit);
    rule.mask.masked = ~uint64_t{0};
    expect("");
}

TEST_P(OxmBasic, WritesHeaderAndValue)
{
    rule.has({GetParam().bit});
    rule.mask.masked = ~(uint64_t{1} << GetParam().bit);
    expect(GetParam().plain);
}

TEST_P(OxmBasic, AnnouncesAMaskAndWritesItWhereTheFieldHasOne)
{
    rule.has({GetParam().bit}).masks({GetParam().bit});
    expect(GetParam().masked);
}

INSTANTIATE_TEST_SUITE_P(Fields, OxmBasic, ::testing::ValuesIn(rows),
                         [](const auto &row) { return "Bit" + std::to_string(row.param.bit); });
