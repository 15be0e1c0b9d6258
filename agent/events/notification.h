// Event notifications as they travel to the applications.
#pragma once

#include <cstdint>

#include "events/applications.h"
#include "ofp.h"

namespace agent {

// What happens to a controller.
inline constexpr uint32_t CONTROLLER_CONFIGURED = OFP_EVENT_CTRL_2; // new, or changed
inline constexpr uint32_t CONTROLLER_CONNECTION = OFP_EVENT_CTRL_4; // came up, or was lost
inline constexpr uint32_t CONTROLLER_REMOVED = OFP_EVENT_CTRL_8;

// The event value of a controller record: the controller's id, and whether it is connected.
inline constexpr uint16_t EVENT_VALUE_CONNECTED = 0x0100;

void notify_controller(Applications &applications, uint32_t event, uint16_t instance,
                       const OfpCtrl &controller) noexcept;

// The status is the number of controllers that are connected.
void notify_controller_status(Applications &applications, uint32_t connected) noexcept;

} // namespace agent
