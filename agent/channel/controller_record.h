// A controller as the applications and the queries are told of it.
#pragma once

#include <cstdint>

#include "channel/controller_state.h"
#include "config/settings.h"
#include "ofp.h"

namespace agent {

// The TLV 6 of a controller; state is null for one that has no connection to speak of.
OfpCtrl controller_record(uint8_t id, const Controller &controller, const ControllerState *state);

} // namespace agent
