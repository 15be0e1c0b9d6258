// What actions, instructions and buckets must look like before anything is done with them.
#include <array>

#include "openflow/message.h"
#include "openflow/oxm_fields.h"

namespace openflow {
namespace {

using Check = std::optional<Error> (*)(const Action &action);

constexpr std::optional<Error> bad_action(BadActionCode code)
{
    return Error{OFPET_BAD_ACTION, code};
}

constexpr std::optional<Error> bad_instruction(BadInstructionCode code)
{
    return Error{OFPET_BAD_INSTRUCTION, code};
}

constexpr std::optional<Error> bad_group(GroupModFailedCode code)
{
    return Error{OFPET_GROUP_MOD_FAILED, code};
}

std::optional<Error> check_output(const Action &action)
{
    return is_output_port(*output_port(action)) ? std::nullopt : bad_action(OFPBAC_BAD_OUT_PORT);
}

std::optional<Error> check_group(const Action &action)
{
    return *output_group(action) <= OFPG_MAX ? std::nullopt : bad_action(OFPBAC_BAD_OUT_GROUP);
}

template <uint16_t... EthTypes>
std::optional<Error> check_push(const Action &action)
{
    const uint16_t eth_type = load16(action.bytes.data() + 4);
    return ((eth_type == EthTypes) || ...) ? std::nullopt : bad_action(OFPBAC_BAD_ARGUMENT);
}

std::optional<Error> check_set_field(const Action &action)
{
    OxmWalk walk(action.bytes.subspan(4));
    const auto oxm = walk.next();
    if (!oxm) {
        return bad_action(OFPBAC_BAD_SET_LEN);
    }
    const bool settable = oxm->oxm_class == OFPXMC_OPENFLOW_BASIC &&
                          oxm->field < BASIC_FIELDS.size() && oxm->field > OFPXMT_METADATA;
    if (!settable || oxm->has_mask) {
        return bad_action(OFPBAC_BAD_SET_TYPE);
    }
    const FieldRule &rule = BASIC_FIELDS[oxm->field];
    const size_t padded = (4 + oxm->entry.size() + 7) / 8 * 8;
    if (oxm->value.size() != rule.size || action.bytes.size() != padded) {
        return bad_action(OFPBAC_BAD_SET_LEN);
    }
    return exceeds_width(rule, oxm->value.data()) ? bad_action(OFPBAC_BAD_SET_ARGUMENT)
                                                  : std::nullopt;
}

std::optional<Error> check_experimenter(const Action &action)
{
    constexpr std::array<size_t, 4> sizes = {24, 16, 16, 24}; // by subtype
    if (load32(action.bytes.data() + 4) != EXPERIMENTER_ID) {
        return bad_action(OFPBAC_BAD_EXPERIMENTER);
    }
    if (action.bytes.size() < 16) {
        return bad_action(OFPBAC_BAD_LEN);
    }
    const uint32_t subtype = load32(action.bytes.data() + 8);
    if (subtype >= sizes.size()) {
        return bad_action(OFPBAC_BAD_EXP_TYPE);
    }
    return action.bytes.size() == sizes[subtype] ? std::nullopt : bad_action(OFPBAC_BAD_LEN);
}

struct ActionRule {
    uint16_t type;
    uint8_t size; // 0: depends on what it holds
    Check check;
};

constexpr ActionRule ACTIONS[] = {
    {OFPAT_OUTPUT, 16, check_output},
    {OFPAT_GROUP, 8, check_group},
    {OFPAT_EXPERIMENTER, 0, check_experimenter},
    {OFPAT_COPY_TTL_OUT, 8, nullptr},
    {OFPAT_COPY_TTL_IN, 8, nullptr},
    {OFPAT_SET_MPLS_TTL, 8, nullptr},
    {OFPAT_DEC_MPLS_TTL, 8, nullptr},
    {OFPAT_PUSH_VLAN, 8, check_push<0x8100, 0x88a8>},
    {OFPAT_POP_VLAN, 8, nullptr},
    {OFPAT_PUSH_MPLS, 8, check_push<0x8847, 0x8848>},
    {OFPAT_POP_MPLS, 8, nullptr},
    {OFPAT_SET_QUEUE, 8, nullptr},
    {OFPAT_SET_NW_TTL, 8, nullptr},
    {OFPAT_DEC_NW_TTL, 8, nullptr},
    {OFPAT_SET_FIELD, 0, check_set_field},
    {OFPAT_PUSH_PBB, 8, check_push<0x88e7>},
    {OFPAT_POP_PBB, 8, nullptr},
};

std::optional<Error> check_action(const Action &action)
{
    for (const ActionRule &rule : ACTIONS) {
        if (rule.type != action.type) {
            continue;
        }
        if (rule.size != 0 && rule.size != action.bytes.size()) {
            return bad_action(OFPBAC_BAD_LEN);
        }
        return rule.check != nullptr ? rule.check(action) : std::nullopt;
    }
    return bad_action(OFPBAC_BAD_TYPE);
}

std::optional<Error> check_size(const Instruction &instruction, size_t expected)
{
    if (instruction.bytes.size() != expected) {
        return bad_instruction(OFPBIC_BAD_LEN);
    }
    return {};
}

std::optional<Error> check_goto(const Instruction &instruction, uint8_t table_id)
{
    if (instruction.bytes.size() != INSTRUCTION_SIZE) {
        return bad_instruction(OFPBIC_BAD_LEN);
    }
    const uint8_t next = instruction.bytes[4];
    const bool forward = next > table_id && next <= OFPTT_MAX;
    return forward ? std::nullopt : bad_instruction(OFPBIC_BAD_TABLE_ID);
}

std::optional<Error> check_instruction(const Instruction &instruction, uint8_t table_id)
{
    switch (instruction.type) {
    case OFPIT_GOTO_TABLE:
        return check_goto(instruction, table_id);
    case OFPIT_WRITE_METADATA:
        return check_size(instruction, 24);
    case OFPIT_WRITE_ACTIONS:
    case OFPIT_APPLY_ACTIONS:
        return check_actions(actions_of(instruction));
    case OFPIT_CLEAR_ACTIONS:
        return check_size(instruction, 8);
    case OFPIT_METER: // no meter can be made, so none exists
        return bad_instruction(OFPBIC_UNSUP_INST);
    case OFPIT_EXPERIMENTER:
        return bad_instruction(OFPBIC_BAD_EXPERIMENTER);
    default:
        return bad_instruction(OFPBIC_UNKNOWN_INST);
    }
}

bool is_watch_group(uint32_t group) { return group == OFPG_ANY || group <= OFPG_MAX; }

std::optional<Error> check_bucket_actions(Bytes actions)
{
    if (auto error = check_actions(actions)) {
        return error;
    }
    ActionWalk walk(actions);
    while (const auto action = walk.next()) {
        if (output_group(*action)) {
            return bad_group(OFPGMFC_CHAINING_UNSUPPORTED);
        }
    }
    return {};
}

std::optional<Error> check_bucket(const Bucket &bucket, uint8_t group_type)
{
    if (auto error = check_bucket_actions(bucket.actions)) {
        return error;
    }
    const bool any_port = bucket.watch_port == OFPP_ANY;
    if (!(any_port || is_output_port(bucket.watch_port)) || !is_watch_group(bucket.watch_group)) {
        return bad_group(OFPGMFC_BAD_WATCH);
    }
    // Without something to watch, failover could not tell when to leave the bucket.
    if (group_type == OFPGT_FF && any_port && bucket.watch_group == OFPG_ANY) {
        return bad_group(OFPGMFC_INVALID_GROUP);
    }
    return {};
}

} // namespace

std::optional<Error> check_actions(Bytes actions)
{
    ActionWalk walk(actions);
    while (const auto action = walk.next()) {
        if (auto error = check_action(*action)) {
            return error;
        }
    }
    return walk.truncated() ? bad_action(OFPBAC_BAD_LEN) : std::nullopt;
}

std::optional<Error> check_instructions(Bytes instructions, uint8_t table_id)
{
    uint32_t seen = 0;
    InstructionWalk walk(instructions);
    while (const auto instruction = walk.next()) {
        if (auto error = check_instruction(*instruction, table_id)) {
            return error;
        }
        // 1.3 has no code of its own for an instruction that comes twice.
        const uint32_t bit = uint32_t{1} << instruction->type;
        if ((seen & bit) != 0) {
            return bad_instruction(OFPBIC_UNSUP_INST);
        }
        seen |= bit;
    }
    return walk.truncated() ? bad_instruction(OFPBIC_BAD_LEN) : std::nullopt;
}

std::optional<Error> check_buckets(Bytes buckets, uint8_t group_type)
{
    BucketWalk walk(buckets);
    while (const auto bucket = walk.next()) {
        if (auto error = check_bucket(*bucket, group_type)) {
            return error;
        }
    }
    return walk.truncated() ? bad_group(OFPGMFC_BAD_BUCKET) : std::nullopt;
}

} // namespace openflow
