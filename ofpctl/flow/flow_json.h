// One flow rule as a JSON object, both directions:
// {"table":200,"priority":100,"match":{"eth_type":"0x0800","ipv4_dst":"10.0.0.0/24"},
//  "actions":[{"output":2}]}
#ifndef OFPCTL_FLOW_JSON_H
#define OFPCTL_FLOW_JSON_H

#include <string>
#include <string_view>

#include "flow/flow_text.h"

namespace ofpctl {

FlowResult parse_flow_json(std::string_view object, ParseMode mode);

// On one line. 64-bit numbers and masked values are strings.
std::string flow_to_json(const OfpFlowItem &item, uint8_t table = flow_table);

} // namespace ofpctl

#endif
