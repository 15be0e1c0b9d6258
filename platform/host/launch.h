/* Runs the agent's program and waits until it says that it is ready. */
#ifndef OFP_PLATFORM_HOST_LAUNCH_H
#define OFP_PLATFORM_HOST_LAUNCH_H

#include <cstdint>

#include "runtime.h"

namespace host {

/* 0 once the agent of the node is ready; else -1 with the error set, and no agent of ours left.
 * deadline is in monotonic nanoseconds. May throw std::bad_alloc. */
int32_t launch_agent(uint16_t node, const Path &directory, const Path &log, int64_t deadline);

} // namespace host

#endif
