// Calls that set or remove, as their 16-bit operation says.
#pragma once

#include <cstdint>

namespace ofp {

constexpr uint16_t operation_set = 1; // any other removes

} // namespace ofp
