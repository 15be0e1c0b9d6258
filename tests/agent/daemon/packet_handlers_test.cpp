// What the agent answers of a packet.
#include <gtest/gtest.h>

#include "agent/daemon/messages.h"

namespace agent::test {
namespace {

Datagram packet(const char *fields, uint8_t flags = 0, uint16_t instance = CLIENT,
                uint8_t table = 255, uint32_t bytes = 64)
{
    return join({head(0x60000001),
                 tlv(0x6001, join({be16(instance), be8(flags), be8(table), be32(bytes)})),
                 tlv(0x6002, hex(fields))});
}

constexpr const char *FROM_PORT_1 = "80000004 00000001";

Datagram rule_stats(uint32_t rule)
{
    return join({head(0x1000000c), tlv(56, join({be32(rule), be16(CLIENT), hex("c800")}))});
}

// A rule for every packet with some instructions.
Datagram any_flow_mod(uint16_t priority, const Datagram &instructions)
{
    const auto length = static_cast<uint16_t>(56 + instructions.size());
    return join({hex("040e"), be16(length), be32(0), hex("0000000000000000 0000000000000000"),
                 hex("c8 00 0000 0000"), be16(priority),
                 hex("ffffffff ffffffff ffffffff 001e 0000"), hex("0001 0004 00000000"),
                 instructions});
}

class Packets : public testing::Test {
protected:
    void SetUp() override
    {
        open_period(model);
        ask(model, group_request(0x50000003, group_mod(9))); // type all, to port 3
        ask(model, join({head(0x50000001), client_head(),
                         entry(any_flow_mod(5, hex("0003 0010 00000000 0016 0008 00000009")))}));
        ask(model, batch({{.in_port = 2, .priority = 7}}));
    }

    Model model;
};

TEST_F(Packets, AreFollowedThroughTablesRulesAndGroups)
{
    EXPECT_EQ(ask_one(model, packet(FROM_PORT_1)),
              hex("0001 0004 60000002"
                  "6003 0008 00 00 0000 00000001"        // carried out, one output
                  "6004 0008 00000001 0005 c8 00"        // rule 1 of priority 5, table 200
                  "6005 0008 00000002 0007 0001"         // not rule 2, for one field:
                  "6006 000c 80000004 00000002 00000001" // in_port 2, here 1
                  "6007 0008 0016 0008 00000009"         // action set: group 9
                  "6008 0010 00000003 00000009 00000000 00000000")); // port 3 by its bucket 0
}

TEST_F(Packets, AreHeldBackFromThePortTheyCameFrom)
{
    const std::string reply = to_hex(ask_one(model, packet("80000004 00000003")));
    EXPECT_EQ(reply.substr(reply.size() - 8), "00000001");
}

TEST_F(Packets, ThatNoRuleMatchesAreDropped)
{
    ask(model, join({head(0x50000007), tlv(124, hex("0005 0000 00000000")),
                     tlv(69, hex("0a000000 00000002"))})); // instance 5 with table 10
    EXPECT_EQ(ask_one(model, packet(FROM_PORT_1, 0, 5)),
              hex("0001 0004 60000002 6003 0008 01 00 0000 00000000"
                  "6004 0008 00000000 0000 0a 00"));
}

TEST_F(Packets, EnterAClientsTableUnlessToldOtherwise)
{
    ask(model, join({head(0x50000007), tlv(124, hex("1001 0000 00000000")),
                     tlv(69, hex("0a000000 00000002"))})); // the client's instance gets table 10
    const auto table = [&](uint8_t id) {
        return to_hex(ask_one(model, packet(FROM_PORT_1, 0, CLIENT, id))).substr(60, 2);
    };
    EXPECT_EQ(table(255), "c8");
    EXPECT_EQ(table(200), "c8");
    EXPECT_EQ(table(10), "0a");
    EXPECT_EQ(ask_one(model, packet(FROM_PORT_1, 0, CLIENT, 11)), result(NO_TABLE));
}

TEST_F(Packets, LeaveTheirMarkOnlyWhenTheyAreSent)
{
    ask_one(model, packet(FROM_PORT_1));
    EXPECT_EQ(to_hex(ask_one(model, rule_stats(1))).substr(24, 32),
              "00000000000000000000000000000000");
    const Datagram traced = ask_one(model, packet(FROM_PORT_1));
    EXPECT_EQ(ask_one(model, packet(FROM_PORT_1, 1, CLIENT, 255, 100)), traced);
    ask_one(model, packet(FROM_PORT_1, 1, CLIENT, 255, 1500));
    EXPECT_EQ(to_hex(ask_one(model, rule_stats(1))).substr(24, 32),
              "00000000000000020000000000000640");
    const Datagram group =
        ask_one(model, join({head(0x10000015), tlv(97, hex("00000009 1001 0000"))}));
    EXPECT_EQ(to_hex(group).substr(48, 32), "00000000000000020000000000000640");
}

TEST_F(Packets, ThatCannotBeAreRefused)
{
    EXPECT_EQ(ask_one(model, packet(FROM_PORT_1, 0, 77)), result(NO_INSTANCE));
    EXPECT_EQ(ask_one(model, packet("80000104 00000001")), result(BAD_PACKET)); // odd mask
    EXPECT_EQ(ask_one(model, packet("80000510 0000000000000001 00000000000000ff")),
              result(BAD_PACKET)); // metadata with a mask
    EXPECT_EQ(ask_one(model, packet("80001604 0a000001")), result(BAD_PACKET)); // IPv4 of what?
    EXPECT_EQ(ask_one(model, packet(FROM_PORT_1, 2)), result(BAD_PACKET));      // unknown flag
    EXPECT_EQ(ask_one(model, head(0x60000001)), result(MISSING_TLV));
    EXPECT_EQ(ask_one(model, join({packet(FROM_PORT_1), hex("00")})), result(TRAILING_BYTES));
    EXPECT_EQ(ask_one(model, head(0x60000002)), result(UNKNOWN_MESSAGE));
}

// Every table visited, everything that differs as long as it can be.
TEST_F(Packets, NeverNeedMoreThanADatagram)
{
    Datagram tables = join({head(0x50000007), tlv(124, hex("1001 0000 00000000"))});
    for (int id = 0; id < 255; id++) {
        if (id != 200) {
            tables = join(
                {tables, tlv(69, join({be8(static_cast<uint8_t>(id)), hex("000000"), be32(2)}))});
        }
    }
    ask(model, tables);
    const Datagram wanted = hex("0001 0052 80000a02 86dd"
                                "80003520 00000000000000000000000000000001"
                                "ffffffffffffffffffffffffffffff0f"
                                "80003720 00000000000000000000000000000001"
                                "ffffffffffffffffffffffffffffff0f 000000000000");
    for (int id = 0; id < 255; id++) {
        const Datagram next = join({hex("0001 0008"), be8(static_cast<uint8_t>(id + 1)), // go to
                                    hex("000000")});
        Datagram on = any_flow_mod(5, id == 254 ? Datagram() : next);
        Datagram better = any_flow_mod(6, {});
        better.resize(48);
        better = join({better, wanted});
        better[3] = static_cast<uint8_t>(better.size());
        on[24] = better[24] = static_cast<uint8_t>(id);
        const auto answers =
            ask(model, join({head(0x50000001), client_head(), entry(on), entry(better)}));
        ASSERT_TRUE(answers.empty()) << to_hex(answers[0]);
    }
    const Datagram reply =
        ask_one(model, packet("80000a02 86dd 80003410 000102030405060708090a0b0c0d0e0f"
                              "80003610 000102030405060708090a0b0c0d0e0f",
                              0, CLIENT, 0));
    EXPECT_GT(reply.size(), 255u * 100);
    EXPECT_LE(reply.size(), 49152u);
}

} // namespace
} // namespace agent::test
