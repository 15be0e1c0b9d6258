// A flow item under construction: everything in one place, laid into memory of its own when it is
// complete.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "flow/flow_text.h"
#include "ofp/flow_item.h"

namespace ofpctl {

union ActionRecord {
    OfpAction header;
    OfpActionOutput output;
    OfpActionGroup group;
    OfpActionExperimenter experimenter;
};

class FlowDraft {
public:
    FlowDraft() { clear(); }
    FlowDraft(const FlowDraft &) = delete;
    FlowDraft &operator=(const FlowDraft &) = delete;

    void clear();
    OfpFRMatch &match() { return item.match; }
    void add_experimenter(uint32_t type, std::span<const uint8_t> data);

    // Bytes that all the item points at takes, a multiple of 8.
    std::size_t tail_size() const;
    // The finished item; tail is aligned to 8 and holds tail_size() bytes.
    void place(OfpFlowItem &to, std::byte *tail) const;
    // Item and tail in one block.
    FlowItemPtr make() const;

    OfpFlowItem item;
    std::vector<ActionRecord> actions;
    std::vector<uint32_t> interfaces; // of batch_if
    std::optional<uint8_t> table;

private:
    struct Experimenter {
        uint32_t type;
        uint16_t length;
        std::size_t offset; // of its data
    };
    bool has_ipv6() const;
    std::byte *place_actions(OfpFlowItem &to, std::byte *tail) const;
    std::byte *place_experimenters(OfpFlowItem &to, std::byte *tail) const;

    OfpMatchMask mask_;
    OfpMatchIpv6 ipv6_;
    std::vector<Experimenter> experimenters_;
    std::vector<uint8_t> experimenter_data_;
};

} // namespace ofpctl
