// The rules that the agent holds for a client.
#ifndef OFPCTL_VERBS_RULE_STORE_H
#define OFPCTL_VERBS_RULE_STORE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "flow/flow_text.h"
#include "ofp.h"

namespace ofpctl {

struct StoredRule {
    uint32_t id = 0;
    FlowItemPtr item;
    OfpFRStatsInfo counters{};
};

// How many there are; 0 for a client that never programmed one.
uint32_t count_rules(uint16_t client);

// One rule of any table; nothing when the table does not have it or it is none that text can say.
std::optional<StoredRule> find_rule(uint16_t instance, uint8_t table, uint32_t id);

// Hands them over in the order in which they were first programmed. Throws when the agent fails or
// answers what cannot be read.
void each_rule(uint16_t client, const std::function<void(StoredRule)> &take);

} // namespace ofpctl

#endif
