// What is asked about controllers.
#ifndef OFPCTL_VERBS_CONTROLLER_VERBS_H
#define OFPCTL_VERBS_CONTROLLER_VERBS_H

#include <cstdint>

#include "frame/context.h"
#include "ofp/wire.h"

namespace ofpctl {

// Whether the agent has it, and has it just so. Throw a Failure when it cannot say.
bool has_controller(uint16_t instance, uint8_t controller);
bool has_auxiliary(uint16_t instance, uint8_t controller, uint8_t auxiliary);
bool reports(const OfpCtrlCfg &controller);
bool reports(const OfpAuxCfg &auxiliary);

void list_controllers(Context &context); // controller list
void show_controller(Context &context);  // controller show

} // namespace ofpctl

#endif
