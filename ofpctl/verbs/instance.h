// What the commands of instances share.
#ifndef OFPCTL_VERBS_INSTANCE_H
#define OFPCTL_VERBS_INSTANCE_H

#include <cstdint>
#include <string>

#include "frame/context.h"
#include "option/instance_option.h"
#include "verbs/change.h"

namespace ofpctl {

// The first operand; a usage failure when it is none.
uint16_t instance_operand(const Context &context);

// "instance 1"
std::string instance_name(uint16_t id);

// One option of an instance; the record is where it is read back from.
Change instance_change(uint16_t id, const InstanceOption &option, const Value &value,
                       const InstanceRecord &record);

void apply_instance(Context &context); // instance apply
void show_instance(Context &context);  // instance show

} // namespace ofpctl

#endif
