// Wireshark's dissector reads the library's messages as the rules and groups that were asked for.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "referee/messages.h"
#include "referee/tool.h"

namespace referee {
namespace {

// ---- A capture of messages to a switch's port ----

constexpr std::size_t headers = 14 + 20 + 20; // Ethernet, IPv4, TCP

void put(std::string &out, uint64_t value, std::size_t bytes)
{
    while (bytes-- > 0)
        out += static_cast<char>(bytes < sizeof value ? value >> 8 * bytes : 0);
}

// The analyser takes captures in either byte order.
std::string capture_head()
{
    std::string out;
    put(out, 0xa1b2c3d4, 4); // magic
    put(out, 0x00020004, 4); // version 2.4
    put(out, 0, 8);          // time zone, accuracy
    put(out, 65535, 4);      // longest packet
    put(out, 1, 4);          // Ethernet
    return out;
}

std::string packet(const Bytes &message, uint32_t sequence)
{
    std::string out;
    put(out, 0, 8); // time
    put(out, headers + message.size(), 4);
    put(out, headers + message.size(), 4);
    put(out, 0, 12); // Ethernet addresses
    put(out, 0x0800, 2);
    put(out, 0x4500, 2); // IPv4
    put(out, 40 + message.size(), 2);
    put(out, 0, 4);
    put(out, 0x40060000, 4); // time to live, TCP, no checksum
    put(out, 0x7f000001, 4);
    put(out, 0x7f000001, 4);
    put(out, 40000, 2);
    put(out, 6653, 2); // OpenFlow
    put(out, sequence, 4);
    put(out, 1, 4);
    put(out, 0x5018, 2); // no options; push, acknowledgement
    put(out, 1000, 2);
    put(out, 0, 4);
    out.append(message.begin(), message.end());
    return out;
}

// ---- What the analyser says ----

// Its lines about OpenFlow of one message, without indentation and bit patterns.
using Dissection = std::vector<std::string>;

std::string_view trimmed(std::string_view line)
{
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::size_t pattern = line.find(" = ");
    if (pattern != line.npos && line.find_first_not_of("01. ") == pattern + 1)
        line.remove_prefix(pattern + 3);
    return line;
}

class Analyser : public Tool {
protected:
    Analyser() : Tool("tshark", "tshark") {}

    std::vector<Dissection> dissect(const Bytes &messages)
    {
        std::string capture = capture_head();
        uint32_t sequence = 1;
        for (const Bytes &message : split(messages)) {
            capture += packet(message, sequence);
            sequence += static_cast<uint32_t>(message.size());
        }
        const auto file = write("capture.pcap", capture);
        std::vector<Dissection> told;
        bool openflow = false;
        for (const std::string &line :
             run("tshark -n -r " + file.string() + " -V -O openflow_v4 2>/dev/null")) {
            if (line.starts_with("Frame "))
                told.emplace_back();
            if (openflow && line.starts_with(' '))
                told.back().emplace_back(trimmed(line));
            else
                openflow = line.starts_with("OpenFlow 1.3");
        }
        return told;
    }
};

std::string_view after(std::string_view line, std::string_view key)
{
    return line.starts_with(key) ? line.substr(key.size()) : std::string_view();
}

// "IPv4 (0x0800)" is 0x0800, "01:23:45:67:89:ab (01:23:45:67:89:ab)" the address, "TCP (6)" 6.
std::string_view plain(std::string_view value)
{
    const std::size_t at = value.rfind('(');
    return at == value.npos ? value : value.substr(at + 1, value.size() - at - 2);
}

// "IN_PORT=7 IPV4_SRC=10.0.0.0/255.0.0.0", and "?" for what it could not decode. Some numbers it
// prints in hexadecimal.
std::string match_of(const Dissection &lines)
{
    std::string out;
    for (const std::string &line : lines) {
        if (line == "Instruction")
            break;
        if (const auto name = after(line, "Field: OFPXMT_"); !name.empty())
            out += (out.empty() ? "" : " ") + std::string(name.substr(4, name.find(' ') - 4));
        else if (const auto present = after(line, "OFPVID_PRESENT: "); !present.empty())
            out += present == "True" ? "=present" : "=absent";
        else if (const auto value = after(line, "Value: "); !value.empty())
            out += "=" + std::string(plain(value));
        else if (const auto mask = after(line, "Mask: "); !mask.empty())
            out += "/" + std::string(plain(mask));
        else if (line == "Undecoded Data")
            out += "?";
    }
    return out;
}

// The first instruction and its actions.
std::string actions_of(const Dissection &lines)
{
    std::string out;
    for (const std::string &line : lines) {
        if (const auto type = after(line, "Type: OFPIT_"); !type.empty())
            out += std::string(type.substr(0, type.find(' ')));
        else if (const auto port = after(line, "Port: "); !port.empty())
            out += " output:" + std::string(plain(port));
        else if (const auto group = after(line, "Group ID: "); !group.empty())
            out += " group:" + std::string(plain(group));
        else if (const auto id = after(line, "Experimenter: "); !id.empty())
            out += " experimenter:" + std::string(id);
        else if (line == "Undecoded Data")
            out += "?";
    }
    return out;
}

struct Row {
    std::string_view asked;
    std::string_view read;
};

// Masked ports are this system's own: the standard, and with it the analyser, knows none.
constexpr Row matches[] = {
    {"in_port=7", "IN_PORT=7"},
    {"in_port=7,in_phy_port=8", "IN_PORT=7 IN_PHY_PORT=8"},
    {"metadata=0x1122334455667788", "METADATA=1122334455667788"},
    {"metadata=0x1100000000000088/0xff000000000000ff",
     "METADATA=1100000000000088/ff000000000000ff"},
    {"tun_id=0x1122334455667788", "TUNNEL_ID=1122334455667788"},
    {"tun_id=0x11000000/0xff000000", "TUNNEL_ID=0000000011000000/00000000ff000000"},
    {"dl_dst=01:23:45:67:89:ab", "ETH_DST=01:23:45:67:89:ab"},
    {"dl_dst=01:23:45:00:00:00/ff:ff:ff:00:00:00", "ETH_DST=01:23:45:00:00:00/ff:ff:ff:00:00:00"},
    {"dl_src=01:23:45:67:89:ab", "ETH_SRC=01:23:45:67:89:ab"},
    {"dl_src=00:00:00:67:89:ab/00:00:00:ff:ff:ff", "ETH_SRC=00:00:00:67:89:ab/00:00:00:ff:ff:ff"},
    {"dl_type=0x88cc", "ETH_TYPE=0x88cc"},
    {"dl_vlan=100", "VLAN_VID=present=100"},
    {"dl_vlan=100,dl_vlan_pcp=5", "VLAN_VID=present=100 VLAN_PCP=05"},

    {"ip,nw_tos=184", "ETH_TYPE=0x0800 IP_DSCP=2e"},
    {"ip,nw_ecn=2", "ETH_TYPE=0x0800 IP_ECN=02"},
    {"ip,nw_proto=50", "ETH_TYPE=0x0800 IP_PROTO=50"},
    {"ip,nw_src=10.1.2.3", "ETH_TYPE=0x0800 IPV4_SRC=10.1.2.3"},
    {"ip,nw_src=10.0.0.3/255.0.0.255", "ETH_TYPE=0x0800 IPV4_SRC=10.0.0.3/255.0.0.255"},
    {"ip,nw_dst=10.1.2.3", "ETH_TYPE=0x0800 IPV4_DST=10.1.2.3"},
    {"ip,nw_dst=10.0.0.0/9", "ETH_TYPE=0x0800 IPV4_DST=10.0.0.0/255.128.0.0"},
    {"tcp,tp_src=443", "ETH_TYPE=0x0800 IP_PROTO=6 TCP_SRC=443"},
    {"tcp,tp_dst=65535", "ETH_TYPE=0x0800 IP_PROTO=6 TCP_DST=65535"},
    {"udp,tp_src=53", "ETH_TYPE=0x0800 IP_PROTO=17 UDP_SRC=53"},
    {"udp,tp_dst=4789", "ETH_TYPE=0x0800 IP_PROTO=17 UDP_DST=4789"},
    {"sctp,tp_src=2905", "ETH_TYPE=0x0800 IP_PROTO=132 SCTP_SRC=2905"},
    {"sctp,tp_dst=2906", "ETH_TYPE=0x0800 IP_PROTO=132 SCTP_DST=2906"},
    {"icmp,icmp_type=3,icmp_code=13", "ETH_TYPE=0x0800 IP_PROTO=1 ICMPV4_TYPE=03 ICMPV4_CODE=0d"},

    {"arp,arp_op=2", "ETH_TYPE=0x0806 ARP_OP=0002"},
    {"arp,arp_spa=10.1.2.3", "ETH_TYPE=0x0806 ARP_SPA=10.1.2.3"},
    {"arp,arp_spa=10.0.0.0/8", "ETH_TYPE=0x0806 ARP_SPA=10.0.0.0/255.0.0.0"},
    {"arp,arp_tpa=10.1.2.3", "ETH_TYPE=0x0806 ARP_TPA=10.1.2.3"},
    {"arp,arp_tpa=10.1.0.0/16", "ETH_TYPE=0x0806 ARP_TPA=10.1.0.0/255.255.0.0"},
    {"arp,arp_sha=01:23:45:67:89:ab", "ETH_TYPE=0x0806 ARP_SHA=01:23:45:67:89:ab"},
    {"arp,arp_sha=01:00:00:00:00:00/ff:00:00:00:00:00",
     "ETH_TYPE=0x0806 ARP_SHA=01:00:00:00:00:00/ff:00:00:00:00:00"},
    {"arp,arp_tha=01:23:45:67:89:ab", "ETH_TYPE=0x0806 ARP_THA=01:23:45:67:89:ab"},
    {"arp,arp_tha=00:00:00:00:00:ab/00:00:00:00:00:ff",
     "ETH_TYPE=0x0806 ARP_THA=00:00:00:00:00:ab/00:00:00:00:00:ff"},

    {"ipv6,ipv6_src=2001:db8::1", "ETH_TYPE=0x86dd IPV6_SRC=2001:db8::1"},
    {"ipv6,ipv6_src=2001:db8::/32", "ETH_TYPE=0x86dd IPV6_SRC=2001:db8::/ffff:ffff::"},
    {"ipv6,ipv6_dst=fe80::1:2", "ETH_TYPE=0x86dd IPV6_DST=fe80::1:2"},
    {"ipv6,ipv6_dst=::2/::ff", "ETH_TYPE=0x86dd IPV6_DST=::2/::ff"},
    {"ipv6,ipv6_label=0x12345", "ETH_TYPE=0x86dd IPV6_FLABEL=00012345"},
    {"ipv6,ipv6_label=0x12000/0xff000", "ETH_TYPE=0x86dd IPV6_FLABEL=00012000/000ff000"},
    {"ipv6,ipv6_exthdr=0x105", "ETH_TYPE=0x86dd IPV6_EXTHDR=0105"},
    {"ipv6,ipv6_exthdr=0x100/0x180", "ETH_TYPE=0x86dd IPV6_EXTHDR=0100/0180"},
    {"icmp6,icmp_type=1,icmp_code=4", "ETH_TYPE=0x86dd IP_PROTO=58 ICMPV6_TYPE=01 ICMPV6_CODE=04"},
    {"icmp6,icmp_type=135,nd_target=fe80::1,nd_sll=01:23:45:67:89:ab",
     "ETH_TYPE=0x86dd IP_PROTO=58 ICMPV6_TYPE=87 IPV6_ND_TARGET=fe800000000000000000000000000001 "
     "IPV6_ND_SLL=01:23:45:67:89:ab"},
    {"icmp6,icmp_type=136,nd_target=fe80::1,nd_tll=01:23:45:67:89:ab",
     "ETH_TYPE=0x86dd IP_PROTO=58 ICMPV6_TYPE=88 IPV6_ND_TARGET=fe800000000000000000000000000001 "
     "IPV6_ND_TLL=01:23:45:67:89:ab"},
    {"mpls,mpls_label=1048575,mpls_tc=5,mpls_bos=1",
     "ETH_TYPE=0x8847 MPLS_LABEL=1048575 MPLS_TC=05 MPLS_BOS=01"},
    // Four bytes, not the standard's three.
    {"dl_type=0x88e7,pbb_isid=0x123456", "ETH_TYPE=0x88e7 PBB_ISID=00123456"},
    {"dl_type=0x88e7,pbb_isid=0x120000/0xff0000", "ETH_TYPE=0x88e7 PBB_ISID=00120000/00ff0000"},
};

TEST_F(Analyser, ReadsEachFieldWithAndWithoutMask)
{
    std::vector<std::string> lines;
    for (const Row &row : matches)
        lines.push_back(std::string(row.asked) + ",actions=output:1");
    const std::vector<Dissection> told = dissect(flow_mods(Flows(lines).items));
    ASSERT_EQ(told.size(), 2 * std::size(matches));
    for (std::size_t i = 0; i < std::size(matches); ++i)
        EXPECT_EQ(match_of(told[2 * i]), matches[i].read);
}

constexpr Row actions[] = {
    {"drop", "WRITE_ACTIONS"},
    {"output:1", "WRITE_ACTIONS output:1"},
    {"output:4294967040", "WRITE_ACTIONS output:4294967040"},
    {"group:9", "WRITE_ACTIONS group:9"},
    {"output:3,group:4,output:2", "WRITE_ACTIONS output:3 group:4 output:2"},
    {"in_port", "WRITE_ACTIONS output:4294967288"},
    {"normal", "WRITE_ACTIONS output:4294967290"},
    {"flood", "WRITE_ACTIONS output:4294967291"},
    {"all", "WRITE_ACTIONS output:4294967292"},
    {"controller", "WRITE_ACTIONS output:4294967293"},
    {"local", "WRITE_ACTIONS output:4294967294"},
};

TEST_F(Analyser, ReadsEachAction)
{
    std::vector<std::string> lines;
    for (const Row &row : actions)
        lines.push_back("actions=" + std::string(row.asked));
    const std::vector<Dissection> told = dissect(flow_mods(Flows(lines).items));
    ASSERT_EQ(told.size(), 2 * std::size(actions));
    for (std::size_t i = 0; i < std::size(actions); ++i)
        EXPECT_EQ(actions_of(told[2 * i]), actions[i].read);
}

TEST_F(Analyser, ReadsEveryByteOfAFlowModAndItsBarrier)
{
    const Flows flows({"priority=513,in_port=7,actions=write_actions(output:2)"});
    const std::vector<Dissection> told = dissect(flow_mods(flows.items, DELETE_STRICT));
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0], (Dissection{
                           "Version: 1.3 (0x04)",
                           "Type: OFPT_FLOW_MOD (14)",
                           "Length: 88",
                           "Transaction ID: 0",
                           "Cookie: 0x0000000000000000",
                           "Cookie mask: 0x0000000000000000",
                           "Table ID: 200",
                           "Command: OFPFC_DELETE_STRICT (4)",
                           "Idle timeout: 0",
                           "Hard timeout: 0",
                           "Priority: 513",
                           "Buffer ID: OFP_NO_BUFFER (4294967295)",
                           "Out port: OFPP_ANY (4294967295)",
                           "Out group: OFPG_ANY (4294967295)",
                           "Flags: 0x001e",
                           "Send flow removed: False",
                           "Check overlap: True",
                           "Reset counts: True",
                           "Don't count packets: True",
                           "Don't count bytes: True",
                           "Pad: 0000",
                           "Match",
                           "Type: OFPMT_OXM (1)",
                           "Length: 12",
                           "OXM field",
                           "Class: OFPXMC_OPENFLOW_BASIC (0x8000)",
                           "Field: OFPXMT_OFB_IN_PORT (0)",
                           "Has mask: False",
                           "Length: 4",
                           "Value: 7",
                           "Pad: 00000000",
                           "Instruction",
                           "Type: OFPIT_WRITE_ACTIONS (3)",
                           "Length: 24",
                           "Pad: 00000000",
                           "Action",
                           "Type: OFPAT_OUTPUT (0)",
                           "Length: 16",
                           "Port: 2",
                           "Max length: 0",
                           "Pad: 000000000000",
                       }));
    EXPECT_EQ(told[1], (Dissection{"Version: 1.3 (0x04)", "Type: OFPT_BARRIER_REQUEST (20)",
                                   "Length: 8", "Transaction ID: 0"}));
}

Dissection group_head(std::string_view length, std::string_view command, std::string_view type,
                      std::string_view id)
{
    return {"Version: 1.3 (0x04)",
            "Type: OFPT_GROUP_MOD (15)",
            "Length: " + std::string(length),
            "Transaction ID: 0",
            "Command: " + std::string(command),
            "Type: " + std::string(type),
            "Pad: 00",
            "Group ID: " + std::string(id)};
}

TEST_F(Analyser, ReadsEveryByteOfGroupModsAndTheirBarriers)
{
    Bytes messages = set_group(7, 3, {5, 0xfffffffb});
    for (const Bytes &more :
         {set_group(0xffffff00, 0, {5, 0xfffffffb}), set_group(8, 0, {}), delete_group(9)})
        messages.insert(messages.end(), more.begin(), more.end());
    const std::vector<Dissection> told = dissect(messages);
    ASSERT_EQ(told.size(), 8U);

    Dissection buckets;
    for (const std::string port : {"5", "OFPP_FLOOD (4294967291)"}) {
        for (const std::string &line :
             Dissection{"Bucket", "Length: 32", "Weight: 0", "Watch port: " + port,
                        "Watch group: OFPG_ANY (4294967295)", "Pad: 00000000", "Action",
                        "Type: OFPAT_OUTPUT (0)", "Length: 16", "Port: " + port, "Max length: 0",
                        "Pad: 000000000000"})
            buckets.push_back(line);
    }
    const auto with_buckets = [&](Dissection head) {
        head.insert(head.end(), buckets.begin(), buckets.end());
        return head;
    };
    EXPECT_EQ(told[0], with_buckets(group_head("80", "OFPGC_ADD (0)", "OFPGT_FF (3)", "7")));
    EXPECT_EQ(told[2],
              with_buckets(group_head("80", "OFPGC_ADD (0)", "OFPGT_ALL (0)", "4294967040")));
    EXPECT_EQ(told[4], group_head("16", "OFPGC_ADD (0)", "OFPGT_ALL (0)", "8"));
    EXPECT_EQ(told[6], group_head("16", "OFPGC_DELETE (2)", "OFPGT_ALL (0)", "9"));
    for (const std::size_t barrier : {1U, 3U, 5U, 7U})
        EXPECT_EQ(told[barrier].at(1), "Type: OFPT_BARRIER_REQUEST (20)");
}

} // namespace
} // namespace referee
