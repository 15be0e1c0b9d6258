// Queries about tables, rules and groups.
#include <gtest/gtest.h>

#include "agent/daemon/messages.h"

namespace agent::test {
namespace {

constexpr uint16_t NO_SUCH = 77;

Datagram table_key(uint32_t code, uint16_t instance, uint8_t table)
{
    return join({head(code), tlv(14, join({be16(instance), be8(table), hex("00")}))});
}

Datagram rule_key(uint32_t code, uint32_t rule, uint16_t instance = CLIENT, uint8_t table = 200)
{
    return join({head(code), tlv(56, join({be32(rule), be16(instance), be8(table), hex("00")}))});
}

Datagram group_key(uint32_t code, uint32_t group, uint16_t instance = CLIENT)
{
    return join({head(code), tlv(97, join({be32(group), be16(instance), be16(0)}))});
}

Datagram match_of_port(uint32_t port)
{
    return join({hex("0001 000c 8000 00 04"), be32(port), hex("00000000")});
}

class Queries : public testing::Test {
protected:
    void SetUp() override
    {
        open_period(model);
        ask(model, join({head(0x50000007), tlv(124, hex("0005 0000 00000000")), // instance 5
                         tlv(69, hex("0a000000 00000002")),                     // table 10
                         tlv(69, hex("1e000000 00000003"))}));                  // table 30
    }

    void add(const std::vector<Rule> &rules) { ask(model, batch(rules)); }

    Model model;
};

// ---- Tables

TEST_F(Queries, TablesAreWalkedFrom255ToTheDocumentedEnd)
{
    EXPECT_EQ(ask_one(model, table_key(0x10000009, 5, 255)),
              hex("0001 0004 2000000a 0023 0004 0a 000000"));
    EXPECT_EQ(ask_one(model, table_key(0x10000009, 5, 10)),
              hex("0001 0004 2000000a 0023 0004 1e 000000"));
    EXPECT_EQ(ask_one(model, table_key(0x10000009, 5, 30)), result(NO_NEXT));
    EXPECT_EQ(ask_one(model, table_key(0x10000009, CLIENT, 255)),
              hex("0001 0004 2000000a 0023 0004 c8 000000"));
    EXPECT_EQ(ask_one(model, table_key(0x10000009, NO_SUCH, 255)), result(NO_INSTANCE));
}

TEST_F(Queries, ATableTellsItsLimitsAndItsFill)
{
    EXPECT_EQ(ask_one(model, table_key(0x1000000a, 5, 30)),
              hex("0001 0004 2000000b 0037 001c"   // table information
                  "00100000 00000000"              // at most 1048576 rules, none now
                  "00000003 00000000"              // kind 3, no memory
                  "0005 0000 0000 1e 00 0000 0000" // instance 5, table 30
                  ));
    add({{.in_port = 1}, {.in_port = 2}});
    const Datagram reply = ask_one(model, table_key(0x1000000a, CLIENT, 200));
    ASSERT_EQ(reply.size(), 40u);
    EXPECT_EQ(to_hex(reply).substr(32, 8), "00000002");
    EXPECT_EQ(ask_one(model, table_key(0x1000000a, 5, 200)), result(NO_TABLE));
    EXPECT_EQ(ask_one(model, table_key(0x1000000a, NO_SUCH, 0)), result(NO_INSTANCE));
}

TEST_F(Queries, TheInformationBaseIsAnsweredWithTheRequestsOwnCode)
{
    EXPECT_EQ(ask_one(model, table_key(0x10000029, 5, 10)),
              hex("0001 0004 10000029 00d1 000f 0005 0a 00100000 00000000 00000000"));
    EXPECT_EQ(ask_one(model, table_key(0x10000029, 5, 11)), result(NO_TABLE));
}

TEST_F(Queries, TheInformationBaseIsWalkedAcrossInstances)
{
    const auto next = [&](uint16_t instance, uint8_t table) {
        return to_hex(ask_one(model, table_key(0x1000002a, instance, table))).substr(16, 14);
    };
    EXPECT_EQ(next(0, 255), "00d1000f00050a"); // before the first instance
    EXPECT_EQ(next(5, 255), "00d1000f00050a");
    EXPECT_EQ(next(5, 10), "00d1000f00051e");
    EXPECT_EQ(next(5, 30), "00d1000f1001c8"); // the client's
    EXPECT_EQ(ask_one(model, table_key(0x1000002a, CLIENT, 200)), result(NO_NEXT));
}

TEST_F(Queries, ThereIsNoCache)
{
    EXPECT_EQ(ask_one(model, join({head(0x10000020), tlv(152, hex("0001 0002 0003 0000"))})),
              result(NOT_PRESENT));
    EXPECT_EQ(ask_one(model, head(0x10000020)), result(MISSING_TLV));
}

// ---- Rules

TEST_F(Queries, RulesAreWalkedFromZeroToTheDocumentedEnd)
{
    add({{.in_port = 1}, {.in_port = 2}, {.in_port = 3}});
    EXPECT_EQ(ask_one(model, rule_key(0x1000000b, 0)),
              hex("0001 0004 2000000c 001f 0004 00000001"));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000b, 2)),
              hex("0001 0004 2000000c 001f 0004 00000003"));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000b, 3)), result(NO_NEXT));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000b, 0, 5, 10)), result(NO_NEXT));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000b, 0, 5, 200)), result(NO_TABLE));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000b, 0, NO_SUCH)), result(NO_INSTANCE));
}

TEST_F(Queries, EveryRuleIsInEffect)
{
    add({{}});
    EXPECT_EQ(ask_one(model, rule_key(0x10000025, 0)), result(NO_NEXT));
    EXPECT_EQ(ask_one(model, rule_key(0x10000025, 0, NO_SUCH)), result(NO_INSTANCE));
}

TEST_F(Queries, RulesAreFoundByAMatchThatFollowsBare)
{
    add({{.in_port = 1}, {.in_port = 2}, {.in_port = 2, .priority = 7}});
    const auto find = [&](uint32_t after, const Datagram &match) {
        return ask_one(model, join({rule_key(0x10000026, after), match}));
    };
    EXPECT_EQ(find(0, match_of_port(2)), hex("0001 0004 2000000c 001f 0004 00000002"));
    EXPECT_EQ(find(2, match_of_port(2)), hex("0001 0004 2000000c 001f 0004 00000003"));
    EXPECT_EQ(find(3, match_of_port(2)), result(NO_NEXT));
    EXPECT_EQ(find(0, match_of_port(9)), result(NO_NEXT));
    EXPECT_EQ(find(0, {}), result(BAD_MATCH));
    EXPECT_EQ(find(0, hex("0001 000c 8000 00 04")), result(BAD_MATCH));
    EXPECT_EQ(find(0, join({match_of_port(2), hex("00")})), result(BAD_MATCH));
}

TEST_F(Queries, ARuleTellsItsCounters)
{
    add({{}});
    EXPECT_EQ(ask_one(model, rule_key(0x1000000c, 1)),
              hex("0001 0004 2000000d 0021 0018"
                  "0000000000000000 0000000000000000 00000000 00000000")); // none pass in memory
    EXPECT_EQ(ask_one(model, rule_key(0x1000000c, 2)), result(NO_RULE));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000c, 0)), result(NO_RULE));
}

TEST_F(Queries, ARuleIsShownAsTheFlowModThatProgrammedIt)
{
    add({{.in_port = 9, .priority = 258}});
    EXPECT_EQ(ask_one(model, rule_key(0x1000000d, 1)),
              hex("0001 0004 2000000e"            // rule information
                  "0038 0008 00000001 1001 c8 00" // rule 1 of instance 4097, table 200
                  "0021 0018"                     // its counters
                  "0000000000000000 0000000000000000 00000000 00000000"
                  "007a 0048"                              // the flow-mod
                  "04 0e 0048 00000000"                    // version, type, length, xid
                  "0000000000000000 0000000000000000"      // cookie and its mask
                  "c8 00 0000 0000 0102"                   // table 200, add, priority 258
                  "ffffffff ffffffff ffffffff 001e 0000"   // no buffer, port, group; flags
                  "0001 000c 8000 00 04 00000009 00000000" // match: in_port 9
                  "0003 0008 00000000"));                  // write-actions
    EXPECT_EQ(ask_one(model, rule_key(0x1000000d, 2)), result(NO_RULE));
}

TEST_F(Queries, AFlowModTooLongForAReplyIsNotShownInPart)
{
    // As many actions as take a flow-mod to the longest that a datagram of 49152 bytes carries.
    ask(model, group_request(0x50000003, group_mod(9)));
    Datagram message = join({flow_mod(0, {}), hex("0016 0008 00000009")}); // to group 9
    constexpr size_t LENGTH = 49104;
    const size_t actions = LENGTH - message.size() + 8;
    while (message.size() < LENGTH) {
        const Datagram output = hex("0000 0010 00000003 0000 000000000000");
        message.insert(message.end(), output.begin(), output.end());
    }
    ASSERT_EQ(message.size(), LENGTH);
    const auto set16 = [&message](size_t at, size_t value) {
        message[at] = static_cast<uint8_t>(value >> 8);
        message[at + 1] = static_cast<uint8_t>(value);
    };
    set16(2, LENGTH);
    set16(66, 8 + actions);
    ASSERT_EQ(
        ask_one(model, join({head(0x50000001), client_head(), entry(message), entry(barrier(0))})),
        barrier_reply(0));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000d, 1)), result(REPLY_TOO_LONG));
}

TEST_F(Queries, ATableWithoutMissRuleTellsCountersAndNoFlowMod)
{
    add({{}});
    EXPECT_EQ(ask_one(model, rule_key(0x1000000e, 0)),
              hex("0001 0004 2000000f 0021 0018"
                  "0000000000000000 0000000000000000 00000000 00000000"));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000f, 0)),
              hex("0001 0004 20000010 0038 0008 00000000 1001 c8 00 0021 0018"
                  "0000000000000000 0000000000000000 00000000 00000000"));
    EXPECT_EQ(ask_one(model, rule_key(0x1000000f, 0, 5, 11)), result(NO_TABLE));
}

TEST_F(Queries, AMissRuleThatWasProgrammedIsShown)
{
    const Datagram message = hex("04 0e 0040 00000000 0000000000000000 0000000000000000"
                                 "c8 00 0000 0000 0000" // priority 0
                                 "ffffffff ffffffff ffffffff 001e 0000"
                                 "0001 0004 00000000" // every packet
                                 "0003 0008 00000000");
    ASSERT_EQ(
        ask_one(model, join({head(0x50000001), client_head(), entry(message), entry(barrier(0))})),
        barrier_reply(0));
    const Datagram reply = ask_one(model, rule_key(0x1000000f, 0));
    ASSERT_EQ(reply.size(), 8u + 12 + 28 + 4 + message.size());
    EXPECT_EQ(Datagram(reply.end() - static_cast<std::ptrdiff_t>(message.size()), reply.end()),
              message);
}

// ---- Groups

TEST_F(Queries, TheGroupTableTellsHowManyGroups)
{
    const Datagram request = join({head(0x10000013), tlv(95, hex("1001 0000"))});
    EXPECT_EQ(ask_one(model, request), hex("0001 0004 20000014 0060 0008 00000000 1001 0000"));
    ask(model, group_request(0x50000003, group_mod(9)));
    EXPECT_EQ(ask_one(model, request), hex("0001 0004 20000014 0060 0008 00000001 1001 0000"));
    EXPECT_EQ(ask_one(model, join({head(0x10000013), tlv(95, hex("004d 0000"))})),
              result(NO_INSTANCE));
}

TEST_F(Queries, GroupsAreWalkedFromTheIdThatStandsForNone)
{
    ask(model, group_request(0x50000003, group_mod(9)));
    ask(model, group_request(0x50000003, group_mod(0)));
    EXPECT_EQ(ask_one(model, group_key(0x10000014, 0xffffffff)),
              hex("0001 0004 20000015 0061 0008 00000000 1001 0000"));
    EXPECT_EQ(ask_one(model, group_key(0x10000014, 0)),
              hex("0001 0004 20000015 0061 0008 00000009 1001 0000"));
    EXPECT_EQ(ask_one(model, group_key(0x10000014, 9)), result(NO_NEXT));
    EXPECT_EQ(ask_one(model, group_key(0x10000014, 0, NO_SUCH)), result(NO_INSTANCE));
}

TEST_F(Queries, AGroupIsShownAsTheGroupModThatProgrammedIt)
{
    ask(model, group_request(0x50000003, group_mod(9)));
    EXPECT_EQ(ask_one(model, group_key(0x10000015, 9)),
              hex("0001 0004 20000016"
                  "0061 0008 00000009 1001 0000"            // group 9 of instance 4097
                  "0062 0030"                               // its fixed part
                  "0000000000000000 0000000000000000"       // packets, bytes
                  "0000000000000000"                        // seconds
                  "00000009 1001 00 00 0001 000000000000"   // id, instance, type, one bucket
                  "00000000 0000 0000"                      // references
                  "007a 0030"                               // the group-mod
                  "04 0f 0030 00000000 0000 00 00 00000009" // add
                  "0020 0000 00000003 ffffffff 00000000"
                  "0000 0010 00000003 0000 000000000000"
                  "0063 0020"                         // its bucket
                  "0000000000000000 0000000000000000" // packets, bytes
                  "00000003 ffffffff 00000010"        // watches port 3; 16 bytes of actions
                  "0000 0000"));
    EXPECT_EQ(ask_one(model, group_key(0x10000015, 8)), result(NO_GROUP));
}

} // namespace
} // namespace agent::test
