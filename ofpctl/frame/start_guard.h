// The library starts the agent for whoever programs rules while none runs. A person who types a
// command is better told: rules sent to a fresh agent in mid-load would look as if all were well.
// This program's own SERVICE_Start stands before the platform's and refuses.
#ifndef OFPCTL_FRAME_START_GUARD_H
#define OFPCTL_FRAME_START_GUARD_H

namespace ofpctl {

// From here on a start is what the user asked for.
void allow_start();

} // namespace ofpctl

#endif
