// Debugging, logging and flow monitors.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(GlbDebug, value_u16_0),
    OFPCTL_FIELD(GlbDebug, value_u16_2),
    OFPCTL_FIELD(GlbDebug, value_u16_4),
    OFPCTL_FIELD(GlbDebug, value_u16_6),
    OFPCTL_FIELD(GlbDebug, value_u32_8),
    OFPCTL_FIELD(GlbDebug, reserved_12),
    OFPCTL_FIELD(GlbDebug, value_u64_16),
    OFPCTL_FIELD(GlbDebug, opaque_24),
    OFPCTL_FIELD(GlbDebug, value_u16_28),
    OFPCTL_FIELD(GlbDebug, reserved_30),
    OFPCTL_FIELD(GlbDebug, value_u32_32),
    OFPCTL_FIELD(GlbDebug, value_u32_36),
    OFPCTL_FIELD(GlbDebug, value_u32_40),
    OFPCTL_FIELD(GlbDebug, opaque_44),
    OFPCTL_FIELD(GlbDebug, value_u16_48),
    OFPCTL_FIELD(GlbDebug, value_u16_50),
    OFPCTL_FIELD(GlbDebug, opaque_52),
    OFPCTL_FIELD(GlbDebug, value_u16_68),
    OFPCTL_FIELD(GlbDebug, value_u16_70),
    OFPCTL_FIELD(GlbDebug, opaque_72),
    OFPCTL_FIELD(GlbDebug, value_u32_88),
    OFPCTL_FIELD(GlbDebug, reserved_92),

    OFPCTL_FIELD(GlbDebugPkt, value_u64_0),
    OFPCTL_FIELD(GlbDebugPkt, value_u16_8),
    OFPCTL_FIELD(GlbDebugPkt, value_u16_10),
    OFPCTL_FIELD(GlbDebugPkt, reserved_12),
    OFPCTL_FIELD(GlbDebugPkt, value_u64_16),
    OFPCTL_FIELD(GlbDebugPkt, value_u64_24),

    OFPCTL_FIELD(FlowLogDisable, instance_id),
    OFPCTL_FIELD(FlowLogDisable, disable),

    OFPCTL_FIELD(PacketFilter, filter),
    OFPCTL_FIELD(PacketFilter, instance_id),
    OFPCTL_FIELD(PacketFilter, reserved_6),

    OFPCTL_FIELD(TDTestGlbDebug, content),

    OFPCTL_FIELD(CtrlDebugInfo, opaque_0),
    OFPCTL_FIELD(CtrlDebugInfo, value_u64_1),
    OFPCTL_FIELD(CtrlDebugInfo, value_u32_105),

    OFPCTL_FIELD(FlowMonitorInterval, instance_id),
    OFPCTL_FIELD(FlowMonitorInterval, reserved_2),
    OFPCTL_FIELD(FlowMonitorInterval, interval),

    OFPCTL_FIELD(FlowMonitorThreShold, instance_id),
    OFPCTL_FIELD(FlowMonitorThreShold, reserved_2),
    OFPCTL_FIELD(FlowMonitorThreShold, threshold),

    OFPCTL_FIELD(FlowMonitorAction, value_u64_0),
    OFPCTL_FIELD(FlowMonitorAction, value_u64_8),
    OFPCTL_FIELD(FlowMonitorAction, value_u8_16),
    OFPCTL_FIELD(FlowMonitorAction, value_u16_17),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> debug_fields = rows;

} // namespace ofpctl
