// Flow items that own what they point to.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "integration/exchange.h"
#include "ofp.h"

namespace integration {

class FlowItems {
public:
    // A rule for one input port that outputs to port 3.
    OfpFlowItem &add(uint32_t in_port, uint16_t priority = 100);
    // The same for count input ports from first.
    void add_range(uint32_t first, uint32_t count);
    // The action of the item added last is a group instead.
    void last_to_group(uint32_t group_id);

    const OfpFlowItem *data() const { return items_.data(); }
    uint32_t size() const { return static_cast<uint32_t>(items_.size()); }
    OfpFlowItem &operator[](size_t index) { return items_[index]; }

private:
    struct Owned {
        OfpMatchMask mask{};
        OfpActionOutput output{};
        OfpActionGroup group{};
        OfpAction *actions[1]{};
    };
    std::vector<OfpFlowItem> items_;
    std::deque<Owned> owned_;
};

// Adds all, and gives the result of each; a result is ~0 when the call failed as a whole.
std::vector<uint64_t> add_rules(const FlowItems &items, uint32_t *call = nullptr);

// The datagram that adds all, as the library encodes it.
Datagram batch_of(const FlowItems &items);
// The same with one transaction id for every rule, as asynchronous ones have.
Datagram asynchronous_batch_of(const FlowItems &items, uint32_t xid);

} // namespace integration
