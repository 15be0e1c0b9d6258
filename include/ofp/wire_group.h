/* Groups and buckets. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_GROUP_H
#define OFP_WIRE_GROUP_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 60: a group. */
typedef struct OfpGroup {
    uint32_t group_id;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint8_t opaque_12[4];
    uint32_t value_u32_16;
    uint16_t value_u16_20;
    uint8_t opaque_22[18];
    uint16_t value_u16_40;
    uint8_t reserved_42[2];
} OfpGroup;
OFP_PIN_SIZE(OfpGroup, 44);
OFP_API void OFP_bswap_Group(void *value);

/* TLV 61: a bucket. */
typedef struct OfpBucket {
    uint8_t opaque_0[16];
    uint32_t value_u32_16;
    uint32_t value_u32_20;
    uint32_t value_u32_24;
    uint32_t value_u32_28;
} OfpBucket;
OFP_PIN_SIZE(OfpBucket, 32);
OFP_API void OFP_bswap_Bucket(void *value);

/* TLV 62: reply to a group request. */
typedef struct OfpGroupReply {
    uint32_t group_id;
    uint32_t value_u32_4;
    uint8_t opaque_8[4];
    uint16_t value_u16_12;
    uint8_t opaque_14[18];
    uint32_t value_u32_32;
} OfpGroupReply;
OFP_PIN_SIZE(OfpGroupReply, 36);
OFP_API void OFP_bswap_GroupReply(void *value);

/* TLV 95: asks for the group table of an instance. */
typedef struct OfpGroupTableReq {
    uint16_t instance_id;
    uint8_t reserved_2[2];
} OfpGroupTableReq;
OFP_PIN_SIZE(OfpGroupTableReq, 4);
OFP_API void OFP_bswap_GroupTableReq(void *value);

/* TLV 96: group table of an instance. */
typedef struct OfpGroupTable {
    uint32_t group_count;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpGroupTable;
OFP_PIN_SIZE(OfpGroupTable, 8);
OFP_API void OFP_bswap_GroupTable(void *value);

/* TLV 97: key of a group. */
typedef struct OfpGroupID {
    uint32_t group_id;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpGroupID;
OFP_PIN_SIZE(OfpGroupID, 8);
OFP_API void OFP_bswap_GroupID(void *value);

/* TLV 98: fixed part of a group with its statistics. */
typedef struct OfpGroupBase {
    uint64_t value_u64_0;
    uint64_t value_u64_8;
    uint64_t value_u64_16;
    uint32_t value_u32_24;
    uint16_t value_u16_28;
    uint8_t opaque_30[2];
    uint16_t value_u16_32;
    uint8_t opaque_34[6];
    uint32_t value_u32_40;
    uint16_t value_u16_44;
    uint8_t reserved_46[2];
} OfpGroupBase;
OFP_PIN_SIZE(OfpGroupBase, 48);
OFP_API void OFP_bswap_GroupBase(void *value);

/* TLV 99: fixed part of a bucket with its statistics. */
typedef struct OfpBucketBase {
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t value_u32_16;
    uint32_t value_u32_20;
    uint32_t value_u32_24;
    uint16_t value_u16_28;
    uint8_t reserved_30[2];
} OfpBucketBase;
OFP_PIN_SIZE(OfpBucketBase, 32);
OFP_API void OFP_bswap_BucketBase(void *value);

/* TLV 100: asks for the rules that refer to a group. */
typedef struct OfpGroupRefReq {
    uint32_t group_id;
    uint32_t rule_id; /* last one read, 0 at the start */
    uint16_t instance_id;
    uint8_t table_id; /* last one read, 255 at the start */
    uint8_t reserved_11[5];
} OfpGroupRefReq;
OFP_PIN_SIZE(OfpGroupRefReq, 16);
OFP_API void OFP_bswap_GroupRefReq(void *value);

/* TLV 102: asks for groups. */
typedef struct OfpGroupReq {
    uint32_t group_id;
    uint32_t value_u32_4;
    uint16_t instance_id;
    uint8_t reserved_10[2];
} OfpGroupReq;
OFP_PIN_SIZE(OfpGroupReq, 12);
OFP_API void OFP_bswap_GroupReq(void *value);

/* TLV 103: statistics of a group. */
typedef struct OfpGroupStats {
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t value_u32_16;
    uint16_t value_u16_20;
    uint8_t opaque_22[2];
    uint16_t value_u16_24;
    uint8_t reserved_26[6];
} OfpGroupStats;
OFP_PIN_SIZE(OfpGroupStats, 32);
OFP_API void OFP_bswap_GroupStats(void *value);

/* TLV 104: statistics of a bucket. */
typedef struct OfpBucketStats {
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t value_u32_16;
    uint32_t value_u32_20;
    uint32_t value_u32_24;
    uint8_t reserved_28[4];
} OfpBucketStats;
OFP_PIN_SIZE(OfpBucketStats, 32);
OFP_API void OFP_bswap_BucketStats(void *value);

/* TLV 224: smart groups of an instance. */
typedef struct OfpSmartGroup {
    uint16_t enable;
    uint16_t instance_id;
} OfpSmartGroup;
OFP_PIN_SIZE(OfpSmartGroup, 4);
OFP_API void OFP_bswap_SmartGroup(void *value);

/* TLV 225: key of a smart group. */
typedef struct OfpSmartGroupID {
    uint32_t group_id;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint16_t instance_id;
    uint8_t reserved_14[2];
} OfpSmartGroupID;
OFP_PIN_SIZE(OfpSmartGroupID, 16);
OFP_API void OFP_bswap_SmartGroupID(void *value);

OFP_END_DECLS

#endif
