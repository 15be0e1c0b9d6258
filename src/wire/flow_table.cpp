#include "ofp/wire_table.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpInstTbl, instance_id) == 0);
OFP_API void OFP_bswap_InstTbl(void *value) { swap_members<&OfpInstTbl::instance_id>(value); }

OFP_API void OFP_bswap_TableID(void *) {}

static_assert(offsetof(OfpTableStats, lookup_count) == 0);
static_assert(offsetof(OfpTableStats, matched_count) == 8);
OFP_API void OFP_bswap_TableStats(void *value)
{
    swap_members<&OfpTableStats::lookup_count, &OfpTableStats::matched_count>(value);
}

static_assert(offsetof(OfpTblConfig, instance_id) == 0);
static_assert(offsetof(OfpTblConfig, config) == 4);
OFP_API void OFP_bswap_TblConfig(void *value)
{
    swap_members<&OfpTblConfig::instance_id, &OfpTblConfig::config>(value);
}

OFP_API void OFP_bswap_FlowTableInfo(void *) {}

static_assert(offsetof(OfpTableInfo, max_rules) == 0);
static_assert(offsetof(OfpTableInfo, rule_count) == 4);
static_assert(offsetof(OfpTableInfo, value_u32_8) == 8);
static_assert(offsetof(OfpTableInfo, value_u32_12) == 12);
static_assert(offsetof(OfpTableInfo, instance_id) == 16);
static_assert(offsetof(OfpTableInfo, value_u16_18) == 18);
static_assert(offsetof(OfpTableInfo, value_u16_20) == 20);
static_assert(offsetof(OfpTableInfo, value_u16_24) == 24);
OFP_API void OFP_bswap_TableInfo(void *value)
{
    swap_members<&OfpTableInfo::max_rules, &OfpTableInfo::rule_count, &OfpTableInfo::value_u32_8,
                 &OfpTableInfo::value_u32_12, &OfpTableInfo::instance_id,
                 &OfpTableInfo::value_u16_18, &OfpTableInfo::value_u16_20,
                 &OfpTableInfo::value_u16_24>(value);
}

static_assert(offsetof(OfpFlowTable, kind) == 4);
OFP_API void OFP_bswap_FlowTable(void *value) { swap_members<&OfpFlowTable::kind>(value); }

static_assert(offsetof(OfpFlowTableRun, kind) == 4);
static_assert(offsetof(OfpFlowTableRun, value_u32_8) == 8);
OFP_API void OFP_bswap_FlowTableRun(void *value)
{
    swap_members<&OfpFlowTableRun::kind, &OfpFlowTableRun::value_u32_8>(value);
}

static_assert(offsetof(OfpTableMissStats, packet_count) == 8);
static_assert(offsetof(OfpTableMissStats, byte_count) == 16);
OFP_API void OFP_bswap_TableMissStats(void *value)
{
    swap_members<&OfpTableMissStats::packet_count, &OfpTableMissStats::byte_count>(value);
}

static_assert(offsetof(OfpMibTableInfo, instance_id) == 0);
static_assert(offsetof(OfpMibTableInfo, max_rules) == 3);
static_assert(offsetof(OfpMibTableInfo, rule_count) == 7);
static_assert(offsetof(OfpMibTableInfo, value_u32_11) == 11);
OFP_API void OFP_bswap_MibTableInfo(void *value)
{
    swap_members<&OfpMibTableInfo::instance_id, &OfpMibTableInfo::max_rules,
                 &OfpMibTableInfo::rule_count, &OfpMibTableInfo::value_u32_11>(value);
}
