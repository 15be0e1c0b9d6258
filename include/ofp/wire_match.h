/* Match of a flow rule. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_MATCH_H
#define OFP_WIRE_MATCH_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 59 and 113: match fields of a rule (59) or their masks (113). */
typedef struct OfpMatchField {
    uint64_t fields; /* field bits */
    uint32_t in_port;
    uint32_t in_phy_port;
    uint64_t metadata;
    uint64_t tunnel_id;
    uint8_t eth_dst[6];
    uint8_t eth_src[6];
    uint16_t eth_type;
    uint16_t vlan_vid;
    uint8_t vlan_pcp;
    uint8_t ip_dscp;
    uint8_t ip_ecn;
    uint8_t ip_proto;
    uint32_t ipv4_src;
    uint32_t ipv4_dst;
    uint16_t tcp_src;
    uint16_t tcp_dst;
    uint16_t udp_src;
    uint16_t udp_dst;
    uint16_t sctp_src;
    uint16_t sctp_dst;
    uint8_t icmpv4_type;
    uint8_t icmpv4_code;
    uint16_t arp_op;
    uint32_t arp_spa;
    uint32_t arp_tpa;
    uint8_t arp_sha[6];
    uint8_t arp_tha[6];
    uint8_t ipv6_src[16];
    uint8_t ipv6_dst[16];
    uint8_t ipv6_nd_target[16];
    uint32_t ipv6_flabel;
    uint32_t mpls_label;
    uint32_t pbb_isid;
    uint8_t ipv6_nd_sll[6];
    uint8_t ipv6_nd_tll[6];
    uint8_t icmpv6_type;
    uint8_t icmpv6_code;
    uint8_t mpls_tc;
    uint8_t mpls_bos;
    uint16_t ipv6_exthdr;
    uint8_t fragment; /* private */
    uint8_t reserved_175;
    uint32_t out_port;  /* private */
    uint16_t cvlan_vid; /* private */
    uint16_t vrf;       /* private */
    uint8_t opaque_184[72];
    uint32_t value_u32_256;
    uint32_t value_u32_260;
    uint32_t value_u32_264;
    uint32_t value_u32_268;
} OfpMatchField;
OFP_PIN_SIZE(OfpMatchField, 272);
OFP_API void OFP_bswap_MatchField(void *value);

/* TLV 206: MPLS part of a rule; packed. */
typedef struct OFP_PACKED OfpMpls {
    uint32_t value_u32_0;
    uint8_t opaque_4[9];
    uint16_t value_u16_13;
    uint32_t value_u32_15;
    uint32_t value_u32_19;
    uint32_t value_u32_23;
} OfpMpls;
OFP_PIN_SIZE(OfpMpls, 27);
OFP_API void OFP_bswap_Mpls(void *value);

/* IP range of a rule: opaque words. */
typedef struct OfpMatchIPRange {
    uint32_t word[20];
} OfpMatchIPRange;
OFP_PIN_SIZE(OfpMatchIPRange, 80);
OFP_API void OFP_bswap_MatchIPRange(void *value);

/* Head of an experimenter OXM. */
typedef struct OfpExpMatchHeader {
    uint16_t oxm_class;    /* 0xFFFF */
    uint8_t oxm_field;     /* field in the upper 7 bits, has-mask in the lowest */
    uint8_t oxm_length;    /* bytes that follow the first four */
    uint32_t experimenter; /* 0x00000FE2 */
} OfpExpMatchHeader;
OFP_PIN_SIZE(OfpExpMatchHeader, 8);
OFP_API void OFP_bswap_ExpMatchHeader(void *value);

/* A range of L4 ports as an experimenter OXM carries it. */
typedef struct OfpExpMatchL4PortRange {
    uint16_t low;
    uint16_t high; /* inclusive */
} OfpExpMatchL4PortRange;
OFP_PIN_SIZE(OfpExpMatchL4PortRange, 4);
OFP_API void OFP_bswap_ExpMatchL4PortRange(void *value);

OFP_END_DECLS

#endif
