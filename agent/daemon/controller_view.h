// Controllers as queries tell of them: what is configured and how the connection stands.
#pragma once

#include <cstdint>

#include "config/settings.h"
#include "daemon/model.h"
#include "ofp.h"

namespace agent {

OfpCtrl controller_view(const Model &model, uint16_t instance, uint8_t id,
                        const Controller &controller);
OfpCtrlDebugInfo controller_counters(const Model &model, uint16_t instance, uint8_t id);
uint32_t connected_controllers(const Model &model, uint16_t instance);

} // namespace agent
