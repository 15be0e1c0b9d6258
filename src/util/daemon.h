#pragma once

#include <cstdint>

namespace ofp {

// Whether the agent daemon's service runs on a node; not when the platform cannot tell.
[[nodiscard]] bool is_daemon_running_on(uint16_t node);

} // namespace ofp
