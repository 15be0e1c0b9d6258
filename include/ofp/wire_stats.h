/* Statistics of flow rules. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_STATS_H
#define OFP_WIRE_STATS_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 30: head of rule statistics. */
typedef struct OfpFRStatsHead {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint16_t value_u16_12;
    uint8_t reserved_14[2];
} OfpFRStatsHead;
OFP_PIN_SIZE(OfpFRStatsHead, 16);
OFP_API void OFP_bswap_FRStatsHead(void *value);

/* TLV 33: statistics of a rule. */
typedef struct OfpFRStatsInfo {
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t duration_sec;
    uint8_t reserved_20[4];
} OfpFRStatsInfo;
OFP_PIN_SIZE(OfpFRStatsInfo, 24);
OFP_API void OFP_bswap_FRStatsInfo(void *value);

/* TLV 53: a table-miss rule and its statistics. */
typedef struct OfpMissFlow {
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t value_u32_16;
    uint32_t value_u32_20;
    uint32_t value_u32_24;
    uint32_t value_u32_28;
    uint16_t value_u16_32;
    uint16_t value_u16_34;
    uint8_t opaque_36[68];
    uint16_t value_u16_104;
    uint8_t reserved_106[6];
} OfpMissFlow;
OFP_PIN_SIZE(OfpMissFlow, 112);
OFP_API void OFP_bswap_MissFlow(void *value);

/* TLV 58: statistics of a single rule. */
typedef struct OfpSingleFRStats {
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t duration_sec;
    uint8_t reserved_20[4];
} OfpSingleFRStats;
OFP_PIN_SIZE(OfpSingleFRStats, 24);
OFP_API void OFP_bswap_SingleFRStats(void *value);

/* TLV 79: fixed part of flow statistics. */
typedef struct OfpFlowStatsFix {
    uint8_t opaque_0[4];
    uint32_t duration_sec;
    uint32_t duration_nsec;
    uint8_t reserved_12[4];
    uint64_t packet_count;
    uint64_t byte_count;
} OfpFlowStatsFix;
OFP_PIN_SIZE(OfpFlowStatsFix, 32);
OFP_API void OFP_bswap_FlowStatsFix(void *value);

OFP_END_DECLS

#endif
