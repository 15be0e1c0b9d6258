#include "flow/flow_draft.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "flow/field_table.h"

namespace ofpctl {
namespace {

constexpr std::size_t round_up(std::size_t size) { return (size + 7) & ~std::size_t{7}; }

template <class T>
T *copy_to(std::byte *&tail, const T *from, std::size_t count)
{
    auto *to = reinterpret_cast<T *>(tail);
    if (count > 0)
        std::memcpy(tail, from, count * sizeof(T));
    tail += round_up(count * sizeof(T));
    return to;
}

std::size_t experimenter_size(std::size_t length)
{
    return round_up(sizeof(OfpExpMatchItem) + length);
}

} // namespace

void FlowDeleter::operator()(OfpFlowItem *item) const noexcept { std::free(item); }

void FlowDraft::clear()
{
    item = {};
    mask_ = {};
    ipv6_ = {};
    item.match.mask = &mask_;
    item.match.ipv6 = &ipv6_;
    actions.clear();
    interfaces.clear();
    experimenters_.clear();
    experimenter_data_.clear();
    table.reset();
}

void FlowDraft::add_experimenter(uint32_t type, std::span<const uint8_t> data)
{
    experimenters_.push_back({type, static_cast<uint16_t>(data.size()), experimenter_data_.size()});
    experimenter_data_.insert(experimenter_data_.end(), data.begin(), data.end());
}

bool FlowDraft::has_ipv6() const { return (item.match.fields & ipv6_field_bits) != 0; }

std::size_t FlowDraft::tail_size() const
{
    std::size_t size = sizeof(OfpMatchMask);
    if (has_ipv6())
        size += round_up(sizeof(OfpMatchIpv6));
    size += actions.size() * sizeof(OfpAction *);
    for (const ActionRecord &action : actions)
        size += round_up(action.header.size);
    size += experimenters_.size() * sizeof(OfpExpMatchItem *);
    for (const Experimenter &experimenter : experimenters_)
        size += experimenter_size(experimenter.length);
    return size + round_up(interfaces.size() * sizeof(uint32_t));
}

std::byte *FlowDraft::place_actions(OfpFlowItem &to, std::byte *tail) const
{
    to.action_count = static_cast<uint32_t>(actions.size());
    if (actions.empty())
        return tail;
    to.actions = reinterpret_cast<OfpAction **>(tail);
    tail += actions.size() * sizeof(OfpAction *);
    for (std::size_t i = 0; i < actions.size(); ++i) {
        to.actions[i] = reinterpret_cast<OfpAction *>(tail);
        std::memcpy(tail, &actions[i], actions[i].header.size);
        tail += round_up(actions[i].header.size);
    }
    return tail;
}

std::byte *FlowDraft::place_experimenters(OfpFlowItem &to, std::byte *tail) const
{
    to.match.exp_match.count = static_cast<uint32_t>(experimenters_.size());
    if (experimenters_.empty())
        return tail;
    to.match.exp_match.items = reinterpret_cast<OfpExpMatchItem **>(tail);
    tail += experimenters_.size() * sizeof(OfpExpMatchItem *);
    for (std::size_t i = 0; i < experimenters_.size(); ++i) {
        const auto [type, length, offset] = experimenters_[i];
        auto *placed = reinterpret_cast<OfpExpMatchItem *>(tail);
        std::memset(tail, 0, experimenter_size(length));
        placed->type = type;
        placed->length = length;
        if (length > 0)
            std::memcpy(placed->data, experimenter_data_.data() + offset, length);
        to.match.exp_match.items[i] = placed;
        tail += experimenter_size(length);
    }
    return tail;
}

void FlowDraft::place(OfpFlowItem &to, std::byte *tail) const
{
    to = item;
    to.match.mask = copy_to(tail, &mask_, 1);
    to.match.ipv6 = has_ipv6() ? copy_to(tail, &ipv6_, 1) : nullptr;
    tail = place_actions(to, tail);
    tail = place_experimenters(to, tail);
    to.match.batch_if.count = static_cast<uint32_t>(interfaces.size());
    if (!interfaces.empty())
        to.match.batch_if.if_index = copy_to(tail, interfaces.data(), interfaces.size());
}

FlowItemPtr FlowDraft::make() const
{
    static_assert(sizeof(OfpFlowItem) % 8 == 0);
    void *block = std::malloc(sizeof(OfpFlowItem) + tail_size());
    if (block == nullptr)
        throw std::bad_alloc();
    FlowItemPtr made(static_cast<OfpFlowItem *>(block));
    place(*made, static_cast<std::byte *>(block) + sizeof(OfpFlowItem));
    return made;
}

} // namespace ofpctl
