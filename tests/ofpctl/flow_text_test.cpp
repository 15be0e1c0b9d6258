// Every field under each of its names, in each form of its value and mask.
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

struct Row {
    std::string_view written;
    std::string_view printed; // without table, default priority and actions
};

void expect_printed(std::initializer_list<Row> rows)
{
    for (const auto &[written, printed] : rows)
        EXPECT_EQ(reprinted(std::string(written) + ",actions=drop"), printed) << written;
}

TEST(FlowText, PortsAreNumbersOrReservedNamesInAnyCase)
{
    expect_printed({
        {"in_port=1", "in_port=1"},
        {"in_port=0", "in_port=0"},
        {"in_port=0x10", "in_port=16"},
        {"in_port=65534", "in_port=65534"},
        {"in_port=4294967295", "in_port=ANY"},
        {"in_port=in_port", "in_port=IN_PORT"},
        {"in_port=Table", "in_port=TABLE"},
        {"in_port=NORMAL", "in_port=NORMAL"},
        {"in_port=flood", "in_port=FLOOD"},
        {"in_port=all", "in_port=ALL"},
        {"in_port=controller", "in_port=CONTROLLER"},
        {"in_port=LOCAL", "in_port=LOCAL"},
        {"in_port=any", "in_port=ANY"},
        {"in_port=1,in_phy_port=2", "in_port=1,in_phy_port=2"},
        {"priv_out_port=LOCAL", "priv_out_port=LOCAL"},
    });
}

TEST(FlowText, MetadataAndTunnelIdAreHexadecimal)
{
    expect_printed({
        {"metadata=5", "metadata=0x5"},
        {"metadata=0xffffffffffffffff", "metadata=0xffffffffffffffff"},
        {"metadata=18446744073709551615", "metadata=0xffffffffffffffff"},
        {"metadata=0x12/0xf0", "metadata=0x10/0xf0"},
        {"tun_id=7", "tun_id=0x7"},
        {"tunnel_id=0x7/3", "tun_id=0x3/0x3"},
    });
}

TEST(FlowText, MacAddressesTakeMasks)
{
    expect_printed({
        {"dl_src=00:11:22:33:44:55", "dl_src=00:11:22:33:44:55"},
        {"eth_src=0:1:2:A:b:FF", "dl_src=00:01:02:0a:0b:ff"},
        {"dl_dst=01:22:00:00:00:00/01:00:00:00:00:00",
         "dl_dst=01:00:00:00:00:00/01:00:00:00:00:00"},
        {"eth_dst=00:00:00:00:00:01/ff:ff:ff:ff:ff:ff", "dl_dst=00:00:00:00:00:01"},
        {"eth_dst=00:00:00:00:00:01/00:00:00:00:00:00,in_port=1", "in_port=1"},
    });
}

TEST(FlowText, ProtocolWordsSayTypeAndProtocol)
{
    expect_printed({
        {"dl_type=0x88cc", "dl_type=0x88cc"},
        {"eth_type=35020", "dl_type=0x88cc"},
        {"ip", "ip"},
        {"ipv4", "ip"},
        {"dl_type=0x0800", "ip"},
        {"icmp", "icmp"},
        {"icmp4", "icmp"},
        {"tcp", "tcp"},
        {"ip,nw_proto=6", "tcp"},
        {"dl_type=0x800,ip_proto=17", "udp"},
        {"sctp", "sctp"},
        {"ip,nw_proto=47", "ip,nw_proto=47"},
        {"ip,nw_proto=58", "ip,nw_proto=58"},
        {"ipv6", "ipv6"},
        {"ip6", "ipv6"},
        {"ipv6,nw_proto=6", "tcp6"},
        {"udp6", "udp6"},
        {"sctp6", "sctp6"},
        {"icmp6", "icmp6"},
        {"ipv6,nw_proto=1", "ipv6,nw_proto=1"},
        {"arp", "arp"},
        {"rarp", "rarp"},
        {"mpls", "mpls"},
        {"mplsm", "mplsm"},
        {"ip,tcp", "tcp"},
        {"tcp,ip,nw_proto=6", "tcp"},
    });
}

TEST(FlowText, VlanIdsAlwaysMeanThatThereIsATag)
{
    expect_printed({
        {"dl_vlan=100", "dl_vlan=100"},
        {"dl_vlan=0", "dl_vlan=0"},
        {"vlan_vid=0x1064", "dl_vlan=100"},
        {"vlan_vid=4196", "dl_vlan=100"},
        {"vlan_vid=0x1064/0x1fff", "dl_vlan=100"},
        {"vlan_vid=0x1000/0x1000", "vlan_vid=0x1000/0x1000"},
        {"vlan_vid=0x1065/0x1003", "vlan_vid=0x1001/0x1003"},
        {"vlan_tci=0x1005/0x1fff", "dl_vlan=5"},
        {"vlan_tci=0x7005", "dl_vlan=5,dl_vlan_pcp=3"},
        {"vlan_tci=0x7000/0xf000", "dl_vlan_pcp=3"},
        {"dl_vlan=5,dl_vlan_pcp=7", "dl_vlan=5,dl_vlan_pcp=7"},
        {"vlan_pcp=0", "dl_vlan_pcp=0"},
        {"vlan_vid=0/0,in_port=1", "in_port=1"},
        {"cvlan=9", "cvlan=9"},
        {"cvlan_vid=0x1009", "cvlan=9"},
        {"cvlan_vid=0x1009/0x1001", "cvlan_vid=0x1001/0x1001"},
        {"cvlan_vid=0x1000/0x1000", "cvlan_vid=0x1000/0x1000"},
    });
}

// A priority without a VLAN id asks for any tag, as OpenFlow demands.
TEST(FlowText, VlanPriorityBringsTheTag)
{
    const FlowItemPtr item = parsed("dl_vlan_pcp=3,actions=drop");
    ASSERT_TRUE(item);
    EXPECT_EQ(item->match.fields, bit(6) | bit(7));
    EXPECT_EQ(item->match.mask->masked, bit(6));
    EXPECT_EQ(item->match.vlan_vid, 0);
    EXPECT_EQ(item->match.mask->vlan_vid, 0);
    EXPECT_EQ(item->match.vlan_pcp, 3);
}

TEST(FlowText, Ipv4AddressesTakePrefixDottedAndHexMasks)
{
    expect_printed({
        {"ip,nw_src=10.1.2.3", "ip,nw_src=10.1.2.3"},
        {"ip,ip_src=10.1.2.3/32", "ip,nw_src=10.1.2.3"},
        {"ip,ipv4_src=10.1.2.3/24", "ip,nw_src=10.1.2.0/24"},
        {"ip,nw_dst=10.1.2.3/255.255.0.0", "ip,nw_dst=10.1.0.0/16"},
        {"ip,ip_dst=10.1.2.3/0xffffff00", "ip,nw_dst=10.1.2.0/24"},
        {"ip,ipv4_dst=10.1.2.3/255.0.255.0", "ip,nw_dst=10.0.2.0/255.0.255.0"},
        {"ip,nw_dst=10.1.2.3/0", "ip"},
        {"ip,nw_dst=*", "ip"},
        {"ip,nw_src=0.0.0.0,nw_dst=255.255.255.255", "ip,nw_src=0.0.0.0,nw_dst=255.255.255.255"},
    });
}

TEST(FlowText, Ipv6AddressesTakePrefixAndAddressMasks)
{
    expect_printed({
        {"ipv6,ipv6_src=2001:db8::1", "ipv6,ipv6_src=2001:db8::1"},
        {"ipv6,ipv6_src=2001:0DB8:0:0::1/128", "ipv6,ipv6_src=2001:db8::1"},
        {"ipv6,ipv6_dst=2001:db8::1/32", "ipv6,ipv6_dst=2001:db8::/32"},
        {"ipv6,ipv6_dst=2001:db8::1/ffff::ffff", "ipv6,ipv6_dst=2001::1/ffff::ffff"},
        {"ipv6,ipv6_dst=::ffff:1.2.3.4", "ipv6,ipv6_dst=::ffff:1.2.3.4"},
        {"ipv6,ipv6_dst=::/0", "ipv6"},
        {"ipv6,ipv6_label=0x12345", "ipv6,ipv6_label=0x12345"},
        {"ipv6,ipv6_flabel=5/0xff", "ipv6,ipv6_label=0x00005/0x000ff"},
    });
}

TEST(FlowText, ExtensionHeadersHaveNames)
{
    expect_printed({
        {"ipv6,ipv6_exthdr=0", "ipv6,ipv6_exthdr=0"},
        {"ipv6,ipv6_exthdr=0x1ff",
         "ipv6,ipv6_exthdr=nonext|esp|auth|dest|frag|router|hop|unrep|unseq"},
        {"ipv6,ipv6_exthdr=hop|frag", "ipv6,ipv6_exthdr=frag|hop"},
        {"ipv6,ipv6_exthdr=+hop-frag", "ipv6,ipv6_exthdr=-frag+hop"},
        {"ipv6,ipv6_exthdr=0x40/0x50", "ipv6,ipv6_exthdr=-frag+hop"},
        {"ipv6,ipv6_exthdr=5/0", "ipv6"},
    });
}

TEST(FlowText, DscpIsPrintedAsTheByteThatHoldsIt)
{
    expect_printed({
        {"ip,ip_dscp=10", "ip,nw_tos=40"},
        {"ip,nw_tos=40", "ip,nw_tos=40"},
        {"ip,nw_tos=0x2b", "ip,nw_tos=40"},
        {"ipv6,nw_ecn=3", "ipv6,nw_ecn=3"},
        {"ip,ip_ecn=1,ip_dscp=63", "ip,nw_tos=252,nw_ecn=1"},
    });
    EXPECT_EQ(parsed("ip,nw_tos=40,actions=drop")->match.ip_dscp, 10);
}

TEST(FlowText, PortsOfTransportTakeTheirMeaningFromTheProtocol)
{
    expect_printed({
        {"tcp,tp_src=1,tp_dst=2", "tcp,tp_src=1,tp_dst=2"},
        {"tcp,tcp_src=1,tcp_dst=2", "tcp,tp_src=1,tp_dst=2"},
        {"udp6,tp_src=1,udp_dst=2", "udp6,tp_src=1,tp_dst=2"},
        {"udp,udp_src=1", "udp,tp_src=1"},
        {"sctp,sctp_src=1,tp_dst=2", "sctp,tp_src=1,tp_dst=2"},
        {"sctp6,sctp_dst=2", "sctp6,tp_dst=2"},
        {"tp_dst=2,tcp", "tcp,tp_dst=2"},
        {"tcp,tp_dst=0x57/0xfff0", "tcp,tp_dst=0x50/0xfff0"},
        {"tcp,tp_dst=80/0xffff", "tcp,tp_dst=80"},
        {"tcp,tp_dst=80/0", "tcp"},
        {"tp_dst=80/0,in_port=1", "in_port=1"},
        {"tcp,tp_dst=0", "tcp,tp_dst=0"},
    });
    EXPECT_EQ(parsed("tcp,tp_dst=2,actions=drop")->match.tcp_dst, 2);
    EXPECT_EQ(parsed("udp,tp_dst=2,actions=drop")->match.udp_dst, 2);
    EXPECT_EQ(parsed("sctp,tp_src=2,actions=drop")->match.sctp_src, 2);
}

TEST(FlowText, IcmpTypeAndCodeBelongToEitherVersion)
{
    expect_printed({
        {"icmp,icmp_type=8,icmp_code=0", "icmp,icmp_type=8,icmp_code=0"},
        {"icmp,icmpv4_type=8,icmpv4_code=1", "icmp,icmp_type=8,icmp_code=1"},
        {"icmp6,icmp_type=128", "icmp6,icmp_type=128"},
        {"icmp6,icmpv6_type=128,icmpv6_code=3", "icmp6,icmp_type=128,icmp_code=3"},
    });
    EXPECT_EQ(parsed("icmp,icmp_type=8,actions=drop")->match.icmpv4_type, 8);
    EXPECT_EQ(parsed("icmp6,icmp_type=8,actions=drop")->match.ipv6->icmpv6_type, 8);
}

TEST(FlowText, NeighbourDiscoveryNeedsItsMessageTypes)
{
    expect_printed({
        {"icmp6,icmp_type=135,nd_target=fe80::1", "icmp6,icmp_type=135,nd_target=fe80::1"},
        {"icmp6,icmp_type=136,ipv6_nd_target=fe80::1", "icmp6,icmp_type=136,nd_target=fe80::1"},
        {"icmp6,icmp_type=135,nd_sll=0:1:2:3:4:5", "icmp6,icmp_type=135,nd_sll=00:01:02:03:04:05"},
        {"icmp6,icmp_type=135,ipv6_nd_sll=0:1:2:3:4:5",
         "icmp6,icmp_type=135,nd_sll=00:01:02:03:04:05"},
        {"icmp6,icmp_type=136,nd_tll=0:1:2:3:4:5", "icmp6,icmp_type=136,nd_tll=00:01:02:03:04:05"},
        {"icmp6,icmp_type=136,ipv6_nd_tll=0:1:2:3:4:5",
         "icmp6,icmp_type=136,nd_tll=00:01:02:03:04:05"},
    });
}

TEST(FlowText, ArpFieldsAnswerToTheNamesOfIpToo)
{
    expect_printed({
        {"arp,arp_op=300,arp_spa=1.2.3.4,arp_tpa=10.9.8.7/8",
         "arp,arp_spa=1.2.3.4,arp_tpa=10.0.0.0/8,arp_op=300"},
        {"arp,nw_proto=1,nw_src=1.2.3.4,nw_dst=5.6.7.8/255.0.0.255",
         "arp,arp_spa=1.2.3.4,arp_tpa=5.0.0.8/255.0.0.255,arp_op=1"},
        {"rarp,arp_sha=0:1:2:3:4:5,arp_tha=0:1:2:3:4:5/ff:ff:00:00:00:00",
         "rarp,arp_sha=00:01:02:03:04:05,arp_tha=00:01:00:00:00:00/ff:ff:00:00:00:00"},
    });
    EXPECT_EQ(parsed("arp,nw_proto=2,actions=drop")->match.arp_op, 2);
}

TEST(FlowText, MplsAndProviderBackboneFields)
{
    expect_printed({
        {"mpls,mpls_label=1048575,mpls_tc=7,mpls_bos=1",
         "mpls,mpls_label=1048575,mpls_tc=7,mpls_bos=1"},
        {"mplsm,mpls_bos=0", "mplsm,mpls_bos=0"},
        {"dl_type=0x88e7,pbb_isid=16777215", "dl_type=0x88e7,pbb_isid=16777215"},
        {"dl_type=0x88e7,pbb_isid=0x123456/0xff0000", "dl_type=0x88e7,pbb_isid=0x120000/0xff0000"},
    });
}

TEST(FlowText, PrivateFields)
{
    expect_printed({
        {"vrf=65535,fragment=255", "vrf=65535,fragment=255"},
        {"ip_range=1:0x2:3", "ip_range=0x1:0x2:0x3"},
        {"ip_range=0", "ip_range=0x0"},
        {"ip_range=0:0:5:0:0", "ip_range=0x0:0x0:0x5"},
        {"batch_if=7", "batch_if=7"},
        {"batch_if=1:2:3:9:4-6:6:5", "batch_if=1-3:9:4-6:6:5"},
        {"batch_if=1:2:4294967295", "batch_if=1:2:4294967295"},
    });
    const FlowItemPtr item = parsed("batch_if=5:3:7-9,actions=drop");
    ASSERT_TRUE(item);
    ASSERT_EQ(item->match.batch_if.count, 5U);
    EXPECT_EQ(item->match.batch_if.if_index[1], 3U);
    EXPECT_EQ(item->match.batch_if.if_index[4], 9U);
}

TEST(FlowText, ExperimenterItemsKeepTheirOrderAndMayRepeat)
{
    expect_printed({
        {"flow_flag=5,flow_flag=0xffffffff", "flow_flag=0x5,flow_flag=0xffffffff"},
        {"reserve=5,service=6,inner_vlan=7", "reserve=5,service=6,inner_vlan=7"},
        {"egress_port=5,egress_port=local", "egress_port=5,egress_port=LOCAL"},
        {"bssid_43=0:1:2:3:4:5,bssid_49=0:1:2:3:4:6",
         "bssid_43=00:01:02:03:04:05,bssid_49=00:01:02:03:04:06"},
        {"eapol=0x888e", "eapol=0x888e"},
        {"l4_range_54=1-2,l4_range_55=3-3,l4_range_56=0-65535,l4_range_57=5-6",
         "l4_range_54=1-2,l4_range_55=3-3,l4_range_56=0-65535,l4_range_57=5-6"},
        {"exp(10)", "exp(10)="},
        {"exp(64)=", "exp(64)="},
        {"exp(37)=0000002A", "flow_flag=0x2a"},
        {"exp(54)=00010002", "l4_range_54=1-2"},
        {"exp(38)=00000001616263", "string=\"abc\""},
        {"in_port=1,flow_flag=1", "in_port=1,flow_flag=0x1"},
    });
    const FlowItemPtr item = parsed("flow_flag=5,l4_range_54=1-2,eapol=0x1234,actions=drop");
    ASSERT_TRUE(item);
    const OfpExpMatchList &list = item->match.exp_match;
    ASSERT_EQ(list.count, 3U);
    EXPECT_EQ(carried(*item).find("experimenter 37 05000000\nexperimenter 54 01000200\n"
                                  "experimenter 50 1234\n") != std::string::npos,
              true)
        << carried(*item);
    EXPECT_EQ(item->match.fields, 0U);
}

TEST(FlowText, StringsMayBeQuotedAndHoldAnyByte)
{
    expect_printed({
        {"string=abc", "string=\"abc\""},
        {"string=\"a,b c#d(=)\"", "string=\"a,b c#d(=)\""},
        {R"(string="\"\\\x00\xFF")", R"(string="\"\\\x00\xff")"},
        {"string=\"\"", "string=\"\""},
        {"string=\"abc\",in_port=1", "in_port=1,string=\"abc\""},
    });
    EXPECT_EQ(reprinted("string=\"" + std::string(247, 'x') + "\",actions=drop").size(), 256U);
}

TEST(FlowText, OptionsComeInAnyOrderBetweenCommasAndBlanks)
{
    EXPECT_EQ(reprinted("tcp tp_dst=80 actions=drop"), "tcp,tp_dst=80");
    EXPECT_EQ(reprinted("\ttp_dst:80,, tcp , actions=drop\r\n"), "tcp,tp_dst=80");
    EXPECT_EQ(reprinted("nw_src=1.2.3.4,tp_dst=80,tcp,actions=drop # why"),
              "tcp,nw_src=1.2.3.4,tp_dst=80");
    EXPECT_EQ(reprinted("actions=drop"), "actions=drop");
}

TEST(FlowText, PriorityAndTable)
{
    EXPECT_EQ(parsed("actions=drop")->priority, 32768);
    EXPECT_EQ(parsed("priority=0x10,actions=drop")->priority, 16);
    EXPECT_EQ(parsed("in_port=1,priority=0,actions=drop")->priority, 0);
    EXPECT_EQ(format_flow(*parsed("table=200,priority=7,tcp,actions=drop")),
              "table=200,priority=7,tcp,actions=drop");
    EXPECT_EQ(format_flow(*parsed("actions=drop"), 3), "table=3,priority=32768,actions=drop");
    EXPECT_EQ(std::get<Flow>(parse_flow("table=200,actions=drop", ParseMode::program)).table, 200);
    EXPECT_FALSE(std::get<Flow>(parse_flow("actions=drop", ParseMode::program)).table);
}

TEST(FlowText, WhatTheLibraryAlwaysWritesMayBeSaid)
{
    expect_printed({
        {"cookie=0x0,idle_timeout=0,hard_timeout=0,importance=0,tcp", "tcp"},
        {"check_overlap,reset_counts,no_packet_counts,no_byte_counts,tcp", "tcp"},
        {"duration=3.5s,n_packets=1,n_bytes=2,idle_age=3,hard_age=4,tcp", "tcp"},
    });
}

TEST(FlowText, ActionsMayBeLeftOutWhenRulesAreSelected)
{
    const FlowResult result = parse_flow("tcp", ParseMode::select);
    ASSERT_TRUE(std::holds_alternative<Flow>(result));
    EXPECT_EQ(std::get<Flow>(result).item->action_count, 0U);
    EXPECT_TRUE(std::holds_alternative<Flow>(parse_flow("", ParseMode::select)));
    EXPECT_TRUE(std::holds_alternative<Flow>(parse_flow("tcp,actions=drop", ParseMode::select)));
}

TEST(FlowText, MatchAndActionsCanBePrintedAlone)
{
    const FlowItemPtr item = parsed("priority=5,tcp,nw_dst=10.0.0.1,actions=output:1");
    EXPECT_EQ(format_match(item->match), "tcp,nw_dst=10.0.0.1");
    EXPECT_EQ(format_actions(*item), "write_actions(output:1)");
    EXPECT_EQ(format_actions(*parsed("tcp,actions=drop")), "drop");
}

// Items of other origin: what the encoder ignores is not printed.
TEST(FlowText, PrintsWhatTravels)
{
    Record record;
    record.item.priority = 9;
    record.match().fields = bit(5) | bit(11) | bit(8);
    record.match().eth_type = 0x0800;
    record.match().ipv4_src = 0x0a0b0c0d;
    record.match().tcp_dst = 80;
    record.mask.masked = bit(11) | bit(5);
    record.mask.ipv4_src = 0xffffffff;
    EXPECT_EQ(format_flow(record.item),
              "table=200,priority=9,ip,nw_src=10.11.12.13,nw_tos=0,actions=drop");
    record.match().mask = nullptr;
    record.match().ipv6 = nullptr;
    EXPECT_EQ(format_match(record.match()), "ip,nw_src=10.11.12.13,nw_tos=0");
}

} // namespace
} // namespace flow_test
