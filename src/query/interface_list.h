// The interfaces of an instance.
#pragma once

#include <cstdint>

#include "ofp/query.h"

namespace ofp {

// Inserts OfpInterfaceElements by name. OFP_RC_NO_RESOURCE: the list was freed and is empty; after
// any other failure what was read stays.
[[nodiscard]] uint32_t read_interfaces(uint16_t instance_id, OfpLink *list);

} // namespace ofp
