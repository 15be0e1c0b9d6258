// What becomes of packets.
#include "switch/packet_fixture.h"

namespace {

using namespace openflow;
using build::Message;

Message goto_table(uint8_t table) { return {0, OFPIT_GOTO_TABLE, 0, 8, table, 0, 0, 0}; }

Message write_metadata(uint64_t value, uint64_t mask)
{
    Message message(24);
    store<uint16_t>(message.data(), OFPIT_WRITE_METADATA);
    store<uint16_t>(message.data() + 2, 24);
    store<uint64_t>(message.data() + 8, value);
    store<uint64_t>(message.data() + 16, mask);
    return message;
}

Message instruction(uint16_t type, std::initializer_list<Message> actions)
{
    Message message = build::write_actions(actions);
    store<uint16_t>(message.data(), type);
    return message;
}

Message clear_actions() { return {0, OFPIT_CLEAR_ACTIONS, 0, 8, 0, 0, 0, 0}; }

Message set_field(const Message &oxm)
{
    Message message = {0, OFPAT_SET_FIELD, 0, 0};
    message.insert(message.end(), oxm.begin(), oxm.end());
    message.resize((message.size() + 7) / 8 * 8);
    store<uint16_t>(message.data() + 2, static_cast<uint16_t>(message.size()));
    return message;
}

Message push_vlan() { return {0, OFPAT_PUSH_VLAN, 0, 8, 0x81, 0, 0, 0}; }
Message pop_vlan() { return {0, OFPAT_POP_VLAN, 0, 8, 0, 0, 0, 0}; }

TEST_F(PacketTest, TheRuleOfHighestPriorityCounts)
{
    add(10, any, build::write_actions({build::output(1)}));
    add(30, in_port(7), build::write_actions({build::output(3)}));
    add(20, in_port(7), build::write_actions({build::output(2)}));
    const agent::Trace result = trace(port(7));
    ASSERT_EQ(result.visits.size(), 1U);
    EXPECT_EQ(result.visits[0].table, TABLE);
    EXPECT_EQ(result.visits[0].rule, 2U);
    EXPECT_EQ(result.visits[0].priority, 30);
    EXPECT_FALSE(result.visits[0].better);
    EXPECT_EQ(result.action_set, build::output(3));
    EXPECT_EQ(ports(port(7)), std::vector<uint32_t>{3});
    EXPECT_EQ(ports(port(8)), std::vector<uint32_t>{1});
}

TEST_F(PacketTest, OfEqualPriorityTheSmallestIdCounts)
{
    add(5, build::match({build::oxm64(OFPXMT_TUNNEL_ID, 9)}),
        build::write_actions({build::output(1)}));
    add(5, in_port(7), build::write_actions({build::output(2)}));
    const Message packet = together({port(7), build::oxm64(OFPXMT_TUNNEL_ID, 9)});
    EXPECT_EQ(trace(packet).visits[0].rule, 1U);
    ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT,
                       .priority = 5,
                       .match = build::match({build::oxm64(OFPXMT_TUNNEL_ID, 9)})}));
    EXPECT_EQ(trace(packet).visits[0].rule, 2U);
}

TEST_F(PacketTest, WithoutARuleItIsDropped)
{
    add(10, in_port(1), build::write_actions({build::output(1)}));
    const agent::Trace result = trace(port(2));
    EXPECT_EQ(result.end, agent::TraceEnd::no_rule);
    EXPECT_EQ(result.visits[0].rule, 0U);
    EXPECT_TRUE(result.outputs.empty());
    ASSERT_TRUE(result.visits[0].better); // every rule is better than none
    EXPECT_EQ(result.visits[0].better->rule, 1U);
    EXPECT_EQ(result.visits[0].better->fields, 1U);
}

TEST_F(PacketTest, WithoutARuleItIsForwardedNormallyWhenThatIsPermitted)
{
    add(10, in_port(1), build::write_actions({build::output(1)}));
    permit_ = true;
    EXPECT_EQ(trace(port(2)).end, agent::TraceEnd::permitted);
    EXPECT_EQ(ports(port(2)), std::vector<uint32_t>{OFPP_NORMAL});
    EXPECT_EQ(trace(port(1)).end, agent::TraceEnd::carried_out);
}

TEST_F(PacketTest, InATableNobodyProgrammedNothingMatches)
{
    const agent::Trace result = trace(port(2));
    EXPECT_EQ(result.end, agent::TraceEnd::no_rule);
    ASSERT_EQ(result.visits.size(), 1U);
    EXPECT_FALSE(result.visits[0].better);
}

TEST_F(PacketTest, TheBetterRuleThatNearlyMatchedNamesTheFieldThatDiffers)
{
    add(1, any, build::write_actions({build::output(1)}));
    add(50, build::five_tuple(0x0a000001, 0x0a000002, 80, 443, 0xff000000),
        build::write_actions({build::output(5)}));
    add(60, in_port(1), build::write_actions({build::output(6)}));
    add(70, build::match({build::oxm16(OFPXMT_ETH_TYPE, 0x86dd), build::oxm8(OFPXMT_IP_PROTO, 58)}),
        build::write_actions({build::output(7)}));
    const Message packet = together(
        {port(2), build::oxm16(OFPXMT_ETH_TYPE, 0x0800), build::oxm8(OFPXMT_IP_PROTO, 6),
         build::oxm32(OFPXMT_IPV4_SRC, 0x0a010203), build::oxm32(OFPXMT_IPV4_DST, 0x0a000002),
         build::oxm16(OFPXMT_TCP_SRC, 80), build::oxm16(OFPXMT_TCP_DST, 80)});
    const agent::Trace result = trace(packet);
    EXPECT_EQ(result.visits[0].rule, 1U);
    ASSERT_TRUE(result.visits[0].better);
    const agent::NearMiss &miss = *result.visits[0].better; // 60 is as near, and further above
    EXPECT_EQ(miss.rule, 2U);
    EXPECT_EQ(miss.priority, 50);
    EXPECT_EQ(miss.fields, 1U);
    ASSERT_EQ(miss.differences.size(), 1U);
    const auto &wanted = miss.differences[0].wanted;
    EXPECT_EQ(Message(wanted.begin(), wanted.end()), build::oxm16(OFPXMT_TCP_DST, 443));
    EXPECT_EQ(miss.differences[0].has, (Message{0, 80}));
}

TEST_F(PacketTest, OfManyFieldsThatDifferTheFirstTwoAreListed)
{
    add(50, build::five_tuple(1, 2, 3, 4), build::write_actions({build::output(5)}));
    const agent::Trace result = trace(port(2));
    ASSERT_TRUE(result.visits[0].better);
    EXPECT_EQ(result.visits[0].better->fields, 6U);
    EXPECT_EQ(result.visits[0].better->differences.size(), 2U);
}

TEST_F(PacketTest, ARuleWithAnOpaqueFieldMatchesNoPacket)
{
    const std::array<uint8_t, 4> data = {0, 0, 0, 1};
    add(9, build::match({build::item(37, data)}), build::write_actions({build::output(1)}));
    add(8, any, build::write_actions({build::output(2)}));
    const agent::Trace result = trace(port(1));
    EXPECT_EQ(result.visits[0].rule, 2U);
    ASSERT_TRUE(result.visits[0].better);
    EXPECT_EQ(result.visits[0].better->rule, 1U);
    EXPECT_EQ(result.visits[0].better->differences[0].wanted.size(), 4U);
    EXPECT_TRUE(result.visits[0].better->differences[0].has.empty());
}

TEST_F(PacketTest, GoToLeadsThroughTables)
{
    tables_ = {10, 20, 30};
    add(1, any, together({build::write_actions({build::output(1)}), goto_table(30)}), 10);
    add(1, any, build::write_actions({build::output(2)}), 20);
    add(1, in_port(4), build::write_actions({build::output(3)}), 30);
    EXPECT_EQ(ports(port(4)), std::vector<uint32_t>{3});
    EXPECT_EQ(trace(port(4)).visits.size(), 2U);
    const agent::Trace missed = trace(port(5)); // what was written is not carried out then
    EXPECT_EQ(missed.end, agent::TraceEnd::no_rule);
    EXPECT_TRUE(missed.outputs.empty());
}

TEST_F(PacketTest, GoToATableThatThereIsNotDrops)
{
    add(1, any, goto_table(210));
    const agent::Trace result = trace(port(1));
    EXPECT_EQ(result.end, agent::TraceEnd::no_table);
    EXPECT_EQ(result.missing_table, 210);
}

TEST_F(PacketTest, InstructionsAreCarriedOutInTheStandardsOrder)
{
    tables_ = {10, 20};
    add(1, any,
        together({goto_table(20), write_metadata(0x1234, 0xff00),
                  build::write_actions({build::output(1)}), clear_actions(),
                  instruction(OFPIT_APPLY_ACTIONS,
                              {build::output(9), push_vlan(),
                               set_field(build::oxm16(OFPXMT_VLAN_VID, OFPVID_PRESENT | 77))})}),
        10);
    add(5,
        build::match({build::oxm64(OFPXMT_METADATA, 0x1200),
                      build::oxm16(OFPXMT_VLAN_VID, OFPVID_PRESENT | 77)}),
        build::write_actions({build::output(2)}), 20);
    EXPECT_EQ(ports(port(1)), (std::vector<uint32_t>{9, 2})); // 2 takes the place of 1
}

TEST_F(PacketTest, TheActionSetHasOneActionOfAKindInAFixedOrder)
{
    const Message vid = set_field(build::oxm16(OFPXMT_VLAN_VID, OFPVID_PRESENT | 5));
    const Message other_vid = set_field(build::oxm16(OFPXMT_VLAN_VID, OFPVID_PRESENT | 6));
    const Message pcp = set_field(build::oxm8(OFPXMT_VLAN_PCP, 3));
    add(1, any,
        build::write_actions(
            {build::output(1), vid, push_vlan(), build::output(2), pcp, other_vid, pop_vlan()}));
    EXPECT_EQ(trace(port(9)).action_set,
              together({pop_vlan(), push_vlan(), other_vid, pcp, build::output(2)}));
    EXPECT_EQ(ports(port(9)), std::vector<uint32_t>{2});
}

TEST_F(PacketTest, APacketIsNotSentBackUnlessAskedTo)
{
    add(2, in_port(4), build::write_actions({build::output(4)}));
    add(1, any, build::write_actions({build::output(OFPP_IN_PORT)}));
    const agent::Trace result = trace(port(4));
    ASSERT_EQ(result.outputs.size(), 1U);
    EXPECT_TRUE(result.outputs[0].held_back);
    EXPECT_EQ(ports(port(5)), std::vector<uint32_t>{OFPP_IN_PORT});
}

TEST_F(PacketTest, AGroupOfTypeAllCopiesToEveryBucketAndReplacesTheOutput)
{
    ASSERT_FALSE(send_group(build::group_mod(
        OFPGC_ADD, OFPGT_ALL, 7, {build::bucket(1), build::bucket(2), build::bucket(3)})));
    add(1, any, build::write_actions({build::output(9), build::group_action(7)}));
    const agent::Trace result = trace(port(2));
    EXPECT_EQ(result.action_set, build::group_action(7));
    ASSERT_EQ(result.outputs.size(), 3U);
    EXPECT_EQ(result.outputs[2].group, 7U);
    EXPECT_EQ(result.outputs[2].bucket, 2U);
    EXPECT_EQ(ports(port(2)), (std::vector<uint32_t>{1, 3}));
}

TEST_F(PacketTest, FastFailoverTakesTheFirstBucketWhosePortIsUp)
{
    const auto failover = [](uint32_t number) {
        return build::bucket(number, OFPG_ANY, {build::output(number)});
    };
    ASSERT_FALSE(send_group(
        build::group_mod(OFPGC_ADD, OFPGT_FF, 7, {failover(1), failover(2), failover(3)})));
    add(1, any, build::write_actions({build::group_action(7)}));
    EXPECT_EQ(ports(port(9)), std::vector<uint32_t>{1});
    is_up_ = [](uint32_t number) { return number == 3; };
    EXPECT_EQ(ports(port(9)), std::vector<uint32_t>{3});
    is_up_ = [](uint32_t) { return false; };
    EXPECT_TRUE(ports(port(9)).empty());
}

TEST_F(PacketTest, OnlyCountedPacketsLeaveATrace)
{
    ASSERT_FALSE(send_group(
        build::group_mod(OFPGC_ADD, OFPGT_ALL, 7, {build::bucket(1), build::bucket(2)})));
    add(5, in_port(4), build::write_actions({build::group_action(7)}));
    trace(port(4));
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->counters.packets, 0U);
    EXPECT_EQ(switch_.table(CLIENT, TABLE).lookups, 0U);
    switch_.count(trace(port(4)), 100);
    switch_.count(trace(port(4)), 60);
    switch_.count(trace(port(5)), 60); // no rule
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->counters.packets, 2U);
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->counters.bytes, 160U);
    EXPECT_EQ(switch_.table(CLIENT, TABLE).lookups, 3U);
    EXPECT_EQ(switch_.table(CLIENT, TABLE).matched, 2U);
    const auto group = switch_.group(CLIENT, 7);
    EXPECT_EQ(group->counters.packets, 2U);
    EXPECT_EQ(group->counters.bytes, 160U);
    ASSERT_EQ(group->bucket_counters.size(), 2U);
    EXPECT_EQ(group->bucket_counters[1].packets, 2U);
}

TEST_F(PacketTest, AModifyKeepsTheCountersUnlessItResetsThem)
{
    add(5, in_port(4), build::write_actions({build::output(1)}));
    switch_.count(trace(port(4)), 100);
    ASSERT_FALSE(send({.command = OFPFC_MODIFY, .flags = 0, .match = in_port(4)}));
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->counters.packets, 1U);
    ASSERT_FALSE(send({.priority = 5, .flags = 0, .match = in_port(4)}));
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->counters.packets, 1U);
    ASSERT_FALSE(send({.command = OFPFC_MODIFY_STRICT,
                       .priority = 5,
                       .flags = OFPFF_RESET_COUNTS,
                       .match = in_port(4)}));
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->counters.packets, 0U);
}

TEST_F(PacketTest, AGroupsModifySetsItsBucketsBack)
{
    ASSERT_FALSE(send_group(build::group_mod(OFPGC_ADD, OFPGT_ALL, 7, {build::bucket(1)})));
    add(5, any, build::write_actions({build::group_action(7)}));
    switch_.count(trace(port(4)), 100);
    ASSERT_FALSE(send_group(
        build::group_mod(OFPGC_MODIFY, OFPGT_ALL, 7, {build::bucket(1), build::bucket(2)})));
    const auto group = switch_.group(CLIENT, 7);
    EXPECT_EQ(group->counters.packets, 1U);
    ASSERT_EQ(group->bucket_counters.size(), 2U);
    EXPECT_EQ(group->bucket_counters[0].packets, 0U);
    switch_.count(trace(port(4)), 100);
    EXPECT_EQ(switch_.group(CLIENT, 7)->bucket_counters[1].packets, 1U);
}

TEST_F(PacketTest, FieldsAreCheckedAsThoseOfAMatchAndHaveNoMasks)
{
    const std::array<uint8_t, 4> data = {0, 0, 0, 1};
    EXPECT_FALSE(refusal({}));
    EXPECT_EQ(refusal(build::oxm32(OFPXMT_IPV4_DST, 1)),
              (Error{OFPET_BAD_MATCH, OFPBMC_BAD_PREREQ}));
    EXPECT_EQ(refusal(build::oxm64(OFPXMT_METADATA, 1, 1)),
              (Error{OFPET_BAD_MATCH, OFPBMC_BAD_MASK}));
    EXPECT_EQ(refusal(build::item(37, data)), (Error{OFPET_BAD_MATCH, OFPBMC_BAD_FIELD}));
    EXPECT_EQ(refusal({0x80, 0, 0, 4, 1}), (Error{OFPET_BAD_MATCH, OFPBMC_BAD_LEN}));
    EXPECT_EQ(refusal(together({port(1), port(1)})), (Error{OFPET_BAD_MATCH, OFPBMC_DUP_FIELD}));
}

// A thousand groups in one instruction, each with a thousand buckets.
TEST_F(PacketTest, APacketIsFollowedThroughABoundedNumberOfBuckets)
{
    Message group = build::group_mod(OFPGC_ADD, OFPGT_ALL, 7);
    const Message bucket = build::bucket(1);
    for (int i = 0; i < 1000; i++) {
        group.insert(group.end(), bucket.begin(), bucket.end());
    }
    store<uint16_t>(group.data() + 2, static_cast<uint16_t>(group.size()));
    ASSERT_FALSE(send_group(group));
    Message apply = {0, OFPIT_APPLY_ACTIONS, 0, 0, 0, 0, 0, 0};
    for (int i = 0; i < 1000; i++) {
        const Message action = build::group_action(7);
        apply.insert(apply.end(), action.begin(), action.end());
    }
    store<uint16_t>(apply.data() + 2, static_cast<uint16_t>(apply.size()));
    add(1, any, apply);
    const agent::Trace result = trace(port(4));
    EXPECT_EQ(result.end, agent::TraceEnd::cut);
    EXPECT_EQ(result.outputs.size(), agent::Trace::OUTPUTS_LISTED);
    EXPECT_LE(result.output_count, agent::Trace::STEPS);
    EXPECT_GT(result.output_count, agent::Trace::STEPS - 2000);
}

} // namespace
