#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

// The 48 bytes of a flow-mod before its match.
Bytes fixed_part(uint16_t length, uint32_t xid, uint8_t table, uint8_t command, uint16_t priority)
{
    return hex("04 0e") + be16(length) + be32(xid) + Bytes(16, 0) /* cookie and its mask */ +
           Bytes{table, command} + hex("0000 0000") /* time-outs */ + be16(priority) +
           hex("ffffffff ffffffff ffffffff" /* buffer, out port, out group */
               "001e 0000");
}

Bytes flow_entry(const Bytes &message) { return tlv(122, message); }
Bytes barrier(uint32_t xid) { return flow_entry(hex("04 14 0008") + be32(xid)); }

class FlowMod : public PlatformTest {
protected:
    Bytes encoded(Rules &rules)
    {
        Bytes out(8192, 0xee);
        const uint64_t size =
            OFP_encode_FlowRule(&ctx, head, rules.count(), rules.items(), out.size(), out.data());
        EXPECT_EQ(out.slice(size), Bytes(out.size() - size, 0xee));
        out.resize(size);
        return out;
    }
    // The first flow-mod.
    Bytes flow_mod(Rules &rules) { return openflow_messages(encoded(rules)).at(0); }

    OfpFlowRuleCtx ctx = {.command = 0, .client_id = 4096, .table_id = 200};
    uint8_t head[16] = {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 16};
    const Bytes opening = hex("0001 0004 50000001"
                              "0079 0010 00000001 00000002 00000003 0004 1000");
};

} // namespace

TEST_F(FlowMod, WithoutRulesADatagramIsItsHead)
{
    Rules none;
    EXPECT_EQ(encoded(none), opening);
}

TEST_F(FlowMod, ARuleIsAFlowModAndABarrier)
{
    Rules rules;
    rules.add(7).output(5);
    EXPECT_EQ(encoded(rules), opening +
                                  flow_entry(fixed_part(88, 0, 200, 0, 100) +
                                             hex("0001 000c 8000 00 04 00000007 00000000"
                                                 "0003 0018 00000000"
                                                 "0000 0010 00000005 0000 000000000000")) +
                                  barrier(0));
}

TEST_F(FlowMod, AnEmptyRuleTakes64Bytes)
{
    Rules rules;
    rules.add();
    EXPECT_EQ(encoded(rules),
              opening +
                  flow_entry(fixed_part(64, 0, 200, 0, 100) + hex("0001 0004 00000000"
                                                                  "0003 0008 00000000")) +
                  barrier(0));
}

TEST_F(FlowMod, ActionsFollowInOrder)
{
    Rules rules;
    rules.add().group(9).output(5).action(OFP_ACTION_EXPERIMENTER, {7, 7}).group(10);
    EXPECT_EQ(flow_mod(rules).slice(56), hex("0003 0028 00000000"
                                             "0016 0008 00000009"
                                             "0000 0010 00000005 0000 000000000000"
                                             "0016 0008 0000000a"));
}

TEST_F(FlowMod, MessagesCarryTheirIndex)
{
    Rules rules(2);
    ctx.xid = 77; // read by asynchronous requests only
    for (uint16_t flag : {uint16_t{0}, uint16_t{2}}) {
        ctx.asynchronous = flag;
        const std::vector<Bytes> messages = openflow_messages(encoded(rules));
        ASSERT_EQ(messages.size(), 4u);
        for (uint32_t i = 0; i < 4; ++i)
            EXPECT_EQ(messages[i].u32(4), i / 2);
    }
}

TEST_F(FlowMod, AsynchronousMessagesCarryTheRequestsXid)
{
    Rules rules(2);
    ctx.asynchronous = 1;
    ctx.xid = 77;
    for (const Bytes &message : openflow_messages(encoded(rules)))
        EXPECT_EQ(message.u32(4), 77u);
}

TEST_F(FlowMod, TableCommandAndPriorityAreTheRequestsAndTheRules)
{
    Rules rules;
    rules.add(1).item.priority = 0x1234;
    ctx.command = 0x504; // its low byte travels
    ctx.table_id = 9;
    EXPECT_EQ(flow_mod(rules).slice(0, 48), fixed_part(72, 0, 9, 4, 0x1234));
}

TEST_F(FlowMod, EachRuleHasItsOwnLength)
{
    Rules rules;
    rules.add(1);
    rules.add(2).output(3);
    rules.add().string(40);
    const std::vector<Bytes> messages = openflow_messages(encoded(rules));
    ASSERT_EQ(messages.size(), 6u);
    for (size_t i : {0u, 2u, 4u})
        EXPECT_EQ(messages[i].u16(2), messages[i].size());
    EXPECT_EQ(messages[0].size(), 72u);
    EXPECT_EQ(messages[2].size(), 88u);
    EXPECT_EQ(messages[4].size(), 48u + 56 + 8); // 4 + 8 + 40, padded
}

TEST_F(FlowMod, LeavesItsInputAlone)
{
    Rules rules;
    rules.add(1).output(2).item.match.vlan_vid = 0xffff;
    const Bytes before = bytes_of(rules.items(), sizeof(OfpFlowItem));
    const Bytes head_before = bytes_of(head, sizeof head);
    encoded(rules);
    EXPECT_EQ(bytes_of(rules.items(), sizeof(OfpFlowItem)), before);
    EXPECT_EQ(bytes_of(head, sizeof head), head_before);
}

TEST_F(FlowMod, CountedSizes)
{
    EXPECT_EQ(OFP_encode_GetRuleMsgLen(0, nullptr), 28u);
    Rules rules;
    rules.add(1).group(9);
    EXPECT_EQ(OFP_encode_GetRuleMsgLen(1, rules.items()), 124u);
    EXPECT_EQ(encoded(rules).size(), 124u);
    rules.add(1).output(1).action(OFP_ACTION_EXPERIMENTER, {3, 3, 0, 0}).string(50);
    EXPECT_EQ(OFP_encode_GetRuleMsgLen(2, rules.items()), 124u + 16 + 60 + 16 + 24 + 12);
}

TEST_F(FlowMod, ABarrierTlv)
{
    Bytes out(16, 0xee);
    EXPECT_EQ(OFP_encode_TlvBarrier(0x01020304, out.size(), out.data()), 12u);
    EXPECT_EQ(out, hex("007a 0008 04 14 0008 01020304 eeeeeeee"));
    EXPECT_EQ(OFP_encode_TlvBarrier(1, uint64_t{1} << 32, out.data()), 12u);
}

TEST_F(FlowMod, AnInstanceDatagramHoldsItsFilterAndTables)
{
    const OfpFlowTable tables[2] = {record_of<OfpFlowTable>(hex("01020000 01000000")),
                                    record_of<OfpFlowTable>(hex("02030000 02000000"))};
    Bytes out(8192);
    const auto *values = reinterpret_cast<const uint8_t *>(tables);
    out.resize(OFP_encode_Instance(5, 2, values, out.size(), out.data()));
    EXPECT_EQ(out, hex("0001 0004 50000007"
                       "007c 0008 0005 0002 00000000"
                       "007e 0004 00000000"
                       "0045 0008 01020000 00000001"
                       "0045 0008 02030000 00000002"));
}

TEST_F(FlowMod, AnInstanceMayHave255TablesOrNone)
{
    const Bytes values(255 * 8);
    Bytes out(8192);
    EXPECT_EQ(OFP_encode_Instance(5, 255, values.data(), out.size(), out.data()),
              8u + 12 + 8 + 255 * 12);
    EXPECT_EQ(OFP_encode_Instance(5, 0, nullptr, out.size(), out.data()), 8u + 12 + 8);
}
