/* Actions of a flow rule. Each begins with the action head. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_ACTION_H
#define OFP_WIRE_ACTION_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/wire_match.h"

OFP_BEGIN_DECLS

/* TLV 24 and 29: head of every action. */
typedef struct OfpActionHdr {
    uint32_t type; /* OpenFlow or private action type */
    uint16_t size; /* bytes of the whole action */
    uint8_t reserved_6[2];
} OfpActionHdr;
OFP_PIN_SIZE(OfpActionHdr, 8);
OFP_API void OFP_bswap_ActionHdr(void *value);

/* TLV 17: drop. */
typedef struct OfpDropAct {
    OfpActionHdr header;
} OfpDropAct;
OFP_PIN_SIZE(OfpDropAct, 8);
OFP_API void OFP_bswap_DropAct(void *value);

/* TLV 18 and 23: output to a port. */
typedef struct OfpOutputAct {
    OfpActionHdr header;
    uint32_t port_kind; /* OFP_PORT_RESERVED or OFP_PORT_NUMBER */
    uint32_t port;
    uint16_t max_length; /* bytes to the controller */
    uint8_t reserved_18[2];
} OfpOutputAct;
OFP_PIN_SIZE(OfpOutputAct, 20);
OFP_API void OFP_bswap_OutputAct(void *value);

/* TLV 19: apply a group. */
typedef struct OfpGroupAct {
    OfpActionHdr header;
    uint32_t group_id;
} OfpGroupAct;
OFP_PIN_SIZE(OfpGroupAct, 12);
OFP_API void OFP_bswap_GroupAct(void *value);

/* TLV 20: set the queue. */
typedef struct OfpQueueAct {
    OfpActionHdr header;
    uint32_t queue_id;
} OfpQueueAct;
OFP_PIN_SIZE(OfpQueueAct, 12);
OFP_API void OFP_bswap_QueueAct(void *value);

/* TLV 21: set a field: the match layout behind the head, then two values. */
typedef struct OfpSetFieldAct {
    OfpActionHdr header;
    OfpMatchField field;
    uint64_t value_u64_280;
    uint32_t value_u32_288;
    uint8_t reserved_292[4];
} OfpSetFieldAct;
OFP_PIN_SIZE(OfpSetFieldAct, 296);
OFP_API void OFP_bswap_SetFieldAct(void *value);

/* TLV 22: set the time to live. */
typedef struct OfpSetTTLAct {
    OfpActionHdr header;
    uint8_t ttl;
    uint8_t reserved_9[3];
} OfpSetTTLAct;
OFP_PIN_SIZE(OfpSetTTLAct, 12);
OFP_API void OFP_bswap_SetTTLAct(void *value);

/* TLV 25: push or pop a tag. */
typedef struct OfpTagOpAct {
    OfpActionHdr header;
    uint16_t eth_type;
    uint8_t reserved_10[2];
} OfpTagOpAct;
OFP_PIN_SIZE(OfpTagOpAct, 12);
OFP_API void OFP_bswap_TagOpAct(void *value);

/* TLV 26: apply a meter. */
typedef struct OfpMeterAct {
    OfpActionHdr header;
    uint32_t meter_id;
} OfpMeterAct;
OFP_PIN_SIZE(OfpMeterAct, 12);
OFP_API void OFP_bswap_MeterAct(void *value);

/* TLV 27: write metadata. */
typedef struct OfpWriteMetaAct {
    OfpActionHdr header;
    uint64_t metadata;
    uint64_t metadata_mask;
} OfpWriteMetaAct;
OFP_PIN_SIZE(OfpWriteMetaAct, 24);
OFP_API void OFP_bswap_WriteMetaAct(void *value);

/* TLV 28: continue at a table. */
typedef struct OfpGotoTblAct {
    OfpActionHdr header;
    uint8_t table_id;
    uint8_t reserved_9[3];
} OfpGotoTblAct;
OFP_PIN_SIZE(OfpGotoTblAct, 12);
OFP_API void OFP_bswap_GotoTblAct(void *value);

OFP_END_DECLS

#endif
