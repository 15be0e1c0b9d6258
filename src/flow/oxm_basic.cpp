#include "flow/oxm.h"
#include "ofp/flow.h"

using namespace ofp;

OFP_API uint64_t OFP_encodeoxm_InPort(const Match *match, uint64_t, uint8_t *out)
{
    return basic<0, &Match::in_port>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_InPhyPort(const Match *match, uint64_t, uint8_t *out)
{
    return basic<1, &Match::in_phy_port>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MetaData(const Match *match, uint64_t, uint8_t *out)
{
    return basic<2, &Match::metadata, &Mask::metadata>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_EthDst(const Match *match, uint64_t, uint8_t *out)
{
    return basic<3, &Match::eth_dst, &Mask::eth_dst>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_EthSrc(const Match *match, uint64_t, uint8_t *out)
{
    return basic<4, &Match::eth_src, &Mask::eth_src>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_EthType(const Match *match, uint64_t, uint8_t *out)
{
    return basic<5, &Match::eth_type>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_VlanID(const Match *match, uint64_t, uint8_t *out)
{
    return basic<6, &Match::vlan_vid, &Mask::vlan_vid, present_vid>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_VlanPcp(const Match *match, uint64_t, uint8_t *out)
{
    return basic<7, &Match::vlan_pcp, no_mask, low_bits<3>>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IpDscp(const Match *match, uint64_t, uint8_t *out)
{
    return basic<8, &Match::ip_dscp, no_mask, low_bits<6>>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IpEcn(const Match *match, uint64_t, uint8_t *out)
{
    return basic<9, &Match::ip_ecn, no_mask, low_bits<2>>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IpProto(const Match *match, uint64_t, uint8_t *out)
{
    return basic<10, &Match::ip_proto>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv4Src(const Match *match, uint64_t, uint8_t *out)
{
    return basic<11, &Match::ipv4_src, &Mask::ipv4_src>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv4Dst(const Match *match, uint64_t, uint8_t *out)
{
    return basic<12, &Match::ipv4_dst, &Mask::ipv4_dst>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_TcpSrc(const Match *match, uint64_t, uint8_t *out)
{
    return basic<13, &Match::tcp_src, &Mask::tcp_src>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_TcpDst(const Match *match, uint64_t, uint8_t *out)
{
    return basic<14, &Match::tcp_dst, &Mask::tcp_dst>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_UdpSrc(const Match *match, uint64_t, uint8_t *out)
{
    return basic<15, &Match::udp_src, &Mask::udp_src>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_UdpDst(const Match *match, uint64_t, uint8_t *out)
{
    return basic<16, &Match::udp_dst, &Mask::udp_dst>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_SctpSrc(const Match *match, uint64_t, uint8_t *out)
{
    return basic<17, &Match::sctp_src, &Mask::sctp_src>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_SctpDst(const Match *match, uint64_t, uint8_t *out)
{
    return basic<18, &Match::sctp_dst, &Mask::sctp_dst>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV4Type(const Match *match, uint64_t, uint8_t *out)
{
    return basic<19, &Match::icmpv4_type>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV4Code(const Match *match, uint64_t, uint8_t *out)
{
    return basic<20, &Match::icmpv4_code>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpOp(const Match *match, uint64_t, uint8_t *out)
{
    return basic<21, &Match::arp_op>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpSpa(const Match *match, uint64_t, uint8_t *out)
{
    return basic<22, &Match::arp_spa, &Mask::arp_spa>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpTpa(const Match *match, uint64_t, uint8_t *out)
{
    return basic<23, &Match::arp_tpa, &Mask::arp_tpa>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpSha(const Match *match, uint64_t, uint8_t *out)
{
    return basic<24, &Match::arp_sha, &Mask::arp_sha>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpTha(const Match *match, uint64_t, uint8_t *out)
{
    return basic<25, &Match::arp_tha, &Mask::arp_tha>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MplsLabel(const Match *match, uint64_t, uint8_t *out)
{
    return basic<34, &Match::mpls_label>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MplsTc(const Match *match, uint64_t, uint8_t *out)
{
    return basic<35, &Match::mpls_tc>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MplsBos(const Match *match, uint64_t, uint8_t *out)
{
    return basic<36, &Match::mpls_bos>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PbbIsid(const Match *match, uint64_t, uint8_t *out)
{
    return basic<37, &Match::pbb_isid, &Mask::pbb_isid>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_TunnelId(const Match *match, uint64_t, uint8_t *out)
{
    return basic<38, &Match::tunnel_id, &Mask::tunnel_id>(match, out);
}
