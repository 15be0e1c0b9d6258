#include "switch/fixture.h"

namespace {

using namespace openflow;
using build::Message;

class GroupTest : public SwitchTest {
protected:
    static Error failed(GroupModFailedCode code) { return {OFPET_GROUP_MOD_FAILED, code}; }

    std::optional<Error> add(uint32_t id, std::initializer_list<Message> buckets = {})
    {
        return send_group(build::group_mod(OFPGC_ADD, OFPGT_ALL, id, buckets));
    }
};

TEST_F(GroupTest, IsKeptAsItWasReceived)
{
    const Message message = build::group_mod(
        OFPGC_ADD, OFPGT_FF, 9, {build::bucket(1), build::bucket(2), build::bucket(OFPP_ALL)});
    ASSERT_FALSE(send_group(message));
    now_ += 3;
    const auto view = switch_.group(CLIENT, 9);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->id, 9U);
    EXPECT_EQ(view->type, OFPGT_FF);
    EXPECT_EQ(view->bucket_count, 3U);
    EXPECT_EQ(Message(view->buckets.begin(), view->buckets.end()),
              Message(message.begin() + GROUP_MOD_SIZE, message.end()));
    EXPECT_EQ(view->references, 0U);
    EXPECT_EQ(view->age_seconds, 3U);
    EXPECT_FALSE(switch_.group(OTHER, 9));
    EXPECT_FALSE(switch_.group(CLIENT, 8));
}

TEST_F(GroupTest, IsAddedOnce)
{
    ASSERT_FALSE(add(1));
    EXPECT_EQ(add(1, {build::bucket(1)}), failed(OFPGMFC_GROUP_EXISTS));
    EXPECT_EQ(switch_.group(CLIENT, 1)->bucket_count, 0U);
}

TEST_F(GroupTest, HasAnIdUpToTheHighest)
{
    EXPECT_FALSE(add(0));
    EXPECT_FALSE(add(OFPG_MAX));
    EXPECT_EQ(add(OFPG_MAX + uint32_t{1}), failed(OFPGMFC_INVALID_GROUP));
    EXPECT_EQ(add(OFPG_ALL), failed(OFPGMFC_INVALID_GROUP));
    EXPECT_EQ(add(OFPG_ANY), failed(OFPGMFC_INVALID_GROUP));
}

TEST_F(GroupTest, IsOfTypeAllOrFastFailover)
{
    EXPECT_EQ(send_group(build::group_mod(OFPGC_ADD, OFPGT_SELECT, 1)), failed(OFPGMFC_BAD_TYPE));
    EXPECT_EQ(send_group(build::group_mod(OFPGC_ADD, OFPGT_INDIRECT, 1)), failed(OFPGMFC_BAD_TYPE));
    EXPECT_EQ(send_group(build::group_mod(OFPGC_ADD, 4, 1)), failed(OFPGMFC_BAD_TYPE));
}

TEST_F(GroupTest, MessageOfUnknownCommandIsRefused)
{
    EXPECT_EQ(send_group(build::group_mod(3, OFPGT_ALL, 1)), failed(OFPGMFC_BAD_COMMAND));
}

TEST_F(GroupTest, ModifyReplacesTypeAndBucketsOfAGroupThatExists)
{
    EXPECT_EQ(send_group(build::group_mod(OFPGC_MODIFY, OFPGT_ALL, 1)),
              failed(OFPGMFC_UNKNOWN_GROUP));
    ASSERT_FALSE(add(1));
    ASSERT_FALSE(send_group(build::group_mod(OFPGC_MODIFY, OFPGT_FF, 1, {build::bucket(5)})));
    EXPECT_EQ(switch_.group(CLIENT, 1)->type, OFPGT_FF);
    EXPECT_EQ(switch_.group(CLIENT, 1)->bucket_count, 1U);
    EXPECT_EQ(send_group(build::group_mod(OFPGC_MODIFY, OFPGT_ALL, 1, {build::bucket(0)})),
              (Error{OFPET_BAD_ACTION, OFPBAC_BAD_OUT_PORT}));
    EXPECT_EQ(switch_.group(CLIENT, 1)->type, OFPGT_FF);
}

TEST_F(GroupTest, DoesNotWatchOtherGroups)
{
    EXPECT_EQ(add(1, {build::bucket(OFPP_ANY, 7, {build::output(1)})}),
              failed(OFPGMFC_WATCH_UNSUPPORTED));
}

TEST_F(GroupTest, IsBoundedInNumberAndBuckets)
{
    agent::Switch small({.groups = 2, .buckets_per_group = 1, .ports = 48});
    const auto add = [&small](uint32_t id, std::initializer_list<Message> buckets) {
        return small.group_mod(CLIENT, build::group_mod(OFPGC_ADD, OFPGT_ALL, id, buckets));
    };
    EXPECT_EQ(add(1, {build::bucket(1), build::bucket(2)}), failed(OFPGMFC_OUT_OF_BUCKETS));
    EXPECT_FALSE(add(1, {build::bucket(1)}));
    EXPECT_FALSE(add(2, {}));
    EXPECT_EQ(add(3, {}), failed(OFPGMFC_OUT_OF_GROUPS));
    EXPECT_EQ(
        small.group_mod(CLIENT, build::group_mod(OFPGC_MODIFY, OFPGT_ALL, 1, {build::bucket(49)})),
        (Error{OFPET_BAD_ACTION, OFPBAC_BAD_OUT_PORT}));
    EXPECT_EQ(small.group_mod(CLIENT,
                              build::group_mod(OFPGC_MODIFY, OFPGT_ALL, 1,
                                               {build::bucket(49, OFPG_ANY, {build::output(1)})})),
              failed(OFPGMFC_BAD_WATCH));
    EXPECT_EQ(small.group_count(CLIENT), 2U);
}

TEST_F(GroupTest, CountsTheActionsThatNameIt)
{
    ASSERT_FALSE(add(1));
    ASSERT_FALSE(add(2));
    const auto to = [](std::initializer_list<Message> actions) {
        return build::write_actions(actions);
    };
    const auto references = [this](uint32_t id) { return switch_.group(CLIENT, id)->references; };
    ASSERT_FALSE(send({.match = in_port(1), .instructions = to({build::group_action(1)})}));
    ASSERT_FALSE(send({.match = in_port(2),
                       .instructions = to({build::group_action(1), build::group_action(2)})}));
    EXPECT_EQ(references(1), 2U);
    EXPECT_EQ(references(2), 1U);
    ASSERT_FALSE(send({.match = in_port(1), .instructions = to({build::group_action(2)})}));
    EXPECT_EQ(references(1), 1U);
    EXPECT_EQ(references(2), 2U);
    ASSERT_FALSE(send({.command = OFPFC_MODIFY_STRICT,
                       .match = in_port(2),
                       .instructions = to({build::output(1)})}));
    EXPECT_EQ(references(1), 0U);
    ASSERT_FALSE(send({.command = OFPFC_DELETE}));
    EXPECT_EQ(references(2), 0U);
}

TEST_F(GroupTest, TakesTheRulesThatNameItAlongWhenDeleted)
{
    ASSERT_FALSE(add(1));
    ASSERT_FALSE(add(2));
    for (uint32_t port = 1; port <= 4; port++) {
        ASSERT_FALSE(
            send({.match = in_port(port),
                  .instructions = build::write_actions(
                      {port == 4 ? build::output(1) : build::group_action(1 + port % 2)})}));
    }
    EXPECT_EQ(switch_.next_rule_of_group(CLIENT, TABLE, 0, 2), 1U);
    EXPECT_EQ(switch_.next_rule_of_group(CLIENT, TABLE, 1, 2), 3U);
    EXPECT_EQ(switch_.next_rule_of_group(CLIENT, TABLE, 3, 2), 0U);
    ASSERT_FALSE(send_group(build::group_mod(OFPGC_DELETE, OFPGT_ALL, 2)));
    EXPECT_EQ(ids(), (std::vector<uint32_t>{2, 4}));
    EXPECT_FALSE(switch_.group(CLIENT, 2));
    EXPECT_TRUE(switch_.group(CLIENT, 1));
}

TEST_F(GroupTest, DeleteOfAllLeavesTheRulesWithoutGroups)
{
    for (uint32_t id = 0; id < 5; id++) {
        ASSERT_FALSE(add(id));
        ASSERT_FALSE(send({.match = in_port(1 + id),
                           .instructions = build::write_actions({build::group_action(id)})}));
    }
    ASSERT_FALSE(send({.match = in_port(9)}));
    ASSERT_FALSE(send_group(build::group_mod(OFPGC_DELETE, OFPGT_ALL, OFPG_ALL)));
    EXPECT_EQ(switch_.group_count(CLIENT), 0U);
    EXPECT_EQ(ids(), std::vector<uint32_t>{6});
}

TEST_F(GroupTest, DeleteOfNothingIsNoErrorButMustNameAGroup)
{
    EXPECT_FALSE(send_group(build::group_mod(OFPGC_DELETE, OFPGT_ALL, 77)));
    EXPECT_EQ(send_group(build::group_mod(OFPGC_DELETE, OFPGT_ALL, OFPG_ANY)),
              failed(OFPGMFC_INVALID_GROUP));
    EXPECT_FALSE(send_group(build::group_mod(OFPGC_DELETE, OFPGT_ALL, OFPG_ALL)));
}

TEST_F(GroupTest, IsFoundInOrder)
{
    for (const uint32_t id : {7U, 0U, uint32_t{OFPG_MAX}}) {
        ASSERT_FALSE(add(id));
    }
    EXPECT_EQ(switch_.next_group(CLIENT, -1), 0U);
    EXPECT_EQ(switch_.next_group(CLIENT, 0), 7U);
    EXPECT_EQ(switch_.next_group(CLIENT, 7), OFPG_MAX);
    EXPECT_FALSE(switch_.next_group(CLIENT, OFPG_MAX));
    EXPECT_FALSE(switch_.next_group(CLIENT, int64_t{1} << 40));
    EXPECT_FALSE(switch_.next_group(OTHER, -1));
}

TEST_F(GroupTest, BelongsToItsClient)
{
    ASSERT_FALSE(add(1));
    EXPECT_EQ(send({.instructions = build::write_actions({build::group_action(1)})}, OTHER),
              (Error{OFPET_BAD_ACTION, OFPBAC_BAD_OUT_GROUP}));
}

} // namespace
