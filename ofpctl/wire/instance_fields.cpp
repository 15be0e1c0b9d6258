// OpenFlow instances.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(InstanceCfg, value_u32_0),
    OFPCTL_FIELD(InstanceCfg, value_u32_4),
    OFPCTL_FIELD(InstanceCfg, value_u32_8),
    OFPCTL_FIELD(InstanceCfg, instance_id),
    OFPCTL_FIELD(InstanceCfg, vlan_value),
    OFPCTL_FIELD(InstanceCfg, description),

    OFPCTL_FIELD(InstanceID, instance_id),
    OFPCTL_FIELD(InstanceID, reserved_2),

    OFPCTL_FIELD(InstanceIsExist, exists),
    OFPCTL_FIELD(InstanceIsExist, reserved_2),

    OFPCTL_FIELD(FlowEntryLimit, limit),
    OFPCTL_FIELD(FlowEntryLimit, instance_id),
    OFPCTL_FIELD(FlowEntryLimit, reserved_6),

    OFPCTL_FIELD(SetDevConf, value_u32_0),
    OFPCTL_FIELD(SetDevConf, value_u32_4),
    OFPCTL_FIELD(SetDevConf, value_u16_8),
    OFPCTL_FIELD(SetDevConf, value_u16_10),

    OFPCTL_FIELD(VerbInst, content),

    OFPCTL_FIELD(DrvContext, content),

    OFPCTL_FIELD(ActiveInst, value_u64_0),
    OFPCTL_FIELD(ActiveInst, value_u32_8),
    OFPCTL_FIELD(ActiveInst, value_u32_12),
    OFPCTL_FIELD(ActiveInst, value_u16_16),
    OFPCTL_FIELD(ActiveInst, value_u16_18),
    OFPCTL_FIELD(ActiveInst, value_u32_20),
    OFPCTL_FIELD(ActiveInst, value_u32_24),
    OFPCTL_FIELD(ActiveInst, value_u16_28),
    OFPCTL_FIELD(ActiveInst, opaque_30),
    OFPCTL_FIELD(ActiveInst, value_u32_36),

    OFPCTL_FIELD(InstActive, active),
    OFPCTL_FIELD(InstActive, reserved_2),

    OFPCTL_FIELD(InstTimer, value_u32_0),
    OFPCTL_FIELD(InstTimer, value_u32_4),

    OFPCTL_FIELD(DataPathID, datapath_id),
    OFPCTL_FIELD(DataPathID, instance_id),
    OFPCTL_FIELD(DataPathID, reserved_10),

    OFPCTL_FIELD(SummaryCount, count),

    OFPCTL_FIELD(Summary, value_u64_0),
    OFPCTL_FIELD(Summary, value_u32_8),
    OFPCTL_FIELD(Summary, value_u32_12),
    OFPCTL_FIELD(Summary, value_u16_16),
    OFPCTL_FIELD(Summary, value_u16_18),
    OFPCTL_FIELD(Summary, value_u16_20),
    OFPCTL_FIELD(Summary, reserved_22),

    OFPCTL_FIELD(InstFilterInstance, instance_id),
    OFPCTL_FIELD(InstFilterInstance, filter_kind),
    OFPCTL_FIELD(InstFilterInstance, ext),

    OFPCTL_FIELD(InstFilterController, zero),
    OFPCTL_FIELD(InstFilterController, param_a),
    OFPCTL_FIELD(InstFilterController, param_b),

    OFPCTL_FIELD(InstFilterFlags, param),

    OFPCTL_FIELD(MissRule, mode),
    OFPCTL_FIELD(MissRule, instance_id),
    OFPCTL_FIELD(MissRule, reserved_6),

    OFPCTL_FIELD(DeactiveInst, instance_id),
    OFPCTL_FIELD(DeactiveInst, value_u16_2),

    OFPCTL_FIELD(Context, value_u64_0),
    OFPCTL_FIELD(Context, value_u32_8),
    OFPCTL_FIELD(Context, value_u32_12),
    OFPCTL_FIELD(Context, value_u32_16),
    OFPCTL_FIELD(Context, value_u16_20),
    OFPCTL_FIELD(Context, reserved_22),

    OFPCTL_FIELD(ContextInfo, value_u64_0),
    OFPCTL_FIELD(ContextInfo, value_u32_8),
    OFPCTL_FIELD(ContextInfo, value_u32_12),
    OFPCTL_FIELD(ContextInfo, value_u32_16),
    OFPCTL_FIELD(ContextInfo, value_u16_20),
    OFPCTL_FIELD(ContextInfo, reserved_22),

    OFPCTL_FIELD(Precedence, instance_id),
    OFPCTL_FIELD(Precedence, precedence),
    OFPCTL_FIELD(Precedence, present),

    OFPCTL_FIELD(TcpDscp, instance_id),
    OFPCTL_FIELD(TcpDscp, reserved_2),
    OFPCTL_FIELD(TcpDscp, dscp),

    OFPCTL_FIELD(TcpNsr, instance_id),
    OFPCTL_FIELD(TcpNsr, enable),

    OFPCTL_FIELD(DataPlaneMode, instance_id),
    OFPCTL_FIELD(DataPlaneMode, mode),

    OFPCTL_FIELD(TTPMode, instance_id),
    OFPCTL_FIELD(TTPMode, mode),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> instance_fields = rows;

} // namespace ofpctl
