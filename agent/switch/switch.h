// The memory switch: OpenFlow 1.3 flow tables and groups, without sockets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>

#include "openflow/wire.h"
#include "switch/trace.h"

namespace agent {

struct SwitchLimits {
    uint32_t rules_per_table = 1'048'576;
    uint32_t groups = 65'536;            // per client
    uint32_t buckets_per_group = 2'048;  // as many as fit into one message
    uint32_t ports = openflow::OFPP_MAX; // the highest port number an action may name
};

// Views of what the switch holds. They live until the next change.
struct RuleView {
    uint32_t id = 0;
    uint16_t priority = 0;
    std::span<const uint8_t> match;        // ofp_match with its pad bytes, as received
    std::span<const uint8_t> instructions; // as received
    Traffic counters;                      // what sent packets left; there are no others
    uint32_t age_seconds = 0;
    uint64_t cookie = 0;
    uint16_t flags = 0; // of the flow-mod that added it
};

struct TableView {
    uint32_t capacity = 0;
    uint32_t rules = 0;
    size_t memory = 0; // bytes
    uint64_t lookups = 0;
    uint64_t matched = 0;
};

struct GroupView {
    uint32_t id = 0;
    uint8_t type = 0;
    std::span<const uint8_t> buckets; // as received
    uint32_t bucket_count = 0;
    uint32_t references = 0; // group actions in the client's rules that name it
    uint32_t age_seconds = 0;
    Traffic counters;
    std::span<const Traffic> bucket_counters;
};

// Seconds of any clock that does not go back.
using Clock = uint32_t (*)();
uint32_t monotonic_seconds();

// Every client is a logical switch of its own, with its own tables, groups and periods. A client or
// table exists from its first message on. Every operation is all or nothing; one for which memory
// does not suffice is refused as a full table and changes nothing.
class Switch {
public:
    explicit Switch(const SwitchLimits &limits = {},
                    std::pmr::memory_resource *memory = std::pmr::new_delete_resource(),
                    Clock clock = monotonic_seconds);
    ~Switch();
    Switch(const Switch &) = delete;
    Switch &operator=(const Switch &) = delete;

    // One message in network order; nothing returned means that it was applied. A table that holds
    // most_rules takes no further one, as one that is full; those that it holds may be replaced.
    std::optional<openflow::Error> flow_mod(uint16_t client, std::span<const uint8_t> message,
                                            uint32_t most_rules = UINT32_MAX);
    std::optional<openflow::Error> group_mod(uint16_t client, std::span<const uint8_t> message);

    // What becomes of a packet; nothing changes. Throws std::bad_alloc.
    std::optional<openflow::Error> trace(uint16_t client, const PacketQuery &query, Trace &trace);
    // Counts it, as a packet of so many bytes, wherever it came by. Nothing may have changed since.
    static void count(const Trace &trace, uint32_t bytes) noexcept;

    // A period is the client's promise to program all its rules again. Opening one that is open
    // changes nothing. Closing removes the rules of the client that were not programmed since it
    // was opened and returns how many; 0 when no such period is open. False: no memory, not opened.
    bool open_period(uint16_t client, uint32_t smooth_id);
    uint64_t close_period(uint16_t client, uint32_t smooth_id);

    // Rule ids begin at 1, ascend, and are unique within a table; an id is given again after its
    // rule is gone. The smallest id above after, 0 when there is none.
    uint32_t next_rule(uint16_t client, uint8_t table, uint32_t after) const;
    // The same among rules whose match is identical to this ofp_match, whatever their priority.
    uint32_t next_rule_matching(uint16_t client, uint8_t table, uint32_t after,
                                std::span<const uint8_t> match) const;
    // The same among rules with an action that names this group.
    uint32_t next_rule_of_group(uint16_t client, uint8_t table, uint32_t after,
                                uint32_t group) const;
    std::optional<RuleView> rule(uint16_t client, uint8_t table, uint32_t id) const;

    TableView table(uint16_t client, uint8_t table) const;
    std::optional<uint8_t> next_table(uint16_t client, int after) const; // -1 begins

    // Group 0 is a group: -1 begins.
    std::optional<uint32_t> next_group(uint16_t client, int64_t after) const;
    std::optional<GroupView> group(uint16_t client, uint32_t id) const;
    uint32_t group_count(uint16_t client) const;

    // Bytes held for all rules and groups.
    size_t memory() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace agent
