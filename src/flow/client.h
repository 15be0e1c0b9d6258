// The clients that program flow rules, and their road to the agent daemon.
#pragma once

#include <cstdint>

namespace ofp {

// 4098 is reserved: the asynchronous channel keeps a slot for it, nobody may use it.
constexpr bool is_client(uint16_t id) { return id == 4096 || id == 4097 || id == 4099; }

// Starts the agent daemon when it does not run and connects. The socket, or -1.
[[nodiscard]] int32_t connect_client(uint16_t client_id);

} // namespace ofp
