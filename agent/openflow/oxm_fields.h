// The basic match fields: what each holds and what it asks for.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace openflow {

// What an earlier entry of the match must say before the field makes sense.
enum class Prerequisite : uint8_t {
    None,
    InPort,
    VlanTag,
    Ip, // either version
    Ipv4,
    Ipv6,
    Arp,
    Mpls,
    Pbb,
    Tcp,
    Udp,
    Sctp,
    Icmpv4,
    Icmpv6,
    NeighbourDiscovery, // solicitation or advertisement
    NeighbourSolicitation,
    NeighbourAdvertisement,
};

struct FieldRule {
    std::string_view name;
    uint8_t size;  // bytes
    uint8_t width; // bits that count; the others are 0
    bool maskable;
    Prerequisite needs;
};

// By field number. TCP, UDP and SCTP ports take masks here, and pbb_isid has a fourth byte.
inline constexpr std::array<FieldRule, 40> BASIC_FIELDS = {{
    // clang-format off
    {"in_port",         4,  32, false, Prerequisite::None},
    {"in_phy_port",     4,  32, false, Prerequisite::InPort},
    {"metadata",        8,  64, true,  Prerequisite::None},
    {"eth_dst",         6,  48, true,  Prerequisite::None},
    {"eth_src",         6,  48, true,  Prerequisite::None},
    {"eth_type",        2,  16, false, Prerequisite::None},
    {"vlan_vid",        2,  13, true,  Prerequisite::None},
    {"vlan_pcp",        1,   3, false, Prerequisite::VlanTag},
    {"ip_dscp",         1,   6, false, Prerequisite::Ip},
    {"ip_ecn",          1,   2, false, Prerequisite::Ip},
    {"ip_proto",        1,   8, false, Prerequisite::Ip},
    {"ipv4_src",        4,  32, true,  Prerequisite::Ipv4},
    {"ipv4_dst",        4,  32, true,  Prerequisite::Ipv4},
    {"tcp_src",         2,  16, true,  Prerequisite::Tcp},
    {"tcp_dst",         2,  16, true,  Prerequisite::Tcp},
    {"udp_src",         2,  16, true,  Prerequisite::Udp},
    {"udp_dst",         2,  16, true,  Prerequisite::Udp},
    {"sctp_src",        2,  16, true,  Prerequisite::Sctp},
    {"sctp_dst",        2,  16, true,  Prerequisite::Sctp},
    {"icmpv4_type",     1,   8, false, Prerequisite::Icmpv4},
    {"icmpv4_code",     1,   8, false, Prerequisite::Icmpv4},
    {"arp_op",          2,  16, false, Prerequisite::Arp},
    {"arp_spa",         4,  32, true,  Prerequisite::Arp},
    {"arp_tpa",         4,  32, true,  Prerequisite::Arp},
    {"arp_sha",         6,  48, true,  Prerequisite::Arp},
    {"arp_tha",         6,  48, true,  Prerequisite::Arp},
    {"ipv6_src",       16, 128, true,  Prerequisite::Ipv6},
    {"ipv6_dst",       16, 128, true,  Prerequisite::Ipv6},
    {"ipv6_flabel",     4,  20, true,  Prerequisite::Ipv6},
    {"icmpv6_type",     1,   8, false, Prerequisite::Icmpv6},
    {"icmpv6_code",     1,   8, false, Prerequisite::Icmpv6},
    {"ipv6_nd_target", 16, 128, false, Prerequisite::NeighbourDiscovery},
    {"ipv6_nd_sll",     6,  48, false, Prerequisite::NeighbourSolicitation},
    {"ipv6_nd_tll",     6,  48, false, Prerequisite::NeighbourAdvertisement},
    {"mpls_label",      4,  20, false, Prerequisite::Mpls},
    {"mpls_tc",         1,   3, false, Prerequisite::Mpls},
    {"mpls_bos",        1,   1, false, Prerequisite::Mpls},
    {"pbb_isid",        4,  24, true,  Prerequisite::Pbb},
    {"tunnel_id",       8,  64, true,  Prerequisite::None},
    {"ipv6_exthdr",     2,   9, true,  Prerequisite::Ipv6},
    // clang-format on
}};

// True when a bit beyond the field's width is set. Fields over 8 bytes have none to spare.
inline bool exceeds_width(const FieldRule &rule, const uint8_t *bytes)
{
    if (rule.width == rule.size * 8) {
        return false;
    }
    uint64_t value = 0;
    for (size_t i = 0; i < rule.size; i++) {
        value = value << 8 | bytes[i];
    }
    return value >> rule.width != 0;
}

} // namespace openflow
