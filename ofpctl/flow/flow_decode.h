// Flow-mod messages, as the library writes them, back to flow items.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>

#include "flow/flow_text.h"

namespace ofpctl {

// The rule, its table always said; or what is wrong with the message.
using FlowDecodeResult = std::variant<Flow, std::string>;

// Masks come back in their canonical form: one over the whole field is none.
FlowDecodeResult decode_flow_mod(std::span<const uint8_t> message);

} // namespace ofpctl
