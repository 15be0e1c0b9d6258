// The controllers of a verbose record.
#pragma once

#include <cstdint>

#include "ofp/query.h"

namespace ofp {

// Appends a summary of each of the instance's controllers; what was read before a failure stays.
[[nodiscard]] uint32_t read_controllers(uint16_t instance_id, OfpLink *list);

} // namespace ofp
