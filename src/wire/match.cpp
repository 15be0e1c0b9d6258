#include "ofp/wire_match.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpMatchField, fields) == 0);
static_assert(offsetof(OfpMatchField, in_port) == 8);
static_assert(offsetof(OfpMatchField, in_phy_port) == 12);
static_assert(offsetof(OfpMatchField, metadata) == 16);
static_assert(offsetof(OfpMatchField, tunnel_id) == 24);
static_assert(offsetof(OfpMatchField, eth_type) == 44);
static_assert(offsetof(OfpMatchField, vlan_vid) == 46);
static_assert(offsetof(OfpMatchField, ipv4_src) == 52);
static_assert(offsetof(OfpMatchField, ipv4_dst) == 56);
static_assert(offsetof(OfpMatchField, tcp_src) == 60);
static_assert(offsetof(OfpMatchField, tcp_dst) == 62);
static_assert(offsetof(OfpMatchField, udp_src) == 64);
static_assert(offsetof(OfpMatchField, udp_dst) == 66);
static_assert(offsetof(OfpMatchField, sctp_src) == 68);
static_assert(offsetof(OfpMatchField, sctp_dst) == 70);
static_assert(offsetof(OfpMatchField, arp_op) == 74);
static_assert(offsetof(OfpMatchField, arp_spa) == 76);
static_assert(offsetof(OfpMatchField, arp_tpa) == 80);
static_assert(offsetof(OfpMatchField, ipv6_flabel) == 144);
static_assert(offsetof(OfpMatchField, mpls_label) == 148);
static_assert(offsetof(OfpMatchField, pbb_isid) == 152);
static_assert(offsetof(OfpMatchField, ipv6_exthdr) == 172);
static_assert(offsetof(OfpMatchField, out_port) == 176);
static_assert(offsetof(OfpMatchField, cvlan_vid) == 180);
static_assert(offsetof(OfpMatchField, vrf) == 182);
static_assert(offsetof(OfpMatchField, value_u32_256) == 256);
static_assert(offsetof(OfpMatchField, value_u32_260) == 260);
static_assert(offsetof(OfpMatchField, value_u32_264) == 264);
static_assert(offsetof(OfpMatchField, value_u32_268) == 268);
OFP_API void OFP_bswap_MatchField(void *value)
{
    swap_members<&OfpMatchField::fields, &OfpMatchField::in_port, &OfpMatchField::in_phy_port,
                 &OfpMatchField::metadata, &OfpMatchField::tunnel_id, &OfpMatchField::eth_type,
                 &OfpMatchField::vlan_vid, &OfpMatchField::ipv4_src, &OfpMatchField::ipv4_dst,
                 &OfpMatchField::tcp_src, &OfpMatchField::tcp_dst, &OfpMatchField::udp_src,
                 &OfpMatchField::udp_dst, &OfpMatchField::sctp_src, &OfpMatchField::sctp_dst,
                 &OfpMatchField::arp_op, &OfpMatchField::arp_spa, &OfpMatchField::arp_tpa,
                 &OfpMatchField::ipv6_flabel, &OfpMatchField::mpls_label, &OfpMatchField::pbb_isid,
                 &OfpMatchField::ipv6_exthdr, &OfpMatchField::out_port, &OfpMatchField::cvlan_vid,
                 &OfpMatchField::vrf, &OfpMatchField::value_u32_256, &OfpMatchField::value_u32_260,
                 &OfpMatchField::value_u32_264, &OfpMatchField::value_u32_268>(value);
}

static_assert(offsetof(OfpMpls, value_u32_0) == 0);
static_assert(offsetof(OfpMpls, value_u16_13) == 13);
static_assert(offsetof(OfpMpls, value_u32_15) == 15);
static_assert(offsetof(OfpMpls, value_u32_19) == 19);
static_assert(offsetof(OfpMpls, value_u32_23) == 23);
OFP_API void OFP_bswap_Mpls(void *value)
{
    swap_members<&OfpMpls::value_u32_0, &OfpMpls::value_u16_13, &OfpMpls::value_u32_15,
                 &OfpMpls::value_u32_19, &OfpMpls::value_u32_23>(value);
}

static_assert(offsetof(OfpMatchIPRange, word) == 0);
OFP_API void OFP_bswap_MatchIPRange(void *value) { swap_members<&OfpMatchIPRange::word>(value); }

static_assert(offsetof(OfpExpMatchHeader, oxm_class) == 0);
static_assert(offsetof(OfpExpMatchHeader, experimenter) == 4);
OFP_API void OFP_bswap_ExpMatchHeader(void *value)
{
    swap_members<&OfpExpMatchHeader::oxm_class, &OfpExpMatchHeader::experimenter>(value);
}

static_assert(offsetof(OfpExpMatchL4PortRange, low) == 0);
static_assert(offsetof(OfpExpMatchL4PortRange, high) == 2);
OFP_API void OFP_bswap_ExpMatchL4PortRange(void *value)
{
    swap_members<&OfpExpMatchL4PortRange::low, &OfpExpMatchL4PortRange::high>(value);
}
