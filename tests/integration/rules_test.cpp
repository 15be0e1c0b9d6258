// Rules and groups through the library.
#include <algorithm>
#include <set>

#include "integration/agent_test.h"
#include "integration/exchange.h"
#include "integration/flow_items.h"

namespace integration {
namespace {

constexpr uint16_t ETH_TYPE_IPV4 = 0x0800;

void match_tcp(OfpFlowItem &item, uint16_t port)
{
    item.match.fields = uint64_t{1} << OFP_FIELD_ETH_TYPE | uint64_t{1} << OFP_FIELD_IP_PROTO |
                        uint64_t{1} << OFP_FIELD_TCP_DST;
    item.match.eth_type = ETH_TYPE_IPV4;
    item.match.ip_proto = 6;
    item.match.tcp_dst = port;
}

std::vector<uint32_t> group_ids()
{
    std::vector<uint32_t> ids;
    OfpGroupID key{.group_id = 0xffffffff, .instance_id = CLIENT, .reserved_6 = {}};
    while (ask(OFP_MSG_GET_NEXT_GROUP_ID, OFP_TLV_GroupID, key, OFP_MSG_NEXT_GROUP_ID,
               OFP_TLV_GroupID, key) == 0) {
        ids.push_back(key.group_id);
    }
    return ids;
}

class Rules : public AgentTest {
protected:
    void SetUp() override { smooth_start(); }
};

TEST_F(Rules, AreAddedInOrderWithAResultEach)
{
    FlowItems items;
    items.add_range(1, 30); // three datagrams
    uint32_t call = 1;
    EXPECT_EQ(add_rules(items, &call), std::vector<uint64_t>(30, 0));
    EXPECT_EQ(call, 0u);
    EXPECT_EQ(rule_ids().size(), 30u);
}

TEST_F(Rules, ThatWereNotProgrammedAgainGoWithTheSmoothPeriod)
{
    FlowItems first;
    first.add_range(1, 20);
    add_rules(first);
    ASSERT_EQ(OFP_SmoothEnd(CLIENT), 0u);

    smooth_start();
    FlowItems second;
    second.add_range(11, 20);
    add_rules(second);
    EXPECT_EQ(rule_ids().size(), 30u);
    ASSERT_EQ(OFP_SmoothEnd(CLIENT), 0u);
    EXPECT_TRUE(within(std::chrono::seconds(5), [this] { return rule_ids().size() == 20; }));
    smooth_start();
    OFP_SmoothEnd(CLIENT); // nothing programmed: nothing kept
    EXPECT_TRUE(within(std::chrono::seconds(5), [this] { return rule_ids().empty(); }));
}

TEST_F(Rules, RefusalsReachTheCallerAsTheirResultCodes)
{
    FlowItems items;
    items.add(1);
    items.add(1).priority = 100; // the same match: adding it again replaces
    items.add(2).priority = 200;
    match_tcp(items[2], 80);
    items.add(0, 200); // in_port and tcp overlap: a packet may match both
    items[3].match.in_port = 5;
    items.add(6);
    items.last_to_group(99);
    match_tcp(items.add(7, 300), 443);
    items[5].match.fields &= ~(uint64_t{1} << OFP_FIELD_ETH_TYPE);
    items.add(8);

    uint32_t call = 1;
    const std::vector<uint64_t> results = add_rules(items, &call);
    EXPECT_EQ(call, 0u);
    EXPECT_EQ(results[0], 0u);
    EXPECT_EQ(results[1], 0u);
    EXPECT_EQ(results[2], 0u);
    EXPECT_EQ(results[3], uint64_t{OFP_RC_STATE});   // overlaps the one before
    EXPECT_EQ(results[4], uint64_t{OFP_RC_INVALID}); // no such group
    EXPECT_EQ(results[5], uint64_t{OFP_RC_INVALID}); // tcp without ip
    EXPECT_EQ(results[6], 0u);
    EXPECT_EQ(rule_ids().size(), 3u);
}

TEST_F(Rules, AreModifiedAndDeletedStrictlyAndLoosely)
{
    FlowItems items;
    items.add_range(1, 5);
    items.add(1, 200);
    add_rules(items);
    ASSERT_EQ(rule_ids().size(), 6u);

    FlowItems one;
    one.add(1, 200);
    uint64_t result = 1;
    EXPECT_EQ(OFP_ModifyFlowRule(CLIENT, TABLE, 1, one.data(), &result), 0u);
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(rule_ids().size(), 6u);

    EXPECT_EQ(OFP_DelFlowRule(CLIENT, TABLE, 1, one.data(), 1), 0u); // this priority only
    EXPECT_EQ(rule_ids().size(), 5u);
    EXPECT_EQ(OFP_DelFlowRule(CLIENT, TABLE, 1, one.data(), 0), 0u); // whatever the priority
    EXPECT_EQ(rule_ids().size(), 4u);
    FlowItems all;
    all.add(0, 1).match.fields = 0;
    EXPECT_EQ(OFP_DelFlowRule(CLIENT, TABLE, 1, all.data(), 0), 0u);
    EXPECT_TRUE(rule_ids().empty());
}

TEST_F(Rules, AThousandAreWalkedWithTheirContent)
{
    FlowItems items;
    items.add_range(1, 1000);
    ASSERT_EQ(add_rules(items), std::vector<uint64_t>(1000, 0));
    const std::vector<uint32_t> ids = rule_ids();
    ASSERT_EQ(ids.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));

    std::set<uint32_t> ports;
    std::vector<uint8_t> reply(OFP_LARGE_DATAGRAM_SIZE);
    for (const uint32_t id : ids) {
        uint64_t length = 0;
        ASSERT_EQ(OFP_get_RuleInfo(CLIENT, TABLE, id, reply.data(), &length), 0u);
        // Message head 8, rule id 12, counters 28, TLV header 4, flow-mod 48, match header 4 + 4.
        ASSERT_EQ(length, 8u + 12 + 28 + 4 + 48 + 16 + 8 + 16);
        const uint8_t *const port = reply.data() + 8 + 12 + 28 + 4 + 48 + 8;
        ports.insert(uint32_t{port[2]} << 8 | port[3]);
        OfpFRStatsInfo stats{};
        stats.packet_count = 1;
        ASSERT_EQ(OFP_get_RuleStats(CLIENT, TABLE, id, &stats), 0u);
        ASSERT_EQ(stats.packet_count, 0u);
    }
    EXPECT_EQ(ports.size(), 1000u);
    EXPECT_EQ(*ports.begin(), 1u);
    EXPECT_EQ(*ports.rbegin(), 1000u);
}

TEST_F(Rules, AreFoundByTheirMatch)
{
    FlowItems items;
    items.add_range(1, 10);
    items.add(5, 200);
    add_rules(items);
    OfpRuleIDInfo key{};
    key.instance_id = CLIENT;
    key.table_id = TABLE;
    EXPECT_EQ(OFP_get_NextRuleIDByMatch(&items[4], &key), 0u);
    EXPECT_EQ(key.rule_id, 5u);
    EXPECT_EQ(OFP_get_NextRuleIDByMatch(&items[4], &key), 0u);
    EXPECT_EQ(key.rule_id, 11u);
    EXPECT_NE(OFP_get_NextRuleIDByMatch(&items[4], &key), 0u);
    EXPECT_EQ(key.rule_id, 0u);
}

TEST_F(Rules, TheirTableTellsHowManyThereAre)
{
    FlowItems items;
    items.add_range(1, 25);
    add_rules(items);
    OfpTableInfo info{};
    ASSERT_EQ(OFP_get_TableInfo(CLIENT, TABLE, &info), 0u);
    EXPECT_EQ(info.rule_count, 25u);
    EXPECT_EQ(info.max_rules, 1'048'576u);
    EXPECT_EQ(info.instance_id, CLIENT);
    EXPECT_EQ(info.table_id, TABLE);
    OfpMibTableInfo mib{};
    ASSERT_EQ(OFP_get_MibGetTableInfo(CLIENT, TABLE, &mib), 0u);
    EXPECT_EQ(mib.rule_count, 25u);
    OfpFRStatsInfo miss{};
    EXPECT_EQ(OFP_get_MissRuleStats(CLIENT, TABLE, &miss), 0u);
    OfpCacheInfoRep cache{};
    EXPECT_EQ(OFP_get_CacheInfo(1, 2, 3, &cache), 0x42300131u);
    uint32_t none = 1;
    EXPECT_EQ(OFP_get_NextNoEffectiveRuleID(CLIENT, TABLE, 0, &none), 0x42300130u);
    EXPECT_EQ(none, 0u);
}

TEST_F(Rules, BeyondTheLimitOfTheTableAreRefusedOneByOne)
{
    stop_agent(SIGTERM);
    start_agent({"--ACLMaxFlowEntry=5"});
    smooth_start();
    FlowItems items;
    items.add_range(1, 8);
    const std::vector<uint64_t> results = add_rules(items);
    for (size_t i = 0; i < results.size(); ++i) {
        EXPECT_EQ(results[i], i < 5 ? 0u : uint64_t{OFP_RC_NO_RESOURCE}) << i;
    }
    OfpTableInfo info{};
    ASSERT_EQ(OFP_get_TableInfo(CLIENT, TABLE, &info), 0u);
    EXPECT_EQ(info.max_rules, 5u);
    EXPECT_EQ(info.rule_count, 5u);
}

TEST_F(Rules, OfAnAgentThatDoesNotKnowTheirClientAreRefused)
{
    stop_agent(SIGKILL);
    FlowItems items;
    items.add_range(1, 3);
    uint32_t call = 1;
    // The call starts another agent, which has no smooth period of this client.
    EXPECT_EQ(add_rules(items, &call), std::vector<uint64_t>(3, OFP_RC_FAILED));
    EXPECT_EQ(call, 0u);
    smooth_start();
    EXPECT_EQ(add_rules(items), std::vector<uint64_t>(3, 0));
}

TEST_F(Rules, GroupsAreSetListedUsedAndDeleted)
{
    const uint32_t ports[] = {1, 2, 0xfffffffc};
    EXPECT_EQ(OFP_SetGroup(CLIENT, 5, 0, 3, ports), 0u);
    EXPECT_EQ(OFP_SetGroup(CLIENT, 0, 3, 2, ports), 0u);
    EXPECT_EQ(OFP_SetGroup(CLIENT, 5, 0, 3, ports), uint32_t{OFP_RC_FAILED}); // exists

    OfpGroupTable table{};
    EXPECT_EQ(ask(OFP_MSG_GET_GROUP_TABLE, OFP_TLV_GroupTableReq,
                  OfpGroupTableReq{.instance_id = CLIENT}, OFP_MSG_GROUP_TABLE, OFP_TLV_GroupTable,
                  table),
              0u);
    EXPECT_EQ(table.group_count, 2u);
    EXPECT_EQ(group_ids(), (std::vector<uint32_t>{0, 5}));

    FlowItems items;
    items.add(1);
    items.last_to_group(5);
    items.add(2);
    EXPECT_EQ(add_rules(items), std::vector<uint64_t>(2, 0));
    EXPECT_EQ(OFP_DelGroup(CLIENT, 5), 0u);
    EXPECT_EQ(rule_ids().size(), 1u); // the rule that led to the group went with it
    EXPECT_EQ(OFP_DelGroup(CLIENT, 5), 0u);
    EXPECT_EQ(group_ids(), (std::vector<uint32_t>{0}));
}

} // namespace
} // namespace integration
