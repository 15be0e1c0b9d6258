#include "flow/oxm_fields.h"
#include "ofp/flow.h"

using namespace ofp;

OFP_API uint64_t OFP_encodeoxm_InPort(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IN_PORT>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_InPhyPort(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IN_PHY_PORT>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MetaData(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_METADATA>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_EthDst(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ETH_DST>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_EthSrc(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ETH_SRC>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_EthType(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ETH_TYPE>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_VlanID(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_VLAN_VID>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_VlanPcp(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_VLAN_PCP>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IpDscp(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IP_DSCP>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IpEcn(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IP_ECN>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IpProto(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IP_PROTO>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv4Src(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV4_SRC>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv4Dst(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV4_DST>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_TcpSrc(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_TCP_SRC>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_TcpDst(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_TCP_DST>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_UdpSrc(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_UDP_SRC>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_UdpDst(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_UDP_DST>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_SctpSrc(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_SCTP_SRC>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_SctpDst(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_SCTP_DST>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV4Type(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ICMPV4_TYPE>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV4Code(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ICMPV4_CODE>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpOp(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ARP_OP>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpSpa(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ARP_SPA>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpTpa(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ARP_TPA>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpSha(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ARP_SHA>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_ArpTha(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ARP_THA>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6Src(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV6_SRC>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6Dst(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV6_DST>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6Flabel(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV6_FLABEL>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV6Type(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ICMPV6_TYPE>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV6Code(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_ICMPV6_CODE>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6NdTarget(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV6_ND_TARGET>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6NdSll(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV6_ND_SLL>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6NdTll(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV6_ND_TLL>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MplsLabel(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_MPLS_LABEL>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MplsTc(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_MPLS_TC>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_MplsBos(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_MPLS_BOS>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PbbIsid(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_PBB_ISID>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_TunnelId(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_TUNNEL_ID>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6Ext(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IPV6_EXTHDR>(match, out);
}
