// The two replies that programming a rule can have.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "openflow/wire.h"

namespace openflow {

inline constexpr size_t ERROR_DATA_MAX = 64;

// An error message with the offender's transaction id and its first 64 bytes (all, when shorter).
std::vector<uint8_t> encode_error(Bytes offender, Error error);

// The same into error_size bytes of the caller's.
size_t error_size(Bytes offender);
void write_error(Bytes offender, Error error, uint8_t *out);

std::array<uint8_t, HEADER_SIZE> encode_barrier_reply(uint32_t xid);

} // namespace openflow
