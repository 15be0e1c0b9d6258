#include "flow/field_table.h"

#include <array>
#include <concepts>

namespace ofpctl {
namespace {

using M = OfpFRMatch;
using V6 = OfpMatchIpv6;
using K = OfpMatchMask;

// The block of a match that holds a member.
template <class Match, class T>
Match &holder(Match &match, T M::*)
{
    return match;
}
template <class T>
V6 &holder(const M &match, T V6::*)
{
    return *match.ipv6;
}
template <class T>
K &holder(const M &match, T K::*)
{
    return *match.mask;
}

template <std::unsigned_integral T>
Wide load(const T &member)
{
    return {0, member};
}
template <std::size_t Size>
Wide load(const uint8_t (&member)[Size])
{
    return from_bytes(member, Size);
}

template <std::unsigned_integral T>
void store(T &member, Wide value)
{
    member = static_cast<T>(value.low);
}
template <std::size_t Size>
void store(uint8_t (&member)[Size], Wide value)
{
    to_bytes(value, member, Size);
}

template <auto Member>
Wide get(const M &match)
{
    return load(holder(match, Member).*Member);
}
template <auto Member>
void set(M &match, Wide value)
{
    store(holder(match, Member).*Member, value);
}

template <auto Value>
constexpr Access plain = {get<Value>, set<Value>, nullptr, nullptr};
template <auto Value, auto Mask>
constexpr Access masked = {get<Value>, set<Value>, get<Mask>, set<Mask>};
constexpr Access own = {};

constexpr auto fields = std::to_array<Field>({
    {OFP_FIELD_TUNNEL_ID, "tun_id", "tunnel_id", Form::hex, 64, Needs::nothing,
     masked<&M::tunnel_id, &K::tunnel_id>},
    {OFP_FIELD_METADATA, "metadata", "metadata", Form::hex, 64, Needs::nothing,
     masked<&M::metadata, &K::metadata>},
    {OFP_FIELD_IN_PORT, "in_port", "in_port", Form::port, 32, Needs::nothing, plain<&M::in_port>},
    {OFP_FIELD_IN_PHY_PORT, "in_phy_port", "in_phy_port", Form::port, 32, Needs::in_port,
     plain<&M::in_phy_port>},

    {OFP_FIELD_VLAN_VID, "vlan_vid", "vlan_vid", Form::vlan, 12, Needs::nothing,
     masked<&M::vlan_vid, &K::vlan_vid>},
    {OFP_FIELD_VLAN_PCP, "dl_vlan_pcp", "vlan_pcp", Form::decimal, 3, Needs::nothing,
     plain<&M::vlan_pcp>},
    {OFP_FIELD_ETH_SRC, "dl_src", "eth_src", Form::mac, 48, Needs::nothing,
     masked<&M::eth_src, &K::eth_src>},
    {OFP_FIELD_ETH_DST, "dl_dst", "eth_dst", Form::mac, 48, Needs::nothing,
     masked<&M::eth_dst, &K::eth_dst>},
    {OFP_FIELD_ETH_TYPE, "dl_type", "eth_type", Form::code, 16, Needs::nothing,
     plain<&M::eth_type>},
    {OFP_FIELD_PBB_ISID, "pbb_isid", "pbb_isid", Form::decimal, 24, Needs::pbb,
     masked<&M::pbb_isid, &K::pbb_isid>},

    {OFP_FIELD_IPV4_SRC, "nw_src", "ipv4_src", Form::ipv4, 32, Needs::ipv4,
     masked<&M::ipv4_src, &K::ipv4_src>},
    {OFP_FIELD_IPV4_DST, "nw_dst", "ipv4_dst", Form::ipv4, 32, Needs::ipv4,
     masked<&M::ipv4_dst, &K::ipv4_dst>},
    {OFP_FIELD_ARP_SPA, "arp_spa", "arp_spa", Form::ipv4, 32, Needs::arp,
     masked<&M::arp_spa, &K::arp_spa>},
    {OFP_FIELD_ARP_TPA, "arp_tpa", "arp_tpa", Form::ipv4, 32, Needs::arp,
     masked<&M::arp_tpa, &K::arp_tpa>},
    {OFP_FIELD_IPV6_SRC, "ipv6_src", "ipv6_src", Form::ipv6, 128, Needs::ipv6,
     masked<&V6::ipv6_src, &K::ipv6_src>},
    {OFP_FIELD_IPV6_DST, "ipv6_dst", "ipv6_dst", Form::ipv6, 128, Needs::ipv6,
     masked<&V6::ipv6_dst, &K::ipv6_dst>},
    {OFP_FIELD_IPV6_FLABEL, "ipv6_label", "ipv6_flabel", Form::code, 20, Needs::ipv6,
     masked<&V6::ipv6_flabel, &K::ipv6_flabel>},
    {OFP_FIELD_IPV6_EXTHDR, "ipv6_exthdr", "ipv6_exthdr", Form::headers, 9, Needs::ipv6,
     masked<&V6::ipv6_exthdr, &K::ipv6_exthdr>},
    {OFP_FIELD_IP_PROTO, "nw_proto", "ip_proto", Form::decimal, 8, Needs::ip, plain<&M::ip_proto>},
    {OFP_FIELD_ARP_OP, "arp_op", "arp_op", Form::decimal, 16, Needs::arp, plain<&M::arp_op>},
    {OFP_FIELD_ARP_SHA, "arp_sha", "arp_sha", Form::mac, 48, Needs::arp,
     masked<&M::arp_sha, &K::arp_sha>},
    {OFP_FIELD_ARP_THA, "arp_tha", "arp_tha", Form::mac, 48, Needs::arp,
     masked<&M::arp_tha, &K::arp_tha>},
    {OFP_FIELD_IP_DSCP, "nw_tos", "ip_dscp", Form::dscp, 6, Needs::ip, plain<&M::ip_dscp>},
    {OFP_FIELD_IP_ECN, "nw_ecn", "ip_ecn", Form::decimal, 2, Needs::ip, plain<&M::ip_ecn>},
    {OFP_FIELD_MPLS_LABEL, "mpls_label", "mpls_label", Form::decimal, 20, Needs::mpls,
     plain<&M::mpls_label>},
    {OFP_FIELD_MPLS_TC, "mpls_tc", "mpls_tc", Form::decimal, 3, Needs::mpls, plain<&M::mpls_tc>},
    {OFP_FIELD_MPLS_BOS, "mpls_bos", "mpls_bos", Form::decimal, 1, Needs::mpls,
     plain<&M::mpls_bos>},

    {OFP_FIELD_TCP_SRC, "tp_src", "tcp_src", Form::decimal, 16, Needs::tcp,
     masked<&M::tcp_src, &K::tcp_src>},
    {OFP_FIELD_TCP_DST, "tp_dst", "tcp_dst", Form::decimal, 16, Needs::tcp,
     masked<&M::tcp_dst, &K::tcp_dst>},
    {OFP_FIELD_UDP_SRC, "tp_src", "udp_src", Form::decimal, 16, Needs::udp,
     masked<&M::udp_src, &K::udp_src>},
    {OFP_FIELD_UDP_DST, "tp_dst", "udp_dst", Form::decimal, 16, Needs::udp,
     masked<&M::udp_dst, &K::udp_dst>},
    {OFP_FIELD_SCTP_SRC, "tp_src", "sctp_src", Form::decimal, 16, Needs::sctp,
     masked<&M::sctp_src, &K::sctp_src>},
    {OFP_FIELD_SCTP_DST, "tp_dst", "sctp_dst", Form::decimal, 16, Needs::sctp,
     masked<&M::sctp_dst, &K::sctp_dst>},
    {OFP_FIELD_ICMPV4_TYPE, "icmp_type", "icmpv4_type", Form::decimal, 8, Needs::icmp,
     plain<&M::icmpv4_type>},
    {OFP_FIELD_ICMPV4_CODE, "icmp_code", "icmpv4_code", Form::decimal, 8, Needs::icmp,
     plain<&M::icmpv4_code>},
    {OFP_FIELD_ICMPV6_TYPE, "icmp_type", "icmpv6_type", Form::decimal, 8, Needs::icmp6,
     plain<&V6::icmpv6_type>},
    {OFP_FIELD_ICMPV6_CODE, "icmp_code", "icmpv6_code", Form::decimal, 8, Needs::icmp6,
     plain<&V6::icmpv6_code>},
    {OFP_FIELD_IPV6_ND_TARGET, "nd_target", "ipv6_nd_target", Form::ipv6, 128, Needs::neighbour,
     plain<&V6::ipv6_nd_target>},
    {OFP_FIELD_IPV6_ND_SLL, "nd_sll", "ipv6_nd_sll", Form::mac, 48, Needs::solicitation,
     plain<&V6::ipv6_nd_sll>},
    {OFP_FIELD_IPV6_ND_TLL, "nd_tll", "ipv6_nd_tll", Form::mac, 48, Needs::advertisement,
     plain<&V6::ipv6_nd_tll>},

    {OFP_FIELD_IP_RANGE, "ip_range", "ip_range", Form::words, 0, Needs::nothing, own},
    {OFP_FIELD_BATCH_IF, "batch_if", "batch_if", Form::interfaces, 0, Needs::nothing, own},
    {OFP_FIELD_VRF, "vrf", "vrf", Form::decimal, 16, Needs::nothing, plain<&M::vrf>},
    {OFP_FIELD_FRAGMENT, "fragment", "fragment", Form::decimal, 8, Needs::nothing,
     plain<&M::fragment>},
    {OFP_FIELD_OUT_PORT, "priv_out_port", "priv_out_port", Form::port, 32, Needs::nothing,
     plain<&M::out_port>},
    {OFP_FIELD_CVLAN_VID, "cvlan_vid", "cvlan_vid", Form::vlan, 12, Needs::nothing,
     masked<&M::cvlan_vid, &K::cvlan_vid>},
});

// Where each field bit's row is; the table's size where there is none.
constexpr auto row_of_bit = [] {
    std::array<uint8_t, 64> rows;
    rows.fill(static_cast<uint8_t>(fields.size()));
    for (std::size_t i = 0; i < fields.size(); ++i)
        rows[fields[i].bit] = static_cast<uint8_t>(i);
    return rows;
}();

} // namespace

std::span<const Field> all_fields() { return fields; }

const Field *find_field(unsigned bit)
{
    return bit < 64 && row_of_bit[bit] < fields.size() ? &fields[row_of_bit[bit]] : nullptr;
}

Wide effective_value(const OfpFRMatch &match, const Field &field)
{
    return field.access.value(match) & effective_mask(match, field);
}

Wide effective_mask(const OfpFRMatch &match, const Field &field)
{
    const Wide all = ones(field.width);
    const bool has_mask = field.maskable() && match.mask != nullptr &&
                          (match.mask->masked & field_bit(field.bit)) != 0;
    return has_mask ? field.access.mask(match) & all : all;
}

bool takes_part(const OfpFRMatch &match, const Field &field)
{
    if ((match.fields & field_bit(field.bit)) == 0)
        return false;
    if ((ipv6_field_bits & field_bit(field.bit)) != 0 && match.ipv6 == nullptr)
        return false;
    return !field.maskable() || is_vlan(field) || effective_mask(match, field);
}

} // namespace ofpctl
