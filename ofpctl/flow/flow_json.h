// Flow rules as JSON, both directions:
// {"table":200,"priority":100,"match":{"eth_type":"0x0800","ipv4_dst":"10.0.0.0/24"},
//  "actions":[{"output":2}]}
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "flow/flow_set.h"
#include "flow/flow_text.h"

namespace ofpctl {

// One object.
FlowResult parse_flow_json(std::string_view object, ParseMode mode);

// A document: one rule, an array of rules, or an object with an array "rules" as every listing is;
// an element may be {"rule": {...}} with other members beside it. Appends the rules;
// at most the given number of errors, each with its place in the document as column. The document
// begins on first_line of its file; 0: it is from none.
std::vector<TextError> parse_flows_json(std::string_view document, ParseMode mode,
                                        std::size_t most_errors, FlowSet &flows,
                                        uint32_t first_line = 0);

// On one line. 64-bit numbers and masked values are strings.
std::string flow_to_json(const OfpFlowItem &item, uint8_t table = flow_table);

} // namespace ofpctl
