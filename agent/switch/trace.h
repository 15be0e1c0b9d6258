// What becomes of a packet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "openflow/wire.h"
#include "switch/packet.h"
#include "switch/traffic.h"

namespace agent {

struct PacketQuery {
    openflow::Bytes fields;              // OXM entries
    std::span<const uint8_t> tables;     // those that there are, ascending
    uint8_t first = 0;                   // the one that it enters
    bool permit_missed = false;          // what no rule matches is forwarded as by output:normal
    std::function<bool(uint32_t)> is_up; // a port that a failover bucket watches; empty: all are
};

// A field that keeps a packet from a rule.
struct Difference {
    openflow::Bytes wanted;   // the rule's OXM entry; of an opaque field the first 4 bytes
    std::vector<uint8_t> has; // the packet's value; empty when it cannot have the field
};

// A rule of higher priority than the one that matched, which fewer fields keep from matching than
// any other one that was looked at.
struct NearMiss {
    static constexpr uint32_t LISTED = 2;

    uint32_t rule = 0;
    uint16_t priority = 0;
    uint32_t fields = 0;                 // how many
    std::vector<Difference> differences; // the first ones
};

struct TableVisit {
    uint8_t table = 0;
    uint32_t rule = 0; // 0: none matched
    uint16_t priority = 0;
    std::optional<NearMiss> better;
};

struct PacketOutput {
    uint32_t port = 0; // as the action names it
    uint32_t group = openflow::OFPG_ANY;
    uint32_t bucket = 0;
    bool held_back = false; // it is the port that the packet came from
};

enum class TraceEnd : uint8_t {
    carried_out, // the action set
    no_rule,     // the last table visited had none: dropped
    no_table,    // the last rule leads to a table that there is not: dropped
    permitted,   // the last table visited had none, and what none matches is forwarded normally
    cut,         // more actions and buckets than a packet is followed through
};

struct Trace {
    static constexpr size_t OUTPUTS_LISTED = 256;
    static constexpr uint32_t STEPS = 65'536; // actions and buckets

    TraceEnd end = TraceEnd::carried_out;
    uint8_t missing_table = 0; // of no_table
    std::vector<TableVisit> visits;
    std::vector<uint8_t> action_set;   // as carried out, one action behind the other
    std::vector<PacketOutput> outputs; // the first ones
    uint32_t output_count = 0;

    // What counts the packet when it is sent. Good until the next change of the switch.
    std::vector<Traffic *> counted;
    std::vector<uint64_t *> counted_once; // of tables: they count packets only
};

} // namespace agent
