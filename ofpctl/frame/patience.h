// Every wait for the agent is bounded and can be interrupted.
//
// The library takes its socket calls from the platform by name and waits as the platform does: 30
// seconds, or for ever on the channel of client 4097. This program's own SOCK_Connect and SOCK_Recv
// stand before the platform's, hand on to them, and add what a person at a terminal expects.
#ifndef OFPCTL_FRAME_PATIENCE_H
#define OFPCTL_FRAME_PATIENCE_H

#include <cstdint>

namespace ofpctl {

// The longest wait for one answer, in seconds.
void set_patience(uint32_t seconds);
uint32_t patience();

enum class Wait { none, answered, hung_up, timed_out, interrupted };

// How the last wait ended; forget_waits makes it none.
Wait last_wait();
// Whether the last answer was a result reply. The library takes any other for a success.
bool result_arrived();
void forget_waits();

} // namespace ofpctl

#endif
