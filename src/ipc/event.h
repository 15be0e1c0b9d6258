// Events that the agent daemon notifies applications of.
#pragma once

#include <cstdint>

#include "ofp/application.h"
#include "util/bytes.h"

namespace ofp {

inline constexpr uint32_t last_event = 63;

// Decodes what stands behind the event type and hands it to the callback, whose result it returns;
// 0 for a type without decoder.
[[nodiscard]] uint32_t decode_event(uint32_t type, Bytes data, OfpEventCallback callback);

} // namespace ofp
