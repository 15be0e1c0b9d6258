#include <gtest/gtest.h>

#include "openflow/build.h"
#include "openflow/message.h"

namespace {

using namespace openflow;
using build::hex;
using build::Message;

Error bad_action(BadActionCode code) { return {OFPET_BAD_ACTION, code}; }
Error bad_instruction(BadInstructionCode code) { return {OFPET_BAD_INSTRUCTION, code}; }
Error bad_group(GroupModFailedCode code) { return {OFPET_GROUP_MOD_FAILED, code}; }

TEST(Actions, OutputGoesToPortsAndToReservedPortsThatARuleMayName)
{
    for (const uint32_t port : {uint32_t{1}, uint32_t{OFPP_MAX}, uint32_t{OFPP_IN_PORT},
                                uint32_t{OFPP_NORMAL}, uint32_t{OFPP_FLOOD}, uint32_t{OFPP_ALL},
                                uint32_t{OFPP_CONTROLLER}, uint32_t{OFPP_LOCAL}}) {
        EXPECT_FALSE(check_actions(build::output(port))) << port;
    }
    for (const uint32_t port :
         {uint32_t{0}, OFPP_MAX + uint32_t{1}, uint32_t{OFPP_TABLE}, uint32_t{OFPP_ANY}}) {
        EXPECT_EQ(check_actions(build::output(port)), bad_action(OFPBAC_BAD_OUT_PORT)) << port;
    }
}

TEST(Actions, HaveTheirLength)
{
    EXPECT_EQ(check_actions(hex("00 00 00 08  00 00 00 01")), bad_action(OFPBAC_BAD_LEN));
    EXPECT_EQ(check_actions(hex("00 16 00 10  00 00 00 01  00 00 00 00 00 00 00 00")),
              bad_action(OFPBAC_BAD_LEN));
    EXPECT_EQ(check_actions(hex("00 16 00 04  00 00 00 01")), bad_action(OFPBAC_BAD_LEN));
    EXPECT_EQ(check_actions(hex("00 16 00 10  00 00 00 01")), bad_action(OFPBAC_BAD_LEN));
    EXPECT_EQ(check_actions(hex("00 16 00")), bad_action(OFPBAC_BAD_LEN));
}

TEST(Actions, OfUnknownTypeAreRefused)
{
    EXPECT_EQ(check_actions(hex("00 01 00 08  00 00 00 00")), bad_action(OFPBAC_BAD_TYPE));
    EXPECT_EQ(check_actions(hex("f0 00 00 08  00 00 00 00")), bad_action(OFPBAC_BAD_TYPE));
}

TEST(Actions, NameAGroupThatMayExist)
{
    EXPECT_FALSE(check_actions(build::group_action(OFPG_MAX)));
    EXPECT_EQ(check_actions(build::group_action(OFPG_ANY)), bad_action(OFPBAC_BAD_OUT_GROUP));
    EXPECT_EQ(check_actions(build::group_action(OFPG_ALL)), bad_action(OFPBAC_BAD_OUT_GROUP));
}

TEST(Actions, OfTheExperimenterHaveFourFormsAndNoOther)
{
    EXPECT_FALSE(check_actions(build::experimenter_action(0, 24)));
    EXPECT_FALSE(check_actions(build::experimenter_action(1, 16)));
    EXPECT_FALSE(check_actions(build::experimenter_action(2, 16)));
    EXPECT_FALSE(check_actions(build::experimenter_action(3, 24)));
    EXPECT_EQ(check_actions(build::experimenter_action(4, 16)), bad_action(OFPBAC_BAD_EXP_TYPE));
    EXPECT_EQ(check_actions(build::experimenter_action(0, 16)), bad_action(OFPBAC_BAD_LEN));
    EXPECT_EQ(check_actions(build::experimenter_action(1, 24)), bad_action(OFPBAC_BAD_LEN));
    EXPECT_EQ(check_actions(hex("ff ff 00 08  00 00 0f e2")), bad_action(OFPBAC_BAD_LEN));
    EXPECT_EQ(check_actions(hex("ff ff 00 10  00 00 0f e1  00 00 00 00 00 00 00 00")),
              bad_action(OFPBAC_BAD_EXPERIMENTER));
}

TEST(Actions, PushOnlyTagsThatExist)
{
    EXPECT_FALSE(check_actions(hex("00 11 00 08  81 00 00 00"))); // push-vlan
    EXPECT_FALSE(check_actions(hex("00 13 00 08  88 47 00 00"))); // push-mpls
    EXPECT_FALSE(check_actions(hex("00 1a 00 08  88 e7 00 00"))); // push-pbb
    EXPECT_EQ(check_actions(hex("00 11 00 08  08 00 00 00")), bad_action(OFPBAC_BAD_ARGUMENT));
    EXPECT_EQ(check_actions(hex("00 13 00 08  81 00 00 00")), bad_action(OFPBAC_BAD_ARGUMENT));
}

TEST(Actions, SetOneFieldThatAPacketHasToAValueItCanHold)
{
    EXPECT_FALSE(check_actions(hex("00 19 00 10  80 00 0c 02  10 05 00 00 00 00 00 00"))); // vlan 5
    EXPECT_EQ(check_actions(hex("00 19 00 10  80 00 00 04  00 00 00 01 00 00 00 00")), // in_port
              bad_action(OFPBAC_BAD_SET_TYPE));
    EXPECT_EQ(check_actions(hex("00 19 00 10  ff ff 78 02  00 01 00 00 00 00 00 00")), // private
              bad_action(OFPBAC_BAD_SET_TYPE));
    EXPECT_EQ(check_actions(hex("00 19 00 10  80 00 0d 04  10 05 1f ff 00 00 00 00")), // masked
              bad_action(OFPBAC_BAD_SET_TYPE));
    EXPECT_EQ(check_actions(hex("00 19 00 10  80 00 0c 03  10 05 00 00 00 00 00 00")),
              bad_action(OFPBAC_BAD_SET_LEN));
    EXPECT_EQ(check_actions(hex("00 19 00 10  80 00 0c 40  10 05 00 00 00 00 00 00")),
              bad_action(OFPBAC_BAD_SET_LEN));
    EXPECT_EQ(check_actions(hex("00 19 00 10  80 00 0c 02  20 05 00 00 00 00 00 00")),
              bad_action(OFPBAC_BAD_SET_ARGUMENT));
}

TEST(Instructions, OfUnknownAndUnsupportedTypesAreRefused)
{
    EXPECT_EQ(check_instructions(hex("00 07 00 08  00 00 00 00"), 0),
              bad_instruction(OFPBIC_UNKNOWN_INST));
    EXPECT_EQ(check_instructions(hex("00 06 00 08  00 00 00 01"), 0), // meter
              bad_instruction(OFPBIC_UNSUP_INST));
    EXPECT_EQ(check_instructions(hex("ff ff 00 08  00 00 0f e2"), 0),
              bad_instruction(OFPBIC_BAD_EXPERIMENTER));
}

TEST(Instructions, HaveTheirLength)
{
    EXPECT_EQ(check_instructions(hex("00 03 00 10  00 00 00 00"), 0),
              bad_instruction(OFPBIC_BAD_LEN));
    EXPECT_EQ(check_instructions(hex("00 03 00 04  00 00 00 00"), 0),
              bad_instruction(OFPBIC_BAD_LEN));
    EXPECT_EQ(check_instructions(hex("00 05 00 10  00 00 00 00  00 00 00 00 00 00 00 00"), 0),
              bad_instruction(OFPBIC_BAD_LEN));
    EXPECT_EQ(check_instructions(hex("00 02 00 08  00 00 00 00"), 0),
              bad_instruction(OFPBIC_BAD_LEN));
    EXPECT_EQ(check_instructions(hex("00 03 00"), 0), bad_instruction(OFPBIC_BAD_LEN));
}

TEST(Instructions, MayBeNoneAndMayHaveNoActions)
{
    EXPECT_FALSE(check_instructions({}, 0));
    EXPECT_FALSE(check_instructions(build::write_actions({}), 0));
}

TEST(Instructions, GoToALaterTable)
{
    EXPECT_FALSE(check_instructions(hex("00 01 00 08  c9 00 00 00"), 200));
    EXPECT_EQ(check_instructions(hex("00 01 00 08  c8 00 00 00"), 200),
              bad_instruction(OFPBIC_BAD_TABLE_ID));
    EXPECT_EQ(check_instructions(hex("00 01 00 08  ff 00 00 00"), 200),
              bad_instruction(OFPBIC_BAD_TABLE_ID));
}

TEST(Instructions, OfOneTypeComeOnce)
{
    const Message once = build::write_actions({build::output(1)});
    EXPECT_EQ(check_instructions(build::join({once, once}), 0), bad_instruction(OFPBIC_UNSUP_INST));
}

TEST(Instructions, PassOnWhatIsWrongWithTheirActions)
{
    EXPECT_EQ(check_instructions(build::write_actions({build::output(1), build::output(0)}), 0),
              bad_action(OFPBAC_BAD_OUT_PORT));
}

TEST(Buckets, OfFastFailoverWatchSomething)
{
    const Message watches_port = build::bucket(1);
    const Message watches_group = build::bucket(OFPP_ANY, 7, {build::output(1)});
    const Message blind = build::bucket(OFPP_ANY, OFPG_ANY, {build::output(1)});
    EXPECT_FALSE(check_buckets(watches_port, OFPGT_FF));
    EXPECT_FALSE(check_buckets(watches_group, OFPGT_FF));
    EXPECT_EQ(check_buckets(blind, OFPGT_FF), bad_group(OFPGMFC_INVALID_GROUP));
    EXPECT_FALSE(check_buckets(blind, OFPGT_ALL));
    EXPECT_FALSE(check_buckets(watches_port, OFPGT_ALL));
}

TEST(Buckets, MayNameReservedPorts)
{
    EXPECT_FALSE(check_buckets(build::bucket(OFPP_ALL), OFPGT_ALL));
}

TEST(Buckets, WatchWhatCanBeWatched)
{
    EXPECT_EQ(check_buckets(build::bucket(0, OFPG_ANY, {build::output(1)}), OFPGT_FF),
              bad_group(OFPGMFC_BAD_WATCH));
    EXPECT_EQ(check_buckets(build::bucket(1, OFPG_ALL, {build::output(1)}), OFPGT_FF),
              bad_group(OFPGMFC_BAD_WATCH));
}

TEST(Buckets, HaveTheirLength)
{
    Message bucket = build::bucket(1);
    bucket[1] = 24;
    EXPECT_EQ(check_buckets(bucket, OFPGT_ALL), bad_action(OFPBAC_BAD_LEN));
    bucket[1] = 8;
    EXPECT_EQ(check_buckets(bucket, OFPGT_ALL), bad_group(OFPGMFC_BAD_BUCKET));
    bucket[1] = 40;
    EXPECT_EQ(check_buckets(bucket, OFPGT_ALL), bad_group(OFPGMFC_BAD_BUCKET));
}

TEST(Buckets, DoNotChainGroups)
{
    EXPECT_EQ(check_buckets(build::bucket(1, OFPG_ANY, {build::group_action(2)}), OFPGT_ALL),
              bad_group(OFPGMFC_CHAINING_UNSUPPORTED));
}

} // namespace
