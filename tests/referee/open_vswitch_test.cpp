// Open vSwitch reads the library's messages as the rules and groups that were asked for. It knows
// no in_phy_port, pbb_isid and ipv6_exthdr; the analyser reads those.
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ofpctl/flow_record.h"
#include "referee/messages.h"
#include "referee/tool.h"

namespace referee {
namespace {

class OpenVSwitch : public Tool {
protected:
    OpenVSwitch() : Tool("ovs-ofctl", "openvswitch-common") {}

    // What it prints for each message, a group-mod's lines made one.
    std::vector<std::string> read(const Bytes &messages)
    {
        const auto file =
            write("messages", {reinterpret_cast<const char *>(messages.data()), messages.size()});
        std::vector<std::string> told;
        for (const std::string &line : run("ovs-ofctl ofp-parse " + file.string() + " 2>&1")) {
            if (line.starts_with(' ') && !told.empty())
                told.back() += line;
            else
                told.push_back(line);
        }
        return told;
    }
    // What it makes of flow text itself, in the words of a flow-mod.
    std::vector<std::string> parse(const std::vector<std::string> &flows)
    {
        std::string text;
        for (const std::string &flow : flows)
            text += "check_overlap,reset_counts,no_packet_counts,no_byte_counts," + flow + '\n';
        const auto file = write("flows", text);
        std::vector<std::string> told;
        for (std::string &line :
             run("ovs-ofctl -O OpenFlow13 parse-flows " + file.string() + " 2>&1")) {
            if (line.starts_with("OFPT_FLOW_MOD"))
                told.push_back(std::move(line));
        }
        return told;
    }
};

// "OFPT_FLOW_MOD (OF1.3) (xid=0x1): ADD table:200 ..." from the command on.
std::string_view rule_of(std::string_view line)
{
    const std::size_t at = line.find("): ");
    return at == line.npos ? line : line.substr(at + 3);
}

struct Row {
    std::string_view match;
    std::string_view read; // as Open vSwitch prints it
};

constexpr Row matches[] = {
    {"", ""},
    {"in_port=7", "in_port=7"},
    {"in_port=LOCAL", "in_port=LOCAL"},
    {"metadata=0x1122334455667788", "metadata=0x1122334455667788"},
    {"metadata=0x1100000000000088/0xff000000000000ff",
     "metadata=0x1100000000000088/0xff000000000000ff"},
    {"tun_id=0x1122334455667788", "tun_id=0x1122334455667788"},
    {"tun_id=0x11000000/0xff000000", "tun_id=0x11000000/0xff000000"},
    {"dl_dst=01:23:45:67:89:ab", "dl_dst=01:23:45:67:89:ab"},
    {"dl_dst=01:23:45:00:00:00/ff:ff:ff:00:00:00", "dl_dst=01:23:45:00:00:00/ff:ff:ff:00:00:00"},
    {"dl_src=01:23:45:67:89:ab", "dl_src=01:23:45:67:89:ab"},
    {"dl_src=00:00:00:67:89:ab/00:00:00:ff:ff:ff", "dl_src=00:00:00:67:89:ab/00:00:00:ff:ff:ff"},
    {"dl_type=0x88cc", "dl_type=0x88cc"},
    {"dl_vlan=100", "dl_vlan=100"},
    {"vlan_vid=0x1005/0x1007", "vlan_tci=0x1005/0x1007"},
    {"dl_vlan=100,dl_vlan_pcp=5", "dl_vlan=100,dl_vlan_pcp=5"},

    {"ip,nw_tos=184", "ip,nw_tos=184"},
    {"ip,nw_ecn=2", "ip,nw_ecn=2"},
    {"ip,nw_proto=50", "ip,nw_proto=50"},
    {"ip,nw_src=10.1.2.3", "ip,nw_src=10.1.2.3"},
    {"ip,nw_src=10.0.0.3/255.0.0.255", "ip,nw_src=10.0.0.3/255.0.0.255"},
    {"ip,nw_dst=10.1.2.3", "ip,nw_dst=10.1.2.3"},
    {"ip,nw_dst=10.0.0.0/9", "ip,nw_dst=10.0.0.0/9"},

    {"tcp,tp_src=443", "tcp,tp_src=443"},
    {"tcp,tp_src=0x1b0/0xfff0", "tcp,tp_src=0x1b0/0xfff0"},
    {"tcp,tp_dst=65535", "tcp,tp_dst=65535"},
    {"tcp,tp_dst=0x8000/0x8000", "tcp,tp_dst=0x8000/0x8000"},
    {"udp,tp_src=53", "udp,tp_src=53"},
    {"udp,tp_src=0x30/0xfff0", "udp,tp_src=0x30/0xfff0"},
    {"udp,tp_dst=4789", "udp,tp_dst=4789"},
    {"udp,tp_dst=0x12/0xff", "udp,tp_dst=0x12/0xff"},
    {"sctp,tp_src=2905", "sctp,tp_src=2905"},
    {"sctp,tp_src=0xb00/0xff00", "sctp,tp_src=0xb00/0xff00"},
    {"sctp,tp_dst=2905", "sctp,tp_dst=2905"},
    {"sctp,tp_dst=0xb00/0xff00", "sctp,tp_dst=0xb00/0xff00"},
    {"icmp,icmp_type=3,icmp_code=13", "icmp,icmp_type=3,icmp_code=13"},

    {"arp,arp_op=2", "arp,arp_op=2"},
    {"arp,arp_spa=10.1.2.3", "arp,arp_spa=10.1.2.3"},
    {"arp,arp_spa=10.0.0.0/8", "arp,arp_spa=10.0.0.0/8"},
    {"arp,arp_tpa=10.1.2.3", "arp,arp_tpa=10.1.2.3"},
    {"arp,arp_tpa=10.1.0.0/16", "arp,arp_tpa=10.1.0.0/16"},
    {"arp,arp_sha=01:23:45:67:89:ab", "arp,arp_sha=01:23:45:67:89:ab"},
    {"arp,arp_sha=01:00:00:00:00:00/ff:00:00:00:00:00",
     "arp,arp_sha=01:00:00:00:00:00/ff:00:00:00:00:00"},
    {"arp,arp_tha=01:23:45:67:89:ab", "arp,arp_tha=01:23:45:67:89:ab"},
    {"arp,arp_tha=00:00:00:00:00:ab/00:00:00:00:00:ff",
     "arp,arp_tha=00:00:00:00:00:ab/00:00:00:00:00:ff"},

    {"ipv6,ipv6_src=2001:db8::1", "ipv6,ipv6_src=2001:db8::1"},
    {"ipv6,ipv6_src=2001:db8::/32", "ipv6,ipv6_src=2001:db8::/32"},
    {"ipv6,ipv6_dst=fe80::1:2", "ipv6,ipv6_dst=fe80::1:2"},
    {"ipv6,ipv6_dst=::2/::ff", "ipv6,ipv6_dst=::2/::ff"},
    {"ipv6,ipv6_label=0x12345", "ipv6,ipv6_label=0x12345"},
    {"ipv6,ipv6_label=0x12000/0xff000", "ipv6,ipv6_label=0x12000/0xff000"},
    {"icmp6,icmp_type=1,icmp_code=4", "icmp6,icmp_type=1,icmp_code=4"},
    {"icmp6,icmp_type=135,nd_target=fe80::1,nd_sll=01:23:45:67:89:ab",
     "icmp6,icmp_type=135,nd_target=fe80::1,nd_sll=01:23:45:67:89:ab"},
    {"icmp6,icmp_type=136,nd_target=fe80::1,nd_tll=01:23:45:67:89:ab",
     "icmp6,icmp_type=136,nd_target=fe80::1,nd_tll=01:23:45:67:89:ab"},
    {"mpls,mpls_label=1048575,mpls_tc=5,mpls_bos=1",
     "mpls,mpls_label=1048575,mpls_tc=5,mpls_bos=1"},
};

TEST_F(OpenVSwitch, ReadsEachFieldWithAndWithoutMask)
{
    std::vector<std::string> lines;
    for (const Row &row : matches)
        lines.push_back("priority=7," + std::string(row.match) +
                        ",actions=write_actions(output:1)");
    const std::vector<std::string> told = read(flow_mods(Flows(lines).items));
    ASSERT_EQ(told.size(), 2 * std::size(matches));
    for (std::size_t i = 0; i < std::size(matches); ++i) {
        const std::string comma = matches[i].read.empty() ? "" : ",";
        EXPECT_EQ(rule_of(told[2 * i]),
                  "ADD table:200 priority=7" + comma + std::string(matches[i].read) +
                      " check_overlap reset_counts no_packet_counts no_byte_counts"
                      " actions=write_actions(output:1)");
    }
}

constexpr Row actions[] = {
    {"drop", "write_actions(drop)"},
    {"write_actions(output:1)", "write_actions(output:1)"},
    {"write_actions(output:65279)", "write_actions(output:65279)"},
    {"write_actions(group:9)", "write_actions(group:9)"},
    {"write_actions(output:3,group:4294967040,output:2)",
     "write_actions(output:3,group:4294967040,output:2)"},
    {"write_actions(in_port)", "write_actions(IN_PORT)"},
    {"write_actions(normal)", "write_actions(NORMAL)"},
    {"write_actions(flood)", "write_actions(FLOOD)"},
    {"write_actions(all)", "write_actions(ALL)"},
    {"write_actions(controller)", "write_actions(CONTROLLER:0)"},
    {"write_actions(local)", "write_actions(LOCAL)"},
};

TEST_F(OpenVSwitch, ReadsEachAction)
{
    std::vector<std::string> lines;
    for (const Row &row : actions)
        lines.push_back("priority=7,actions=" + std::string(row.match));
    const std::vector<std::string> told = read(flow_mods(Flows(lines).items));
    ASSERT_EQ(told.size(), 2 * std::size(actions));
    for (std::size_t i = 0; i < std::size(actions); ++i) {
        EXPECT_EQ(rule_of(told[2 * i]),
                  "ADD table:200 priority=7 check_overlap reset_counts no_packet_counts "
                  "no_byte_counts actions=" +
                      std::string(actions[i].read));
    }
}

TEST_F(OpenVSwitch, ReadsEachCommandAndItsBarrier)
{
    const Flows flows({"priority=1,in_port=1,actions=drop", "priority=2,in_port=2,actions=drop"});
    for (const auto &[command, word] : {std::pair{ADD, "ADD"},
                                        {MODIFY_STRICT, "MOD_STRICT"},
                                        {DELETE, "DEL"},
                                        {DELETE_STRICT, "DEL_STRICT"}}) {
        const std::vector<std::string> told = read(flow_mods(flows.items, command));
        ASSERT_EQ(told.size(), 4U);
        EXPECT_EQ(told[0], "OFPT_FLOW_MOD (OF1.3) (xid=0x0): " + std::string(word) +
                               " table:200 priority=1,in_port=1 check_overlap reset_counts "
                               "no_packet_counts no_byte_counts actions=write_actions(drop)");
        EXPECT_EQ(told[1], "OFPT_BARRIER_REQUEST (OF1.3) (xid=0x0):");
        EXPECT_EQ(told[2], "OFPT_FLOW_MOD (OF1.3) (xid=0x1): " + std::string(word) +
                               " table:200 priority=2,in_port=2 check_overlap reset_counts "
                               "no_packet_counts no_byte_counts actions=write_actions(drop)");
        EXPECT_EQ(told[3], "OFPT_BARRIER_REQUEST (OF1.3) (xid=0x1):");
    }
}

// Our rule, encoded here and read there, is the rule that it makes of the text itself.
TEST_F(OpenVSwitch, ReadsRulesAtRandomAsItReadsTheirText)
{
    flow_test::Random random(11);
    std::vector<std::unique_ptr<flow_test::Record>> records;
    std::vector<OfpFlowItem> items;
    std::vector<std::string> lines;
    for (int i = 0; i < 3000; ++i) {
        records.push_back(flow_test::random_record(random, flow_test::Fields::of_open_vswitch));
        items.push_back(records.back()->item);
        lines.push_back(ofpctl::format_flow(items.back()));
    }
    const std::vector<std::string> asked = parse(lines);
    const std::vector<std::string> told = read(flow_mods(items));
    ASSERT_EQ(asked.size(), lines.size());
    ASSERT_EQ(told.size(), 2 * lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        // It writes no empty list of actions itself.
        std::string rule(rule_of(told[2 * i]));
        if (constexpr std::string_view drop = "write_actions(drop)"; rule.ends_with(drop))
            rule.replace(rule.size() - drop.size(), drop.size(), "drop");
        ASSERT_EQ(rule, rule_of(asked[i])) << lines[i];
    }
}

// It wants no watch port in a group of type all, where the library writes one as in every group:
// the analyser reads that.
TEST_F(OpenVSwitch, ReadsGroups)
{
    const struct {
        Bytes messages;
        std::string_view read;
    } groups[] = {
        {set_group(1, 0, {}), " ADD group_id=1,type=all"},
        {set_group(2, 3, {5}), " ADD group_id=2,type=ff,bucket=watch_port:5,actions=output:5"},
        {set_group(0xffffff00, 3, {1, 65279, 0xfffffffb}),
         " ADD group_id=4294967040,type=ff,bucket=watch_port:1,actions=output:1,"
         "bucket=watch_port:65279,actions=output:65279,"
         "bucket=watch_port:FLOOD,actions=FLOOD"},
        {delete_group(9), " DEL group_id=9,type=all"},
    };
    for (const auto &group : groups) {
        const std::vector<std::string> told = read(group.messages);
        ASSERT_EQ(told.size(), 2U) << group.read;
        EXPECT_EQ(told[0], "OFPT_GROUP_MOD (OF1.3) (xid=0x0):" + std::string(group.read));
        EXPECT_EQ(told[1], "OFPT_BARRIER_REQUEST (OF1.3) (xid=0x0):");
    }
}

TEST_F(OpenVSwitch, ReadsTheLargestGroupOfADatagram)
{
    std::vector<uint32_t> ports;
    for (uint32_t port = 1; port <= 254; ++port)
        ports.push_back(port);
    const std::vector<std::string> told = read(set_group(1, 3, ports));
    ASSERT_EQ(told.size(), 2U);
    EXPECT_TRUE(told[0].ends_with("bucket=watch_port:254,actions=output:254")) << told[0];
}

} // namespace
} // namespace referee
