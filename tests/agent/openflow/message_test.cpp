#include "openflow/message.h"

#include <gtest/gtest.h>

#include "openflow/build.h"

namespace {

using namespace openflow;
using build::hex;
using build::Message;

constexpr Error BAD_LEN = {OFPET_BAD_REQUEST, OFPBRC_BAD_LEN};

// in_port 7, one output to port 5, as the library writes it.
const Message RULE = hex("04 0e 00 58  00 00 00 03"                         // header, xid 3
                         "00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00" // cookie, mask
                         "c8 02 00 00  00 00 00 64  ff ff ff ff" // table 200, modify strict
                         "ff ff ff ff  ff ff ff ff  00 1e 00 00" // out_port, group, flags
                         "00 01 00 0c  80 00 00 04  00 00 00 07  00 00 00 00"  // match
                         "00 03 00 18  00 00 00 00"                            // write-actions
                         "00 00 00 10  00 00 00 05  00 00 00 00 00 00 00 00"); // output 5

TEST(FlowMod, IsReadFieldByField)
{
    const auto mod = parse_flow_mod(RULE);
    ASSERT_TRUE(mod);
    EXPECT_EQ(mod->header.xid, 3U);
    EXPECT_EQ(mod->table_id, 200);
    EXPECT_EQ(mod->command, OFPFC_MODIFY_STRICT);
    EXPECT_EQ(mod->priority, 100);
    EXPECT_EQ(mod->buffer_id, OFP_NO_BUFFER);
    EXPECT_EQ(mod->out_port, OFPP_ANY);
    EXPECT_EQ(mod->out_group, OFPG_ANY);
    EXPECT_EQ(mod->flags, 0x001e);
    EXPECT_EQ(mod->match.bytes.size(), 16U);
    EXPECT_EQ(mod->match.entries.size(), 8U);
    EXPECT_EQ(mod->instructions.size(), 24U);
    InstructionWalk instructions(mod->instructions);
    const auto instruction = instructions.next();
    ASSERT_TRUE(instruction);
    EXPECT_EQ(instruction->type, OFPIT_WRITE_ACTIONS);
    ActionWalk actions(actions_of(*instruction));
    const auto action = actions.next();
    ASSERT_TRUE(action);
    EXPECT_EQ(output_port(*action), 5U);
    EXPECT_FALSE(output_group(*action));
    EXPECT_FALSE(actions.next());
    EXPECT_FALSE(instructions.next());
}

TEST(FlowMod, WithoutMatchAndActionsIs64Bytes)
{
    const Message rule = build::flow_mod({.instructions = build::write_actions({})});
    EXPECT_EQ(rule.size(), 64U);
    EXPECT_TRUE(parse_flow_mod(rule));
}

TEST(FlowMod, OfAnotherVersionOrTypeIsRefused)
{
    Message rule = RULE;
    rule[0] = 1;
    EXPECT_EQ(parse_flow_mod(rule).error(), (Error{OFPET_BAD_REQUEST, OFPBRC_BAD_VERSION}));
    rule = RULE;
    rule[1] = OFPT_GROUP_MOD;
    EXPECT_EQ(parse_flow_mod(rule).error(), (Error{OFPET_BAD_REQUEST, OFPBRC_BAD_TYPE}));
}

TEST(FlowMod, WhoseLengthIsNotThatOfTheMessageIsRefused)
{
    Message rule = RULE;
    rule.push_back(0);
    EXPECT_EQ(parse_flow_mod(rule).error(), BAD_LEN);
    rule = RULE;
    rule[3] = 0x57;
    EXPECT_EQ(parse_flow_mod(rule).error(), BAD_LEN);
    EXPECT_EQ(parse_flow_mod({}).error(), BAD_LEN);
}

TEST(FlowMod, CutShortAnywhereIsRefusedAsTooShortOrWithABadMatch)
{
    for (size_t size = 0; size < RULE.size(); size++) {
        Message rule(RULE.begin(), RULE.begin() + static_cast<long>(size));
        EXPECT_EQ(parse_flow_mod(rule).error(), BAD_LEN) << size;
        if (size < HEADER_SIZE) {
            continue;
        }
        store(&rule[2], static_cast<uint16_t>(size)); // a length that agrees
        const auto mod = parse_flow_mod(rule);
        if (size < FLOW_MOD_SIZE) {
            EXPECT_EQ(mod.error(), BAD_LEN) << size;
        } else if (size < 64) {
            EXPECT_EQ(mod.error(), (Error{OFPET_BAD_MATCH, OFPBMC_BAD_LEN})) << size;
        } else if (size > 64) {
            EXPECT_EQ(check_instructions(mod->instructions, 200),
                      (Error{OFPET_BAD_INSTRUCTION, OFPBIC_BAD_LEN}))
                << size;
        }
    }
}

TEST(GroupMod, IsReadFieldByFieldWithItsBuckets)
{
    const Message message =
        hex("04 0f 00 30  00 00 00 00"                            // header
            "00 00 03 00  00 00 00 09"                            // add, fast failover, group 9
            "00 20 00 00  00 00 00 05  ff ff ff ff  00 00 00 00"  // bucket: weight, watch
            "00 00 00 10  00 00 00 05  00 00 00 00 00 00 00 00"); // output 5
    const auto mod = parse_group_mod(message);
    ASSERT_TRUE(mod);
    EXPECT_EQ(mod->command, OFPGC_ADD);
    EXPECT_EQ(mod->type, OFPGT_FF);
    EXPECT_EQ(mod->group_id, 9U);
    BucketWalk buckets(mod->buckets);
    const auto bucket = buckets.next();
    ASSERT_TRUE(bucket);
    EXPECT_EQ(bucket->watch_port, 5U);
    EXPECT_EQ(bucket->watch_group, OFPG_ANY);
    EXPECT_EQ(bucket->actions.size(), 16U);
    EXPECT_FALSE(buckets.next());
    EXPECT_FALSE(buckets.truncated());
}

TEST(GroupMod, CutShortIsRefused)
{
    const Message message = build::group_mod(OFPGC_ADD, OFPGT_ALL, 1, {build::bucket(1)});
    for (size_t size = 0; size < message.size(); size++) {
        Message part(message.begin(), message.begin() + static_cast<long>(size));
        EXPECT_EQ(parse_group_mod(part).error(), BAD_LEN) << size;
        if (size < GROUP_MOD_SIZE) {
            continue;
        }
        store(&part[2], static_cast<uint16_t>(size));
        const auto mod = parse_group_mod(part);
        ASSERT_TRUE(mod);
        EXPECT_EQ(check_buckets(mod->buckets, OFPGT_ALL).has_value(), size > GROUP_MOD_SIZE);
    }
}

TEST(Walk, EndsAtARecordThatCannotBe)
{
    for (const char *text : {"00 00 00 00  00 00 00 00",              // length 0
                             "00 00 00 04  00 00 00 00",              // shorter than a record
                             "00 00 00 0c  00 00 00 00  00 00 00 00", // no multiple of 8
                             "00 00 00 10  00 00 00 00",              // longer than what is left
                             "00 00 00"}) {                           // no header
        const Message bytes = hex(text);
        ActionWalk walk(bytes);
        EXPECT_FALSE(walk.next()) << text;
        EXPECT_TRUE(walk.truncated()) << text;
    }
}

TEST(Names, AreTheStandards)
{
    EXPECT_EQ(error_name({OFPET_BAD_MATCH, OFPBMC_BAD_PREREQ}), "OFPBMC_BAD_PREREQ");
    EXPECT_EQ(error_name({OFPET_BAD_REQUEST, OFPBRC_MULTIPART_BUFFER_OVERFLOW}),
              "OFPBRC_MULTIPART_BUFFER_OVERFLOW");
    EXPECT_EQ(error_name({OFPET_BAD_ACTION, OFPBAC_BAD_SET_ARGUMENT}), "OFPBAC_BAD_SET_ARGUMENT");
    EXPECT_EQ(error_name({OFPET_BAD_INSTRUCTION, OFPBIC_EPERM}), "OFPBIC_EPERM");
    EXPECT_EQ(error_name({OFPET_FLOW_MOD_FAILED, OFPFMFC_BAD_FLAGS}), "OFPFMFC_BAD_FLAGS");
    EXPECT_EQ(error_name({OFPET_GROUP_MOD_FAILED, OFPGMFC_EPERM}), "OFPGMFC_EPERM");
    EXPECT_EQ(error_name({OFPET_GROUP_MOD_FAILED, 15}), "unknown error");
    EXPECT_EQ(error_name({7, 0}), "unknown error");
    EXPECT_EQ(error_name({OFPET_HELLO_FAILED, 0}), "unknown error");
    EXPECT_EQ(message_name(OFPT_FLOW_MOD), "flow-mod");
    EXPECT_EQ(message_name(OFPT_METER_MOD), "meter-mod");
    EXPECT_EQ(message_name(30), "unknown message");
}

} // namespace
