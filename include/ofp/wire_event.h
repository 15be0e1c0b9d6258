/* Applications, their events and packets. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_EVENT_H
#define OFP_WIRE_EVENT_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 179: configuration event to process. */
typedef struct OfpConfigEvent {
    uint32_t event;
} OfpConfigEvent;
OFP_PIN_SIZE(OfpConfigEvent, 4);
OFP_API void OFP_bswap_ConfigEvent(void *value);

/* TLV 190: event that a notification carries. */
typedef struct OfpEventType {
    uint32_t event; /* 1 to 63 */
} OfpEventType;
OFP_PIN_SIZE(OfpEventType, 4);
OFP_API void ofp_bswap_EventType(void *value);

/* TLV 191 and 192: an application: whole (191) or with an event type it wants (192). */
typedef struct OfpAppInfo {
    uint32_t event; /* event type, 0 in type 191 */
    uint8_t app_id; /* 1 to 11 */
    uint8_t reserved_5[3];
} OfpAppInfo;
OFP_PIN_SIZE(OfpAppInfo, 8);
OFP_API void ofp_bswap_AppInfo(void *value);

/* TLV 195: packet counters of an application. Its first 8 bytes travel as they lie. */
typedef struct OfpAppPktStats {
    uint8_t opaque_0[8];
    uint64_t value_u64_8[9];
    uint32_t value_u32_80;
    uint32_t value_u32_84;
} OfpAppPktStats;
OFP_PIN_SIZE(OfpAppPktStats, 88);
OFP_API void ofp_bswap_AppPktStats(void *value);

/* TLV 198: application context. */
typedef struct OfpAppContext {
    uint32_t value_u32_0;
    uint16_t value_u16_4;
    uint8_t reserved_6[2];
    uint64_t value_u64_8;
    uint32_t value_u32_16;
    uint8_t reserved_20[4];
} OfpAppContext;
OFP_PIN_SIZE(OfpAppContext, 24);
OFP_API void OFP_bswap_AppContext(void *value);

/* TLV 230: payload of event 16. */
typedef struct OfpCtrlStatusEventData {
    uint32_t status;
} OfpCtrlStatusEventData;
OFP_PIN_SIZE(OfpCtrlStatusEventData, 4);
OFP_API void ofp_bswap_CtrlStatusEventData(void *value);

/* TLV 231: registration for XML events. */
typedef struct OfpXmlEventReg {
    uint16_t value_u16_0;
    uint8_t reserved_2[2];
    uint32_t value_u32_4;
} OfpXmlEventReg;
OFP_PIN_SIZE(OfpXmlEventReg, 8);
OFP_API void ofp_bswap_XmlEventReg(void *value);

/* TLV 232: flow monitor figures of an XML event. */
typedef struct OfpXmlFlowMonitorData {
    uint64_t value_u64_0;
    uint64_t value_u64_8;
    uint8_t opaque_16[4];
    uint32_t value_u32_20;
} OfpXmlFlowMonitorData;
OFP_PIN_SIZE(OfpXmlFlowMonitorData, 24);
OFP_API void ofp_bswap_XmlFlowMonitorData(void *value);

OFP_END_DECLS

#endif
