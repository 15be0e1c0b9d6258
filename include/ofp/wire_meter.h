/* Meters and queues. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_METER_H
#define OFP_WIRE_METER_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 63: a meter. */
typedef struct OfpMeter {
    uint32_t meter_id;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint16_t value_u16_16;
    uint8_t reserved_18[2];
} OfpMeter;
OFP_PIN_SIZE(OfpMeter, 20);
OFP_API void OFP_bswap_Meter(void *value);

/* TLV 64: a band. */
typedef struct OfpBand {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
} OfpBand;
OFP_PIN_SIZE(OfpBand, 12);
OFP_API void OFP_bswap_Band(void *value);

/* TLV 65: reply to a meter request. */
typedef struct OfpMeterReply {
    uint32_t meter_id;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint16_t value_u16_12;
    uint8_t reserved_14[2];
} OfpMeterReply;
OFP_PIN_SIZE(OfpMeterReply, 16);
OFP_API void OFP_bswap_MeterReply(void *value);

/* TLV 81: a meter. */
typedef struct OfpMeterID {
    uint32_t meter_id;
} OfpMeterID;
OFP_PIN_SIZE(OfpMeterID, 4);
OFP_API void OFP_bswap_MeterID(void *value);

/* TLV 82: statistics of a meter. */
typedef struct OfpMeterStats {
    uint64_t value_u64_0[6];
} OfpMeterStats;
OFP_PIN_SIZE(OfpMeterStats, 48);
OFP_API void OFP_bswap_MeterStats(void *value);

/* TLV 83: a queue. */
typedef struct OfpQueueID {
    uint32_t queue_id;
} OfpQueueID;
OFP_PIN_SIZE(OfpQueueID, 4);
OFP_API void OFP_bswap_QueueID(void *value);

/* TLV 84: statistics of a queue, in the order of OpenFlow's. */
typedef struct OfpQueueStats {
    uint32_t port;
    uint32_t queue_id;
    uint64_t tx_bytes;
    uint64_t tx_packets;
    uint64_t tx_errors;
} OfpQueueStats;
OFP_PIN_SIZE(OfpQueueStats, 32);
OFP_API void OFP_bswap_QueueStats(void *value);

/* TLV 105: configuration of a queue. */
typedef struct OfpQueueCfg {
    uint32_t queue_id;
    uint16_t value_u16_4;
    uint16_t value_u16_6;
} OfpQueueCfg;
OFP_PIN_SIZE(OfpQueueCfg, 8);
OFP_API void OFP_bswap_QueueCfg(void *value);

/* TLV 106: rates of a queue. */
typedef struct OfpQueueCfgRate {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
} OfpQueueCfgRate;
OFP_PIN_SIZE(OfpQueueCfgRate, 16);
OFP_API void OFP_bswap_QueueCfgRate(void *value);

/* TLV 114: meter table of an instance. */
typedef struct OfpMeterTable {
    uint32_t meter_count;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpMeterTable;
OFP_PIN_SIZE(OfpMeterTable, 8);
OFP_API void OFP_bswap_MeterTable(void *value);

/* TLV 115: key of a meter. */
typedef struct OfpMeterReq {
    uint32_t meter_id;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpMeterReq;
OFP_PIN_SIZE(OfpMeterReq, 8);
OFP_API void OFP_bswap_MeterReq(void *value);

/* TLV 117: head of a meter entry. */
typedef struct OfpMeterBase {
    uint32_t meter_id;
    uint16_t flags; /* OpenFlow meter flags */
    uint8_t reserved_6[2];
} OfpMeterBase;
OFP_PIN_SIZE(OfpMeterBase, 8);
OFP_API void OFP_bswap_MeterBase(void *value);

/* TLV 118: a band of a meter entry. */
typedef struct OfpMeterBand {
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t rate;       /* kb/s or packets/s */
    uint32_t burst_size; /* kb or packets */
    uint16_t type;       /* OpenFlow band type */
    uint8_t opaque_26[6];
    uint8_t prec_level; /* DSCP remark */
    uint8_t reserved_33[7];
} OfpMeterBand;
OFP_PIN_SIZE(OfpMeterBand, 40);
OFP_API void OFP_bswap_MeterBand(void *value);

/* TLV 119: asks for the rules that refer to a meter. */
typedef struct OfpMeterRefReq {
    uint32_t meter_id;
    uint32_t rule_id; /* last one read, 0 at the start */
    uint16_t instance_id;
    uint8_t table_id; /* last one read, 255 at the start */
    uint8_t reserved_11;
} OfpMeterRefReq;
OFP_PIN_SIZE(OfpMeterRefReq, 12);
OFP_API void OFP_bswap_MeterRefReq(void *value);

OFP_END_DECLS

#endif
