/* Ports and interfaces. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_PORT_H
#define OFP_WIRE_PORT_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 12: an interface. */
typedef struct OfpIfIndex {
    uint32_t if_index;
} OfpIfIndex;
OFP_PIN_SIZE(OfpIfIndex, 4);
OFP_API void OFP_bswap_IfIndex(void *value);

/* TLV 13: counters of a port, in the order of OpenFlow's port statistics. */
typedef struct OfpPortStats {
    uint64_t rx_packets;
    uint64_t tx_packets;
    uint64_t rx_bytes;
    uint64_t tx_bytes;
    uint64_t rx_dropped;
    uint64_t tx_dropped;
    uint64_t rx_errors;
    uint64_t tx_errors;
    uint64_t rx_frame_errors;
    uint64_t rx_over_errors;
    uint64_t rx_crc_errors;
    uint64_t collisions;
    uint32_t duration_sec;
    uint8_t reserved_100[4];
} OfpPortStats;
OFP_PIN_SIZE(OfpPortStats, 104);
OFP_API void OFP_bswap_PortStats(void *value);

/* TLV 40: an interface of an instance. */
typedef struct OfpVerbIfRep {
    uint32_t if_index; /* 0 ends the list */
    char name[48];     /* terminated text */
} OfpVerbIfRep;
OFP_PIN_SIZE(OfpVerbIfRep, 52);
OFP_API void OFP_bswap_VerbIfRep(void *value);

/* TLV 41: asks for an instance's interfaces after one of them. */
typedef struct OfpVerbIfReq {
    uint32_t if_index; /* 0 at the start */
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpVerbIfReq;
OFP_PIN_SIZE(OfpVerbIfReq, 8);
OFP_API void OFP_bswap_VerbIfReq(void *value);

/* TLV 46: configuration of a port. */
typedef struct OfpPortCfg {
    uint32_t if_index;
    uint32_t config; /* OpenFlow port configuration bits */
} OfpPortCfg;
OFP_PIN_SIZE(OfpPortCfg, 8);
OFP_API void OFP_bswap_PortCfg(void *value);

/* TLV 47: advertised features of a port. */
typedef struct OfpPortCfgAdv {
    uint32_t if_index;
    uint32_t advertise; /* OpenFlow port feature bits */
} OfpPortCfgAdv;
OFP_PIN_SIZE(OfpPortCfgAdv, 8);
OFP_API void OFP_bswap_PortCfgAdv(void *value);

/* TLV 107: a port. */
typedef struct OfpPort {
    uint32_t port;
} OfpPort;
OFP_PIN_SIZE(OfpPort, 4);
OFP_API void OFP_bswap_Port(void *value);

/* TLV 108: how many ports. */
typedef struct OfpPortNum {
    uint32_t count;
} OfpPortNum;
OFP_PIN_SIZE(OfpPortNum, 4);
OFP_API void OFP_bswap_PortNum(void *value);

/* TLV 109: known by its number only; byte content. */
typedef struct OfpReserved109 {
    uint8_t content[4];
} OfpReserved109;
OFP_PIN_SIZE(OfpReserved109, 4);

/* TLV 110: known by its number only; byte content. */
typedef struct OfpReserved110 {
    uint8_t content[4];
} OfpReserved110;
OFP_PIN_SIZE(OfpReserved110, 4);

/* TLV 123: interfaces of a rule, up to 62 a record. */
typedef struct OfpBatchIf {
    uint32_t count; /* entries in use */
    uint32_t if_index[62];
} OfpBatchIf;
OFP_PIN_SIZE(OfpBatchIf, 252);
OFP_API void OFP_bswap_BatchIf(void *value);

/* TLV 128: port kinds an instance may not use. */
typedef struct OfpForbiddenPort {
    uint32_t ports; /* bits */
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpForbiddenPort;
OFP_PIN_SIZE(OfpForbiddenPort, 8);

/* TLV 129: known by its conversion only. */
typedef struct OfpReserved129 {
    uint32_t value_u32_0[8];
} OfpReserved129;
OFP_PIN_SIZE(OfpReserved129, 32);

/* TLV 141: an interface. */
typedef struct OfpIfInfo {
    uint32_t if_index;
    uint32_t value_u32_4;
    uint16_t value_u16_8;
    uint16_t value_u16_10;
} OfpIfInfo;
OFP_PIN_SIZE(OfpIfInfo, 12);
OFP_API void ofp_bswap_IfInfo(void *value);

/* TLV 142: binds a port to an instance. */
typedef struct OfpPortInstanceCfg {
    uint32_t if_index;
    uint32_t value_u32_4;
    uint16_t instance_id;
    uint8_t reserved_10[2];
} OfpPortInstanceCfg;
OFP_PIN_SIZE(OfpPortInstanceCfg, 12);
OFP_API void OFP_bswap_PortInstanceCfg(void *value);

/* TLV 163: a change of an aggregate interface. */
typedef struct OfpIfAggChg {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
} OfpIfAggChg;
OFP_PIN_SIZE(OfpIfAggChg, 12);
OFP_API void OFP_bswap_IfAggChg(void *value);

/* TLV 172: port types an instance may use. */
typedef struct OfpPermitPortType {
    uint32_t port_types; /* bits */
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpPermitPortType;
OFP_PIN_SIZE(OfpPermitPortType, 8);

/* TLV 182: a port to shut down. */
typedef struct OfpPortShutdown {
    uint32_t if_index;
} OfpPortShutdown;
OFP_PIN_SIZE(OfpPortShutdown, 4);
OFP_API void OFP_bswap_PortShutdown(void *value);

/* TLV 200: an attachment port; travels as it lies. */
typedef struct OfpAcPortInfo {
    uint32_t if_index;     /* 0 ends the list */
    char name[48];         /* terminated text */
    uint32_t value_u32_52; /* all ones when not set */
    uint32_t value_u32_56; /* all ones ends a reply */
    uint32_t value_u32_60; /* 65535 when not set */
} OfpAcPortInfo;
OFP_PIN_SIZE(OfpAcPortInfo, 64);

OFP_END_DECLS

#endif
