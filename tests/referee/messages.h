// The OpenFlow messages in the datagrams that the library writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ofp.h"

namespace referee {

using Bytes = std::vector<uint8_t>;

enum Command : uint32_t { ADD = 0, MODIFY_STRICT = 2, DELETE = 3, DELETE_STRICT = 4 };

// A flow-mod and a barrier request for each item, all in one datagram, as they stand behind each
// other.
Bytes flow_mods(const std::vector<OfpFlowItem> &items, Command command = ADD);
// The flow-mod alone.
Bytes flow_mod(const OfpFlowItem &item);

// A group-mod and a barrier request.
Bytes set_group(uint32_t id, uint8_t type, const std::vector<uint32_t> &ports);
Bytes delete_group(uint32_t id);

// OpenFlow messages that stand behind each other, one by one.
std::vector<Bytes> split(const Bytes &messages);

} // namespace referee
