/* Flow tables. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_TABLE_H
#define OFP_WIRE_TABLE_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 14 and 15: a flow table of an instance. */
typedef struct OfpInstTbl {
    uint16_t instance_id;
    uint8_t table_id; /* 255 selects none */
    uint8_t reserved_3;
} OfpInstTbl;
OFP_PIN_SIZE(OfpInstTbl, 4);
OFP_API void OFP_bswap_InstTbl(void *value);

/* TLV 35: a flow table; byte content only. */
typedef struct OfpTableID {
    uint8_t table_id;
    uint8_t reserved_1[3];
} OfpTableID;
OFP_PIN_SIZE(OfpTableID, 4);
OFP_API void OFP_bswap_TableID(void *value);

/* TLV 36: statistics of a flow table. */
typedef struct OfpTableStats {
    uint64_t lookup_count;
    uint64_t matched_count;
} OfpTableStats;
OFP_PIN_SIZE(OfpTableStats, 16);
OFP_API void OFP_bswap_TableStats(void *value);

/* TLV 42: configuration of a flow table. */
typedef struct OfpTblConfig {
    uint16_t instance_id;
    uint8_t table_id;
    uint8_t reserved_3;
    uint32_t config; /* OpenFlow table configuration bits */
} OfpTblConfig;
OFP_PIN_SIZE(OfpTblConfig, 8);
OFP_API void OFP_bswap_TblConfig(void *value);

/* TLV 52: a flow table for display; byte content only. */
typedef struct OfpFlowTableInfo {
    uint8_t content[4];
} OfpFlowTableInfo;
OFP_PIN_SIZE(OfpFlowTableInfo, 4);
OFP_API void OFP_bswap_FlowTableInfo(void *value);

/* TLV 55: a flow table and its fill. */
typedef struct OfpTableInfo {
    uint32_t max_rules;
    uint32_t rule_count;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint16_t instance_id;
    uint16_t value_u16_18;
    uint16_t value_u16_20;
    uint8_t table_id;
    uint8_t reserved_23;
    uint16_t value_u16_24;
    uint8_t reserved_26[2];
} OfpTableInfo;
OFP_PIN_SIZE(OfpTableInfo, 28);
OFP_API void OFP_bswap_TableInfo(void *value);

/* TLV 69: a flow table as configured. */
typedef struct OfpFlowTable {
    uint8_t table_id;
    uint8_t reserved_1[3];
    uint32_t kind;
} OfpFlowTable;
OFP_PIN_SIZE(OfpFlowTable, 8);
OFP_API void OFP_bswap_FlowTable(void *value);

/* TLV 70: a flow table as it runs. */
typedef struct OfpFlowTableRun {
    uint8_t table_id;
    uint8_t reserved_1[3];
    uint32_t kind;
    uint32_t value_u32_8;
} OfpFlowTableRun;
OFP_PIN_SIZE(OfpFlowTableRun, 12);
OFP_API void OFP_bswap_FlowTableRun(void *value);

/* TLV 76: statistics of a table-miss rule. */
typedef struct OfpTableMissStats {
    uint8_t table_id;
    uint8_t reserved_1[7];
    uint64_t packet_count;
    uint64_t byte_count;
} OfpTableMissStats;
OFP_PIN_SIZE(OfpTableMissStats, 24);
OFP_API void OFP_bswap_TableMissStats(void *value);

/* TLV 209: a flow table for the management information base; packed. */
typedef struct OFP_PACKED OfpMibTableInfo {
    uint16_t instance_id;
    uint8_t table_id;
    uint32_t max_rules;
    uint32_t rule_count;
    uint32_t value_u32_11;
} OfpMibTableInfo;
OFP_PIN_SIZE(OfpMibTableInfo, 15);
OFP_API void OFP_bswap_MibTableInfo(void *value);

OFP_END_DECLS

#endif
