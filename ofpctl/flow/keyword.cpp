#include "flow/keyword.h"

#include <algorithm>
#include <array>

#include "flow/nearest.h"
#include "ofp/flow_item.h"

namespace ofpctl {
namespace {

enum ProtocolIndex : uint8_t {
    p_ip,
    p_icmp,
    p_tcp,
    p_udp,
    p_sctp,
    p_ipv6,
    p_icmp6,
    p_tcp6,
    p_udp6,
    p_sctp6,
    p_arp,
    p_rarp,
    p_mpls,
    p_mplsm
};

// By ProtocolIndex.
constexpr auto protocols = std::to_array<Protocol>({
    {"ip", eth_ipv4, 0},
    {"icmp", eth_ipv4, proto_icmp},
    {"tcp", eth_ipv4, proto_tcp},
    {"udp", eth_ipv4, proto_udp},
    {"sctp", eth_ipv4, proto_sctp},
    {"ipv6", eth_ipv6, 0},
    {"icmp6", eth_ipv6, proto_icmp6},
    {"tcp6", eth_ipv6, proto_tcp},
    {"udp6", eth_ipv6, proto_udp},
    {"sctp6", eth_ipv6, proto_sctp},
    {"arp", eth_arp, 0},
    {"rarp", eth_rarp, 0},
    {"mpls", eth_mpls, 0},
    {"mplsm", eth_mpls_multicast, 0},
});

constexpr auto keywords = std::to_array<Keyword>({
    {"in_port", Option::field, OFP_FIELD_IN_PORT},
    {"in_phy_port", Option::field, OFP_FIELD_IN_PHY_PORT},
    {"metadata", Option::field, OFP_FIELD_METADATA},
    {"tun_id", Option::field, OFP_FIELD_TUNNEL_ID},
    {"tunnel_id", Option::field, OFP_FIELD_TUNNEL_ID},

    {"dl_src", Option::field, OFP_FIELD_ETH_SRC},
    {"eth_src", Option::field, OFP_FIELD_ETH_SRC},
    {"dl_dst", Option::field, OFP_FIELD_ETH_DST},
    {"eth_dst", Option::field, OFP_FIELD_ETH_DST},
    {"dl_type", Option::field, OFP_FIELD_ETH_TYPE},
    {"eth_type", Option::field, OFP_FIELD_ETH_TYPE},
    {"dl_vlan", Option::vlan_number, OFP_FIELD_VLAN_VID},
    {"vlan_vid", Option::field, OFP_FIELD_VLAN_VID},
    {"vlan_tci", Option::vlan_tci},
    {"dl_vlan_pcp", Option::field, OFP_FIELD_VLAN_PCP},
    {"vlan_pcp", Option::field, OFP_FIELD_VLAN_PCP},
    {"pbb_isid", Option::field, OFP_FIELD_PBB_ISID},

    {"nw_src", Option::shared, nw_src},
    {"ip_src", Option::shared, nw_src},
    {"ipv4_src", Option::field, OFP_FIELD_IPV4_SRC},
    {"nw_dst", Option::shared, nw_dst},
    {"ip_dst", Option::shared, nw_dst},
    {"ipv4_dst", Option::field, OFP_FIELD_IPV4_DST},
    {"nw_proto", Option::shared, nw_proto},
    {"ip_proto", Option::shared, nw_proto},
    {"nw_tos", Option::dscp_byte},
    {"ip_dscp", Option::field, OFP_FIELD_IP_DSCP},
    {"nw_ecn", Option::field, OFP_FIELD_IP_ECN},
    {"ip_ecn", Option::field, OFP_FIELD_IP_ECN},

    {"tp_src", Option::shared, tp_src},
    {"tp_dst", Option::shared, tp_dst},
    {"tcp_src", Option::field, OFP_FIELD_TCP_SRC},
    {"tcp_dst", Option::field, OFP_FIELD_TCP_DST},
    {"udp_src", Option::field, OFP_FIELD_UDP_SRC},
    {"udp_dst", Option::field, OFP_FIELD_UDP_DST},
    {"sctp_src", Option::field, OFP_FIELD_SCTP_SRC},
    {"sctp_dst", Option::field, OFP_FIELD_SCTP_DST},
    {"icmp_type", Option::shared, icmp_type},
    {"icmp_code", Option::shared, icmp_code},
    {"icmpv4_type", Option::field, OFP_FIELD_ICMPV4_TYPE},
    {"icmpv4_code", Option::field, OFP_FIELD_ICMPV4_CODE},
    {"icmpv6_type", Option::field, OFP_FIELD_ICMPV6_TYPE},
    {"icmpv6_code", Option::field, OFP_FIELD_ICMPV6_CODE},

    {"arp_op", Option::field, OFP_FIELD_ARP_OP},
    {"arp_spa", Option::field, OFP_FIELD_ARP_SPA},
    {"arp_tpa", Option::field, OFP_FIELD_ARP_TPA},
    {"arp_sha", Option::field, OFP_FIELD_ARP_SHA},
    {"arp_tha", Option::field, OFP_FIELD_ARP_THA},

    {"ipv6_src", Option::field, OFP_FIELD_IPV6_SRC},
    {"ipv6_dst", Option::field, OFP_FIELD_IPV6_DST},
    {"ipv6_label", Option::field, OFP_FIELD_IPV6_FLABEL},
    {"ipv6_flabel", Option::field, OFP_FIELD_IPV6_FLABEL},
    {"ipv6_exthdr", Option::field, OFP_FIELD_IPV6_EXTHDR},
    {"nd_target", Option::field, OFP_FIELD_IPV6_ND_TARGET},
    {"ipv6_nd_target", Option::field, OFP_FIELD_IPV6_ND_TARGET},
    {"nd_sll", Option::field, OFP_FIELD_IPV6_ND_SLL},
    {"ipv6_nd_sll", Option::field, OFP_FIELD_IPV6_ND_SLL},
    {"nd_tll", Option::field, OFP_FIELD_IPV6_ND_TLL},
    {"ipv6_nd_tll", Option::field, OFP_FIELD_IPV6_ND_TLL},

    {"mpls_label", Option::field, OFP_FIELD_MPLS_LABEL},
    {"mpls_tc", Option::field, OFP_FIELD_MPLS_TC},
    {"mpls_bos", Option::field, OFP_FIELD_MPLS_BOS},

    {"ip_range", Option::field, OFP_FIELD_IP_RANGE},
    {"batch_if", Option::field, OFP_FIELD_BATCH_IF},
    {"vrf", Option::field, OFP_FIELD_VRF},
    {"fragment", Option::field, OFP_FIELD_FRAGMENT},
    {"priv_out_port", Option::field, OFP_FIELD_OUT_PORT},
    {"cvlan", Option::vlan_number, OFP_FIELD_CVLAN_VID},
    {"cvlan_vid", Option::field, OFP_FIELD_CVLAN_VID},

    {"flow_flag", Option::experimenter, 37},
    {"string", Option::experimenter, 38},
    {"bssid_43", Option::experimenter, 43},
    {"reserve", Option::experimenter, 44},
    {"inner_vlan", Option::experimenter, 47},
    {"egress_port", Option::experimenter, 48},
    {"bssid_49", Option::experimenter, 49},
    {"eapol", Option::experimenter, 50},
    {"service", Option::experimenter, 52},
    {"l4_range_54", Option::experimenter, 54},
    {"l4_range_55", Option::experimenter, 55},
    {"l4_range_56", Option::experimenter, 56},
    {"l4_range_57", Option::experimenter, 57},
    {"exp", Option::any_experimenter},

    {"ip", Option::protocol, p_ip},
    {"ipv4", Option::protocol, p_ip},
    {"icmp", Option::protocol, p_icmp},
    {"icmp4", Option::protocol, p_icmp},
    {"tcp", Option::protocol, p_tcp},
    {"udp", Option::protocol, p_udp},
    {"sctp", Option::protocol, p_sctp},
    {"ipv6", Option::protocol, p_ipv6},
    {"ip6", Option::protocol, p_ipv6},
    {"icmp6", Option::protocol, p_icmp6},
    {"tcp6", Option::protocol, p_tcp6},
    {"udp6", Option::protocol, p_udp6},
    {"sctp6", Option::protocol, p_sctp6},
    {"arp", Option::protocol, p_arp},
    {"rarp", Option::protocol, p_rarp},
    {"mpls", Option::protocol, p_mpls},
    {"mplsm", Option::protocol, p_mplsm},

    {"table", Option::table},
    {"priority", Option::priority},
    {"actions", Option::actions},
    {"action", Option::actions},

    {"cookie", Option::zero},
    {"idle_timeout", Option::zero},
    {"hard_timeout", Option::zero},
    {"importance", Option::zero},
    {"check_overlap", Option::always},
    {"reset_counts", Option::always},
    {"no_packet_counts", Option::always},
    {"no_byte_counts", Option::always},
    {"send_flow_rem", Option::never},
    {"out_port", Option::nowhere},
    {"out_group", Option::nowhere},
    {"duration", Option::counters},
    {"n_packets", Option::counters},
    {"n_bytes", Option::counters},
    {"idle_age", Option::counters},
    {"hard_age", Option::counters},

    {"nw_ttl", Option::foreign},
    {"nw_frag", Option::foreign},
    {"ip_frag", Option::foreign},
    {"mpls_ttl", Option::foreign},
    {"tcp_flags", Option::foreign},
    {"nd_reserved", Option::foreign},
    {"nd_options_type", Option::foreign},
    {"pkt_mark", Option::foreign},
    {"conj_id", Option::foreign},
    {"recirc_id", Option::foreign},
    {"actset_output", Option::foreign},
    {"packet_type", Option::foreign},
    {"tun_src", Option::foreign},
    {"tun_dst", Option::foreign},
    {"tun_flags", Option::foreign},
    {"ct_state", Option::foreign},
    {"ct_zone", Option::foreign},
    {"ct_mark", Option::foreign},
    {"ct_label", Option::foreign},
});

constexpr std::size_t slot_count = 1024;
constexpr uint8_t free_slot = 255;
static_assert(keywords.size() < free_slot);

constexpr std::size_t first_slot(std::string_view word)
{
    auto hash = static_cast<uint32_t>(word.size());
    for (const char c : word)
        hash = hash * 33 + static_cast<unsigned char>(c);
    return (hash ^ hash >> 10) % slot_count;
}

// Open addressing; sparse enough that most words are found at their first slot.
constexpr auto slots = [] {
    std::array<uint8_t, slot_count> table;
    table.fill(free_slot);
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        std::size_t slot = first_slot(keywords[i].name);
        while (table[slot] != free_slot)
            slot = (slot + 1) % slot_count;
        table[slot] = static_cast<uint8_t>(i);
    }
    return table;
}();

} // namespace

const Protocol &protocol(uint8_t which) { return protocols[which]; }

const Protocol *find_protocol(int eth_type, int ip_proto)
{
    const Protocol *plain = nullptr;
    for (const Protocol &row : protocols) {
        if (row.eth_type != eth_type)
            continue;
        if (row.ip_proto == 0)
            plain = &row;
        else if (row.ip_proto == ip_proto)
            return &row;
    }
    return plain;
}

const Keyword *find_keyword(std::string_view word)
{
    for (std::size_t slot = first_slot(word); slots[slot] != free_slot;
         slot = (slot + 1) % slot_count) {
        const Keyword &keyword = keywords[slots[slot]];
        if (keyword.name == word)
            return &keyword;
    }
    return nullptr;
}

std::string_view nearest_keyword(std::string_view word)
{
    Nearest nearest(word);
    for (const Keyword &keyword : keywords) {
        if (keyword.option != Option::foreign)
            nearest.offer(keyword.name);
    }
    return nearest.word();
}

} // namespace ofpctl
