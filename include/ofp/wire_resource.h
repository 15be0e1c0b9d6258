/* Resources, caches and queues of the device. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_RESOURCE_H
#define OFP_WIRE_RESOURCE_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 91: a local rule. */
typedef struct OfpLocalRule {
    uint8_t opaque_0[2];
    uint16_t value_u16_2;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
} OfpLocalRule;
OFP_PIN_SIZE(OfpLocalRule, 12);
OFP_API void OFP_bswap_LocalRule(void *value);

/* TLV 140: known by its conversion only. */
typedef struct OfpReserved140 {
    uint16_t value_u16_0;
    uint8_t reserved_2[2];
} OfpReserved140;
OFP_PIN_SIZE(OfpReserved140, 4);

/* TLV 143: how many queues. */
typedef struct OfpQueueNum {
    uint32_t count;
} OfpQueueNum;
OFP_PIN_SIZE(OfpQueueNum, 4);
OFP_API void ofp_bswap_QueueNum(void *value);

/* TLV 144: known by its conversion only. */
typedef struct OfpReserved144 {
    uint32_t value_u32_0;
} OfpReserved144;
OFP_PIN_SIZE(OfpReserved144, 4);

/* TLV 152: key of a cache query. */
typedef struct OfpCacheInfo {
    uint16_t value_u16_0;
    uint16_t value_u16_2;
    uint16_t value_u16_4;
    uint8_t reserved_6[2];
} OfpCacheInfo;
OFP_PIN_SIZE(OfpCacheInfo, 8);

/* TLV 153: cache information. */
typedef struct OfpCacheInfoRep {
    uint8_t opaque_0[12];
    uint16_t value_u16_12;
    uint16_t value_u16_14;
    uint32_t value_u32_16;
    uint8_t opaque_20[4];
    uint32_t value_u32_24;
    uint8_t opaque_28[16];
    uint32_t value_u32_44;
    uint8_t opaque_48[12];
    uint16_t value_u16_60;
    uint16_t value_u16_62;
    uint16_t value_u16_64;
    uint8_t reserved_66[2];
} OfpCacheInfoRep;
OFP_PIN_SIZE(OfpCacheInfoRep, 68);

/* TLV 165: refreshes the IP flows. */
typedef struct OfpRefreshIpFlow {
    uint16_t value;
    uint8_t reserved_2[2];
} OfpRefreshIpFlow;
OFP_PIN_SIZE(OfpRefreshIpFlow, 4);

/* TLV 180: ACL resources to reserve. */
typedef struct OfpResrvAclRes {
    uint16_t value;
    uint8_t reserved_2[2];
} OfpResrvAclRes;
OFP_PIN_SIZE(OfpResrvAclRes, 4);
OFP_API void OFP_bswap_ResrvAclRes(void *value);

/* TLV 181: ACL resources reserved. */
typedef struct OfpShowAclResv {
    uint16_t value_u16_0;
    uint16_t value_u16_2;
} OfpShowAclResv;
OFP_PIN_SIZE(OfpShowAclResv, 4);
OFP_API void OFP_bswap_ShowAclResv(void *value);

/* TLV 194: known by its conversion only. */
typedef struct OfpReserved194 {
    uint32_t value_u32_0;
    uint16_t value_u16_4;
    uint8_t reserved_6[2];
    uint32_t value_u32_8;
} OfpReserved194;
OFP_PIN_SIZE(OfpReserved194, 12);

/* TLV 203: how many ACL tables. */
typedef struct OfpGetAclTableNum {
    uint32_t count;
} OfpGetAclTableNum;
OFP_PIN_SIZE(OfpGetAclTableNum, 4);
OFP_API void OFP_bswap_GetAclTableNum(void *value);

/* TLV 216: resources of an interface. */
typedef struct OfpRepResourcesIF {
    uint32_t if_index; /* 0 ends the list */
    uint32_t value_u32_4;
    uint16_t value_u16_8;
    uint16_t value_u16_10;
    uint8_t opaque_12[16];
    uint16_t value_u16_28;
    uint16_t value_u16_30;
    uint8_t opaque_32[64];
} OfpRepResourcesIF;
OFP_PIN_SIZE(OfpRepResourcesIF, 96);
OFP_API void OFP_bswap_RepResourcesIF(void *value);

/* TLV 217: asks for the resources of interfaces. */
typedef struct OfpReqResourcesIF {
    uint32_t if_index;
    uint16_t value_u16_4;
    uint8_t reserved_6[2];
} OfpReqResourcesIF;
OFP_PIN_SIZE(OfpReqResourcesIF, 8);
OFP_API void OFP_bswap_ReqResourcesIF(void *value);

OFP_END_DECLS

#endif
