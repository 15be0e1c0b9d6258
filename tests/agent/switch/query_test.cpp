#include "switch/fixture.h"

namespace {

using namespace openflow;

class QueryTest : public SwitchTest {};

TEST_F(QueryTest, FindsRulesWithAMatchWhateverTheirPriority)
{
    for (const uint16_t priority : std::initializer_list<uint16_t>{5, 1, 9}) {
        ASSERT_FALSE(send({.priority = priority, .match = in_port(1)}));
        ASSERT_FALSE(send({.priority = priority, .match = in_port(2)}));
    }
    const auto next = [this](uint32_t after) {
        return switch_.next_rule_matching(CLIENT, TABLE, after, in_port(2));
    };
    EXPECT_EQ(next(0), 2U);
    EXPECT_EQ(next(2), 4U);
    EXPECT_EQ(next(4), 6U);
    EXPECT_EQ(next(6), 0U);
    EXPECT_EQ(switch_.next_rule_matching(CLIENT, TABLE, 0, in_port(3)), 0U);
    EXPECT_EQ(switch_.next_rule_matching(CLIENT, TABLE, 0, build::hex("00 01")), 0U);
    EXPECT_EQ(switch_.next_rule_matching(CLIENT, TABLE, 0,
                                         build::match({build::oxm8(OFPXMT_IP_PROTO, 6)})),
              0U);
    EXPECT_EQ(switch_.next_rule_matching(OTHER, TABLE, 0, in_port(2)), 0U);
}

TEST_F(QueryTest, SkipsIdsThatAreNotInUseAtOnce)
{
    constexpr uint32_t rules = 10'000;
    for (uint32_t port = 1; port <= rules; port++) {
        ASSERT_FALSE(send({.match = in_port(port)}));
    }
    for (uint32_t port = 2; port < rules; port++) {
        ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT, .match = in_port(port)}));
    }
    EXPECT_EQ(ids(), (std::vector<uint32_t>{1, rules}));
    EXPECT_EQ(switch_.next_rule(CLIENT, TABLE, 5000), rules);
    EXPECT_EQ(switch_.next_rule(CLIENT, TABLE, 0xffffffff), 0U);
}

TEST_F(QueryTest, HasNoRuleForAnIdThatIsNotInUse)
{
    ASSERT_FALSE(send({.match = in_port(1)}));
    ASSERT_FALSE(send({.match = in_port(2)}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT, .match = in_port(1)}));
    EXPECT_FALSE(switch_.rule(CLIENT, TABLE, 0));
    EXPECT_FALSE(switch_.rule(CLIENT, TABLE, 1));
    EXPECT_TRUE(switch_.rule(CLIENT, TABLE, 2));
    EXPECT_FALSE(switch_.rule(CLIENT, TABLE, 3));
    EXPECT_FALSE(switch_.rule(CLIENT, TABLE, 0xffffffff));
    EXPECT_FALSE(switch_.rule(CLIENT, 199, 2));
    EXPECT_FALSE(switch_.rule(OTHER, TABLE, 2));
}

TEST_F(QueryTest, ListsTablesInOrder)
{
    for (const uint8_t table : std::initializer_list<uint8_t>{200, 0, 254}) {
        ASSERT_FALSE(send({.table = table}));
    }
    EXPECT_EQ(switch_.next_table(CLIENT, -1), 0);
    EXPECT_EQ(switch_.next_table(CLIENT, 0), 200);
    EXPECT_EQ(switch_.next_table(CLIENT, 200), 254);
    EXPECT_FALSE(switch_.next_table(CLIENT, 254));
    EXPECT_FALSE(switch_.next_table(CLIENT, 4000));
    EXPECT_FALSE(switch_.next_table(OTHER, -1));
    EXPECT_EQ(switch_.table(CLIENT, 9).rules, 0U);
    EXPECT_EQ(switch_.table(CLIENT, 9).capacity, 1'048'576U);
}

TEST_F(QueryTest, SaysWhatMemoryIsHeld)
{
    const size_t before = switch_.memory();
    for (uint32_t port = 1; port <= 1000; port++) {
        ASSERT_FALSE(send({.match = build::five_tuple(port, port * 7, 1, 2)}));
    }
    const size_t table = switch_.table(CLIENT, TABLE).memory;
    EXPECT_GT(table, 100'000U);
    EXPECT_LT(table, 350'000U);
    EXPECT_GE(switch_.memory(), before + table);
    ASSERT_FALSE(send({.command = OFPFC_DELETE}));
    // What is kept is the room for ids; it does not grow with what comes and goes.
    const size_t empty = switch_.table(CLIENT, TABLE).memory;
    EXPECT_LT(empty, 20'000U);
    for (uint32_t port = 1; port <= 1000; port++) {
        ASSERT_FALSE(send({.match = in_port(port)}));
    }
    ASSERT_FALSE(send({.command = OFPFC_DELETE}));
    EXPECT_EQ(switch_.table(CLIENT, TABLE).memory, empty);
}

} // namespace
