// Many flow items as the contiguous array the library's calls take.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "flow/flow_text.h"

namespace ofpctl {

class FlowDraft;

// Owns its items and all they point at; they live as long as the set. Adding may move the items
// themselves, so take spans when the set is complete. Throws std::bad_alloc, nothing else.
class FlowSet {
public:
    FlowSet();
    ~FlowSet();
    FlowSet(FlowSet &&) noexcept;
    FlowSet &operator=(FlowSet &&) noexcept;

    // Parses one rule and appends it; on an error nothing is appended.
    std::optional<TextError> add_text(std::string_view line, ParseMode mode,
                                      uint32_t source_line = 0);
    std::optional<TextError> add_json(std::string_view object, ParseMode mode,
                                      uint32_t source_line = 0);
    void add(FlowItemPtr item, uint32_t source_line = 0);

    std::span<const OfpFlowItem> items() const { return {items_.get(), lines_.size()}; }
    std::size_t size() const { return lines_.size(); }
    bool empty() const { return lines_.empty(); }
    // The line the rule came from, 0 when it came from none.
    uint32_t source_line(std::size_t index) const { return lines_[index]; }

private:
    OfpFlowItem &append(uint32_t source_line);

    FlowItemPtr items_; // an array; grows in place where the system can move pages
    std::size_t capacity_ = 0;
    std::vector<uint32_t> lines_;
    std::vector<FlowItemPtr> given_; // blocks that items point into
    std::unique_ptr<std::pmr::monotonic_buffer_resource> arena_;
    std::unique_ptr<FlowDraft> draft_; // kept for its room
};

} // namespace ofpctl
