// The commands of the noun "flow", by file.
#ifndef OFPCTL_VERBS_FLOW_VERBS_H
#define OFPCTL_VERBS_FLOW_VERBS_H

namespace ofpctl {

struct Context;

// flow_change.cpp
void flow_add(Context &context);
void flow_modify(Context &context);
void flow_load(Context &context);
void flow_delete(Context &context);

// flow_compare.cpp
void flow_replace(Context &context);
void flow_diff(Context &context);

// flow_list.cpp
void flow_show(Context &context);
void flow_count(Context &context);

// flow_offline.cpp
void flow_check(Context &context);
void flow_format(Context &context);

} // namespace ofpctl

#endif
