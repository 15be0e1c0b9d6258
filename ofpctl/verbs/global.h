// What other commands need of the options of the whole switch.
#ifndef OFPCTL_VERBS_GLOBAL_H
#define OFPCTL_VERBS_GLOBAL_H

#include "option/global_option.h"
#include "verbs/change.h"

namespace ofpctl {

// One option of the switch; the record is where it is read back from.
Change global_change(const GlobalOption &option, const Value &value, const GlobalRecord &record);

} // namespace ofpctl

#endif
