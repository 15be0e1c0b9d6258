// Follows a packet through the tables of a client.
#pragma once

#include <map>
#include <memory_resource>

#include "switch/flow_table.h"
#include "switch/groups.h"
#include "switch/trace.h"

namespace agent {

using FlowTables = std::pmr::map<uint8_t, FlowTable>;

// Throws std::bad_alloc.
Trace follow(const Packet &packet, const PacketQuery &query, FlowTables &tables, Groups &groups);

} // namespace agent
