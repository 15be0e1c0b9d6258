#include <string_view>
#include <unordered_set>

#include <gtest/gtest.h>

#include "flow/flow_identity.h"
#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

bool same(std::string_view a, std::string_view b)
{
    const FlowItemPtr left = parsed(std::string(a) + ",actions=drop");
    const FlowItemPtr right = parsed(std::string(b) + ",actions=drop");
    const bool result = same_rule(*left, *right);
    EXPECT_EQ(result, same_rule(*right, *left));
    if (result)
        EXPECT_EQ(rule_hash(*left), rule_hash(*right));
    else
        EXPECT_NE(rule_hash(*left), rule_hash(*right)); // no collision among these few
    return result;
}

TEST(FlowIdentity, PriorityAndMatchMakeTheRule)
{
    EXPECT_TRUE(same("tcp,tp_dst=80", "tp_dst=80,ip,nw_proto=6"));
    EXPECT_FALSE(same("priority=1,tcp", "priority=2,tcp"));
    EXPECT_FALSE(same("tcp,tp_dst=80", "tcp,tp_src=80"));
    EXPECT_FALSE(same("tcp,tp_dst=80", "udp,tp_dst=80"));
    EXPECT_FALSE(same("tcp,tp_dst=80", "tcp"));
    EXPECT_FALSE(same("ip,nw_src=10.0.0.0/8", "ip,nw_src=10.0.0.0/9"));
    EXPECT_TRUE(same("ip,nw_src=10.1.0.0/8", "ip,nw_src=10.0.0.0/255.0.0.0"));
    EXPECT_FALSE(same("ipv6,ipv6_src=::1", "ipv6,ipv6_src=1::"));
    EXPECT_FALSE(same("dl_vlan=0", "vlan_vid=0x1000/0x1000"));
    EXPECT_FALSE(same("cvlan=0", "dl_vlan=0"));
}

TEST(FlowIdentity, ListsCountWithTheirOrder)
{
    EXPECT_TRUE(same("batch_if=1:2:3", "batch_if=1-3"));
    EXPECT_FALSE(same("batch_if=1:2", "batch_if=2:1"));
    EXPECT_FALSE(same("ip_range=1", "ip_range=0:1"));
    EXPECT_TRUE(same("ip_range=1", "ip_range=1:0"));
    EXPECT_FALSE(same("flow_flag=1,reserve=1", "reserve=1,flow_flag=1"));
    EXPECT_FALSE(same("flow_flag=1", "flow_flag=1,flow_flag=1"));
    EXPECT_TRUE(same("exp(37)=00000001", "flow_flag=1"));
    EXPECT_FALSE(same("string=a", "string=b"));
}

// Records of other origin may carry masks of no effect and bits outside them.
TEST(FlowIdentity, MasksCountByTheirEffect)
{
    Record a;
    Record b;
    for (Record *record : {&a, &b}) {
        record->item.priority = 1;
        record->match().fields = bit(5) | bit(11);
        record->match().eth_type = 0x0800;
        record->match().ipv4_src = 0x0a000001;
    }
    a.mask.masked = bit(11);
    a.mask.ipv4_src = 0xffffffff;
    EXPECT_TRUE(same_rule(a.item, b.item));
    a.mask.ipv4_src = 0xff000000;
    EXPECT_FALSE(same_rule(a.item, b.item));
    b.mask.masked = bit(11);
    b.mask.ipv4_src = 0xff000000;
    b.match().ipv4_src = 0x0affffff;
    EXPECT_TRUE(same_rule(a.item, b.item));
    EXPECT_EQ(rule_hash(a.item), rule_hash(b.item));
    b.mask.ipv4_src = 0;
    a.match().fields = bit(5);
    EXPECT_TRUE(same_rule(a.item, b.item));
    EXPECT_EQ(rule_hash(a.item), rule_hash(b.item));
}

TEST(FlowIdentity, ActionsCountByWhatTravels)
{
    const auto same_list = [](std::string_view a, std::string_view b) {
        return same_actions(*parsed("actions=" + std::string(a)),
                            *parsed("actions=" + std::string(b)));
    };
    EXPECT_TRUE(same_list("drop", ""));
    EXPECT_TRUE(same_list("output:1", "write_actions(1)"));
    EXPECT_FALSE(same_list("1", "2"));
    EXPECT_FALSE(same_list("1", "group:1"));
    EXPECT_FALSE(same_list("1,2", "2,1"));
    EXPECT_FALSE(same_list("1", "1,1"));
    EXPECT_FALSE(same_list("group:1", "group:2"));
    EXPECT_FALSE(same_list("exp(1):1", "exp(2):1"));
    EXPECT_FALSE(same_list("exp(0):1:2", "exp(0):1:3"));
    EXPECT_FALSE(same_list("exp(3):0:1:2:3:4:5", "exp(3):0:1:2:3:4:6"));
    Record a;
    Record b;
    a.add_experimenter_action(1, 5, 0);
    b.add_experimenter_action(1, 5, 0);
    reinterpret_cast<OfpActionExperimenter *>(a.item.actions[0])->body.value[1] = 9;
    EXPECT_TRUE(same_actions(a.item, b.item));
    b.item.actions[0] = nullptr;
    EXPECT_FALSE(same_actions(a.item, b.item));
}

TEST(FlowIdentity, HashesOfManyRulesDiffer)
{
    Random random(7);
    std::unordered_set<std::size_t> seen;
    constexpr int rules = 5000;
    for (int i = 0; i < rules; ++i) {
        const FlowItemPtr item = parsed("tcp,nw_src=10.0." + std::to_string(i / 250) + "." +
                                        std::to_string(i % 250) + ",actions=drop");
        seen.insert(rule_hash(*item));
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(rules));
}

} // namespace
} // namespace flow_test
