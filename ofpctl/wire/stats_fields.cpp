// Statistics of flow rules.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(FRStatsHead, value_u32_0),    OFPCTL_FIELD(FRStatsHead, value_u32_4),
    OFPCTL_FIELD(FRStatsHead, value_u32_8),    OFPCTL_FIELD(FRStatsHead, value_u16_12),
    OFPCTL_FIELD(FRStatsHead, reserved_14),

    OFPCTL_FIELD(FRStatsInfo, packet_count),   OFPCTL_FIELD(FRStatsInfo, byte_count),
    OFPCTL_FIELD(FRStatsInfo, duration_sec),   OFPCTL_FIELD(FRStatsInfo, reserved_20),

    OFPCTL_FIELD(MissFlow, packet_count),      OFPCTL_FIELD(MissFlow, byte_count),
    OFPCTL_FIELD(MissFlow, value_u32_16),      OFPCTL_FIELD(MissFlow, value_u32_20),
    OFPCTL_FIELD(MissFlow, value_u32_24),      OFPCTL_FIELD(MissFlow, value_u32_28),
    OFPCTL_FIELD(MissFlow, value_u16_32),      OFPCTL_FIELD(MissFlow, value_u16_34),
    OFPCTL_FIELD(MissFlow, opaque_36),         OFPCTL_FIELD(MissFlow, value_u16_104),
    OFPCTL_FIELD(MissFlow, reserved_106),

    OFPCTL_FIELD(SingleFRStats, packet_count), OFPCTL_FIELD(SingleFRStats, byte_count),
    OFPCTL_FIELD(SingleFRStats, duration_sec), OFPCTL_FIELD(SingleFRStats, reserved_20),

    OFPCTL_FIELD(FlowStatsFix, opaque_0),      OFPCTL_FIELD(FlowStatsFix, duration_sec),
    OFPCTL_FIELD(FlowStatsFix, duration_nsec), OFPCTL_FIELD(FlowStatsFix, reserved_12),
    OFPCTL_FIELD(FlowStatsFix, packet_count),  OFPCTL_FIELD(FlowStatsFix, byte_count),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> stats_fields = rows;

} // namespace ofpctl
