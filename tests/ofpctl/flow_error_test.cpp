// Each thing that can be wrong with a line: the place, what is wrong, what would be right.
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

struct Row {
    std::string_view line;
    std::string_view told;
};

void expect_refused(std::initializer_list<Row> rows)
{
    for (const auto &[line, told] : rows)
        EXPECT_EQ(refused(line), told) << line;
}

// The rows leave the actions away where the match alone is wrong.
void expect_match_refused(std::initializer_list<Row> rows)
{
    for (const auto &[line, told] : rows)
        EXPECT_EQ(refused(std::string(line) + ",actions=drop"), told) << line;
}

TEST(FlowError, UnknownWordsBringTheNearest)
{
    expect_match_refused({
        {"tcp,nw_scr=1.2.3.4", "5+6 unknown field 'nw_scr'; did you mean nw_src?"},
        {"TCP", "1+3 unknown field 'TCP'; did you mean tcp?"},
        {"prioritty=5", "1+9 unknown field 'prioritty'; did you mean priority?"},
        {"in_prot=5", "1+7 unknown field 'in_prot'; did you mean in_port?"},
        {"zzzzzz=5", "1+6 unknown field 'zzzzzz'"},
        {"tcp,tp_dst=8 0", "14+1 unknown field '0'"},
    });
}

TEST(FlowError, FieldsOfOpenVSwitchThatDoNotExistHere)
{
    expect_match_refused({
        {"ip,nw_ttl=5", "4+6 the library has no match field nw_ttl; leave nw_ttl out"},
        {"ip,nw_frag=no", "4+7 the library has no match field nw_frag; leave nw_frag out"},
        {"ct_state=+trk", "1+8 the library has no match field ct_state; leave ct_state out"},
    });
}

TEST(FlowError, DuplicatesNameTheFieldMeantBefore)
{
    expect_match_refused({
        {"ip,nw_src=1.2.3.4,nw_src=1.2.3.4", "19+6 duplicate nw_src"},
        {"ip,nw_src=1.2.3.4,ip_src=1.2.3.4", "19+6 duplicate ip_src; nw_src is the same field"},
        {"arp,arp_spa=1.2.3.4,nw_src=1.2.3.4", "21+6 duplicate nw_src; arp_spa is the same field"},
        {"tcp,tp_dst=1,tcp_dst=1", "5+6 duplicate tp_dst; tcp_dst is the same field"},
        {"dl_vlan=5,vlan_vid=0x1005", "11+8 duplicate vlan_vid; dl_vlan is the same field"},
        {"ip,ip_dscp=5,nw_tos=20", "14+6 duplicate nw_tos; ip_dscp is the same field"},
        {"in_port=1,in_port=1", "11+7 duplicate in_port"},
        {"vrf=1,vrf=2", "7+3 duplicate vrf"},
        {"ip_range=1,ip_range=2", "12+8 duplicate ip_range"},
        {"batch_if=1,batch_if=2", "12+8 duplicate batch_if"},
        {"priority=1,priority=1", "12+8 duplicate priority"},
        {"table=200,table=200", "11+5 duplicate table"},
    });
}

TEST(FlowError, ProtocolsMayNotContradict)
{
    expect_match_refused({
        {"tcp,udp", "5+3 udp contradicts tcp; name one protocol for each layer"},
        {"ip,ipv6", "4+4 ipv6 contradicts ip; name one protocol for each layer"},
        {"tcp,nw_proto=17", "5+8 nw_proto contradicts tcp; name one protocol for each layer"},
        {"arp,dl_type=0x800", "5+7 dl_type contradicts arp; name one protocol for each layer"},
    });
}

TEST(FlowError, MissingPrerequisitesAreNamed)
{
    expect_match_refused({
        {"tp_dst=80", "1+6 tp_dst needs tcp, udp or sctp; for ICMP write icmp_type and icmp_code"},
        {"ip,tp_src=80",
         "4+6 tp_src needs tcp, udp or sctp; for ICMP write icmp_type and icmp_code"},
        {"icmp,tp_src=8",
         "6+6 tp_src needs tcp, udp or sctp; for ICMP write icmp_type and icmp_code"},
        {"nw_proto=6,tp_dst=80", "1+8 nw_proto needs ip, ipv6, arp or rarp"},
        {"ip,tcp_src=80", "4+7 tcp_src needs tcp or tcp6"},
        {"udp,tcp_dst=80", "5+7 tcp_dst needs tcp or tcp6"},
        {"tcp,udp_src=80", "5+7 udp_src needs udp or udp6"},
        {"tcp,udp_dst=80", "5+7 udp_dst needs udp or udp6"},
        {"tcp,sctp_src=80", "5+8 sctp_src needs sctp or sctp6"},
        {"tcp,sctp_dst=80", "5+8 sctp_dst needs sctp or sctp6"},
        {"nw_src=1.2.3.4", "1+6 nw_src needs ip, arp or rarp; for IPv6 write ipv6_src"},
        {"ipv6,nw_dst=1.2.3.4", "6+6 nw_dst needs ip, arp or rarp; for IPv6 write ipv6_dst"},
        {"arp,ipv4_src=1.2.3.4", "5+8 ipv4_src needs ip"},
        {"ipv6,ipv4_dst=1.2.3.4", "6+8 ipv4_dst needs ip"},
        {"ip,ipv6_src=::1", "4+8 ipv6_src needs ipv6"},
        {"ipv6_dst=::1", "1+8 ipv6_dst needs ipv6"},
        {"ip,ipv6_label=1", "4+10 ipv6_label needs ipv6"},
        {"ip,ipv6_exthdr=hop", "4+11 ipv6_exthdr needs ipv6"},
        {"ip_proto=1", "1+8 ip_proto needs ip, ipv6, arp or rarp"},
        {"nw_tos=4", "1+6 nw_tos needs ip or ipv6"},
        {"arp,ip_dscp=4", "5+7 ip_dscp needs ip or ipv6"},
        {"nw_ecn=1", "1+6 nw_ecn needs ip or ipv6"},
        {"icmp_type=1", "1+9 icmp_type needs icmp or icmp6"},
        {"tcp,icmp_code=1", "5+9 icmp_code needs icmp or icmp6"},
        {"icmp6,icmpv4_type=1", "7+11 icmpv4_type needs icmp"},
        {"icmp6,icmpv4_code=1", "7+11 icmpv4_code needs icmp"},
        {"icmp,icmpv6_type=1", "6+11 icmpv6_type needs icmp6"},
        {"icmp,icmpv6_code=1", "6+11 icmpv6_code needs icmp6"},
        {"icmp6,nd_target=::1", "7+9 nd_target needs icmp6 and icmp_type=135 or 136"},
        {"icmp6,icmp_type=136,nd_sll=0:0:0:0:0:1", "21+6 nd_sll needs icmp6 and icmp_type=135"},
        {"icmp6,icmp_type=135,nd_tll=0:0:0:0:0:1", "21+6 nd_tll needs icmp6 and icmp_type=136"},
        {"ip,arp_op=1", "4+6 arp_op needs arp or rarp"},
        {"ip,arp_spa=1.2.3.4", "4+7 arp_spa needs arp or rarp"},
        {"arp_tpa=1.2.3.4", "1+7 arp_tpa needs arp or rarp"},
        {"arp_sha=0:0:0:0:0:1", "1+7 arp_sha needs arp or rarp"},
        {"arp_tha=0:0:0:0:0:1", "1+7 arp_tha needs arp or rarp"},
        {"mpls_label=1", "1+10 mpls_label needs mpls or mplsm"},
        {"ip,mpls_tc=1", "4+7 mpls_tc needs mpls or mplsm"},
        {"ip,mpls_bos=1", "4+8 mpls_bos needs mpls or mplsm"},
        {"pbb_isid=1", "1+8 pbb_isid needs dl_type=0x88e7"},
        {"in_phy_port=1", "1+11 in_phy_port needs in_port"},
    });
}

TEST(FlowError, NumbersOutOfRange)
{
    expect_match_refused({
        {"priority=65536", "10+5 65536 is too large for priority; expected 0 to 65535"},
        {"in_port=4294967296",
         "9+10 4294967296 is too large for in_port; expected 0 to 4294967295"},
        {"metadata=18446744073709551616", "10+20 18446744073709551616 is too large for metadata; "
                                          "expected 0 to 18446744073709551615"},
        {"metadata=0x10000000000000000", "10+19 0x10000000000000000 is too large for metadata; "
                                         "expected 0 to 18446744073709551615"},
        {"dl_type=0x10000", "9+7 0x10000 is too large for dl_type; expected 0 to 65535"},
        {"dl_vlan=4096", "9+4 4096 is too large for dl_vlan; expected 0 to 4095"},
        {"vlan_vid=0x2005", "10+6 0x2005 is too large for vlan_vid; expected 0 to 8191"},
        {"cvlan=4096", "7+4 4096 is too large for cvlan; expected 0 to 4095"},
        {"dl_vlan_pcp=8", "13+1 8 is too large for dl_vlan_pcp; expected 0 to 7"},
        {"ip,ip_dscp=64", "12+2 64 is too large for ip_dscp; expected 0 to 63"},
        {"ip,nw_tos=256", "11+3 256 is too large for nw_tos; expected 0 to 255"},
        {"ip,nw_ecn=4", "11+1 4 is too large for nw_ecn; expected 0 to 3"},
        {"ip,nw_proto=256", "13+3 256 is too large for nw_proto; expected 0 to 255"},
        {"tcp,tp_dst=65536", "12+5 65536 is too large for tp_dst; expected 0 to 65535"},
        {"tcp,tp_dst=1/0x10000", "14+7 0x10000 is too large for tp_dst; expected 0 to 65535"},
        {"icmp,icmp_type=256", "16+3 256 is too large for icmp_type; expected 0 to 255"},
        {"ipv6,ipv6_label=0x100000",
         "17+8 0x100000 is too large for ipv6_label; expected 0 to 1048575"},
        {"ipv6,ipv6_label=0/0x100000",
         "19+8 0x100000 is too large for ipv6_label; expected 0 to 1048575"},
        {"ipv6,ipv6_exthdr=512", "18+3 512 is too large for ipv6_exthdr; expected 0 to 511"},
        {"mpls,mpls_label=1048576",
         "17+7 1048576 is too large for mpls_label; expected 0 to 1048575"},
        {"mpls,mpls_tc=8", "14+1 8 is too large for mpls_tc; expected 0 to 7"},
        {"mpls,mpls_bos=2", "15+1 2 is too large for mpls_bos; expected 0 to 1"},
        {"dl_type=0x88e7,pbb_isid=16777216",
         "25+8 16777216 is too large for pbb_isid; expected 0 to 16777215"},
        {"vrf=65536", "5+5 65536 is too large for vrf; expected 0 to 65535"},
        {"fragment=256", "10+3 256 is too large for fragment; expected 0 to 255"},
        {"arp,arp_op=65536", "12+5 65536 is too large for arp_op; expected 0 to 65535"},
    });
}

TEST(FlowError, ValuesThatAreNone)
{
    expect_match_refused({
        {"in_port=", "1+7 in_port has no value; write in_port=VALUE"},
        {"in_port", "1+7 in_port has no value; write in_port=VALUE"},
        {"priority=", "10+0 priority has no value; expected 0 to 65535"},
        {"tcp=1", "5+1 tcp takes no value; write tcp"},
        {"metadata=x", "10+1 'x' is no number for metadata; expected 0 to 18446744073709551615, or "
                       "hexadecimal after 0x"},
        {"vrf=-1", "5+2 '-1' is no number for vrf; expected 0 to 65535, or hexadecimal after 0x"},
        {"vrf=0x", "5+2 '0x' is no number for vrf; expected 0 to 65535, or hexadecimal after 0x"},
        {"vrf=0xg", "5+3 '0xg' is no number for vrf; expected 0 to 65535, or hexadecimal after 0x"},
        {"vrf=010", "5+3 '010' begins with 0; write 10, or 0x10 for hexadecimal"},
        {"vrf=00", "5+2 '00' begins with 0; write 0, or 0x0 for hexadecimal"},
        {"in_port=eth0", "9+4 'eth0' is no port; expected a number or one of IN_PORT, TABLE, "
                         "NORMAL, FLOOD, ALL, CONTROLLER, LOCAL, ANY"},
        {"in_port=lokal", "9+5 'lokal' is no port; did you mean LOCAL?"},
        {"dl_src=1:2:3:4:5",
         "8+9 '1:2:3:4:5' is no MAC address; expected one like 00:11:22:33:44:55"},
        {"dl_src=1:2:3:4:5:6:7",
         "8+13 '1:2:3:4:5:6:7' is no MAC address; expected one like 00:11:22:33:44:55"},
        {"dl_src=1:2:3:4:5:6/8", "20+1 '8' is no MAC mask; expected one like ff:ff:ff:00:00:00"},
        {"ip,nw_src=1.2.3", "11+5 '1.2.3' is no IPv4 address; expected one like 10.0.0.1"},
        {"ip,nw_src=1.2.3.256", "11+9 '1.2.3.256' is no IPv4 address; expected one like 10.0.0.1"},
        {"ip,nw_src=1.2.3.04", "11+8 '1.2.3.04' is no IPv4 address; expected one like 10.0.0.1"},
        {"ip,nw_src=1.2.3.4.5", "11+9 '1.2.3.4.5' is no IPv4 address; expected one like 10.0.0.1"},
        {"ip,nw_src=1.2.3.4/33",
         "19+2 '33' is no IPv4 mask; expected a prefix length of 0 to 32, or one like "
         "255.255.255.0"},
        {"ip,nw_src=1.2.3.4/", "18+1 the mask is missing"},
        {"ipv6,ipv6_src=1::2::3",
         "15+7 '1::2::3' is no IPv6 address; expected one like 2001:db8::1"},
        {"ipv6,ipv6_src=fe80::1%eth0",
         "15+12 'fe80::1%eth0' is no IPv6 address; expected one like 2001:db8::1"},
        {"ipv6,ipv6_src=::1/129",
         "19+3 '129' is no IPv6 mask; expected a prefix length of 0 to 128, or one like "
         "ffff:ffff::"},
        {"ipv6,ipv6_exthdr=hopp", "18+4 'hopp' is no extension header; did you mean hop?"},
        {"ipv6,ipv6_exthdr=+zzzzzz",
         "19+6 'zzzzzz' is no extension header; expected one of nonext, esp, auth, dest, frag, "
         "router, hop, unrep, unseq"},
        {"ipv6,ipv6_exthdr=+hop-hop", "23+3 'hop' stands twice"},
    });
}

TEST(FlowError, MasksWhereThereAreNone)
{
    expect_match_refused({
        {"in_port=1/0xff", "10+5 in_port takes no mask; write in_port=1"},
        {"dl_type=0x800/0xff", "14+5 dl_type takes no mask; write dl_type=0x800"},
        {"ip,nw_proto=6/7", "14+2 nw_proto takes no mask; write nw_proto=6"},
        {"dl_vlan=10/0xff", "9+7 dl_vlan takes no mask; write vlan_vid=0x100a/0x10ff"},
        {"dl_vlan_pcp=1/3", "14+2 dl_vlan_pcp takes no mask; write dl_vlan_pcp=1"},
        {"arp,arp_op=1/3", "13+2 arp_op takes no mask; write arp_op=1"},
        {"arp,nw_proto=1/3", "15+2 nw_proto takes no mask; write nw_proto=1"},
        {"icmp,icmp_type=8/0xf0", "17+5 icmp_type takes no mask; write icmp_type=8"},
        {"mpls,mpls_label=1/3", "18+2 mpls_label takes no mask; write mpls_label=1"},
        {"vrf=1/3", "6+2 vrf takes no mask; write vrf=1"},
        {"icmp6,icmp_type=135,nd_target=fe80::/16",
         "37+3 nd_target takes no mask; write nd_target=fe80::"},
        {"flow_flag=1/3", "12+2 flow_flag takes no mask"},
        {"flow_flag=*", "11+1 flow_flag takes no wildcard"},
    });
}

TEST(FlowError, VlanFormsTheWireCannotCarry)
{
    constexpr std::string_view untagged = "the library cannot match packets without a tag";
    expect_match_refused({
        {"dl_vlan=0xffff", "9+6 the library cannot match packets without a tag; expected 0 to "
                           "4095"},
        {"vlan_vid=5", "10+1 without the present bit 0x1000 this matches packets without a tag; "
                       "write vlan_vid=0x1005"},
        {"vlan_vid=0/0x1000", "10+8 without the present bit 0x1000 this matches packets without a "
                              "tag; write vlan_vid=0x1000/0x1000"},
        {"vlan_vid=0x1005/0xff",
         "10+11 without the present bit 0x1000 this matches packets without a tag; write "
         "vlan_vid=0x1005/0x10ff"},
        {"cvlan_vid=5", "11+1 without the present bit 0x1000 this matches packets without a tag; "
                        "write cvlan_vid=0x1005"},
        {"vlan_tci=0", "10+1 without the present bit 0x1000 this matches packets without a tag; "
                       "write vlan_vid=0x1000"},
        {"vlan_tci=0x3000/0x3000", "10+13 the library matches all bits of the priority or none; "
                                   "expected a mask with all of 0xe000 or nothing of it"},
    });
    EXPECT_NE(refused("dl_vlan=65535,actions=drop").find(untagged), std::string::npos);
}

TEST(FlowError, PrivateFieldsAndExperimenterItems)
{
    const std::string many = "batch_if=1-10001,actions=drop";
    EXPECT_EQ(refused(many), "10+7 batch_if has too many interfaces; expected at most 10000");
    EXPECT_EQ(parsed("batch_if=1-10000,actions=drop")->match.batch_if.count, 10000U);
    expect_match_refused({
        {"batch_if=0-4294967295", "10+12 batch_if has too many interfaces; expected at most 10000"},
        {"batch_if=9-5", "10+3 the range 9-5 is empty; write 5-9"},
        {"batch_if=1::2", "12+0 batch_if has no value; expected 0 to 4294967295"},
        {"batch_if=1:", "12+0 batch_if has no value; expected 0 to 4294967295"},
        {"ip_range=1:2:3:4:5:6:7:8:9:10:11:12:13:14:15:16:17:18:19:20:21",
         "61+2 ip_range has too many words; expected at most 20"},
        {"string=\"abc", "8+17 the string has no closing quote"},
        {"string=\"a\\z\"", "10+2 unknown escape in the string; expected \\\", \\\\ or \\xHH"},
        {"string=\"a\\x4\"", "10+2 unknown escape in the string; expected \\\", \\\\ or \\xHH"},
        {"l4_range_54=5", "13+1 '5' is no range of ports; expected one like 1000-1999"},
        {"l4_range_54=5-2", "13+3 the range 5-2 is empty; write 2-5"},
        {"l4_range_54=5-65536", "15+5 65536 is too large for l4_range_54; expected 0 to 65535"},
        {"bssid_43=1", "10+1 '1' is no MAC address; expected one like 00:11:22:33:44:55"},
        {"exp=1", "1+3 exp has no type; write exp(TYPE)=DATA, the type from 0 to 64"},
        {"exp(65)=", "5+2 65 is too large for an experimenter type; expected 0 to 64"},
        {"exp(60)=", "1+7 exp(60) travels as a private field; write ip_range, batch_if, vrf, "
                     "fragment, priv_out_port or cvlan"},
        {"exp(10)=01",
         "9+2 the library sends no data for experimenter type 10; write exp(10) alone"},
        {"exp(37)=01", "9+2 flow_flag holds 4 bytes, not 1"},
        {"exp(37)=0102030", "9+7 '0102030' is no data in hexadecimal; expected two digits for each "
                            "byte, like 0000002a"},
        {"exp(38)=00000002616263",
         "9+8 the library sends no text of this kind; expected 00000001, then the text"},
        {"exp(38)=0000", "9+4 string holds 4 to 251 bytes, not 2"},
    });
    EXPECT_EQ(refused("string=\"" + std::string(248, 'x') + "\",actions=drop"),
              "8+250 string is 248 bytes long; expected at most 247");
}

TEST(FlowError, WhatTheLibraryAlwaysWritesOtherwise)
{
    expect_match_refused({
        {"table=0", "7+1 the library programs table 200 only; write table=200"},
        {"table=256", "7+3 256 is too large for table; expected 0 to 255"},
        {"cookie=5", "1+6 the library always sends cookie 0; leave cookie out"},
        {"idle_timeout=10", "1+12 the library always sends idle_timeout 0; leave idle_timeout out"},
        {"hard_timeout=1", "1+12 the library always sends hard_timeout 0; leave hard_timeout out"},
        {"send_flow_rem", "1+13 the library never sets send_flow_rem; leave send_flow_rem out"},
        {"check_overlap=1", "15+1 check_overlap takes no value; write check_overlap"},
        {"out_port=5", "1+8 the library never limits a rule to an out_port; leave out_port out"},
        {"priority=0", "1+23 the library refuses priority 0 with no match field; expected a "
                       "priority of 1 or more"},
    });
}

TEST(FlowError, ActionsMustBeThereOnceAndLast)
{
    expect_refused({
        {"tcp", "4+0 the actions are missing; add actions=ACTION,... or actions=drop"},
        {"", "1+0 the actions are missing; add actions=ACTION,... or actions=drop"},
        {"tcp # actions=drop", "5+0 the actions are missing; add actions=ACTION,... or "
                               "actions=drop"},
        {"tcp,actions", "5+7 actions has no list; write actions=ACTION,... at the end of the line"},
        {"actions=output:1,priority=5", "18+8 priority is no action; write the actions last"},
        {"actions=drop,priority=5", "14+8 priority is no action; write the actions last"},
    });
}

TEST(FlowError, ActionsTheLibraryRefuses)
{
    expect_refused({
        {"actions=output:0", "16+1 the library refuses output to port 0; expected 1 to 4294967040"},
        {"actions=0", "9+1 the library refuses output to port 0; expected 1 to 4294967040"},
        {"actions=output:0xffffff01", "16+10 the library refuses output to port 4294967041; "
                                      "expected 1 to 4294967040"},
        {"actions=output:TABLE", "16+5 the library refuses output to TABLE; expected a number, "
                                 "IN_PORT, NORMAL, FLOOD, ALL, CONTROLLER or LOCAL"},
        {"actions=any", "9+3 the library refuses output to ANY; expected a number, IN_PORT, "
                        "NORMAL, FLOOD, ALL, CONTROLLER or LOCAL"},
        {"actions=CONTROLLER:128",
         "20+3 the library always asks for 0 bytes of the packet; write CONTROLLER"},
        {"actions=output:", "16+0 output has no value; expected 0 to 4294967295"},
        {"actions=output", "15+0 output has no value; expected 0 to 4294967295"},
        {"actions=output(1):2", "19+1 output has two arguments"},
        {"actions=5:1", "9+3 '5:1' is no port; write output:PORT, or the port alone"},
        {"actions=group:4294967041",
         "15+10 4294967041 is too large for group; expected 0 to 4294967040"},
        {"actions=group", "14+0 group has no value; expected 0 to 4294967040"},
        {"actions=exp:1",
         "9+5 exp has no subtype; write exp(0):VALUE:VALUE, exp(1):VALUE, exp(2):VALUE or "
         "exp(3):MAC"},
        {"actions=exp(4):1", "13+1 4 is too large for a subtype; expected 0 to 3"},
        {"actions=exp(0):1", "17+0 exp has no value; expected 0 to 4294967295"},
        {"actions=exp(1):1:2", "16+3 '1:2' is no number for exp; expected 0 to 4294967295, or "
                               "hexadecimal after 0x"},
        {"actions=exp(3):1", "16+1 '1' is no MAC address; expected one like 00:11:22:33:44:55"},
        {"actions=apply_actions(1)", "9+13 the library cannot send apply_actions; it writes "
                                     "output, group and exp in one write_actions"},
        {"actions=set_field:5->tun_id", "9+9 the library cannot send set_field; it writes output, "
                                        "group and exp in one write_actions"},
        {"actions=outptu:5", "9+6 unknown action 'outptu'; did you mean output?"},
        {"actions=zzzzzzzz", "9+8 unknown action 'zzzzzzzz'; expected output:PORT, group:ID, drop "
                             "or exp(SUBTYPE):VALUE"},
        {"actions=drop,output:1", "14+8 drop stands beside other actions; write drop alone"},
        {"actions=output:1,drop", "18+4 drop stands beside other actions; write drop alone"},
        {"actions=drop:1", "9+6 drop takes no argument; write drop"},
        {"actions=write_actions(1),2", "26+1 write_actions stands beside other actions; write all "
                                       "of them in one write_actions(...)"},
        {"actions=write_actions(write_actions(1))", "23+13 write_actions inside write_actions"},
        {"actions=write_actions",
         "9+13 write_actions has no list; write write_actions(ACTION,...)"},
        {"actions=write_actions(1", "22+1 '(' without ')'"},
        {"actions=output:1;2", "16+3 '1;2' is no number for output; expected 0 to 4294967295, or "
                               "hexadecimal after 0x"},
        {"actions=group:1)", "15+2 '1)' is no number for group; expected 0 to 4294967040, or "
                             "hexadecimal after 0x"},
        {"actions=;", "9+1 unexpected ';'; actions are separated by commas"},
    });
}

TEST(FlowError, OtherCharactersAreShown)
{
    expect_refused({
        {"tcp;udp,actions=drop", "4+1 unexpected ';'; options are NAME=VALUE, separated by commas"},
        {"tcp(1),actions=drop", "4+1 unexpected '('; options are NAME=VALUE, separated by commas"},
        {"\x01", "1+1 unexpected byte 0x01; options are NAME=VALUE, separated by commas"},
        {"\xc3\xa4=1", "1+1 unexpected byte 0xc3; options are NAME=VALUE, separated by commas"},
        {"string=\"a\"b,actions=drop",
         "11+1 unexpected 'b'; options are NAME=VALUE, separated by commas"},
    });
}

TEST(FlowError, TheHintFollowsTheMessage)
{
    EXPECT_EQ(to_string(TextError{1, 0, "this is wrong", "write that"}),
              "this is wrong; write that");
    EXPECT_EQ(to_string(TextError{1, 0, "this is wrong", ""}), "this is wrong");
}

} // namespace
} // namespace flow_test
