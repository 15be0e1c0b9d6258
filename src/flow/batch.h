// Cutting rules into datagrams.
#pragma once

#include "ofp/flow_item.h"

namespace ofp {

struct Batch {
    uint32_t count; // rules; 0: the first batch holds a rule that no datagram holds
    uint64_t size;  // bytes of its datagram
    bool has_gaps;  // encoding leaves some of them as they were
};

// The first batch of count rules, at least one.
Batch cut_batch(uint32_t count, const OfpFlowItem *items);

} // namespace ofp
