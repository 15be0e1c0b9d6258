// Meters and queues.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(Meter, meter_id),           OFPCTL_FIELD(Meter, value_u32_4),
    OFPCTL_FIELD(Meter, value_u32_8),        OFPCTL_FIELD(Meter, value_u32_12),
    OFPCTL_FIELD(Meter, value_u16_16),       OFPCTL_FIELD(Meter, reserved_18),

    OFPCTL_FIELD(Band, value_u32_0),         OFPCTL_FIELD(Band, value_u32_4),
    OFPCTL_FIELD(Band, value_u32_8),

    OFPCTL_FIELD(MeterReply, meter_id),      OFPCTL_FIELD(MeterReply, value_u32_4),
    OFPCTL_FIELD(MeterReply, value_u32_8),   OFPCTL_FIELD(MeterReply, value_u16_12),
    OFPCTL_FIELD(MeterReply, reserved_14),

    OFPCTL_FIELD(MeterID, meter_id),

    OFPCTL_FIELD(MeterStats, value_u64_0),

    OFPCTL_FIELD(QueueID, queue_id),

    OFPCTL_FIELD(QueueStats, port),          OFPCTL_FIELD(QueueStats, queue_id),
    OFPCTL_FIELD(QueueStats, tx_bytes),      OFPCTL_FIELD(QueueStats, tx_packets),
    OFPCTL_FIELD(QueueStats, tx_errors),

    OFPCTL_FIELD(QueueCfg, queue_id),        OFPCTL_FIELD(QueueCfg, value_u16_4),
    OFPCTL_FIELD(QueueCfg, value_u16_6),

    OFPCTL_FIELD(QueueCfgRate, value_u32_0), OFPCTL_FIELD(QueueCfgRate, value_u32_4),
    OFPCTL_FIELD(QueueCfgRate, value_u32_8), OFPCTL_FIELD(QueueCfgRate, value_u32_12),

    OFPCTL_FIELD(MeterTable, meter_count),   OFPCTL_FIELD(MeterTable, instance_id),
    OFPCTL_FIELD(MeterTable, reserved_6),

    OFPCTL_FIELD(MeterReq, meter_id),        OFPCTL_FIELD(MeterReq, instance_id),
    OFPCTL_FIELD(MeterReq, reserved_6),

    OFPCTL_FIELD(MeterBase, meter_id),       OFPCTL_FIELD(MeterBase, flags),
    OFPCTL_FIELD(MeterBase, reserved_6),

    OFPCTL_FIELD(MeterBand, packet_count),   OFPCTL_FIELD(MeterBand, byte_count),
    OFPCTL_FIELD(MeterBand, rate),           OFPCTL_FIELD(MeterBand, burst_size),
    OFPCTL_FIELD(MeterBand, type),           OFPCTL_FIELD(MeterBand, opaque_26),
    OFPCTL_FIELD(MeterBand, prec_level),     OFPCTL_FIELD(MeterBand, reserved_33),

    OFPCTL_FIELD(MeterRefReq, meter_id),     OFPCTL_FIELD(MeterRefReq, rule_id),
    OFPCTL_FIELD(MeterRefReq, instance_id),  OFPCTL_FIELD(MeterRefReq, table_id),
    OFPCTL_FIELD(MeterRefReq, reserved_11),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> meter_fields = rows;

} // namespace ofpctl
