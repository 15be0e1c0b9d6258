// When two flow items are the same rule, and when they do the same.
#pragma once

#include <cstddef>

#include "ofp/flow_item.h"

namespace ofpctl {

// Same priority and same match: a switch holds only one of them. A mask over the whole field
// counts as none, value bits outside the mask do not count.
bool same_rule(const OfpFlowItem &a, const OfpFlowItem &b);
// Equal for items of which same_rule is true.
std::size_t rule_hash(const OfpFlowItem &item);
// The same actions in the same order.
bool same_actions(const OfpFlowItem &a, const OfpFlowItem &b);

// For unordered containers keyed by rule.
struct RuleHash {
    std::size_t operator()(const OfpFlowItem *item) const { return rule_hash(*item); }
};
struct RuleEqual {
    bool operator()(const OfpFlowItem *a, const OfpFlowItem *b) const { return same_rule(*a, *b); }
};

} // namespace ofpctl
