// agent doctor: each thing that can be wrong, whether it is, and what to do.
#ifndef OFPCTL_VERBS_DOCTOR_H
#define OFPCTL_VERBS_DOCTOR_H

namespace ofpctl {

struct Context;

void agent_doctor(Context &context);

} // namespace ofpctl

#endif
