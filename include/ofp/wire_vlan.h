/* VLANs and MAC addresses. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_VLAN_H
#define OFP_WIRE_VLAN_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/wire_number.h"

OFP_BEGIN_DECLS

/* TLV 68: whether an instance is aware of dynamic MAC addresses. */
typedef struct OfpDynMacAware {
    uint16_t instance_id;
    uint16_t enable;
} OfpDynMacAware;
OFP_PIN_SIZE(OfpDynMacAware, 4);
OFP_API void OFP_bswap_DynMacAware(void *value);

/* TLV 73: filter of dynamic MAC entries. */
typedef struct OfpDMFilter {
    uint16_t value_u16_0;
    uint16_t value_u16_2;
} OfpDMFilter;
OFP_PIN_SIZE(OfpDMFilter, 4);
OFP_API void OFP_bswap_DMFilter(void *value);

/* TLV 74: a dynamic MAC entry. */
typedef struct OfpDynMac {
    uint32_t value_u32_0;
    uint16_t value_u16_4;
    uint8_t reserved_6[2];
} OfpDynMac;
OFP_PIN_SIZE(OfpDynMac, 8);
OFP_API void OFP_bswap_DynMac(void *value);

/* TLV 75: a MAC address with its IP addresses. */
typedef struct OfpMacIp {
    uint16_t value_u16_0;
    uint8_t opaque_2[38];
    uint32_t value_u32_40;
    uint32_t value_u32_44;
    uint16_t value_u16_48;
    uint8_t opaque_50[2];
    uint16_t value_u16_52;
    uint8_t opaque_54[20];
    OfpUnaligned32 value_u32_74;
    OfpUnaligned32 value_u32_78;
    uint16_t value_u16_82;
    uint16_t value_u16_84;
    uint8_t opaque_86[48];
    OfpUnaligned32 value_u32_134;
    OfpUnaligned32 value_u32_138;
    uint8_t opaque_142[12];
    OfpUnaligned32 value_u32_154;
    uint8_t reserved_158[2];
} OfpMacIp;
OFP_PIN_SIZE(OfpMacIp, 160);
OFP_API void OFP_bswap_MacIp(void *value);

/* TLV 86: MAC table of an instance, for display. */
typedef struct OfpDisMacTbl {
    uint32_t value_u32_0;
    uint16_t value_u16_4;
    uint16_t value_u16_6;
    uint16_t value_u16_8;
    uint8_t reserved_10[2];
} OfpDisMacTbl;
OFP_PIN_SIZE(OfpDisMacTbl, 12);
OFP_API void OFP_bswap_DisMacTbl(void *value);

/* TLV 88: loose VLAN matching of an instance. */
typedef struct OfpVlanLoosen {
    uint16_t instance_id;
    uint16_t enable;
} OfpVlanLoosen;
OFP_PIN_SIZE(OfpVlanLoosen, 4);
OFP_API void OFP_bswap_VlanLoosen(void *value);

/* TLV 89: how many dynamic MAC entries. */
typedef struct OfpDynMacNum {
    uint32_t count;
} OfpDynMacNum;
OFP_PIN_SIZE(OfpDynMacNum, 4);
OFP_API void OFP_bswap_DynMacNum(void *value);

/* TLV 90: VLAN ids, one bit each: a bitmap object of the platform. Sent as long as the map is, read
 * into 1024 bytes, converted as a whole. */
typedef struct OfpVlanBitmap {
    uint32_t length; /* bytes of bits */
    uint8_t map[1020];
} OfpVlanBitmap;
OFP_PIN_SIZE(OfpVlanBitmap, 1024);
OFP_API void OFP_bswap_VlanBitmap(void *value);

/* TLV 92: MAC learning of an instance. */
typedef struct OfpMacLearning {
    uint16_t instance_id;
    uint16_t enable;
} OfpMacLearning;
OFP_PIN_SIZE(OfpMacLearning, 4);
OFP_API void OFP_bswap_MacLearning(void *value);

/* TLV 164: QinQ network of an instance. */
typedef struct OfpQinqNetWkcfg {
    uint16_t enable;
    uint16_t instance_id;
} OfpQinqNetWkcfg;
OFP_PIN_SIZE(OfpQinqNetWkcfg, 4);
OFP_API void OFP_bswap_QinqNetWkcfg(void *value);

/* TLV 187: VLANs that are forwarded normally. */
typedef struct OfpNormalFwdVlan {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
} OfpNormalFwdVlan;
OFP_PIN_SIZE(OfpNormalFwdVlan, 8);
OFP_API void OFP_bswap_NormalFwdVlan(void *value);

/* A VLAN id under a mask. */
typedef struct OfpVlanMask {
    uint16_t vlan_id;
    uint16_t mask;
} OfpVlanMask;
OFP_PIN_SIZE(OfpVlanMask, 4);
OFP_API void OFP_bswap_VlanMask(void *value);

OFP_END_DECLS

#endif
