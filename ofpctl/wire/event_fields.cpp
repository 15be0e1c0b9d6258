// Applications, their events and packets.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(ConfigEvent, event),

    OFPCTL_FIELD(EventType, event),

    OFPCTL_FIELD(AppInfo, event),
    OFPCTL_FIELD(AppInfo, app_id),
    OFPCTL_FIELD(AppInfo, reserved_5),

    OFPCTL_FIELD(AppPktStats, opaque_0),
    OFPCTL_FIELD(AppPktStats, value_u64_8),
    OFPCTL_FIELD(AppPktStats, value_u32_80),
    OFPCTL_FIELD(AppPktStats, value_u32_84),

    OFPCTL_FIELD(AppContext, value_u32_0),
    OFPCTL_FIELD(AppContext, value_u16_4),
    OFPCTL_FIELD(AppContext, reserved_6),
    OFPCTL_FIELD(AppContext, value_u64_8),
    OFPCTL_FIELD(AppContext, value_u32_16),
    OFPCTL_FIELD(AppContext, reserved_20),

    OFPCTL_FIELD(CtrlStatusEventData, status),

    OFPCTL_FIELD(XmlEventReg, value_u16_0),
    OFPCTL_FIELD(XmlEventReg, reserved_2),
    OFPCTL_FIELD(XmlEventReg, value_u32_4),

    OFPCTL_FIELD(XmlFlowMonitorData, value_u64_0),
    OFPCTL_FIELD(XmlFlowMonitorData, value_u64_8),
    OFPCTL_FIELD(XmlFlowMonitorData, opaque_16),
    OFPCTL_FIELD(XmlFlowMonitorData, value_u32_20),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> event_fields = rows;

} // namespace ofpctl
