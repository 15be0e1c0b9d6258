// Whether the agent can be asked, and why a call of the library failed.
#ifndef OFPCTL_FRAME_AGENT_LINK_H
#define OFPCTL_FRAME_AGENT_LINK_H

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/failure.h"

namespace ofpctl {

// Throws unless an agent runs that serves this user. Nothing here starts one: rules that go to an
// agent nobody expected are worse than a clear refusal.
void require_agent();

// The agent process that require_agent found; throws when another one or none is there now.
void require_same_agent();

// The failure that explains the code of a library call: exit status by what happened to the agent
// and to the last wait, a sentence that begins with what was being done.
Failure call_failure(uint32_t code, std::string_view doing);

// Throws it unless the code is 0.
void require_success(uint32_t code, std::string_view doing);

// $HOST_LastError as a failure: status_denied when errno says so.
Failure host_failure(int error);

} // namespace ofpctl

#endif
