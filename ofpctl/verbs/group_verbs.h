// The commands of groups that only ask.
#ifndef OFPCTL_VERBS_GROUP_VERBS_H
#define OFPCTL_VERBS_GROUP_VERBS_H

#include "frame/context.h"

namespace ofpctl {

void list_groups(Context &context); // group list
void show_group(Context &context);  // group show

} // namespace ofpctl

#endif
