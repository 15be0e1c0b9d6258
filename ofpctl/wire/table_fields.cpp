// Flow tables.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(InstTbl, instance_id),
    OFPCTL_FIELD(InstTbl, table_id),
    OFPCTL_FIELD(InstTbl, reserved_3),

    OFPCTL_FIELD(TableID, table_id),
    OFPCTL_FIELD(TableID, reserved_1),

    OFPCTL_FIELD(TableStats, lookup_count),
    OFPCTL_FIELD(TableStats, matched_count),

    OFPCTL_FIELD(TblConfig, instance_id),
    OFPCTL_FIELD(TblConfig, table_id),
    OFPCTL_FIELD(TblConfig, reserved_3),
    OFPCTL_FIELD(TblConfig, config),

    OFPCTL_FIELD(FlowTableInfo, content),

    OFPCTL_FIELD(TableInfo, max_rules),
    OFPCTL_FIELD(TableInfo, rule_count),
    OFPCTL_FIELD(TableInfo, value_u32_8),
    OFPCTL_FIELD(TableInfo, value_u32_12),
    OFPCTL_FIELD(TableInfo, instance_id),
    OFPCTL_FIELD(TableInfo, value_u16_18),
    OFPCTL_FIELD(TableInfo, value_u16_20),
    OFPCTL_FIELD(TableInfo, table_id),
    OFPCTL_FIELD(TableInfo, reserved_23),
    OFPCTL_FIELD(TableInfo, value_u16_24),
    OFPCTL_FIELD(TableInfo, reserved_26),

    OFPCTL_FIELD(FlowTable, table_id),
    OFPCTL_FIELD(FlowTable, reserved_1),
    OFPCTL_FIELD(FlowTable, kind),

    OFPCTL_FIELD(FlowTableRun, table_id),
    OFPCTL_FIELD(FlowTableRun, reserved_1),
    OFPCTL_FIELD(FlowTableRun, kind),
    OFPCTL_FIELD(FlowTableRun, value_u32_8),

    OFPCTL_FIELD(TableMissStats, table_id),
    OFPCTL_FIELD(TableMissStats, reserved_1),
    OFPCTL_FIELD(TableMissStats, packet_count),
    OFPCTL_FIELD(TableMissStats, byte_count),

    OFPCTL_FIELD(MibTableInfo, instance_id),
    OFPCTL_FIELD(MibTableInfo, table_id),
    OFPCTL_FIELD(MibTableInfo, max_rules),
    OFPCTL_FIELD(MibTableInfo, rule_count),
    OFPCTL_FIELD(MibTableInfo, value_u32_11),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> table_fields = rows;

} // namespace ofpctl
