/* How an instance behaves towards its controllers, and its functions. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_CONNECTION_H
#define OFP_WIRE_CONNECTION_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/wire_number.h"

OFP_BEGIN_DECLS

/* TLV 8: echo interval of an instance's controller connections. */
typedef struct OfpEchoTime {
    uint32_t interval; /* seconds */
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpEchoTime;
OFP_PIN_SIZE(OfpEchoTime, 8);
OFP_API void OFP_bswap_EchoTime(void *value);

/* TLV 10: what an instance does without its controllers. */
typedef struct OfpFailOpen {
    uint32_t mode;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpFailOpen;
OFP_PIN_SIZE(OfpFailOpen, 8);
OFP_API void OFP_bswap_FailOpen(void *value);

/* TLV 51: what an instance does without its controllers, as it runs. */
typedef struct OfpFailOpenInfo {
    uint32_t mode;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpFailOpenInfo;
OFP_PIN_SIZE(OfpFailOpenInfo, 8);
OFP_API void OFP_bswap_FailOpenInfo(void *value);

/* TLV 80: reconnect interval of an instance's controller connections. */
typedef struct OfpReconnectTime {
    uint32_t interval; /* seconds */
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpReconnectTime;
OFP_PIN_SIZE(OfpReconnectTime, 8);
OFP_API void OFP_bswap_ReconnectTime(void *value);

/* TLV 94: how an instance uses its controllers. */
typedef struct OfpConnMode {
    uint32_t mode;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpConnMode;
OFP_PIN_SIZE(OfpConnMode, 8);
OFP_API void OFP_bswap_ConnMode(void *value);

/* TLV 171: packet-in with egress port. */
typedef struct OfpPktinWithEgress {
    uint32_t value_u32_0;
    uint16_t value_u16_4;
    uint8_t reserved_6[2];
    uint32_t value_u32_8;
} OfpPktinWithEgress;
OFP_PIN_SIZE(OfpPktinWithEgress, 12);
OFP_API void OFP_bswap_PktinWithEgress(void *value);

/* TLV 183: loop protection of an instance. */
typedef struct OfpLoopProtection {
    uint16_t instance_id;
    uint16_t enable;
} OfpLoopProtection;
OFP_PIN_SIZE(OfpLoopProtection, 4);
OFP_API void OFP_bswap_LoopProtection(void *value);

/* TLV 184: application functions of an instance. */
typedef struct OfpEnableALAlFunction {
    uint16_t instance_id;
    uint16_t value_u16_2;
    uint32_t functions; /* bits, a request with none is not sent */
} OfpEnableALAlFunction;
OFP_PIN_SIZE(OfpEnableALAlFunction, 8);

/* TLV 201: payload functions of an instance. */
typedef struct OfpEnablePayloadFunction {
    uint16_t instance_id;
    uint16_t value_u16_2;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint32_t functions; /* bits, a request with none is not sent */
    uint8_t opaque_16[64];
} OfpEnablePayloadFunction;
OFP_PIN_SIZE(OfpEnablePayloadFunction, 80);

/* TLV 204: what the agent daemon ignores, device wide. */
typedef struct OfpIgnore {
    uint16_t value;
    uint8_t reserved_2[2];
} OfpIgnore;
OFP_PIN_SIZE(OfpIgnore, 4);
OFP_API void OFP_bswap_Ignore(void *value);

/* TLV 210: notifications of an instance. */
typedef struct OfpTrapEnable {
    uint16_t instance_id;
    OfpUnaligned32 traps; /* bits */
} OfpTrapEnable;
OFP_PIN_SIZE(OfpTrapEnable, 6);
OFP_API void OFP_bswap_TrapEnable(void *value);

/* TLV 221: enhanced IPv6 support; travels as it lies. */
typedef struct OfpIpv6Enhanced {
    uint16_t enable;
    uint8_t reserved_2[2];
} OfpIpv6Enhanced;
OFP_PIN_SIZE(OfpIpv6Enhanced, 4);

/* TLV 228: whether EVPN is supported. */
typedef struct OfpCapSupportEVPN {
    uint32_t supported;
} OfpCapSupportEVPN;
OFP_PIN_SIZE(OfpCapSupportEVPN, 4);
OFP_API void OFP_bswap_CapSupportEVPN(void *value);

OFP_END_DECLS

#endif
