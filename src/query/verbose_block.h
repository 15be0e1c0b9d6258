// What of an instance is configured, and what runs.
#pragma once

#include <cstdint>

#include "ofp/query.h"

namespace ofp {

// Untouched when the reply holds nothing.
[[nodiscard]] uint32_t read_block(uint16_t instance_id, OfpVerboseConfigured *block);
[[nodiscard]] uint32_t read_block(uint16_t instance_id, OfpVerboseRunning *block);

} // namespace ofp
