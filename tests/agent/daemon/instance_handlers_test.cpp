#include <cstring>

#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"

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

// ---- Configured instances

TEST(SetInstance, MakesAnInstanceWithItsExtensionWord)
{
    Model model;
    EXPECT_EQ(ask_one(model, join({head(1), instance_filter(5, 0x11)})), result(0));
    ASSERT_NE(model.instance(5), nullptr);
    EXPECT_TRUE(model.instance(5)->declared);
    EXPECT_EQ(model.instance(5)->filter.ext, 0x11u);
    EXPECT_TRUE(model.instance(5)->tables.empty());
    EXPECT_FALSE(model.instance(5)->active);
    EXPECT_EQ(ask_one(model, join({head(1), instance_filter(0)})), result(BAD_INSTANCE_ID));
    EXPECT_EQ(ask_one(model, join({head(1), instance_filter(65535)})), result(BAD_INSTANCE_ID));
}

TEST(SetInstance, LeavesAFilterThatWasSetBefore)
{
    Model model;
    ask(model,
        join({head(1), tlv(124, hex("0005 0001 00000000")), tlv(125, hex("00000000 0064 0fff"))}));
    EXPECT_EQ(ask_one(model, join({head(1), instance_filter(5, 7)})), result(0));
    EXPECT_EQ(model.instance(5)->filter.filter_kind, 1);
    EXPECT_EQ(model.instance(5)->filter.param_a, 100);
    EXPECT_EQ(model.instance(5)->filter.ext, 7u);
}

TEST(UnsetInstance, RemovesItWithAllThatWasConfigured)
{
    Model model;
    for (const SettingRequest &request : setting_requests()) {
        ask(model, request.datagram());
    }
    EXPECT_EQ(ask_one(model, join({head(2), instance_filter(5)})), result(0));
    EXPECT_EQ(model.instance(5), nullptr);
    EXPECT_EQ(ask_one(model, join({head(2), instance_filter(5)})), result(NO_INSTANCE));
    ask(model, join({head(1), instance_filter(5)}));
    EXPECT_TRUE(model.instance(5)->controllers.empty());
    EXPECT_EQ(model.instance(5)->echo_interval, InstanceConfig{}.echo_interval);
}

TEST(UnsetInstance, LeavesAClientItsTableAndTheRulesInIt)
{
    Model model;
    open_period(model);
    ask(model, add(CLIENT, {table(10)}));
    ask(model, batch({{.in_port = 1}, {.in_port = 2, .table = 10}}));
    EXPECT_EQ(model.flow_switch().table(CLIENT, 10).rules, 1u);
    EXPECT_EQ(ask_one(model, join({head(2), instance_filter(CLIENT)})), result(0));
    ASSERT_NE(model.instance(CLIENT), nullptr);
    EXPECT_FALSE(model.instance(CLIENT)->declared);
    EXPECT_EQ(model.table(CLIENT, 10), nullptr);
    EXPECT_EQ(model.flow_switch().table(CLIENT, 10).rules, 0u);
    EXPECT_EQ(model.flow_switch().table(CLIENT, 200).rules, 1u);
}

TEST(FlowRules, AreNotTakenFromAClientWhoseInstanceIsThereFromEarlier)
{
    Model model;
    ask(model, add(CLIENT, {table(10)}));
    const std::vector<Datagram> answers = ask(model, batch({{}}));
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[0], error_reply(flow_mod(0, {}), 1, 5)); // bad request, EPERM
}

TEST(FlowRules, AreTakenUpToTheInstancesLimitOfEachTable)
{
    Model model;
    open_period(model);
    ask(model, add(CLIENT, {table(10)}));
    EXPECT_EQ(ask_one(model, join({head(7), tlv(9, join({be32(1), be16(CLIENT), be16(0)}))})),
              result(0));
    ask(model,
        batch({{.in_port = 1}, {.in_port = 2}, {.in_port = 1}, {.in_port = 1, .table = 10}}));
    EXPECT_EQ(model.counters.errors, 1u);
    EXPECT_EQ(model.flow_switch().table(CLIENT, 200).rules, 1u);
    EXPECT_EQ(model.flow_switch().table(CLIENT, 10).rules, 1u);
    ask(model, join({head(7), tlv(9, join({be32(0), be16(CLIENT), be16(0)}))}));
    ask(model, batch({{.in_port = 2}}));
    EXPECT_EQ(model.flow_switch().table(CLIENT, 200).rules, 2u);
}

TEST(ActivateInstance, IsUndoneByDeactivating)
{
    Model model;
    ask(model, join({head(1), instance_filter(5)}));
    EXPECT_EQ(ask_one(model, join({head(23), instance_key()})), result(0));
    EXPECT_TRUE(model.instance(5)->active);
    EXPECT_EQ(ask_one(model, join({head(10), instance_key()})), result(0));
    EXPECT_FALSE(model.instance(5)->active);
}

TEST(SetDescription, TakesATextThatEndsWithinItsField)
{
    Model model;
    ask(model, join({head(1), instance_filter(5)}));
    const auto described = [&](const Datagram &text) {
        return ask_one(model,
                       join({head(9), tlv(3, join({Datagram(12), hex("0005 0000"), text}))}));
    };
    EXPECT_EQ(described(text(std::string(255, 'x'), 256)), result(0));
    EXPECT_EQ(model.instance(5)->description, std::string(255, 'x'));
    EXPECT_EQ(described(Datagram(256, 'y')), result(BAD_TEXT));
    EXPECT_EQ(model.instance(5)->description, std::string(255, 'x'));
    EXPECT_EQ(described(Datagram(256)), result(0));
    EXPECT_EQ(model.instance(5)->description, "");
}

TEST(SetDatapathId, GivesBackTheDefaultForZero)
{
    Model model;
    ask(model, join({head(1), instance_filter(5)}));
    EXPECT_EQ(model.configuration().datapath_id(5), OFP_util_DefaultPathID(5));
    ask(model, join({head(16), tlv(87, hex("00000000000000ab 0005 000000000000"))}));
    EXPECT_EQ(model.configuration().datapath_id(5), 0xabu);
    EXPECT_EQ(ask_one(model, join({head(16), tlv(87, hex("0000000000000000 0005 000000000000"))})),
              result(0));
    EXPECT_EQ(model.configuration().datapath_id(5), OFP_util_DefaultPathID(5));
}

TEST(SetPrecedence, HasAWordThatTravelsAsItLies)
{
    Model model;
    ask(model, join({head(1), instance_filter(5)}));
    const auto set = [&](uint32_t present) {
        Datagram lying(sizeof present);
        std::memcpy(lying.data(), &present, sizeof present);
        return ask_one(model, join({head(26), tlv(154, join({hex("0005 0014"), lying}))}));
    };
    EXPECT_EQ(set(1), result(0));
    EXPECT_EQ(model.instance(5)->precedence, 20);
    EXPECT_EQ(set(0x01000000), result(BAD_VALUE));
    EXPECT_EQ(set(0), result(0));
    EXPECT_EQ(model.instance(5)->precedence, std::nullopt);
}

TEST(SetFlowTable, ReplacesTheTables)
{
    Model model;
    ask(model, join({head(1), instance_filter(5)}));
    const auto set = [&](std::initializer_list<Datagram> tables) {
        return ask_one(model, join({head(12), instance_key(), join(tables)}));
    };
    EXPECT_EQ(set({table(20), table(10, 7)}), result(0));
    ASSERT_EQ(model.instance(5)->tables.size(), 2u);
    EXPECT_EQ(model.instance(5)->tables[0].table_id, 10);
    EXPECT_EQ(model.instance(5)->tables[0].kind, 7u);
    EXPECT_EQ(set({table(255)}), result(BAD_TABLE_ID));
    EXPECT_EQ(set({table(1), table(2), table(1)}), result(DUPLICATE_TABLE));
    EXPECT_EQ(model.instance(5)->tables.size(), 2u);
    EXPECT_EQ(set({}), result(0));
    EXPECT_TRUE(model.instance(5)->tables.empty());
}

TEST(SetFlowTable, OfAClientRemovesTheRulesOfTablesThatGo)
{
    Model model;
    open_period(model);
    ask(model, add(CLIENT, {table(10), table(20)}));
    ask(model, batch({{.table = 10}, {.table = 20}, {.table = 200}}));
    EXPECT_EQ(ask_one(model, join({head(12), instance_key(CLIENT), table(200)})),
              result(BAD_TABLE_ID));
    EXPECT_EQ(ask_one(model, join({head(12), instance_key(CLIENT), table(20)})), result(0));
    EXPECT_EQ(model.flow_switch().table(CLIENT, 10).rules, 0u);
    EXPECT_EQ(model.flow_switch().table(CLIENT, 20).rules, 1u);
    EXPECT_EQ(model.flow_switch().table(CLIENT, 200).rules, 1u);
}

TEST(SetVlanList, SetsTheFilterAndLooseMatching)
{
    Model model;
    ask(model, join({head(1), instance_filter(5)}));
    const auto set = [&](const char *value, const char *filter, const char *vlans) {
        return ask_one(model,
                       join({head(3), tlv(3, join({Datagram(12), hex(value), Datagram(256)})),
                             tlv(124, hex(filter)), tlv(125, hex(vlans))}));
    };
    EXPECT_EQ(set("0005 0001", "0005 0001 00000000", "00000000 0064 0ff0"), result(0));
    EXPECT_EQ(model.instance(5)->filter.param_a, 100);
    EXPECT_EQ(model.instance(5)->filter.param_b, 0x0ff0);
    EXPECT_EQ(model.instance(5)->vlan_loose, 1);
    EXPECT_EQ(set("0006 0001", "0005 0001 00000000", "00000000 0064 0ff0"), result(OTHER_INSTANCE));
    EXPECT_EQ(set("0005 0002", "0005 0001 00000000", "00000000 0064 0ff0"), result(BAD_VALUE));
    EXPECT_EQ(set("0005 0000", "0005 0001 00000000", "00000000 0000 0fff"), result(BAD_VLAN));
    EXPECT_EQ(set("0005 0000", "0005 0001 00000000", "00000000 0fff 0fff"), result(BAD_VLAN));
    EXPECT_EQ(set("0005 0000", "0005 0001 00000000", "00000000 0064 1000"), result(BAD_VALUE));
    EXPECT_EQ(set("0005 0000", "0005 0001 00000000", "00000000 0064 ffff"), result(0));
    EXPECT_EQ(set("0005 0000", "0005 0004 00000000", "00000000 0064 0fff"), result(BAD_VLAN));
    EXPECT_EQ(set("0005 0000", "0005 0004 00000000", "00000000 0064 000a"), result(BAD_VALUE));
    EXPECT_EQ(set("0005 0000", "0005 0004 00000000", "00000000 000a 0064"), result(0));
    EXPECT_EQ(set("0005 0000", "0005 0009 00000000", "00000000 000a 0064"), result(BAD_FILTER));
}

TEST(SetInManageVlan, ReplacesTheVlans)
{
    Model model;
    ask(model, join({head(1), instance_filter(5)}));
    EXPECT_EQ(ask_one(model, join({head(17), instance_key(), vlan_map({1, 10})})), result(0));
    EXPECT_EQ(ask_one(model, join({head(17), instance_key(), vlan_map({20})})), result(0));
    EXPECT_EQ(model.instance(5)->in_band_vlans, VlanSet().set(20));
    EXPECT_EQ(ask_one(model, join({head(17), instance_key(), vlan_map({4095})})), result(BAD_VLAN));
    EXPECT_EQ(ask_one(model, join({head(17), instance_key()})), result(MISSING_TLV));
    EXPECT_EQ(model.instance(5)->in_band_vlans, VlanSet().set(20));
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
