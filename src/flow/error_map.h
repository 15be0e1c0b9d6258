// The agent daemon's OpenFlow errors as result codes.
#pragma once

#include <cstdint>

namespace ofp {

uint32_t map_error(uint16_t type, uint16_t code);

} // namespace ofp
