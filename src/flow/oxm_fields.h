// The match fields of a rule by field bit, and the one rule by which each is written.
#pragma once

#include "flow/oxm.h"

namespace ofp {

// The interfaces of a rule, cut into OXMs.
struct BatchInterfaces {};
uint64_t put_batch_interfaces(const OfpBatchIfData &list, uint64_t masked, uint8_t *out);

// Null: the field bit is not assigned.
template <unsigned Bit>
inline constexpr auto field = nullptr;

// clang-format off
template <> inline constexpr auto field<0> = basic(&Match::in_port);
template <> inline constexpr auto field<1> = basic(&Match::in_phy_port);
template <> inline constexpr auto field<2> = basic(&Match::metadata, &Mask::metadata);
template <> inline constexpr auto field<3> = basic(&Match::eth_dst, &Mask::eth_dst);
template <> inline constexpr auto field<4> = basic(&Match::eth_src, &Mask::eth_src);
template <> inline constexpr auto field<5> = basic(&Match::eth_type);
template <> inline constexpr auto field<6> = basic(&Match::vlan_vid, &Mask::vlan_vid, present_vid);
template <> inline constexpr auto field<7> = basic(&Match::vlan_pcp, nullptr, low<3>);
template <> inline constexpr auto field<8> = basic(&Match::ip_dscp, nullptr, low<6>);
template <> inline constexpr auto field<9> = basic(&Match::ip_ecn, nullptr, low<2>);
template <> inline constexpr auto field<10> = basic(&Match::ip_proto);
template <> inline constexpr auto field<11> = basic(&Match::ipv4_src, &Mask::ipv4_src);
template <> inline constexpr auto field<12> = basic(&Match::ipv4_dst, &Mask::ipv4_dst);
template <> inline constexpr auto field<13> = basic(&Match::tcp_src, &Mask::tcp_src);
template <> inline constexpr auto field<14> = basic(&Match::tcp_dst, &Mask::tcp_dst);
template <> inline constexpr auto field<15> = basic(&Match::udp_src, &Mask::udp_src);
template <> inline constexpr auto field<16> = basic(&Match::udp_dst, &Mask::udp_dst);
template <> inline constexpr auto field<17> = basic(&Match::sctp_src, &Mask::sctp_src);
template <> inline constexpr auto field<18> = basic(&Match::sctp_dst, &Mask::sctp_dst);
template <> inline constexpr auto field<19> = basic(&Match::icmpv4_type);
template <> inline constexpr auto field<20> = basic(&Match::icmpv4_code);
template <> inline constexpr auto field<21> = basic(&Match::arp_op);
template <> inline constexpr auto field<22> = basic(&Match::arp_spa, &Mask::arp_spa);
template <> inline constexpr auto field<23> = basic(&Match::arp_tpa, &Mask::arp_tpa);
template <> inline constexpr auto field<24> = basic(&Match::arp_sha, &Mask::arp_sha);
template <> inline constexpr auto field<25> = basic(&Match::arp_tha, &Mask::arp_tha);
template <> inline constexpr auto field<26> = basic(&Ipv6::ipv6_src, &Mask::ipv6_src);
template <> inline constexpr auto field<27> = basic(&Ipv6::ipv6_dst, &Mask::ipv6_dst);
template <> inline constexpr auto field<28> = basic(&Ipv6::ipv6_flabel, &Mask::ipv6_flabel, low<20>);
template <> inline constexpr auto field<29> = basic(&Ipv6::icmpv6_type);
template <> inline constexpr auto field<30> = basic(&Ipv6::icmpv6_code);
template <> inline constexpr auto field<31> = basic(&Ipv6::ipv6_nd_target);
template <> inline constexpr auto field<32> = basic(&Ipv6::ipv6_nd_sll);
template <> inline constexpr auto field<33> = basic(&Ipv6::ipv6_nd_tll);
template <> inline constexpr auto field<34> = basic(&Match::mpls_label);
template <> inline constexpr auto field<35> = basic(&Match::mpls_tc);
template <> inline constexpr auto field<36> = basic(&Match::mpls_bos);
template <> inline constexpr auto field<37> = basic(&Match::pbb_isid, &Mask::pbb_isid);
template <> inline constexpr auto field<38> = basic(&Match::tunnel_id, &Mask::tunnel_id);
template <> inline constexpr auto field<39> = basic(&Ipv6::ipv6_exthdr, &Mask::ipv6_exthdr, low<9>);

template <> inline constexpr auto field<58> = priv(&Match::ip_range);
template <> inline constexpr auto field<59> = BatchInterfaces{};
template <> inline constexpr auto field<60> = priv(&Match::vrf);
template <> inline constexpr auto field<61> = priv(&Match::fragment);
template <> inline constexpr auto field<62> = priv(&Match::out_port);
template <> inline constexpr auto field<63> = priv(&Match::cvlan_vid, &Mask::cvlan_vid, present_vid);
// clang-format on

template <unsigned Bit>
inline constexpr bool is_assigned = !std::is_null_pointer_v<std::remove_cv_t<decltype(field<Bit>)>>;

inline constexpr uint64_t assigned_fields = 0xfc0000ff'ffffffff; // 0 to 39 and 58 to 63

// A basic field that takes no mask announces and skips one all the same when its mask bit is set; a
// private one announces it only.
template <unsigned Bit>
inline constexpr bool skips_mask = false;

template <unsigned Bit>
requires requires { field<Bit>.takes_mask; }
inline constexpr bool skips_mask<Bit> = field<Bit>.oxm_class == oxm_basic && !field<Bit>.takes_mask;

// Header, value, and the mask where the field takes one and its mask bit is set. Returns the end.
template <unsigned Bit>
inline uint8_t *put_field(const Match *match, uint64_t masked_bits, uint8_t *out)
{
    constexpr auto form = field<Bit>;
    const auto &value = value_of(*match, form.value);
    constexpr uint32_t size = sizeof value;
    const bool masked = has_bit(masked_bits, Bit);

    put(out, masked ? oxm_header(form.oxm_class, Bit, size, true)
                    : oxm_header(form.oxm_class, Bit, size, false));
    put_value<form.transform>(out + oxm_header_size, value);
    out += oxm_header_size + size;
    if (!masked)
        return out;
    if constexpr (form.takes_mask)
        put_value<form.transform>(out, match->mask->*form.mask);
    return form.takes_mask || skips_mask<Bit> ? out + size : out;
}

template <>
inline uint8_t *put_field<59>(const Match *match, uint64_t masked_bits, uint8_t *out)
{
    return out + put_batch_interfaces(match->batch_if, masked_bits, out);
}

// With its bit clear a field is nothing. Returns the bytes written.
template <unsigned Bit>
inline uint64_t encode(const Match *match, uint8_t *out)
{
    if (!has_bit(match->fields, Bit))
        return 0;
    return static_cast<uint64_t>(put_field<Bit>(match, match->mask->masked, out) - out);
}

} // namespace ofp
