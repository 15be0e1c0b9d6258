// Flow-mod messages, as the library writes them, back to flow items.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "flow/flow_text.h"

namespace ofpctl {

// The rule, its table always said; or what is wrong with the message.
using FlowDecodeResult = std::variant<Flow, std::string>;

// Masks come back in their canonical form: one over the whole field is none.
FlowDecodeResult decode_flow_mod(std::span<const uint8_t> message);

// A match field as one option of text: "nw_dst" and "10.0.0.0/8".
struct FieldText {
    std::string name;
    std::string value;
};

// Of one OXM entry; nothing when it is none that text has a form for.
std::optional<FieldText> decode_field(std::span<const uint8_t> entry);

// OpenFlow actions as text: "group:7,output:1"; an action that the library never sends by its
// number.
std::string decode_actions(std::span<const uint8_t> actions);

} // namespace ofpctl
