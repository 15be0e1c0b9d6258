/* What programs flow rules and groups: the client head, and OpenFlow 1.3 messages. Conventions:
 * ofp/wire.h. */
#ifndef OFP_WIRE_FLOW_H
#define OFP_WIRE_FLOW_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 121: goes ahead of every rule batch, group operation and smooth message. */
typedef struct OfpClientHead {
    uint32_t smooth_mode;
    uint32_t zone_id;   /* device context */
    uint32_t smooth_id; /* 0xFFFFFFFF: no smooth period */
    uint16_t local_lip; /* local position id of the node */
    uint16_t client_id; /* 4096 to 4099 */
} OfpClientHead;
OFP_PIN_SIZE(OfpClientHead, 16);
OFP_API void OFP_bswap_OfpClientHead(void *value);

/* Head of every OpenFlow message. */
typedef struct OfpOpenflowHeader {
    uint8_t version; /* 4 */
    uint8_t type;
    uint16_t length; /* bytes of the whole message; network order */
    uint32_t xid;    /* network order */
} OfpOpenflowHeader;
OFP_PIN_SIZE(OfpOpenflowHeader, 8);

/* Fixed part of an OpenFlow 1.3 flow-mod; match and instructions follow. The conversion leaves
 * the header alone. */
typedef struct OfpFlowMod {
    OfpOpenflowHeader header;
    uint64_t cookie;
    uint64_t cookie_mask;
    uint8_t table_id;
    uint8_t command;
    uint16_t idle_timeout; /* seconds */
    uint16_t hard_timeout; /* seconds */
    uint16_t priority;
    uint32_t buffer_id;
    uint32_t out_port;
    uint32_t out_group;
    uint16_t flags;
    uint8_t reserved_46[2];
} OfpFlowMod;
OFP_PIN_SIZE(OfpFlowMod, 48);
OFP_API void OFP_bswap_OfpFlowMod(void *value);

/* Fixed part of an OpenFlow 1.3 group-mod; buckets follow. The conversion leaves the header alone.
 */
typedef struct OfpGroupMod {
    OfpOpenflowHeader header;
    uint16_t command; /* 0 add, 1 modify, 2 delete */
    uint8_t type;
    uint8_t reserved_11;
    uint32_t group_id;
} OfpGroupMod;
OFP_PIN_SIZE(OfpGroupMod, 16);
OFP_API void OFP_bswap_OfpGroupMod(void *value);

/* Fixed part of an OpenFlow 1.3 bucket; actions follow. */
typedef struct OfpGroupBucket {
    uint16_t length; /* bytes of the whole bucket */
    uint16_t weight;
    uint32_t watch_port;
    uint32_t watch_group;
    uint8_t reserved_12[4];
} OfpGroupBucket;
OFP_PIN_SIZE(OfpGroupBucket, 16);
OFP_API void OFP_bswap_OfpGroupBucket(void *value);

OFP_END_DECLS

#endif
