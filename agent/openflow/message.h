// Flow-mod and group-mod messages, their instructions, actions and buckets. Views only: nothing is
// copied, and a view lives as long as the message.
#pragma once

#include <cstdint>
#include <optional>

#include "openflow/oxm.h"
#include "openflow/wire.h"

namespace openflow {

struct FlowMod {
    Header header;
    uint64_t cookie = 0;
    uint64_t cookie_mask = 0;
    uint8_t table_id = 0;
    uint8_t command = 0;
    uint16_t idle_timeout = 0;
    uint16_t hard_timeout = 0;
    uint16_t priority = 0;
    uint32_t buffer_id = 0;
    uint32_t out_port = 0;
    uint32_t out_group = 0;
    uint16_t flags = 0;
    Match match;
    Bytes instructions; // all that follows the match
};

struct GroupMod {
    Header header;
    uint16_t command = 0;
    uint8_t type = 0;
    uint32_t group_id = 0;
    Bytes buckets;
};

// Header, fixed part and the match's frame. What the match's entries, the instructions and the
// buckets hold is left to check_match, check_instructions and check_buckets.
Result<FlowMod> parse_flow_mod(Bytes message);
Result<GroupMod> parse_group_mod(Bytes message);

struct Instruction {
    uint16_t type = 0;
    Bytes bytes; // header and body
};

struct Action {
    uint16_t type = 0;
    Bytes bytes; // header and body
};

struct Bucket {
    uint16_t weight = 0;
    uint32_t watch_port = 0;
    uint32_t watch_group = 0;
    Bytes actions;
    Bytes bytes; // header and actions
};

// Walks records that carry their length. One that is shorter than its header, not a multiple of 8
// or longer than what is left ends the walk, and truncated() says so.
template <class Record>
class Walk {
public:
    explicit Walk(Bytes records) : rest_(records) {}
    std::optional<Record> next();
    bool truncated() const { return truncated_; }

private:
    Bytes rest_;
    bool truncated_ = false;
};
using InstructionWalk = Walk<Instruction>;
using ActionWalk = Walk<Action>;
using BucketWalk = Walk<Bucket>;

// The actions of a write-actions or apply-actions instruction; empty for every other.
Bytes actions_of(const Instruction &instruction);

// The port of an output action, the group of a group action; nothing for every other.
std::optional<uint32_t> output_port(const Action &action);
std::optional<uint32_t> output_group(const Action &action);

// A port that an output action may name.
bool is_output_port(uint32_t port);

// Length, type, experimenter, ports and arguments. Whether a group exists is not asked here.
std::optional<Error> check_actions(Bytes actions);
std::optional<Error> check_instructions(Bytes instructions, uint8_t table_id);
std::optional<Error> check_buckets(Bytes buckets, uint8_t group_type);

} // namespace openflow
