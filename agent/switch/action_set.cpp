#include "switch/action_set.h"

#include <algorithm>
#include <array>

namespace agent {
namespace {

using openflow::Action;

// The standard's order; experimenter actions have none there and come before packets leave.
constexpr std::array ORDER = {
    openflow::OFPAT_COPY_TTL_IN, openflow::OFPAT_POP_VLAN,     openflow::OFPAT_POP_MPLS,
    openflow::OFPAT_POP_PBB,     openflow::OFPAT_PUSH_MPLS,    openflow::OFPAT_PUSH_PBB,
    openflow::OFPAT_PUSH_VLAN,   openflow::OFPAT_COPY_TTL_OUT, openflow::OFPAT_DEC_MPLS_TTL,
    openflow::OFPAT_DEC_NW_TTL,  openflow::OFPAT_SET_MPLS_TTL, openflow::OFPAT_SET_NW_TTL,
    openflow::OFPAT_SET_FIELD,   openflow::OFPAT_SET_QUEUE,    openflow::OFPAT_EXPERIMENTER,
    openflow::OFPAT_GROUP,       openflow::OFPAT_OUTPUT,
};

size_t rank(const Action &action)
{
    return static_cast<size_t>(std::find(ORDER.begin(), ORDER.end(), action.type) - ORDER.begin());
}

// What tells actions of one type apart: the field that is set, the experimenter's subtype.
uint32_t kind(const Action &action)
{
    switch (action.type) {
    case openflow::OFPAT_SET_FIELD:
        return openflow::load32(action.bytes.data() + 4) >> 9; // class and field
    case openflow::OFPAT_EXPERIMENTER:
        return openflow::load32(action.bytes.data() + 8);
    default:
        return 0;
    }
}

} // namespace

void ActionSet::write(openflow::Bytes actions)
{
    openflow::ActionWalk walk(actions);
    while (const auto action = walk.next()) {
        const auto same = std::find_if(actions_.begin(), actions_.end(), [&](const Action &other) {
            return other.type == action->type && kind(other) == kind(*action);
        });
        if (same != actions_.end()) {
            *same = *action;
        } else {
            actions_.push_back(*action);
        }
    }
}

std::vector<Action> ActionSet::ordered() const
{
    std::vector<Action> ordered = actions_;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Action &a, const Action &b) { return rank(a) < rank(b); });
    const bool group = std::any_of(ordered.begin(), ordered.end(), [](const Action &action) {
        return action.type == openflow::OFPAT_GROUP;
    });
    if (group && ordered.back().type == openflow::OFPAT_OUTPUT) {
        ordered.pop_back();
    }
    return ordered;
}

} // namespace agent
