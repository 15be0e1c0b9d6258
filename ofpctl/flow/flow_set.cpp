#include "flow/flow_set.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <type_traits>

#include "flow/flow_draft.h"
#include "flow/flow_json.h"
#include "flow/line_parser.h"

namespace ofpctl {

static_assert(std::is_trivially_copyable_v<OfpFlowItem>);

FlowSet::FlowSet()
    : arena_(std::make_unique<std::pmr::monotonic_buffer_resource>()),
      draft_(std::make_unique<FlowDraft>())
{}
FlowSet::~FlowSet() = default;
FlowSet::FlowSet(FlowSet &&) noexcept = default;
FlowSet &FlowSet::operator=(FlowSet &&) noexcept = default;

OfpFlowItem &FlowSet::append(uint32_t source_line)
{
    if (lines_.size() == capacity_) {
        const std::size_t larger = std::max<std::size_t>(64, capacity_ * 2);
        void *grown = std::realloc(items_.get(), larger * sizeof(OfpFlowItem));
        if (grown == nullptr)
            throw std::bad_alloc();
        (void)items_.release();
        items_.reset(static_cast<OfpFlowItem *>(grown));
        capacity_ = larger;
    }
    lines_.push_back(source_line);
    return items_.get()[lines_.size() - 1];
}

std::optional<TextError> FlowSet::add_text(std::string_view line, ParseMode mode,
                                           uint32_t source_line)
{
    Problem problem;
    if (!parse_line(line, mode, *draft_, problem))
        return to_error(line, std::move(problem));
    auto *tail = static_cast<std::byte *>(arena_->allocate(draft_->tail_size(), 8));
    draft_->place(append(source_line), tail);
    return std::nullopt;
}

std::optional<TextError> FlowSet::add_json(std::string_view object, ParseMode mode,
                                           uint32_t source_line)
{
    FlowResult result = parse_flow_json(object, mode);
    if (auto *error = std::get_if<TextError>(&result))
        return std::move(*error);
    add(std::move(std::get<Flow>(result).item), source_line);
    return std::nullopt;
}

void FlowSet::add(FlowItemPtr item, uint32_t source_line)
{
    given_.push_back(std::move(item));
    append(source_line) = *given_.back();
}

} // namespace ofpctl
