// The agent daemon's OpenFlow errors as result codes.
#ifndef FLOW_ERROR_MAP_H
#define FLOW_ERROR_MAP_H

#include <cstdint>

namespace ofp {

uint32_t map_error(uint16_t type, uint16_t code);

} // namespace ofp

#endif
