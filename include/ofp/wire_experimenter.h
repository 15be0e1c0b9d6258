/* Experimenter matches and actions. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_EXPERIMENTER_H
#define OFP_WIRE_EXPERIMENTER_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/wire_action.h"

OFP_BEGIN_DECLS

/* TLV 145: match on a VSI. */
typedef struct OfpExpMatchVsiID {
    uint64_t vsi_id;
} OfpExpMatchVsiID;
OFP_PIN_SIZE(OfpExpMatchVsiID, 8);
OFP_API void OFP_bswap_ExpMatchVsiID(void *value);

/* TLV 146: known by its conversion only. */
typedef struct OfpReserved146 {
    uint16_t value_u16_0;
    uint16_t value_u16_2;
    uint32_t value_u32_4;
    uint8_t opaque_8[16];
    uint16_t value_u16_24;
    uint8_t reserved_26[2];
} OfpReserved146;
OFP_PIN_SIZE(OfpReserved146, 28);

/* TLV 147: match on a range of L4 ports. */
typedef struct OfpExpMatchPort {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint16_t low;
    uint16_t high; /* inclusive */
} OfpExpMatchPort;
OFP_PIN_SIZE(OfpExpMatchPort, 12);
OFP_API void OFP_bswap_ExpMatchPort(void *value);

/* TLV 148 and 155: match on a service. */
typedef struct OfpExpMatchServ {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint32_t service;
} OfpExpMatchServ;
OFP_PIN_SIZE(OfpExpMatchServ, 12);
OFP_API void OFP_bswap_ExpMatchServ(void *value);

/* TLV 149: experimenter action with two values. */
typedef struct OfpExpLIAct {
    OfpActionHdr header;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
    uint32_t value_u32_20;
} OfpExpLIAct;
OFP_PIN_SIZE(OfpExpLIAct, 24);
OFP_API void OFP_bswap_ExpLIAct(void *value);

/* TLV 150 and 156: experimenter action on a service. */
typedef struct OfpExpServAct {
    OfpActionHdr header;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
} OfpExpServAct;
OFP_PIN_SIZE(OfpExpServAct, 20);
OFP_API void OFP_bswap_ExpServAct(void *value);

/* TLV 151: match on a VPN. */
typedef struct OfpExpMatchVpnIndex {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint16_t vpn_index;
    uint8_t reserved_10[2];
} OfpExpMatchVpnIndex;
OFP_PIN_SIZE(OfpExpMatchVpnIndex, 12);
OFP_API void OFP_bswap_ExpMatchVpnIndex(void *value);

/* TLV 161: match on the inner VLAN. */
typedef struct OfpExpMatchInnerVlan {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint16_t vlan_id;
    uint8_t reserved_10[2];
} OfpExpMatchInnerVlan;
OFP_PIN_SIZE(OfpExpMatchInnerVlan, 12);
OFP_API void OFP_bswap_ExpMatchInnerVlan(void *value);

/* TLV 162: match on the egress port. */
typedef struct OfpExpMatchEgressPort {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint32_t port;
} OfpExpMatchEgressPort;
OFP_PIN_SIZE(OfpExpMatchEgressPort, 12);
OFP_API void OFP_bswap_ExpMatchEgressPort(void *value);

/* TLV 166: match on a BSSID. */
typedef struct OfpExpMatchBssID {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint8_t bssid[6];
    uint8_t reserved_14[2];
} OfpExpMatchBssID;
OFP_PIN_SIZE(OfpExpMatchBssID, 16);
OFP_API void OFP_bswap_ExpMatchBssID(void *value);

/* TLV 167: match on EAPOL. */
typedef struct OfpExpMatchEapol {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint8_t eapol[2]; /* as it lies */
    uint8_t reserved_10[2];
} OfpExpMatchEapol;
OFP_PIN_SIZE(OfpExpMatchEapol, 12);
OFP_API void OFP_bswap_ExpMatchEapol(void *value);

/* TLV 173: experimenter action: next hop. */
typedef struct OfpExpNextHopAct {
    OfpActionHdr header;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint8_t opaque_16[4];
    uint32_t value_u32_20;
    uint8_t opaque_24[12];
    uint16_t value_u16_36;
    uint8_t reserved_38[2];
} OfpExpNextHopAct;
OFP_PIN_SIZE(OfpExpNextHopAct, 40);
OFP_API void OFP_bswap_ExpNextHopAct(void *value);

/* TLV 175: experimenter action: next hop that became invalid. */
typedef struct OfpExpNextHopInvalidAct {
    OfpActionHdr header;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
} OfpExpNextHopInvalidAct;
OFP_PIN_SIZE(OfpExpNextHopInvalidAct, 20);
OFP_API void OFP_bswap_ExpNextHopInvalidAct(void *value);

/* TLV 185: match on packet bytes at an offset. */
typedef struct OfpExpPktOffset {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
    uint32_t value_u32_20;
} OfpExpPktOffset;
OFP_PIN_SIZE(OfpExpPktOffset, 24);
OFP_API void OFP_bswap_ExpPktOffset(void *value);

/* TLV 189: match on packet bytes at an experimenter offset. */
typedef struct OfpExpPktExpOffset {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
} OfpExpPktExpOffset;
OFP_PIN_SIZE(OfpExpPktExpOffset, 20);
OFP_API void OFP_bswap_ExpPktExpOffset(void *value);

/* TLV 196: match on a flow flag. */
typedef struct OfpExpMatchFlowFlag {
    uint32_t type;   /* experimenter match type */
    uint16_t length; /* bytes of data */
    uint8_t reserved_6[2];
    uint32_t flow_flag;
} OfpExpMatchFlowFlag;
OFP_PIN_SIZE(OfpExpMatchFlowFlag, 12);
OFP_API void OFP_bswap_ExpMatchFlowFlag(void *value);

/* TLV 226: empty experimenter part. */
typedef struct OfpExpEmpty {
    uint32_t value_u32_0;
} OfpExpEmpty;
OFP_PIN_SIZE(OfpExpEmpty, 4);
OFP_API void OFP_bswap_ExpEmpty(void *value);

OFP_END_DECLS

#endif
