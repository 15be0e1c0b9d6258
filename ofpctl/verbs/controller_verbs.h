// The commands of controllers that only ask.
#ifndef OFPCTL_VERBS_CONTROLLER_VERBS_H
#define OFPCTL_VERBS_CONTROLLER_VERBS_H

#include "frame/context.h"

namespace ofpctl {

void list_controllers(Context &context); // controller list
void show_controller(Context &context);  // controller show

} // namespace ofpctl

#endif
