// Whether rules can be sent.
#pragma once

#include "ofp/flow_item.h"

namespace ofp {

// Examines rules in order up to the first that is malformed, whose entry of results (which may be
// null) becomes OFP_RC_INVALID.
bool check_rules(uint32_t count, const OfpFlowItem *items, uint64_t *results);

} // namespace ofp
