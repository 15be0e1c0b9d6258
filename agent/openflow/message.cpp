#include "openflow/message.h"

namespace openflow {
namespace {

std::optional<Error> check_header(Bytes message, uint8_t type, size_t least)
{
    const auto header = peek_header(message);
    if (!header) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_LEN};
    }
    if (header->version != OFP_VERSION) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_VERSION};
    }
    if (header->type != type) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_TYPE};
    }
    if (header->length != message.size() || message.size() < least) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_LEN};
    }
    return {};
}

void read(Bytes bytes, Instruction &out) { out = {load16(bytes.data()), bytes}; }

void read(Bytes bytes, Action &out) { out = {load16(bytes.data()), bytes}; }

void read(Bytes bytes, Bucket &out)
{
    const uint8_t *at = bytes.data();
    out = {load16(at + 2), load32(at + 4), load32(at + 8), bytes.subspan(BUCKET_SIZE), bytes};
}

// Where a record keeps its length, and how short it may be.
template <class Record>
constexpr size_t LENGTH_AT = 2;
template <>
constexpr size_t LENGTH_AT<Bucket> = 0;
template <class Record>
constexpr size_t LEAST = 8;
template <>
constexpr size_t LEAST<Bucket> = BUCKET_SIZE;

} // namespace

Result<FlowMod> parse_flow_mod(Bytes message)
{
    if (auto error = check_header(message, OFPT_FLOW_MOD, FLOW_MOD_SIZE)) {
        return *error;
    }
    const auto match = parse_match(message.subspan(FLOW_MOD_SIZE));
    if (!match) {
        return match.error();
    }
    const uint8_t *at = message.data();
    FlowMod mod;
    mod.header = *peek_header(message);
    mod.cookie = load64(at + 8);
    mod.cookie_mask = load64(at + 16);
    mod.table_id = at[24];
    mod.command = at[25];
    mod.idle_timeout = load16(at + 26);
    mod.hard_timeout = load16(at + 28);
    mod.priority = load16(at + 30);
    mod.buffer_id = load32(at + 32);
    mod.out_port = load32(at + 36);
    mod.out_group = load32(at + 40);
    mod.flags = load16(at + 44);
    mod.match = *match;
    mod.instructions = message.subspan(FLOW_MOD_SIZE + match->bytes.size());
    return mod;
}

Result<GroupMod> parse_group_mod(Bytes message)
{
    if (auto error = check_header(message, OFPT_GROUP_MOD, GROUP_MOD_SIZE)) {
        return *error;
    }
    const uint8_t *at = message.data();
    GroupMod mod;
    mod.header = *peek_header(message);
    mod.command = load16(at + 8);
    mod.type = at[10];
    mod.group_id = load32(at + 12);
    mod.buckets = message.subspan(GROUP_MOD_SIZE);
    return mod;
}

template <class Record>
std::optional<Record> Walk<Record>::next()
{
    if (rest_.empty()) {
        return {};
    }
    size_t length = 0;
    if (rest_.size() >= LEAST<Record>) {
        length = load16(rest_.data() + LENGTH_AT<Record>);
    }
    if (length < LEAST<Record> || length % 8 != 0 || length > rest_.size()) {
        truncated_ = true;
        rest_ = {};
        return {};
    }
    Record record;
    read(rest_.first(length), record);
    rest_ = rest_.subspan(length);
    return record;
}

template class Walk<Instruction>;
template class Walk<Action>;
template class Walk<Bucket>;

Bytes actions_of(const Instruction &instruction)
{
    if (instruction.type != OFPIT_WRITE_ACTIONS && instruction.type != OFPIT_APPLY_ACTIONS) {
        return {};
    }
    return instruction.bytes.subspan(INSTRUCTION_SIZE);
}

std::optional<uint32_t> output_port(const Action &action)
{
    if (action.type != OFPAT_OUTPUT) {
        return {};
    }
    return load32(action.bytes.data() + 4);
}

std::optional<uint32_t> output_group(const Action &action)
{
    if (action.type != OFPAT_GROUP) {
        return {};
    }
    return load32(action.bytes.data() + 4);
}

bool is_output_port(uint32_t port)
{
    const bool reserved = port >= OFPP_IN_PORT && port != OFPP_TABLE && port != OFPP_ANY;
    return (port >= 1 && port <= OFPP_MAX) || reserved;
}

} // namespace openflow
