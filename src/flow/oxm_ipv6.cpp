#include "flow/oxm.h"
#include "ofp/flow.h"

using namespace ofp;

OFP_API uint64_t OFP_encodeoxm_Ipv6Src(const Match *match, uint64_t, uint8_t *out)
{
    return basic<26, &Ipv6::ipv6_src, &Mask::ipv6_src>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6Dst(const Match *match, uint64_t, uint8_t *out)
{
    return basic<27, &Ipv6::ipv6_dst, &Mask::ipv6_dst>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6Flabel(const Match *match, uint64_t, uint8_t *out)
{
    return basic<28, &Ipv6::ipv6_flabel, &Mask::ipv6_flabel, low_bits<20>>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV6Type(const Match *match, uint64_t, uint8_t *out)
{
    return basic<29, &Ipv6::icmpv6_type>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_IcmpV6Code(const Match *match, uint64_t, uint8_t *out)
{
    return basic<30, &Ipv6::icmpv6_code>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6NdTarget(const Match *match, uint64_t, uint8_t *out)
{
    return basic<31, &Ipv6::ipv6_nd_target>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6NdSll(const Match *match, uint64_t, uint8_t *out)
{
    return basic<32, &Ipv6::ipv6_nd_sll>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6NdTll(const Match *match, uint64_t, uint8_t *out)
{
    return basic<33, &Ipv6::ipv6_nd_tll>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_Ipv6Ext(const Match *match, uint64_t, uint8_t *out)
{
    return basic<39, &Ipv6::ipv6_exthdr, &Mask::ipv6_exthdr, low_bits<9>>(match, out);
}
