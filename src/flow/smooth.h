// The smooth period of this process.
#ifndef FLOW_SMOOTH_H
#define FLOW_SMOOTH_H

#include "ofp/wire_flow.h"

namespace ofp {

bool smooth_is_open();

// The head that every message of a client carries, in host order.
OfpClientHead client_head(uint16_t client_id);

} // namespace ofp

#endif
