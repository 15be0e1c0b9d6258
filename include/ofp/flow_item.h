/*
 * Flow items: the caller's description of flow rules, and the calls that copy and free them.
 *
 * Numbers are in host byte order. MAC and IPv6 addresses are byte arrays in network order.
 */
#ifndef OFP_FLOW_ITEM_H
#define OFP_FLOW_ITEM_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* Field bits: bit n of OfpFRMatch.fields says that the field takes part in the match, bit n of
 * OfpMatchMask.masked that it carries a mask. 0 to 39 are the OpenFlow 1.3 OXM field numbers, 58 to
 * 63 private fields. */
enum OfpFieldBit {
    OFP_FIELD_IN_PORT = 0,
    OFP_FIELD_IN_PHY_PORT = 1,
    OFP_FIELD_METADATA = 2,
    OFP_FIELD_ETH_DST = 3,
    OFP_FIELD_ETH_SRC = 4,
    OFP_FIELD_ETH_TYPE = 5,
    OFP_FIELD_VLAN_VID = 6,
    OFP_FIELD_VLAN_PCP = 7,
    OFP_FIELD_IP_DSCP = 8,
    OFP_FIELD_IP_ECN = 9,
    OFP_FIELD_IP_PROTO = 10,
    OFP_FIELD_IPV4_SRC = 11,
    OFP_FIELD_IPV4_DST = 12,
    OFP_FIELD_TCP_SRC = 13,
    OFP_FIELD_TCP_DST = 14,
    OFP_FIELD_UDP_SRC = 15,
    OFP_FIELD_UDP_DST = 16,
    OFP_FIELD_SCTP_SRC = 17,
    OFP_FIELD_SCTP_DST = 18,
    OFP_FIELD_ICMPV4_TYPE = 19,
    OFP_FIELD_ICMPV4_CODE = 20,
    OFP_FIELD_ARP_OP = 21,
    OFP_FIELD_ARP_SPA = 22,
    OFP_FIELD_ARP_TPA = 23,
    OFP_FIELD_ARP_SHA = 24,
    OFP_FIELD_ARP_THA = 25,
    OFP_FIELD_IPV6_SRC = 26,
    OFP_FIELD_IPV6_DST = 27,
    OFP_FIELD_IPV6_FLABEL = 28,
    OFP_FIELD_ICMPV6_TYPE = 29,
    OFP_FIELD_ICMPV6_CODE = 30,
    OFP_FIELD_IPV6_ND_TARGET = 31,
    OFP_FIELD_IPV6_ND_SLL = 32,
    OFP_FIELD_IPV6_ND_TLL = 33,
    OFP_FIELD_MPLS_LABEL = 34,
    OFP_FIELD_MPLS_TC = 35,
    OFP_FIELD_MPLS_BOS = 36,
    OFP_FIELD_PBB_ISID = 37,
    OFP_FIELD_TUNNEL_ID = 38,
    OFP_FIELD_IPV6_EXTHDR = 39,
    OFP_FIELD_IP_RANGE = 58,
    OFP_FIELD_BATCH_IF = 59,
    OFP_FIELD_VRF = 60,
    OFP_FIELD_FRAGMENT = 61,
    OFP_FIELD_OUT_PORT = 62,
    OFP_FIELD_CVLAN_VID = 63
};

/* Values of the IPv6 fields; no gaps, so the record is copied as one block. */
typedef struct OfpMatchIpv6 {
    uint8_t ipv6_src[16];
    uint8_t ipv6_dst[16];
    uint32_t ipv6_flabel; /* 20 bits */
    uint16_t ipv6_exthdr; /* 9 bits */
    uint8_t icmpv6_type;
    uint8_t icmpv6_code;
    uint8_t ipv6_nd_target[16];
    uint8_t ipv6_nd_sll[6];
    uint8_t ipv6_nd_tll[6];
} OfpMatchIpv6;
OFP_PIN_SIZE(OfpMatchIpv6, 68);

/* Masks. A field without a member here never carries a mask on the wire. */
typedef struct OfpMatchMask {
    uint64_t masked; /* field bits */
    uint64_t metadata;
    uint8_t eth_dst[6];
    uint8_t eth_src[6];
    uint16_t vlan_vid;
    uint16_t cvlan_vid;
    uint32_t ipv4_src;
    uint32_t ipv4_dst;
    uint32_t arp_spa;
    uint32_t arp_tpa;
    uint8_t arp_sha[6];
    uint8_t arp_tha[6];
    uint8_t ipv6_src[16];
    uint8_t ipv6_dst[16];
    uint32_t ipv6_flabel;
    uint64_t tunnel_id;
    uint16_t ipv6_exthdr;
    uint16_t tcp_src;
    uint16_t tcp_dst;
    uint16_t udp_src;
    uint16_t udp_dst;
    uint16_t sctp_src;
    uint16_t sctp_dst;
    uint16_t reserved_118;
    uint32_t pbb_isid;
    uint32_t reserved_124;
} OfpMatchMask;
OFP_PIN_SIZE(OfpMatchMask, 128);

/* Interfaces a rule applies to, 1 to 10000 of them. */
typedef struct OfpBatchIfData {
    uint32_t count;
    uint32_t *if_index; /* owned */
} OfpBatchIfData;

/* An experimenter match: type 0 to 64, then length bytes of data. Those with an encoder:
 * 37 flow flag and 44 reserve (u32), 38 string (u32 kind, then text), 43 and 49 BSSID (6 bytes),
 * 47 inner VLAN (u16), 48 egress port (u32), 50 EAPOL (2 bytes), 52 service (u32), 54 to 57 L4 port
 * range (u16 low, u16 high). */
typedef struct OfpExpMatchItem {
    uint32_t type;
    uint16_t length;
    uint16_t reserved;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic" /* C has this array, C++ as an extension */
    uint8_t data[];
#pragma GCC diagnostic pop
} OfpExpMatchItem;
OFP_PIN_SIZE(OfpExpMatchItem, 8);

typedef struct OfpExpMatchList {
    uint32_t count;
    OfpExpMatchItem **items; /* the caller's: never copied, never freed by the library */
} OfpExpMatchList;

typedef struct OfpFRMatch {
    uint64_t fields; /* field bits of the fields that take part */
    uint32_t in_port;
    uint32_t in_phy_port;
    uint32_t out_port; /* private */
    uint32_t reserved_20;
    uint64_t metadata;
    uint64_t reserved; /* must be 0 */
    uint8_t eth_dst[6];
    uint8_t eth_src[6];
    uint16_t eth_type;
    uint16_t vlan_vid;  /* 12 bits; the present bit is added on the wire */
    uint16_t cvlan_vid; /* private: customer VLAN id, likewise */
    uint8_t vlan_pcp;
    uint8_t ip_dscp;
    uint8_t ip_ecn;
    uint8_t ip_proto;
    uint8_t reserved_62[2];
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
    uint32_t mpls_label;
    uint32_t pbb_isid;
    uint8_t mpls_tc;
    uint8_t mpls_bos;
    uint8_t fragment; /* private */
    uint8_t reserved_119;
    uint32_t ip_range[20]; /* private, opaque words */
    uint64_t tunnel_id;
    OfpMatchIpv6 *ipv6; /* owned; needed for the IPv6 fields, else may be null */
    OfpMatchMask *mask; /* owned; needed in every match that is encoded */
    OfpBatchIfData batch_if;
    uint16_t vrf; /* private */
    uint16_t reserved_242[3];
    OfpExpMatchList exp_match;
} OfpFRMatch;
OFP_PIN_SIZE(OfpFRMatch, 264);

/* Action types: OpenFlow 1.3 numbers and the private 61440 to 61445. Rules sent through the library
 * carry output, group and experimenter actions; the query side also makes the others. */
enum OfpActionType {
    OFP_ACTION_OUTPUT = 0,
    OFP_ACTION_GROUP = 22,
    OFP_ACTION_SET_FIELD = 25,
    OFP_ACTION_EXPERIMENTER = 65535
};

enum OfpPortKind { OFP_PORT_RESERVED = 1, OFP_PORT_NUMBER = 2 };

/* Head of every action record; size counts the whole record. */
typedef struct OfpAction {
    uint32_t type;
    uint32_t size;
} OfpAction;

typedef struct OfpActionOutput {
    OfpAction header;
    uint32_t port_kind; /* OFP_PORT_RESERVED or OFP_PORT_NUMBER */
    uint32_t port;
} OfpActionOutput;

typedef struct OfpActionGroup {
    OfpAction header;
    uint32_t group_id;
    uint32_t reserved;
} OfpActionGroup;

/* Experimenter subtypes 0 (two values), 1 and 2 (one value) and 3 (a MAC address). */
typedef struct OfpActionExperimenter {
    OfpAction header;
    uint32_t size_subtype; /* the subtype again: message sizing reads it here */
    uint32_t subtype;
    union {
        uint32_t value[2];
        uint8_t mac[6];
    } body;
} OfpActionExperimenter;

typedef struct OfpActionSetField {
    OfpAction header;
    OfpMatchIpv6 *ipv6; /* owned */
} OfpActionSetField;

/* One flow rule. */
typedef struct OfpFlowItem {
    uint16_t priority;
    uint16_t reserved[3];
    OfpFRMatch match;
    uint32_t action_count;
    uint32_t reserved_276;
    OfpAction **actions; /* owned, as is each action in it; a slot may be null */
} OfpFlowItem;
OFP_PIN_SIZE(OfpFlowItem, 288);

/* A deep copy, or null when memory is short. exp_match is left empty. Free it with
 * OFP_util_FreeFlowItem. */
OFP_API OfpFlowItem *OFP_util_CopyFlowItem(const OfpFlowItem *src);

/* Copies a match and its owned blocks into dst, whose own are not freed and whose exp_match stays.
 * 0 or OFP_RC_NO_RESOURCE. After a failure dst may own blocks: OFP_util_FreeMatchIpv6Mask. */
OFP_API uint32_t OFP_util_CopyFRMatch(const OfpFRMatch *src, OfpFRMatch *dst);

/* Copies the interface list; a null array copies as an empty list. 0 or OFP_RC_NO_RESOURCE. */
OFP_API uint32_t OFP_util_CopyBatchIfData(const OfpBatchIfData *src, OfpBatchIfData *dst);

/* Copies the actions of src into dst. 0; OFP_RC_FAILED when the array, OFP_RC_NO_RESOURCE when an
 * action could not be allocated (dst then keeps what it had). */
OFP_API uint32_t OFP_util_CopyAction(const OfpFlowItem *src, OfpFlowItem *dst);

/* Copies one action into array[index]. 0 or OFP_RC_NO_RESOURCE; a null action is 0. */
OFP_API uint32_t OFP_util_FillActions(const OfpAction *action, uint32_t index, OfpAction **array);

/* Frees an action of a type the library makes (0, 11, 12, 15 to 27, 61440 to 61445, 65535); any
 * other type is left alone. Null is ignored. */
OFP_API void OFP_util_DestroyAction(OfpAction *action);

/* Destroys the actions in the first count slots and frees the array. */
OFP_API void OFP_util_DestroyActionList(uint32_t count, OfpAction **array);

/* Frees the ipv6, mask and interface blocks of a match and forgets them; batch_if.count stays. */
OFP_API void OFP_util_FreeMatchIpv6Mask(OfpFRMatch *match);

/* Frees a flow item and all it owns, not its exp_match. Null is ignored. */
OFP_API void OFP_util_FreeFlowItem(OfpFlowItem *item);

/* Asks the device driver for its ACL resource figures: 6 opaque bytes, all zero on failure and when
 * the driver answers with another length. 0 or the driver's code. Sends nothing. */
OFP_API uint32_t OFP_util_GetAclResource(uint8_t out[6]);

OFP_END_DECLS

#endif
