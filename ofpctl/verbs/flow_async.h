// Adding rules over the asynchronous channel: many are under way at once.
#ifndef OFPCTL_VERBS_FLOW_ASYNC_H
#define OFPCTL_VERBS_FLOW_ASYNC_H

#include <cstdint>
#include <span>

#include "verbs/flow_program.h"

namespace ofpctl {

// At most window rules are unanswered at a time. Stops sending at the first failure or interrupt
// and takes the answers that are still due.
Report add_rules_async(uint16_t client, std::span<const OfpFlowItem> rules, uint32_t window);

} // namespace ofpctl

#endif
