#include <gtest/gtest.h>

#include "agent/daemon/messages.h"

namespace agent::test {
namespace {

Datagram table(uint8_t id, uint32_t kind = 2)
{
    return tlv(69, join({be8(id), hex("000000"), be32(kind)}));
}

Datagram filter(uint16_t instance, uint16_t kind = 2)
{
    const Datagram first = tlv(124, join({be16(instance), be16(kind), be32(0)}));
    return kind == 2 ? join({first, tlv(126, be32(0))}) : first;
}

Datagram add(uint16_t instance, std::initializer_list<Datagram> tables)
{
    return join({head(0x50000007), filter(instance), join(tables)});
}

Datagram exists(uint16_t instance)
{
    return join({head(0x10000001), tlv(4, join({be16(instance), be16(0)}))});
}

Datagram next(uint16_t instance)
{
    return join({head(0x10000003), tlv(4, join({be16(instance), be16(0)}))});
}

TEST(AddInstance, AnswersTheLibrarysDefaultLayoutWithSuccess)
{
    Model model;
    const Datagram request = hex("0001 0004 50000007"            // message head
                                 "007c 0008 0005 0002 00000000"  // filter: instance 5, kind 2
                                 "007e 0004 00000000"            // its parameter
                                 "0045 0008 0a000000 00000002"   // table 10, kind 2
                                 "0045 0008 0b000000 00000002"   // table 11
                                 "0045 0008 14000000 00000002"   // table 20
                                 "0045 0008 15000000 00000002"   // table 21
                                 "0045 0008 1e000000 00000002"); // table 30
    EXPECT_EQ(ask_one(model, request), hex("0001 0004 20000001"  // result reply
                                           "0002 0004 00000000"));
    ASSERT_NE(model.instance(5), nullptr);
    EXPECT_EQ(model.instance(5)->tables.size(), 5u);
    EXPECT_EQ(ask_one(model, exists(5)), hex("0001 0004 20000002 0005 0004 0001 0000"));
}

TEST(AddInstance, AcceptsTheSameLayoutAgainInAnyOrderAndRefusesAnother)
{
    Model model;
    EXPECT_EQ(ask_one(model, add(5, {table(10), table(20)})), result(0));
    EXPECT_EQ(ask_one(model, add(5, {table(20), table(10)})), result(0));
    EXPECT_EQ(ask_one(model, add(5, {table(10)})), result(INSTANCE_DIFFERS));
    EXPECT_EQ(ask_one(model, add(5, {table(10), table(20, 1)})), result(INSTANCE_DIFFERS));
    EXPECT_EQ(ask_one(model, join({head(0x50000007), filter(5, 0), table(10), table(20)})),
              result(INSTANCE_DIFFERS));
    EXPECT_EQ(model.instance(5)->tables.size(), 2u);
}

TEST(AddInstance, RefusesIdsThatNameNoInstanceAndTablesThatCannotBe)
{
    Model model;
    EXPECT_EQ(ask_one(model, add(0, {table(10)})), result(BAD_INSTANCE_ID));
    EXPECT_EQ(ask_one(model, add(65535, {table(10)})), result(BAD_INSTANCE_ID));
    EXPECT_EQ(ask_one(model, add(5, {table(255)})), result(BAD_TABLE_ID));
    EXPECT_EQ(ask_one(model, add(4096, {table(200)})), result(BAD_TABLE_ID));
    EXPECT_EQ(ask_one(model, add(5, {table(10), table(20), table(10)})), result(DUPLICATE_TABLE));
    EXPECT_FALSE(model.next_instance(0));
}

TEST(AddInstance, RefusesFiltersAndTablesThatAreMalformed)
{
    Model model;
    const Datagram code = head(0x50000007);
    EXPECT_EQ(ask_one(model, code), result(MISSING_TLV));
    EXPECT_EQ(ask_one(model, join({code, table(10)})), result(MISSING_TLV));
    EXPECT_EQ(ask_one(model, join({code, filter(5, 9)})), result(BAD_FILTER));
    EXPECT_EQ(ask_one(model, join({code, filter(5, 1)})), result(BAD_FILTER)); // no TLV 125
    EXPECT_EQ(ask_one(model, join({code, tlv(124, hex("0005 0000 0000"))})),
              result(BAD_TLV_LENGTH));
    EXPECT_EQ(
        ask_one(model, join({code, tlv(124, hex("0005 0002 00000000")), tlv(126, hex("00"))})),
        result(BAD_FILTER));
    EXPECT_EQ(ask_one(model, join({code, filter(5), tlv(69, hex("0a"))})), result(BAD_TLV_LENGTH));
    EXPECT_EQ(ask_one(model, join({code, filter(5), table(10), tlv(70, hex("0a"))})),
              result(TRAILING_BYTES));
    EXPECT_EQ(ask_one(model, join({code, filter(5), table(10), hex("0045 0008 0a")})),
              result(BAD_TLV));
    EXPECT_FALSE(model.next_instance(0));
}

TEST(AddInstance, TakesEveryKindOfFilterWithItsParameters)
{
    Model model;
    const Datagram code = head(0x50000007);
    EXPECT_EQ(ask_one(model, join({code, tlv(124, hex("0001 0001 00000009")),
                                   tlv(125, hex("00000000 000a 0014"))})),
              result(0));
    EXPECT_EQ(model.instance(1)->filter.param_a, 10);
    EXPECT_EQ(model.instance(1)->filter.param_b, 20);
    EXPECT_EQ(model.instance(1)->filter.ext, 9u);
    EXPECT_EQ(ask_one(model,
                      join({code, tlv(124, hex("0002 0005 00000000")), tlv(126, hex("00000007"))})),
              result(0));
    EXPECT_EQ(model.instance(2)->filter.param, 7u);
    EXPECT_EQ(ask_one(model, join({code, filter(3, 3)})), result(0));
}

TEST(AddInstance, LeavesAClientItsTableAndItsRules)
{
    Model model;
    open_period(model);
    ask(model, batch({{}}));
    EXPECT_EQ(ask_one(model, add(CLIENT, {table(10)})), result(0));
    EXPECT_NE(model.table(CLIENT, 10), nullptr);
    EXPECT_NE(model.table(CLIENT, 200), nullptr);
    EXPECT_EQ(model.flow_switch().table(CLIENT, 200).rules, 1u);
    EXPECT_EQ(ask_one(model, add(CLIENT, {table(10)})), result(0));
}

TEST(InstanceExists, SaysNoForAnInstanceThatDoesNot)
{
    Model model;
    EXPECT_EQ(ask_one(model, exists(5)), hex("0001 0004 20000002 0005 0004 0000 0000"));
    EXPECT_EQ(ask_one(model, join({head(0x10000001), tlv(4, hex("0005"))})),
              result(BAD_TLV_LENGTH));
}

TEST(InstanceExists, KnowsAClientFromItsFirstSmoothPeriodOn)
{
    Model model;
    EXPECT_EQ(ask_one(model, exists(CLIENT)), hex("0001 0004 20000002 0005 0004 0000 0000"));
    open_period(model);
    EXPECT_EQ(ask_one(model, exists(CLIENT)), hex("0001 0004 20000002 0005 0004 0001 0000"));
}

TEST(NextInstance, WalksAscendingIdsFromZeroToTheDocumentedEnd)
{
    Model model;
    ask(model, add(300, {}));
    ask(model, add(7, {}));
    open_period(model);
    EXPECT_EQ(ask_one(model, next(0)), hex("0001 0004 20000003 0004 0004 0007 0000"));
    EXPECT_EQ(ask_one(model, next(7)), hex("0001 0004 20000003 0004 0004 012c 0000"));
    EXPECT_EQ(ask_one(model, next(300)), hex("0001 0004 20000003 0004 0004 1001 0000"));
    EXPECT_EQ(ask_one(model, next(CLIENT)), result(NO_NEXT));
}

} // namespace
} // namespace agent::test
