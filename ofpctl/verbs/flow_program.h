// Programming many rules and knowing afterwards what became of each.
#ifndef OFPCTL_VERBS_FLOW_PROGRAM_H
#define OFPCTL_VERBS_FLOW_PROGRAM_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "frame/failure.h"
#include "ofp.h"

namespace ofpctl {

enum class Command { add, modify, remove, remove_strict };

enum class Outcome : uint8_t {
    not_sent,
    accepted,
    refused,    // code says why
    unanswered, // sent, or perhaps sent; the agent went away first
};

struct RuleResult {
    Outcome outcome = Outcome::not_sent;
    uint32_t code = 0;
};

struct Report {
    std::vector<RuleResult> results; // in the order of the rules
    std::optional<Failure> stopped;  // why not all of them were answered

    std::size_t count(Outcome outcome) const;
};

// Joins the smooth period of one-shot commands, which every process must before it programs.
void join_period(uint16_t client);

// Stops at the first call that fails, and at an interrupt once the call under way is done.
Report program_rules(uint16_t client, Command command, std::span<const OfpFlowItem> rules);

// The datagrams in which the library sends the rules.
std::size_t count_datagrams(std::span<const OfpFlowItem> rules);

// Why the agent refused a rule, as far as its code tells.
std::string refusal(uint32_t code);

std::string_view outcome_name(Outcome outcome);

} // namespace ofpctl

#endif
