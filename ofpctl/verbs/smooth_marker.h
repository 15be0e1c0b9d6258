// The note that a smooth period was opened from here: a file in the runtime directory.
//
// Ending a period that the agent does not know would open it first, and its end would then remove
// every rule of the client. So an end is sent only on the strength of a note that names the agent
// process that was told of the beginning.
#ifndef OFPCTL_VERBS_SMOOTH_MARKER_H
#define OFPCTL_VERBS_SMOOTH_MARKER_H

#include <cstdint>
#include <optional>
#include <string>

namespace ofpctl {

struct SmoothMarker {
    uint32_t mode = 0;
    int32_t agent = 0;        // process id
    uint64_t agent_start = 0; // its start time: process ids come back
};

// The process that runs the agent now. Throws a Failure when there is none.
SmoothMarker marker_of_running_agent(uint32_t mode);

std::optional<SmoothMarker> read_marker(uint32_t client, uint32_t id);
void write_marker(uint32_t client, uint32_t id, const SmoothMarker &marker);
void remove_marker(uint32_t client, uint32_t id);

bool same_agent(const SmoothMarker &a, const SmoothMarker &b);

} // namespace ofpctl

#endif
