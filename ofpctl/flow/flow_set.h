// Many flow items as the contiguous array the library's calls take.
#ifndef OFPCTL_FLOW_SET_H
#define OFPCTL_FLOW_SET_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "flow/flow_text.h"

namespace ofpctl {

// Owns its items and all they point at; they live as long as the set. Adding may move the items
// themselves, so take spans when the set is complete.
class FlowSet {
public:
    // Parses one rule and appends it; on an error nothing is appended.
    std::optional<TextError> add_text(std::string_view line, ParseMode mode,
                                      uint32_t source_line = 0);
    std::optional<TextError> add_json(std::string_view object, ParseMode mode,
                                      uint32_t source_line = 0);
    void add(const OfpFlowItem &item, uint32_t source_line = 0); // a deep copy

    std::span<const OfpFlowItem> items() const { return items_; }
    std::size_t size() const { return items_.size(); }
    bool empty() const { return items_.empty(); }
    // The line the rule came from, 0 when it came from none.
    uint32_t source_line(std::size_t index) const { return lines_[index]; }

private:
    std::vector<OfpFlowItem> items_;
    std::vector<uint32_t> lines_;
    std::vector<std::unique_ptr<std::byte[]>> chunks_;
    std::byte *room_ = nullptr;
    std::size_t room_left_ = 0;
};

} // namespace ofpctl

#endif
