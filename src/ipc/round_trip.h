// A request that is answered by a result reply.
#pragma once

#include <cstdint>

#include "util/bytes.h"

namespace ofp {

// Starts the agent daemon when it does not run and opens a channel; the socket or -1.
[[nodiscard]] int32_t set_connect();

// Sends a datagram and returns the code of the result reply.
[[nodiscard]] uint32_t set_send_message(int32_t socket, Bytes datagram);

// Receives the result reply and returns its code.
[[nodiscard]] uint32_t await_result(int32_t socket);

// Reads the code of a result reply; any other datagram is false and leaves the code.
bool read_result(Bytes datagram, uint32_t *code);

} // namespace ofp
