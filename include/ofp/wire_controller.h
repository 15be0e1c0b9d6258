/* Controllers, auxiliary connections, OAP servers. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_CONTROLLER_H
#define OFP_WIRE_CONTROLLER_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/wire_number.h"

OFP_BEGIN_DECLS

/* TLV 6: a controller of an instance. */
typedef struct OfpCtrl {
    uint64_t value_u64_0;
    uint64_t value_u64_8;
    uint16_t address_type; /* 2: IPv4 */
    uint8_t reserved_18[2];
    uint32_t address[4]; /* IPv4 in the first word, as it lies */
    uint32_t value_u32_36;
    uint32_t state; /* 1 sets the flag of a controller summary */
    uint32_t value_u32_44;
    uint16_t port;    /* TCP port */
    char text_50[32]; /* terminated text */
    uint8_t controller_id;
    uint8_t opaque_83[37];
    uint16_t value_u16_120;
    uint8_t opaque_122[18];
    uint16_t value_u16_140;
    uint16_t value_u16_142;
    uint32_t value_u32_144;
    uint8_t opaque_148[4];
    char text_152[32];    /* terminated text */
    uint16_t event_value; /* reported with controller events */
    uint8_t reserved_186[6];
} OfpCtrl;
OFP_PIN_SIZE(OfpCtrl, 192);
OFP_API void OFP_bswap_Ctrl(void *value);

/* TLV 7: configuration of a controller. */
typedef struct OfpCtrlCfg {
    uint16_t instance_id;
    uint16_t address_type; /* 2: IPv4 */
    uint32_t address[4];   /* IPv4 in the first word, as it lies */
    uint32_t value_u32_20;
    uint16_t port; /* TCP port */
    uint16_t value_u16_26;
    uint8_t controller_id;
    char text_29[32]; /* terminated text */
    char text_61[32]; /* terminated text */
    uint8_t opaque_93[3];
    uint16_t value_u16_96;
    uint16_t value_u16_98;
    uint8_t opaque_100[16];
    uint16_t value_u16_116;
    uint16_t value_u16_118;
    uint8_t opaque_120[36];
} OfpCtrlCfg;
OFP_PIN_SIZE(OfpCtrlCfg, 156);
OFP_API void OFP_bswap_CtrlCfg(void *value);

/* TLV 11: a controller's state. */
typedef struct OfpCtrlInfo {
    uint32_t value_u32_0;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpCtrlInfo;
OFP_PIN_SIZE(OfpCtrlInfo, 8);
OFP_API void OFP_bswap_CtrlInfo(void *value);

/* TLV 39: a controller in a verbose reply. */
typedef struct OfpVerbCtrlRep {
    uint16_t address_type; /* 2: IPv4 */
    uint16_t value_u16_2;
    uint32_t address[4]; /* IPv4 in the first word, as it lies */
    uint8_t opaque_20[4];
    uint16_t port; /* TCP port */
    uint16_t flag;
    uint8_t controller_id;
    char text_29[32]; /* terminated text */
    uint8_t opaque_61[7];
    uint16_t value_u16_68;
    uint16_t value_u16_70;
    uint8_t opaque_72[16];
    uint16_t value_u16_88;
    uint8_t opaque_90[38];
} OfpVerbCtrlRep;
OFP_PIN_SIZE(OfpVerbCtrlRep, 128);
OFP_API void OFP_bswap_VerbCtrlRep(void *value);

/* TLV 120: a controller; id 64 selects all of the instance. */
typedef struct OfpCtrlID {
    uint16_t instance_id;
    uint8_t controller_id;
    uint8_t reserved_3;
} OfpCtrlID;
OFP_PIN_SIZE(OfpCtrlID, 4);
OFP_API void OFP_bswap_CtrlID(void *value);

/* TLV 131: an OAP server as configured. */
typedef struct OfpOapServer {
    char text_0[32]; /* terminated text */
    uint32_t value_u32_32;
    uint16_t value_u16_36;
    uint16_t value_u16_38;
} OfpOapServer;
OFP_PIN_SIZE(OfpOapServer, 40);

/* TLV 132: an OAP server as it runs. */
typedef struct OfpOapServerRun {
    char text_0[32]; /* terminated text */
    uint32_t value_u32_32;
    uint32_t value_u32_36;
    uint16_t value_u16_40;
    uint8_t reserved_42[2];
} OfpOapServerRun;
OFP_PIN_SIZE(OfpOapServerRun, 44);

/* TLV 133: how many OAP clients are connected. */
typedef struct OfpOapClientNum {
    uint32_t count;
} OfpOapClientNum;
OFP_PIN_SIZE(OfpOapClientNum, 4);

/* TLV 135: configuration of an auxiliary connection. */
typedef struct OfpAuxCfg {
    uint16_t instance_id;
    uint16_t address_type; /* 2: IPv4 */
    uint32_t address[4];   /* IPv4 in the first word, as it lies */
    uint32_t value_u32_20;
    uint32_t value_u32_24;
    char text_28[32]; /* terminated text */
    uint16_t port;    /* TCP port */
    uint8_t controller_id;
    uint8_t aux_id;
} OfpAuxCfg;
OFP_PIN_SIZE(OfpAuxCfg, 64);
OFP_API void OFP_bswap_AuxCfg(void *value);

/* TLV 136: an auxiliary connection. */
typedef struct OfpAuxID {
    uint16_t instance_id;
    uint8_t controller_id;
    uint8_t aux_id;
} OfpAuxID;
OFP_PIN_SIZE(OfpAuxID, 4);
OFP_API void OFP_bswap_AuxID(void *value);

/* TLV 137: state of an auxiliary connection. */
typedef struct OfpAux {
    uint16_t value_u16_0;
    uint8_t opaque_2[18];
    OfpUnaligned64 value_u64_20;
    OfpUnaligned64 value_u64_28;
    uint32_t value_u32_36;
    uint32_t value_u32_40;
    uint8_t opaque_44[32];
    uint16_t value_u16_76;
    uint8_t reserved_78[2];
} OfpAux;
OFP_PIN_SIZE(OfpAux, 80);
OFP_API void OFP_bswap_Aux(void *value);

/* TLV 188: connections that are left out. */
typedef struct OfpExcludeConnID {
    uint16_t instance_id;
    uint8_t reserved_2[2];
    uint32_t value_u32_4;
    uint64_t value_u64_8;
} OfpExcludeConnID;
OFP_PIN_SIZE(OfpExcludeConnID, 16);
OFP_API void OFP_bswap_ExcludeConnID(void *value);

/* TLV 219: TLS settings of a controller; travels as it lies. */
typedef struct OfpCtrlSSL {
    uint8_t content[36];
} OfpCtrlSSL;
OFP_PIN_SIZE(OfpCtrlSSL, 36);

OFP_END_DECLS

#endif
