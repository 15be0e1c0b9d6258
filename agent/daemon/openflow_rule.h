// Rules and groups of the switch written back as the OpenFlow messages that programmed them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "switch/switch.h"

namespace agent {

// An add of the rule, transaction id 0.
size_t flow_mod_size(const RuleView &rule);
void write_flow_mod(uint8_t table, const RuleView &rule, uint8_t *out);

// An add of the group, transaction id 0.
size_t group_mod_size(const GroupView &group);
void write_group_mod(const GroupView &group, uint8_t *out);

} // namespace agent
