// How an instance behaves towards its controllers, and its functions.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(EchoTime, interval),
    OFPCTL_FIELD(EchoTime, instance_id),
    OFPCTL_FIELD(EchoTime, reserved_6),

    OFPCTL_FIELD(FailOpen, mode),
    OFPCTL_FIELD(FailOpen, instance_id),
    OFPCTL_FIELD(FailOpen, reserved_6),

    OFPCTL_FIELD(FailOpenInfo, mode),
    OFPCTL_FIELD(FailOpenInfo, instance_id),
    OFPCTL_FIELD(FailOpenInfo, reserved_6),

    OFPCTL_FIELD(ReconnectTime, interval),
    OFPCTL_FIELD(ReconnectTime, instance_id),
    OFPCTL_FIELD(ReconnectTime, reserved_6),

    OFPCTL_FIELD(ConnMode, mode),
    OFPCTL_FIELD(ConnMode, instance_id),
    OFPCTL_FIELD(ConnMode, reserved_6),

    OFPCTL_FIELD(PktinWithEgress, value_u32_0),
    OFPCTL_FIELD(PktinWithEgress, value_u16_4),
    OFPCTL_FIELD(PktinWithEgress, reserved_6),
    OFPCTL_FIELD(PktinWithEgress, value_u32_8),

    OFPCTL_FIELD(LoopProtection, instance_id),
    OFPCTL_FIELD(LoopProtection, enable),

    OFPCTL_FIELD(EnableALAlFunction, instance_id),
    OFPCTL_FIELD(EnableALAlFunction, value_u16_2),
    OFPCTL_FIELD(EnableALAlFunction, functions),

    OFPCTL_FIELD(EnablePayloadFunction, instance_id),
    OFPCTL_FIELD(EnablePayloadFunction, value_u16_2),
    OFPCTL_FIELD(EnablePayloadFunction, value_u32_4),
    OFPCTL_FIELD(EnablePayloadFunction, value_u32_8),
    OFPCTL_FIELD(EnablePayloadFunction, functions),
    OFPCTL_FIELD(EnablePayloadFunction, opaque_16),

    OFPCTL_FIELD(Ignore, value),
    OFPCTL_FIELD(Ignore, reserved_2),

    OFPCTL_FIELD(TrapEnable, instance_id),
    OFPCTL_FIELD(TrapEnable, traps),

    OFPCTL_FIELD(Ipv6Enhanced, enable),
    OFPCTL_FIELD(Ipv6Enhanced, reserved_2),

    OFPCTL_FIELD(CapSupportEVPN, supported),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> connection_fields = rows;

} // namespace ofpctl
