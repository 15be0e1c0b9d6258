// The actions of a flow as text: drop, output:2, group:7, exp(0):1:2, write_actions(...).
#pragma once

#include <string>
#include <string_view>

#include "flow/flow_draft.h"
#include "flow/problem.h"

namespace ofpctl {

// What follows "actions=". No actions at all are written as drop or as nothing.
bool parse_actions(std::string_view text, FlowDraft &draft, Problem &problem);

// One action, or a text that no rule can be loaded from for an action the library never sends.
void append_action(std::string &out, const OfpAction &action);

// The bodies of actions; a record that does not have the size of its type reads as zeros.
OfpActionOutput as_output(const OfpAction &action);
OfpActionGroup as_group(const OfpAction &action);
OfpActionExperimenter as_experimenter(const OfpAction &action);

} // namespace ofpctl
