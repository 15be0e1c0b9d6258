#include "ofp/wire_meter.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpMeter, meter_id) == 0);
static_assert(offsetof(OfpMeter, value_u32_4) == 4);
static_assert(offsetof(OfpMeter, value_u32_8) == 8);
static_assert(offsetof(OfpMeter, value_u32_12) == 12);
static_assert(offsetof(OfpMeter, value_u16_16) == 16);
OFP_API void OFP_bswap_Meter(void *value)
{
    swap_members<&OfpMeter::meter_id, &OfpMeter::value_u32_4, &OfpMeter::value_u32_8,
                 &OfpMeter::value_u32_12, &OfpMeter::value_u16_16>(value);
}

static_assert(offsetof(OfpBand, value_u32_0) == 0);
static_assert(offsetof(OfpBand, value_u32_4) == 4);
static_assert(offsetof(OfpBand, value_u32_8) == 8);
OFP_API void OFP_bswap_Band(void *value)
{
    swap_members<&OfpBand::value_u32_0, &OfpBand::value_u32_4, &OfpBand::value_u32_8>(value);
}

static_assert(offsetof(OfpMeterReply, meter_id) == 0);
static_assert(offsetof(OfpMeterReply, value_u32_4) == 4);
static_assert(offsetof(OfpMeterReply, value_u32_8) == 8);
static_assert(offsetof(OfpMeterReply, value_u16_12) == 12);
OFP_API void OFP_bswap_MeterReply(void *value)
{
    swap_members<&OfpMeterReply::meter_id, &OfpMeterReply::value_u32_4, &OfpMeterReply::value_u32_8,
                 &OfpMeterReply::value_u16_12>(value);
}

static_assert(offsetof(OfpMeterID, meter_id) == 0);
OFP_API void OFP_bswap_MeterID(void *value) { swap_members<&OfpMeterID::meter_id>(value); }

static_assert(offsetof(OfpMeterStats, value_u64_0) == 0);
OFP_API void OFP_bswap_MeterStats(void *value) { swap_members<&OfpMeterStats::value_u64_0>(value); }

static_assert(offsetof(OfpQueueID, queue_id) == 0);
OFP_API void OFP_bswap_QueueID(void *value) { swap_members<&OfpQueueID::queue_id>(value); }

static_assert(offsetof(OfpQueueStats, port) == 0);
static_assert(offsetof(OfpQueueStats, queue_id) == 4);
static_assert(offsetof(OfpQueueStats, tx_bytes) == 8);
static_assert(offsetof(OfpQueueStats, tx_packets) == 16);
static_assert(offsetof(OfpQueueStats, tx_errors) == 24);
OFP_API void OFP_bswap_QueueStats(void *value)
{
    swap_members<&OfpQueueStats::port, &OfpQueueStats::queue_id, &OfpQueueStats::tx_bytes,
                 &OfpQueueStats::tx_packets, &OfpQueueStats::tx_errors>(value);
}

static_assert(offsetof(OfpQueueCfg, queue_id) == 0);
static_assert(offsetof(OfpQueueCfg, value_u16_4) == 4);
static_assert(offsetof(OfpQueueCfg, value_u16_6) == 6);
OFP_API void OFP_bswap_QueueCfg(void *value)
{
    swap_members<&OfpQueueCfg::queue_id, &OfpQueueCfg::value_u16_4, &OfpQueueCfg::value_u16_6>(
        value);
}

static_assert(offsetof(OfpQueueCfgRate, value_u32_0) == 0);
static_assert(offsetof(OfpQueueCfgRate, value_u32_4) == 4);
static_assert(offsetof(OfpQueueCfgRate, value_u32_8) == 8);
static_assert(offsetof(OfpQueueCfgRate, value_u32_12) == 12);
OFP_API void OFP_bswap_QueueCfgRate(void *value)
{
    swap_members<&OfpQueueCfgRate::value_u32_0, &OfpQueueCfgRate::value_u32_4,
                 &OfpQueueCfgRate::value_u32_8, &OfpQueueCfgRate::value_u32_12>(value);
}

static_assert(offsetof(OfpMeterTable, meter_count) == 0);
static_assert(offsetof(OfpMeterTable, instance_id) == 4);
OFP_API void OFP_bswap_MeterTable(void *value)
{
    swap_members<&OfpMeterTable::meter_count, &OfpMeterTable::instance_id>(value);
}

static_assert(offsetof(OfpMeterReq, meter_id) == 0);
static_assert(offsetof(OfpMeterReq, instance_id) == 4);
OFP_API void OFP_bswap_MeterReq(void *value)
{
    swap_members<&OfpMeterReq::meter_id, &OfpMeterReq::instance_id>(value);
}

static_assert(offsetof(OfpMeterBase, meter_id) == 0);
static_assert(offsetof(OfpMeterBase, flags) == 4);
OFP_API void OFP_bswap_MeterBase(void *value)
{
    swap_members<&OfpMeterBase::meter_id, &OfpMeterBase::flags>(value);
}

static_assert(offsetof(OfpMeterBand, packet_count) == 0);
static_assert(offsetof(OfpMeterBand, byte_count) == 8);
static_assert(offsetof(OfpMeterBand, rate) == 16);
static_assert(offsetof(OfpMeterBand, burst_size) == 20);
static_assert(offsetof(OfpMeterBand, type) == 24);
OFP_API void OFP_bswap_MeterBand(void *value)
{
    swap_members<&OfpMeterBand::packet_count, &OfpMeterBand::byte_count, &OfpMeterBand::rate,
                 &OfpMeterBand::burst_size, &OfpMeterBand::type>(value);
}

static_assert(offsetof(OfpMeterRefReq, meter_id) == 0);
static_assert(offsetof(OfpMeterRefReq, rule_id) == 4);
static_assert(offsetof(OfpMeterRefReq, instance_id) == 8);
OFP_API void OFP_bswap_MeterRefReq(void *value)
{
    swap_members<&OfpMeterRefReq::meter_id, &OfpMeterRefReq::rule_id, &OfpMeterRefReq::instance_id>(
        value);
}
