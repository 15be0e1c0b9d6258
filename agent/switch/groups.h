// The groups of one client.
#pragma once

#include <cstdint>
#include <map>
#include <memory_resource>
#include <optional>
#include <span>
#include <vector>

#include "openflow/message.h"
#include "openflow/wire.h"
#include "switch/traffic.h"

namespace agent {

struct GroupEntry {
    uint8_t type = 0;
    uint32_t bucket_count = 0;
    uint32_t references = 0; // group actions of rules
    uint32_t created = 0;
    Traffic counters;
    std::pmr::vector<uint8_t> buckets;
    std::pmr::vector<Traffic> bucket_counters;
};

struct GroupLimits {
    uint32_t groups = 0;
    uint32_t buckets = 0; // of a group
    uint32_t ports = 0;   // the highest port number
};

class Groups {
public:
    explicit Groups(std::pmr::memory_resource *memory) : by_id_(memory) {}

    // Throws std::bad_alloc; nothing has changed then.
    std::optional<openflow::Error> add(const openflow::GroupMod &mod, const GroupLimits &limits,
                                       uint32_t now);
    std::optional<openflow::Error> modify(const openflow::GroupMod &mod, const GroupLimits &limits);
    void erase(uint32_t id) noexcept;
    void clear() noexcept { by_id_.clear(); }

    const GroupEntry *find(uint32_t id) const;
    GroupEntry *find(uint32_t id);
    std::optional<uint32_t> next(int64_t after) const;
    uint32_t size() const { return static_cast<uint32_t>(by_id_.size()); }

    // Counts the group actions among these instructions up or down. All groups must exist.
    void refer(std::span<const uint8_t> instructions) noexcept;
    void unrefer(std::span<const uint8_t> instructions) noexcept;

private:
    void count(std::span<const uint8_t> instructions, uint32_t step) noexcept;

    std::pmr::map<uint32_t, GroupEntry> by_id_;
};

// Calls visit with each action of the write-actions and apply-actions instructions until it returns
// true; whether it did.
template <class Visit>
bool any_action(std::span<const uint8_t> instructions, Visit visit)
{
    openflow::InstructionWalk walk(instructions);
    while (const auto instruction = walk.next()) {
        openflow::ActionWalk actions(openflow::actions_of(*instruction));
        while (const auto action = actions.next()) {
            if (visit(*action)) {
                return true;
            }
        }
    }
    return false;
}

// A group action names the group; with OFPG_ANY, any group.
bool refers_to_group(std::span<const uint8_t> instructions, uint32_t group);
bool outputs_to_port(std::span<const uint8_t> instructions, uint32_t port);

} // namespace agent
