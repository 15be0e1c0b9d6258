// Ports and interfaces.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(IfIndex, if_index),

    OFPCTL_FIELD(PortStats, rx_packets),
    OFPCTL_FIELD(PortStats, tx_packets),
    OFPCTL_FIELD(PortStats, rx_bytes),
    OFPCTL_FIELD(PortStats, tx_bytes),
    OFPCTL_FIELD(PortStats, rx_dropped),
    OFPCTL_FIELD(PortStats, tx_dropped),
    OFPCTL_FIELD(PortStats, rx_errors),
    OFPCTL_FIELD(PortStats, tx_errors),
    OFPCTL_FIELD(PortStats, rx_frame_errors),
    OFPCTL_FIELD(PortStats, rx_over_errors),
    OFPCTL_FIELD(PortStats, rx_crc_errors),
    OFPCTL_FIELD(PortStats, collisions),
    OFPCTL_FIELD(PortStats, duration_sec),
    OFPCTL_FIELD(PortStats, reserved_100),

    OFPCTL_FIELD(VerbIfRep, if_index),
    OFPCTL_FIELD(VerbIfRep, name),

    OFPCTL_FIELD(VerbIfReq, if_index),
    OFPCTL_FIELD(VerbIfReq, instance_id),
    OFPCTL_FIELD(VerbIfReq, reserved_6),

    OFPCTL_FIELD(PortCfg, if_index),
    OFPCTL_FIELD(PortCfg, config),

    OFPCTL_FIELD(PortCfgAdv, if_index),
    OFPCTL_FIELD(PortCfgAdv, advertise),

    OFPCTL_FIELD(Port, port),

    OFPCTL_FIELD(PortNum, count),

    OFPCTL_FIELD(Reserved109, content),

    OFPCTL_FIELD(Reserved110, content),

    OFPCTL_FIELD(BatchIf, count),
    OFPCTL_FIELD(BatchIf, if_index),

    OFPCTL_FIELD(ForbiddenPort, ports),
    OFPCTL_FIELD(ForbiddenPort, instance_id),
    OFPCTL_FIELD(ForbiddenPort, reserved_6),

    OFPCTL_FIELD(Reserved129, value_u32_0),

    OFPCTL_FIELD(IfInfo, if_index),
    OFPCTL_FIELD(IfInfo, value_u32_4),
    OFPCTL_FIELD(IfInfo, value_u16_8),
    OFPCTL_FIELD(IfInfo, value_u16_10),

    OFPCTL_FIELD(PortInstanceCfg, if_index),
    OFPCTL_FIELD(PortInstanceCfg, value_u32_4),
    OFPCTL_FIELD(PortInstanceCfg, instance_id),
    OFPCTL_FIELD(PortInstanceCfg, reserved_10),

    OFPCTL_FIELD(IfAggChg, value_u32_0),
    OFPCTL_FIELD(IfAggChg, value_u32_4),
    OFPCTL_FIELD(IfAggChg, value_u32_8),

    OFPCTL_FIELD(PermitPortType, port_types),
    OFPCTL_FIELD(PermitPortType, instance_id),
    OFPCTL_FIELD(PermitPortType, reserved_6),

    OFPCTL_FIELD(PortShutdown, if_index),

    OFPCTL_FIELD(AcPortInfo, if_index),
    OFPCTL_FIELD(AcPortInfo, name),
    OFPCTL_FIELD(AcPortInfo, value_u32_52),
    OFPCTL_FIELD(AcPortInfo, value_u32_56),
    OFPCTL_FIELD(AcPortInfo, value_u32_60),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> port_fields = rows;

} // namespace ofpctl
