// Why a better rule than the one that matched did not.
#pragma once

#include <optional>

#include "switch/flow_table.h"
#include "switch/trace.h"

namespace agent {

// Among the rules of higher priority, the next ones above it: the one with the fewest fields that
// keep the packet out, of several the one of lowest priority. Priority -1: among all. Nothing when
// there is no such rule.
std::optional<NearMiss> near_miss(FlowTable &table, const Packet &packet, int priority);

} // namespace agent
