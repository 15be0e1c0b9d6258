/* Debugging, logging and flow monitors. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_DEBUG_H
#define OFP_WIRE_DEBUG_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 71: debugging switches. */
typedef struct OfpGlbDebug {
    uint16_t value_u16_0;
    uint16_t value_u16_2;
    uint16_t value_u16_4;
    uint16_t value_u16_6;
    uint32_t value_u32_8;
    uint8_t reserved_12[4];
    uint64_t value_u64_16;
    uint8_t opaque_24[4];
    uint16_t value_u16_28;
    uint8_t reserved_30[2];
    uint32_t value_u32_32;
    uint32_t value_u32_36;
    uint32_t value_u32_40;
    uint8_t opaque_44[4];
    uint16_t value_u16_48;
    uint16_t value_u16_50;
    uint8_t opaque_52[16];
    uint16_t value_u16_68;
    uint16_t value_u16_70;
    uint8_t opaque_72[16];
    uint32_t value_u32_88;
    uint8_t reserved_92[4];
} OfpGlbDebug;
OFP_PIN_SIZE(OfpGlbDebug, 96);
OFP_API void OFP_bswap_GlbDebug(void *value);

/* TLV 72: packets that debugging counted. */
typedef struct OfpGlbDebugPkt {
    uint64_t value_u64_0;
    uint16_t value_u16_8;
    uint16_t value_u16_10;
    uint8_t reserved_12[4];
    uint64_t value_u64_16;
    uint64_t value_u64_24;
} OfpGlbDebugPkt;
OFP_PIN_SIZE(OfpGlbDebugPkt, 32);
OFP_API void OFP_bswap_GlbDebugPkt(void *value);

/* TLV 157: flow log of an instance. */
typedef struct OfpFlowLogDisable {
    uint16_t instance_id;
    uint16_t disable;
} OfpFlowLogDisable;
OFP_PIN_SIZE(OfpFlowLogDisable, 4);

/* TLV 160: packet filter; travels as it lies. */
typedef struct OfpPacketFilter {
    uint32_t filter;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpPacketFilter;
OFP_PIN_SIZE(OfpPacketFilter, 8);

/* TLV 176: debugging of the test driver; travels as it lies. */
typedef struct OfpTDTestGlbDebug {
    uint8_t content[16];
} OfpTDTestGlbDebug;
OFP_PIN_SIZE(OfpTDTestGlbDebug, 16);

/* TLV 202: debugging figures of controller connections; packed. */
typedef struct OFP_PACKED OfpCtrlDebugInfo {
    uint8_t opaque_0;
    uint64_t value_u64_1[13];
    uint32_t value_u32_105[7];
} OfpCtrlDebugInfo;
OFP_PIN_SIZE(OfpCtrlDebugInfo, 133);
OFP_API void OFP_bswap_CtrlDebugInfo(void *value);

/* TLV 233: interval of an instance's flow monitor. */
typedef struct OfpFlowMonitorInterval {
    uint16_t instance_id;
    uint8_t reserved_2[2];
    uint32_t interval; /* seconds */
} OfpFlowMonitorInterval;
OFP_PIN_SIZE(OfpFlowMonitorInterval, 8);
OFP_API void ofp_bswap_FlowMonitorInterval(void *value);

/* TLV 234: threshold of an instance's flow monitor. */
typedef struct OfpFlowMonitorThreShold {
    uint16_t instance_id;
    uint8_t reserved_2[2];
    uint32_t threshold;
} OfpFlowMonitorThreShold;
OFP_PIN_SIZE(OfpFlowMonitorThreShold, 8);
OFP_API void ofp_bswap_FlowMonitorThreShold(void *value);

/* TLV 235: what a flow monitor does; packed. */
typedef struct OFP_PACKED OfpFlowMonitorAction {
    uint64_t value_u64_0;
    uint64_t value_u64_8;
    uint8_t value_u8_16;
    uint16_t value_u16_17;
} OfpFlowMonitorAction;
OFP_PIN_SIZE(OfpFlowMonitorAction, 19);
OFP_API void ofp_bswap_FlowMonitorAction(void *value);

OFP_END_DECLS

#endif
