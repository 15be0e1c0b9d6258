// The smooth period of this process.
#pragma once

#include "ofp/wire_flow.h"

namespace ofp {

bool smooth_is_open();

// The head that every message of a client carries, in host order.
OfpClientHead client_head(uint16_t client_id);

} // namespace ofp
