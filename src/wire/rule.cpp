#include "ofp/wire_rule.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpFlowEntryBase, value_u32_0) == 0);
static_assert(offsetof(OfpFlowEntryBase, value_u32_4) == 4);
static_assert(offsetof(OfpFlowEntryBase, value_u32_12) == 12);
static_assert(offsetof(OfpFlowEntryBase, value_u32_16) == 16);
static_assert(offsetof(OfpFlowEntryBase, value_u16_22) == 22);
static_assert(offsetof(OfpFlowEntryBase, value_u16_88) == 88);
static_assert(offsetof(OfpFlowEntryBase, value_u32_92) == 92);
OFP_API void OFP_bswap_FlowEntryBase(void *value)
{
    swap_members<&OfpFlowEntryBase::value_u32_0, &OfpFlowEntryBase::value_u32_4,
                 &OfpFlowEntryBase::value_u32_12, &OfpFlowEntryBase::value_u32_16,
                 &OfpFlowEntryBase::value_u16_22, &OfpFlowEntryBase::value_u16_88,
                 &OfpFlowEntryBase::value_u32_92>(value);
}

static_assert(offsetof(OfpRuleID, rule_id) == 0);
OFP_API void OFP_bswap_RuleID(void *value) { swap_members<&OfpRuleID::rule_id>(value); }

static_assert(offsetof(OfpSeqRuleID, value_u32_0) == 0);
static_assert(offsetof(OfpSeqRuleID, value_u32_4) == 4);
static_assert(offsetof(OfpSeqRuleID, value_u32_8) == 8);
OFP_API void OFP_bswap_SeqRuleID(void *value)
{
    swap_members<&OfpSeqRuleID::value_u32_0, &OfpSeqRuleID::value_u32_4,
                 &OfpSeqRuleID::value_u32_8>(value);
}

static_assert(offsetof(OfpBrr, value_u32_0) == 0);
static_assert(offsetof(OfpBrr, value_u16_4) == 4);
OFP_API void OFP_bswap_Brr(void *value)
{
    swap_members<&OfpBrr::value_u32_0, &OfpBrr::value_u16_4>(value);
}

static_assert(offsetof(OfpRuleNum, rule_count) == 0);
static_assert(offsetof(OfpRuleNum, instance_id) == 4);
OFP_API void OFP_bswap_RuleNum(void *value)
{
    swap_members<&OfpRuleNum::rule_count, &OfpRuleNum::instance_id>(value);
}

static_assert(offsetof(OfpActionNum, action_count) == 0);
OFP_API void OFP_bswap_ActionNum(void *value) { swap_members<&OfpActionNum::action_count>(value); }

static_assert(offsetof(OfpDelFR, value_u32_0) == 0);
static_assert(offsetof(OfpDelFR, value_u32_4) == 4);
static_assert(offsetof(OfpDelFR, value_u32_8) == 8);
static_assert(offsetof(OfpDelFR, value_u16_12) == 12);
OFP_API void OFP_bswap_DelFR(void *value)
{
    swap_members<&OfpDelFR::value_u32_0, &OfpDelFR::value_u32_4, &OfpDelFR::value_u32_8,
                 &OfpDelFR::value_u16_12>(value);
}

static_assert(offsetof(OfpRuleIDInfo, rule_id) == 0);
static_assert(offsetof(OfpRuleIDInfo, instance_id) == 4);
OFP_API void OFP_bswap_RuleIDInfo(void *value)
{
    swap_members<&OfpRuleIDInfo::rule_id, &OfpRuleIDInfo::instance_id>(value);
}

static_assert(offsetof(OfpRuleBase, cookie) == 0);
static_assert(offsetof(OfpRuleBase, value_u32_8) == 8);
static_assert(offsetof(OfpRuleBase, value_u32_12) == 12);
static_assert(offsetof(OfpRuleBase, value_u32_16) == 16);
static_assert(offsetof(OfpRuleBase, idle_timeout) == 20);
static_assert(offsetof(OfpRuleBase, hard_timeout) == 22);
static_assert(offsetof(OfpRuleBase, priority) == 24);
static_assert(offsetof(OfpRuleBase, value_u16_32) == 32);
static_assert(offsetof(OfpRuleBase, value_u32_48) == 48);
static_assert(offsetof(OfpRuleBase, value_u16_96) == 96);
OFP_API void OFP_bswap_RuleBase(void *value)
{
    swap_members<&OfpRuleBase::cookie, &OfpRuleBase::value_u32_8, &OfpRuleBase::value_u32_12,
                 &OfpRuleBase::value_u32_16, &OfpRuleBase::idle_timeout, &OfpRuleBase::hard_timeout,
                 &OfpRuleBase::priority, &OfpRuleBase::value_u16_32, &OfpRuleBase::value_u32_48,
                 &OfpRuleBase::value_u16_96>(value);
}

static_assert(offsetof(OfpRefRuleID, rule_id) == 0);
OFP_API void OFP_bswap_RefRuleID(void *value) { swap_members<&OfpRefRuleID::rule_id>(value); }

namespace ofp {

static_assert(offsetof(OfpReserved66, value_u32_0) == 0);
static_assert(offsetof(OfpReserved66, value_u16_48) == 48);
void bswap_Reserved66(void *value)
{
    swap_members<&OfpReserved66::value_u32_0, &OfpReserved66::value_u16_48>(value);
}

} // namespace ofp
