/* Flow rules. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_RULE_H
#define OFP_WIRE_RULE_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 16: fixed part of a flow entry. */
typedef struct OfpFlowEntryBase {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint8_t opaque_8[4];
    uint32_t value_u32_12;
    uint32_t value_u32_16;
    uint8_t opaque_20[2];
    uint16_t value_u16_22;
    uint8_t opaque_24[64];
    uint16_t value_u16_88;
    uint8_t reserved_90[2];
    uint32_t value_u32_92;
} OfpFlowEntryBase;
OFP_PIN_SIZE(OfpFlowEntryBase, 96);
OFP_API void OFP_bswap_FlowEntryBase(void *value);

/* TLV 31: a rule. */
typedef struct OfpRuleID {
    uint32_t rule_id;
} OfpRuleID;
OFP_PIN_SIZE(OfpRuleID, 4);
OFP_API void OFP_bswap_RuleID(void *value);

/* TLV 32: rules by number. */
typedef struct OfpSeqRuleID {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
} OfpSeqRuleID;
OFP_PIN_SIZE(OfpSeqRuleID, 12);
OFP_API void OFP_bswap_SeqRuleID(void *value);

/* TLV 34: barrier. */
typedef struct OfpBrr {
    uint32_t value_u32_0;
    uint16_t value_u16_4;
    uint8_t reserved_6[2];
} OfpBrr;
OFP_PIN_SIZE(OfpBrr, 8);
OFP_API void OFP_bswap_Brr(void *value);

/* TLV 43: how many rules. */
typedef struct OfpRuleNum {
    uint32_t rule_count;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpRuleNum;
OFP_PIN_SIZE(OfpRuleNum, 8);
OFP_API void OFP_bswap_RuleNum(void *value);

/* TLV 44: how many actions. */
typedef struct OfpActionNum {
    uint32_t action_count;
} OfpActionNum;
OFP_PIN_SIZE(OfpActionNum, 4);
OFP_API void OFP_bswap_ActionNum(void *value);

/* TLV 45: a rule that was deleted. */
typedef struct OfpDelFR {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint16_t value_u16_12;
    uint8_t reserved_14[2];
} OfpDelFR;
OFP_PIN_SIZE(OfpDelFR, 16);
OFP_API void OFP_bswap_DelFR(void *value);

/* TLV 56: key of a rule. */
typedef struct OfpRuleIDInfo {
    uint32_t rule_id; /* 0 for a table-miss rule */
    uint16_t instance_id;
    uint8_t table_id;
    uint8_t reserved_7;
} OfpRuleIDInfo;
OFP_PIN_SIZE(OfpRuleIDInfo, 8);
OFP_API void OFP_bswap_RuleIDInfo(void *value);

/* TLV 57: fixed part of a rule. */
typedef struct OfpRuleBase {
    uint64_t cookie;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
    uint16_t idle_timeout; /* seconds */
    uint16_t hard_timeout; /* seconds */
    uint16_t priority;
    uint8_t opaque_26[6];
    uint16_t value_u16_32;
    uint8_t opaque_34[14];
    uint32_t value_u32_48[12];
    uint16_t value_u16_96;
    uint8_t reserved_98[6];
} OfpRuleBase;
OFP_PIN_SIZE(OfpRuleBase, 104);
OFP_API void OFP_bswap_RuleBase(void *value);

/* TLV 66: known by its conversion only. */
typedef struct OfpReserved66 {
    uint32_t value_u32_0[12];
    uint16_t value_u16_48;
    uint8_t reserved_50[2];
} OfpReserved66;
OFP_PIN_SIZE(OfpReserved66, 52);

/* TLV 101: a rule that refers to a group or a meter. */
typedef struct OfpRefRuleID {
    uint32_t rule_id;
    uint8_t table_id; /* 255 is no reference */
    uint8_t reserved_5[3];
} OfpRefRuleID;
OFP_PIN_SIZE(OfpRefRuleID, 8);
OFP_API void OFP_bswap_RefRuleID(void *value);

OFP_END_DECLS

#endif
