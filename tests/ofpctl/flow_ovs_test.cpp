// ovs-ofctl, where it is installed, reads what is printed as the same rule, and everything it reads
// of these forms is read here.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

class OpenVSwitch : public testing::Test {
protected:
    void SetUp() override
    {
        if (std::system("ovs-ofctl --version >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "ovs-ofctl is not installed";
        file_ =
            std::filesystem::temp_directory_path() / ("flow_ovs_test." + std::to_string(getpid()));
    }
    void TearDown() override
    {
        if (!file_.empty())
            std::filesystem::remove(file_);
    }

    // Each line as ovs-ofctl prints it, from the match on: "tcp,tp_dst=80 actions=drop".
    std::vector<std::string> printed_by_ovs(const std::vector<std::string> &lines)
    {
        std::ofstream out(file_);
        for (const std::string &line : lines)
            out << line << '\n';
        out.close();
        const std::string command =
            "timeout 60 ovs-ofctl -O OpenFlow13 parse-flows '" + file_.string() + "' 2>&1";
        FILE *pipe = popen(command.c_str(), "r");
        std::string all;
        char buffer[4096];
        while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe))
            all.append(buffer, count);
        EXPECT_EQ(pclose(pipe), 0) << all.substr(all.size() < 500 ? 0 : all.size() - 500);
        return rules_in(all);
    }

private:
    static std::vector<std::string> rules_in(const std::string &text)
    {
        std::vector<std::string> rules;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) {
            if (const auto at = line.find("): ADD "); at != line.npos)
                rules.push_back(line.substr(at + 7));
        }
        return rules;
    }

    std::filesystem::path file_;
};

std::string replaced(std::string text, const std::string &from, const std::string &to)
{
    return std::regex_replace(text, std::regex(from), to);
}

std::string four_digits(const std::string &hex)
{
    return "0x" + std::string(6 - std::min<std::size_t>(hex.size(), 6), '0') + hex.substr(2);
}

// How ovs-ofctl prints the line that format_flow made.
std::string in_ovs_words(std::string line)
{
    line = replaced(line, "^table=200,", "table:200 ");
    line = replaced(line, "priority=32768,?", "");
    line = replaced(line, ",?actions=", " actions=");
    line = replaced(line, "(metadata|tun_id)=0x0([/, ])", "$1=0$2");
    std::smatch vlan;
    if (std::regex_search(line, vlan, std::regex("vlan_vid=(0x[0-9a-f]+)/(0x[0-9a-f]+)")))
        line = vlan.prefix().str() + "vlan_tci=" + four_digits(vlan[1]) + "/" +
               four_digits(vlan[2]) + vlan.suffix().str();
    return line;
}

TEST_F(OpenVSwitch, PrintsTheSameRuleInTheSameWords)
{
    Random random(5);
    std::vector<std::string> lines;
    for (int i = 0; i < 2000; ++i)
        lines.push_back(format_flow(random_record(random, Fields::of_open_vswitch)->item));
    const std::vector<std::string> theirs = printed_by_ovs(lines);
    ASSERT_EQ(theirs.size(), lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        ASSERT_EQ(theirs[i], in_ovs_words(lines[i]));
}

TEST_F(OpenVSwitch, AgreesOnEveryWayToWriteARule)
{
    const std::vector<std::string> lines = {
        "tcp tp_dst=80 actions=drop",
        "tcp,,tp_dst=80,actions=drop",
        " tcp, tp_dst=80 , actions= output:3 , output:4 ",
        "tcp tp_dst:80 actions=drop",
        "tp_dst=80,tcp,actions=drop",
        "nw_src=1.2.3.4,tcp,nw_dst=1.2.3.4,actions=drop",
        "ip,ip,actions=drop",
        "ip,tcp,actions=drop",
        "ip,dl_type=0x800,actions=drop",
        "dl_type=2048,nw_proto=6,tcp_dst=80,actions=drop",
        "dl_type=0x800/0xffff,actions=drop",
        "dl_type=0x800/0,actions=drop",
        "ipv4,actions=drop",
        "ip,nw_src=1.2.3.4/0.0.0.255,actions=drop",
        "ip,nw_src=1.2.3.4/24,nw_dst=1.2.3.4/32,actions=drop",
        "ip,nw_src=1.2.3.4/255.255.0.255,actions=drop",
        "ip,nw_src=1.2.3.4/0,actions=drop",
        "ip,ip_src=1.2.3.4,ip_dst=5.6.7.8,actions=drop",
        "ip,nw_src=*,actions=drop",
        "tcp,tp_dst=0x55/0xf0,actions=drop",
        "tcp,tp_dst=80/0,actions=drop",
        "tcp,tp_dst=80/0xffff,actions=drop",
        "dl_vlan=10,actions=drop",
        "vlan_vid=0x100a,actions=drop",
        "vlan_vid=0x1000/0x1000,actions=drop",
        "vlan_vid=0x1005/0x1fff,actions=drop",
        "vlan_vid=0x1005/0x1003,actions=drop",
        "vlan_tci=0x1005/0x1fff,actions=drop",
        "vlan_tci=0x1000/0x1000,dl_vlan_pcp=3,actions=drop",
        "vlan_tci=0x7005,actions=drop",
        "dl_vlan_pcp=3,actions=drop",
        "dl_vlan=10,vlan_pcp=3,actions=drop",
        "ip,nw_tos=0x10,nw_ecn=3,actions=drop",
        "ip,nw_tos=0x11,actions=drop",
        "ip,ip_dscp=10,ip_ecn=2,actions=drop",
        "icmp,icmp_type=8,icmp_code=0,actions=drop",
        "icmp6,icmp_type=135,icmp_code=0,nd_target=fe80::1,actions=drop",
        "icmp6,icmpv6_type=135,icmpv6_code=0,nd_sll=00:11:22:33:44:55,actions=drop",
        "arp,nw_src=1.2.3.4,nw_dst=10.0.0.0/8,nw_proto=1,actions=drop",
        "arp,arp_op=1,arp_spa=10.0.0.0/8,arp_sha=00:11:22:33:44:55/ff:ff:ff:00:00:00,actions=drop",
        "rarp,arp_tpa=1.2.3.4,actions=drop",
        "mpls,mpls_label=5,mpls_tc=2,mpls_bos=1,actions=drop",
        "ipv6,ipv6_src=2001::1/ffff::,ipv6_dst=::ffff:1.2.3.4,actions=drop",
        "ipv6,ipv6_label=0x12345/0xff,actions=drop",
        "sctp6,sctp_src=80,actions=drop",
        "udp6,udp_dst=80,actions=drop",
        "tun_id=5/7,metadata=18446744073709551615,actions=drop",
        "tunnel_id=0x5,in_port=local,actions=drop",
        "in_port=ANY,actions=drop",
        "in_port=0,actions=drop",
        "dl_src=1:2:3:4:5:6,actions=drop",
        "eth_dst=01:00:00:00:00:00/01:00:00:00:00:00,eth_src=*,actions=drop",
        "priority=0x10,actions=drop",
        "cookie=0x0,idle_timeout=0,hard_timeout=0,actions=drop",
        "ip,duration=3.5s,n_packets=5,n_bytes=6,idle_age=7,hard_age=8,actions=drop",
        "actions=",
        "action=drop",
        "actions=drop,",
        "actions=write_actions()",
        "actions=write_actions(drop)",
        "actions=write_actions(1,output:2,output=3,output(4),group:5)",
        "actions=write_actions(NORMAL,local,output:IN_PORT,FLOOD,Output:ALL)",
        "tcp,actions=drop # with a comment",
    };
    const std::vector<std::string> theirs = printed_by_ovs(lines);
    ASSERT_EQ(theirs.size(), lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string ours = in_ovs_words(format_flow(*parsed(lines[i]))).substr(10);
        // Without write_actions it applies the actions; here they are always written.
        const bool written = theirs[i].find("write_actions") != theirs[i].npos;
        if (!written)
            ours = replaced(ours, "write_actions\\((.*)\\)", "$1");
        ours = replaced(ours, "^ ", "");
        ASSERT_EQ(theirs[i], ours) << lines[i];
    }
}

} // namespace
} // namespace flow_test
