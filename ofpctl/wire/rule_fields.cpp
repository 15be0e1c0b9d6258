// Flow rules.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(FlowEntryBase, value_u32_0),
    OFPCTL_FIELD(FlowEntryBase, value_u32_4),
    OFPCTL_FIELD(FlowEntryBase, opaque_8),
    OFPCTL_FIELD(FlowEntryBase, value_u32_12),
    OFPCTL_FIELD(FlowEntryBase, value_u32_16),
    OFPCTL_FIELD(FlowEntryBase, opaque_20),
    OFPCTL_FIELD(FlowEntryBase, value_u16_22),
    OFPCTL_FIELD(FlowEntryBase, opaque_24),
    OFPCTL_FIELD(FlowEntryBase, value_u16_88),
    OFPCTL_FIELD(FlowEntryBase, reserved_90),
    OFPCTL_FIELD(FlowEntryBase, value_u32_92),

    OFPCTL_FIELD(RuleID, rule_id),

    OFPCTL_FIELD(SeqRuleID, value_u32_0),
    OFPCTL_FIELD(SeqRuleID, value_u32_4),
    OFPCTL_FIELD(SeqRuleID, value_u32_8),

    OFPCTL_FIELD(Brr, value_u32_0),
    OFPCTL_FIELD(Brr, value_u16_4),
    OFPCTL_FIELD(Brr, reserved_6),

    OFPCTL_FIELD(RuleNum, rule_count),
    OFPCTL_FIELD(RuleNum, instance_id),
    OFPCTL_FIELD(RuleNum, reserved_6),

    OFPCTL_FIELD(ActionNum, action_count),

    OFPCTL_FIELD(DelFR, value_u32_0),
    OFPCTL_FIELD(DelFR, value_u32_4),
    OFPCTL_FIELD(DelFR, value_u32_8),
    OFPCTL_FIELD(DelFR, value_u16_12),
    OFPCTL_FIELD(DelFR, reserved_14),

    OFPCTL_FIELD(RuleIDInfo, rule_id),
    OFPCTL_FIELD(RuleIDInfo, instance_id),
    OFPCTL_FIELD(RuleIDInfo, table_id),
    OFPCTL_FIELD(RuleIDInfo, reserved_7),

    OFPCTL_FIELD(RuleBase, cookie),
    OFPCTL_FIELD(RuleBase, value_u32_8),
    OFPCTL_FIELD(RuleBase, value_u32_12),
    OFPCTL_FIELD(RuleBase, value_u32_16),
    OFPCTL_FIELD(RuleBase, idle_timeout),
    OFPCTL_FIELD(RuleBase, hard_timeout),
    OFPCTL_FIELD(RuleBase, priority),
    OFPCTL_FIELD(RuleBase, opaque_26),
    OFPCTL_FIELD(RuleBase, value_u16_32),
    OFPCTL_FIELD(RuleBase, opaque_34),
    OFPCTL_FIELD(RuleBase, value_u32_48),
    OFPCTL_FIELD(RuleBase, value_u16_96),
    OFPCTL_FIELD(RuleBase, reserved_98),

    OFPCTL_FIELD(Reserved66, value_u32_0),
    OFPCTL_FIELD(Reserved66, value_u16_48),
    OFPCTL_FIELD(Reserved66, reserved_50),

    OFPCTL_FIELD(RefRuleID, rule_id),
    OFPCTL_FIELD(RefRuleID, table_id),
    OFPCTL_FIELD(RefRuleID, reserved_5),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> rule_fields = rows;

} // namespace ofpctl
