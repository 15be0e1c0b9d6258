// The action set that a packet gathers: at most one action of a kind, carried out in a fixed order
// whatever the order in which they were written.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "openflow/message.h"

namespace agent {

class ActionSet {
public:
    // An action takes the place of the one of its kind: of several outputs the last one counts.
    void write(openflow::Bytes actions);
    void clear() { actions_.clear(); }

    // In the order in which they are carried out. With a group among them there is no output.
    std::vector<openflow::Action> ordered() const;

private:
    std::vector<openflow::Action> actions_; // views into the rules they came from
};

} // namespace agent
