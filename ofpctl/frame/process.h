// Processes as the kernel shows them.
#ifndef OFPCTL_FRAME_PROCESS_H
#define OFPCTL_FRAME_PROCESS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ofpctl {

// When the process began, in clock ticks after the start of the system; 0 when there is none.
uint64_t process_start(int32_t pid);
// How long ago that was.
std::optional<uint64_t> process_age_seconds(int32_t pid);

// What a program writes to its standard output; nothing when it cannot be run, fails, or takes
// longer than so many seconds, after which it is killed.
std::optional<std::string> program_output(std::vector<std::string> command, int seconds);

} // namespace ofpctl

#endif
