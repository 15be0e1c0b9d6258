#include "switch/fixture.h"

namespace {

using namespace openflow;
using build::Message;

Error flow_mod_failed(FlowModFailedCode code) { return {OFPET_FLOW_MOD_FAILED, code}; }

class AddTest : public SwitchTest {};

TEST_F(AddTest, KeepsTheRuleAsItWasReceived)
{
    const Message match = build::five_tuple(0x0a000001, 0x0a000002, 1000, 443);
    const Message instructions = build::write_actions({build::output(7)});
    ASSERT_FALSE(
        send({.priority = 321, .cookie = 99, .match = match, .instructions = instructions}));
    ASSERT_EQ(ids(), std::vector<uint32_t>{1});
    const auto view = switch_.rule(CLIENT, TABLE, 1);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->id, 1U);
    EXPECT_EQ(view->priority, 321);
    EXPECT_EQ(view->cookie, 99U);
    EXPECT_EQ(view->counters.packets, 0U);
    EXPECT_EQ(match_of(1), match);
    EXPECT_EQ(instructions_of(1), instructions);
}

TEST_F(AddTest, RefusesARuleThatAPacketCouldMatchTogetherWithOneOfTheSamePriority)
{
    ASSERT_FALSE(send({.match = ipv4_dst(0x0a000000, 0xff000000)}));
    EXPECT_EQ(send({.match = ipv4_dst(0x0a010000, 0xffff0000)}), OVERLAP);
    EXPECT_EQ(send({.match = in_port(1)}), OVERLAP);
    EXPECT_FALSE(send({.match = ipv4_dst(0x0b000000, 0xff000000)}));
    EXPECT_FALSE(send({.priority = 101, .match = ipv4_dst(0x0a010000, 0xffff0000)}));
    EXPECT_EQ(rules(), 3U);
}

TEST_F(AddTest, TakesAnOverlapWhenNoCheckIsAskedFor)
{
    ASSERT_FALSE(send({.match = ipv4_dst(0x0a000000, 0xff000000)}));
    EXPECT_FALSE(send({.flags = 0, .match = ipv4_dst(0x0a010000, 0xffff0000)}));
    EXPECT_EQ(rules(), 2U);
}

TEST_F(AddTest, ReplacesAnIdenticalRuleAndKeepsItsId)
{
    ASSERT_FALSE(send({.match = in_port(1)}));
    ASSERT_FALSE(send({.match = in_port(2)}));
    const Message instructions = build::write_actions({build::output(8), build::output(9)});
    now_ += 5;
    ASSERT_FALSE(send({.cookie = 5, .match = in_port(1), .instructions = instructions}));
    EXPECT_EQ(ids(), (std::vector<uint32_t>{1, 2}));
    EXPECT_EQ(instructions_of(1), instructions);
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->cookie, 5U);
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->age_seconds, 0U);
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 2)->age_seconds, 5U);
}

// The identical rule may itself overlap others that came in unchecked.
TEST_F(AddTest, ReplacesAnIdenticalRuleWhateverElseOverlaps)
{
    ASSERT_FALSE(send({.match = ipv4_dst(0x0a000000, 0xff000000)}));
    ASSERT_FALSE(send({.flags = 0, .match = ipv4_dst(0x0a010000, 0xffff0000)}));
    EXPECT_FALSE(send({.match = ipv4_dst(0x0a010000, 0xffff0000)}));
    EXPECT_EQ(rules(), 2U);
}

TEST_F(AddTest, TakesTheSameMatchWrittenOtherwiseForIdentical)
{
    const Message vlan = build::oxm16(OFPXMT_VLAN_VID, 0x1064);
    ASSERT_FALSE(send({.match = build::match({build::oxm32(OFPXMT_IN_PORT, 1), vlan})}));
    // The fields in another order, a mask of all bits, and a field that is masked out.
    const Message again =
        build::match({build::oxm16(OFPXMT_VLAN_VID, 0x1064, 0x1fff),
                      build::oxm64(OFPXMT_METADATA, 0, 0), build::oxm32(OFPXMT_IN_PORT, 1)});
    ASSERT_FALSE(send({.match = again}));
    EXPECT_EQ(rules(), 1U);
    EXPECT_EQ(match_of(1), again);
}

TEST_F(AddTest, TellsMasksApart)
{
    const auto vlan = [](std::optional<uint16_t> mask) {
        return build::match({build::oxm16(OFPXMT_VLAN_VID, 0x1000, mask)});
    };
    ASSERT_FALSE(send({.match = vlan(0x1000)}));
    ASSERT_FALSE(send({.flags = 0, .match = vlan({})}));
    EXPECT_EQ(rules(), 2U);
}

TEST_F(AddTest, HonoursTheMaskOfTheCustomerVlan)
{
    const auto cvlan = [](uint16_t vid, uint16_t mask) {
        Message value(2);
        Message bits(2);
        store(value.data(), vid);
        store(bits.data(), mask);
        return build::match({build::private_field(PRIVATE_CVLAN_VID, value, bits)});
    };
    ASSERT_FALSE(send({.match = cvlan(0x1010, 0x1ff0)}));
    EXPECT_EQ(send({.match = cvlan(0x1000, 0x1f00)}), OVERLAP);
    EXPECT_FALSE(send({.match = cvlan(0x1020, 0x1ff0)}));
}

TEST_F(AddTest, ComparesItemsAndPrivateFieldsByTheirBytes)
{
    const auto item = [](uint8_t type, uint8_t value) {
        const std::array<uint8_t, 4> data = {0, 0, 0, value};
        return build::item(type, data);
    };
    ASSERT_FALSE(send({.match = build::match({item(37, 1)})}));
    EXPECT_FALSE(send({.match = build::match({item(37, 2)})}));
    EXPECT_EQ(send({.match = build::match({item(44, 1)})}), OVERLAP);
    EXPECT_EQ(send({.match = build::match({item(37, 1), item(44, 1)})}), OVERLAP);
    EXPECT_FALSE(send({.match = build::match({item(37, 3), item(44, 1), item(64, 1)})}));
    EXPECT_EQ(send({.match = build::match({item(37, 3), item(64, 1)})}), OVERLAP);
    EXPECT_FALSE(send({.match = build::match({item(37, 3), item(64, 2)})}));
    EXPECT_EQ(rules(), 4U);
}

// A value of a field in all its bytes, and one that differs in the last bit only.
struct FieldCase {
    std::vector<Message> before; // what the field needs
    Message one;
    Message other;
};

std::vector<FieldCase> all_fields()
{
    const std::vector<Message> none;
    const auto type = [](uint16_t eth_type) { return build::oxm16(OFPXMT_ETH_TYPE, eth_type); };
    const auto proto = [](uint8_t number) { return build::oxm8(OFPXMT_IP_PROTO, number); };
    const std::vector<Message> ip = {type(0x0800)};
    const std::vector<Message> ip6 = {type(0x86dd)};
    const std::vector<Message> arp = {type(0x0806)};
    const std::vector<Message> mpls = {type(0x8847)};
    const auto nd = [&](uint8_t icmp) {
        return std::vector<Message>{type(0x86dd), proto(58), build::oxm8(OFPXMT_ICMPV6_TYPE, icmp)};
    };
    const std::vector<std::pair<uint8_t, std::vector<Message>>> basic = {
        {0, none},
        {1, {build::oxm32(0, 1)}},
        {2, none},
        {3, none},
        {4, none},
        {5, none},
        {6, none},
        {7, {build::oxm16(6, 0x1001)}},
        {8, ip},
        {9, ip},
        {10, ip},
        {11, ip},
        {12, ip},
        {13, {type(0x0800), proto(6)}},
        {14, {type(0x0800), proto(6)}},
        {15, {type(0x0800), proto(17)}},
        {16, {type(0x0800), proto(17)}},
        {17, {type(0x0800), proto(132)}},
        {18, {type(0x0800), proto(132)}},
        {19, {type(0x0800), proto(1)}},
        {20, {type(0x0800), proto(1)}},
        {21, arp},
        {22, arp},
        {23, arp},
        {24, arp},
        {25, arp},
        {26, ip6},
        {27, ip6},
        {28, ip6},
        {29, {type(0x86dd), proto(58)}},
        {30, {type(0x86dd), proto(58)}},
        {31, nd(135)},
        {32, nd(135)},
        {33, nd(136)},
        {34, mpls},
        {35, mpls},
        {36, mpls},
        {37, {type(0x88e7)}},
        {38, none},
        {39, ip6}};
    const std::array<size_t, 40> sizes = {4, 4, 8, 6,  6, 2, 2, 1, 1, 1, 1, 4, 4,  2,
                                          2, 2, 2, 2,  2, 1, 1, 2, 4, 4, 6, 6, 16, 16,
                                          4, 1, 1, 16, 6, 6, 4, 1, 1, 4, 8, 2};
    std::vector<FieldCase> all;
    const auto add = [&all](const std::vector<Message> &before, uint16_t oxm_class, uint8_t field,
                            Message value) {
        const Message one = build::oxm_bytes(oxm_class, field, value);
        value.back() ^= 1;
        all.push_back({before, one, build::oxm_bytes(oxm_class, field, value)});
    };
    for (const auto &[field, before] : basic) {
        Message value(sizes[field]);
        if (field == OFPXMT_VLAN_VID) {
            value[0] = 0x10;
        } else if (field <= OFPXMT_IN_PHY_PORT) {
            value.back() = 2;
        }
        add(before, OFPXMC_OPENFLOW_BASIC, field, value);
    }
    const std::vector<std::pair<uint8_t, size_t>> opaque = {
        {PRIVATE_IP_RANGE, 80}, {PRIVATE_VRF, 2}, {PRIVATE_FRAGMENT, 1}, {PRIVATE_OUT_PORT, 4}};
    for (const auto &[field, size] : opaque) {
        add(none, OFPXMC_EXPERIMENTER, field, Message(size));
    }
    add(none, OFPXMC_EXPERIMENTER, PRIVATE_CVLAN_VID, build::hex("10 00"));
    for (uint8_t type_number = 0; type_number <= EXPERIMENTER_ITEM_MAX; type_number++) {
        if (type_number < PRIVATE_IP_RANGE || type_number == EXPERIMENTER_ITEM_MAX ||
            type_number == PRIVATE_BATCH_IF) {
            add(none, OFPXMC_EXPERIMENTER, type_number, build::hex("00 00 0f e2  00 00 00 00"));
        }
    }
    return all;
}

TEST_F(AddTest, TellsRulesApartByAnyOneField)
{
    const std::vector<FieldCase> fields = all_fields();
    ASSERT_EQ(fields.size(), 40U + 5U + 60U);
    for (const FieldCase &each : fields) {
        const auto with = [&each](const Message &entry) {
            std::vector<Message> entries = each.before;
            entries.push_back(entry);
            return build::match(std::span<const Message>(entries));
        };
        const auto name = testing::PrintToString(each.one);
        EXPECT_FALSE(send({.match = with(each.one)})) << name;
        EXPECT_FALSE(send({.match = with(each.other)})) << name;
        EXPECT_EQ(rules(), 2U) << name;
        EXPECT_EQ(send({.match = build::match(std::span<const Message>(each.before))}), OVERLAP)
            << name;
        EXPECT_FALSE(send({.command = OFPFC_DELETE_STRICT, .match = with(each.one)}));
        EXPECT_EQ(rules(), 1U) << name;
        EXPECT_FALSE(send({.command = OFPFC_DELETE}));
        EXPECT_EQ(rules(), 0U) << name;
    }
}

// Two fields never share a place: a rule with both is told from rules with one of them.
TEST_F(AddTest, KeepsFieldsApart)
{
    const std::vector<FieldCase> fields = all_fields();
    for (const FieldCase &first : fields) {
        for (const FieldCase &second : fields) {
            if (!first.before.empty() || !second.before.empty() || first.one == second.one) {
                continue;
            }
            const Message both = build::match({first.one, second.one});
            ASSERT_FALSE(send({.match = both}));
            ASSERT_EQ(send({.match = build::match({first.one})}), OVERLAP);
            ASSERT_EQ(send({.match = build::match({second.one})}), OVERLAP);
            ASSERT_FALSE(send({.match = build::match({first.other, second.one})}));
            ASSERT_FALSE(send({.match = build::match({first.one, second.other})}));
            ASSERT_FALSE(send({.command = OFPFC_DELETE}));
        }
    }
}

TEST_F(AddTest, TakesAListOf10000Interfaces)
{
    std::vector<uint32_t> indexes(10'000);
    for (uint32_t i = 0; i < indexes.size(); i++) {
        indexes[i] = i + 1;
    }
    const Message list = build::match({build::interfaces(indexes)});
    ASSERT_FALSE(send({.match = list}));
    ASSERT_FALSE(send({.match = list}));
    EXPECT_EQ(rules(), 1U);
    EXPECT_EQ(match_of(1), list);
    indexes.back()++;
    EXPECT_FALSE(send({.match = build::match({build::interfaces(indexes)})}));
    EXPECT_EQ(rules(), 2U);
    EXPECT_FALSE(send({.command = OFPFC_DELETE_STRICT, .match = list}));
    EXPECT_EQ(ids(), std::vector<uint32_t>{2});
}

TEST_F(AddTest, RefusesWhatTheMatchMayNotSay)
{
    const Message ports = build::match({build::oxm16(OFPXMT_TCP_DST, 80)});
    EXPECT_EQ(send({.match = ports}), (Error{OFPET_BAD_MATCH, OFPBMC_BAD_PREREQ}));
    EXPECT_EQ(rules(), 0U);
}

TEST_F(AddTest, RefusesAGroupThatDoesNotExist)
{
    const Message to_group = build::write_actions({build::group_action(4)});
    EXPECT_EQ(send({.instructions = to_group}), (Error{OFPET_BAD_ACTION, OFPBAC_BAD_OUT_GROUP}));
    ASSERT_FALSE(send_group(build::group_mod(OFPGC_ADD, OFPGT_ALL, 4)));
    EXPECT_FALSE(send({.instructions = to_group}));
}

TEST_F(AddTest, RefusesAPortThatTheSwitchDoesNotHave)
{
    agent::Switch small({.ports = 48});
    const auto rule = [](uint32_t port) {
        return build::flow_mod({.instructions = build::write_actions({build::output(port)})});
    };
    EXPECT_FALSE(small.flow_mod(CLIENT, rule(48)));
    EXPECT_EQ(small.flow_mod(CLIENT, rule(49)), (Error{OFPET_BAD_ACTION, OFPBAC_BAD_OUT_PORT}));
    EXPECT_FALSE(small.flow_mod(CLIENT, rule(OFPP_CONTROLLER)));
}

TEST_F(AddTest, RefusesWhatTheSwitchCannotDo)
{
    EXPECT_EQ(send({.table = OFPTT_ALL}), flow_mod_failed(OFPFMFC_BAD_TABLE_ID));
    EXPECT_EQ(send({.command = 5}), flow_mod_failed(OFPFMFC_BAD_COMMAND));
    EXPECT_EQ(send({.flags = 0x0020}), flow_mod_failed(OFPFMFC_BAD_FLAGS));
    EXPECT_EQ(send({.flags = OFPFF_SEND_FLOW_REM}), flow_mod_failed(OFPFMFC_BAD_FLAGS));
    EXPECT_EQ(send({.idle_timeout = 1}), flow_mod_failed(OFPFMFC_BAD_TIMEOUT));
    EXPECT_EQ(send({.hard_timeout = 1}), flow_mod_failed(OFPFMFC_BAD_TIMEOUT));
    EXPECT_EQ(send({.buffer_id = 1}), (Error{OFPET_BAD_REQUEST, OFPBRC_BUFFER_UNKNOWN}));
    EXPECT_EQ(rules(), 0U);
}

TEST_F(AddTest, FillsATableToTheLimitOfTheMoment)
{
    const auto add = [this](uint32_t port, uint32_t most_rules) {
        return switch_.flow_mod(CLIENT, build::flow_mod({.match = in_port(port)}), most_rules);
    };
    EXPECT_FALSE(add(1, 2));
    EXPECT_FALSE(add(2, 2));
    EXPECT_EQ(add(3, 2), TABLE_FULL);
    EXPECT_FALSE(add(2, 1)); // replaces one
    EXPECT_EQ(rules(), 2U);
    EXPECT_FALSE(add(3, 3));
}

TEST_F(AddTest, FillsATableToItsCapacity)
{
    agent::Switch small({.rules_per_table = 2});
    const auto add = [&small](uint32_t port, uint8_t table = TABLE) {
        return small.flow_mod(CLIENT, build::flow_mod({.table = table, .match = in_port(port)}));
    };
    EXPECT_FALSE(add(1));
    EXPECT_FALSE(add(2));
    EXPECT_EQ(add(3), TABLE_FULL);
    EXPECT_FALSE(add(2));      // replaces
    EXPECT_FALSE(add(3, 201)); // another table
    EXPECT_EQ(small.table(CLIENT, TABLE).rules, 2U);
    EXPECT_EQ(small.table(CLIENT, TABLE).capacity, 2U);
}

TEST_F(AddTest, KeepsClientsApart)
{
    ASSERT_FALSE(send({.match = in_port(1)}, CLIENT));
    ASSERT_FALSE(send({.match = build::match(std::initializer_list<Message>{})}, OTHER));
    EXPECT_EQ(rules(CLIENT), 1U);
    EXPECT_EQ(rules(OTHER), 1U);
    ASSERT_FALSE(send({.command = OFPFC_DELETE}, OTHER));
    EXPECT_EQ(rules(CLIENT), 1U);
    EXPECT_EQ(rules(OTHER), 0U);
}

class ModifyTest : public SwitchTest {
protected:
    const Message changed_ = build::write_actions({build::output(77)});
};

TEST_F(ModifyTest, ChangesTheRulesThatTheMatchIncludesWhateverTheirPriority)
{
    ASSERT_FALSE(send({.priority = 1, .match = ipv4_dst(0x0a010000, 0xffff0000)}));
    ASSERT_FALSE(send({.priority = 2, .match = ipv4_dst(0x0a000001)}));
    ASSERT_FALSE(send({.priority = 2, .match = ipv4_dst(0x0b000001)}));
    ASSERT_FALSE(send({.priority = 3, .match = in_port(1)}));
    now_ += 9;
    ASSERT_FALSE(send({.command = OFPFC_MODIFY,
                       .match = ipv4_dst(0x0a000000, 0xff000000),
                       .instructions = changed_}));
    EXPECT_EQ(instructions_of(1), changed_);
    EXPECT_EQ(instructions_of(2), changed_);
    EXPECT_NE(instructions_of(3), changed_);
    EXPECT_NE(instructions_of(4), changed_);
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->age_seconds, 9U);
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 1)->priority, 1);
    EXPECT_EQ(match_of(1), ipv4_dst(0x0a010000, 0xffff0000));
}

TEST_F(ModifyTest, StrictChangesTheIdenticalRuleOnly)
{
    ASSERT_FALSE(send({.priority = 1, .match = in_port(1)}));
    ASSERT_FALSE(send({.priority = 2, .match = in_port(1)}));
    ASSERT_FALSE(send({.command = OFPFC_MODIFY_STRICT,
                       .priority = 2,
                       .match = in_port(1),
                       .instructions = changed_}));
    EXPECT_NE(instructions_of(1), changed_);
    EXPECT_EQ(instructions_of(2), changed_);
}

TEST_F(ModifyTest, OfNothingAddsNothing)
{
    EXPECT_FALSE(send({.command = OFPFC_MODIFY, .match = in_port(1)}));
    EXPECT_FALSE(send({.command = OFPFC_MODIFY_STRICT, .match = in_port(1)}));
    EXPECT_EQ(rules(), 0U);
}

TEST_F(ModifyTest, IsHeldToTheSameInstructionsAsAnAdd)
{
    ASSERT_FALSE(send({.match = in_port(1)}));
    EXPECT_EQ(send({.command = OFPFC_MODIFY_STRICT,
                    .match = in_port(1),
                    .instructions = build::write_actions({build::group_action(1)})}),
              (Error{OFPET_BAD_ACTION, OFPBAC_BAD_OUT_GROUP}));
    EXPECT_EQ(send({.command = OFPFC_MODIFY, .table = OFPTT_ALL}),
              flow_mod_failed(OFPFMFC_BAD_TABLE_ID));
}

TEST_F(ModifyTest, KeepsToTheCookieMask)
{
    ASSERT_FALSE(send({.cookie = 1, .match = in_port(1)}));
    ASSERT_FALSE(send({.cookie = 2, .match = in_port(2)}));
    ASSERT_FALSE(
        send({.command = OFPFC_MODIFY, .cookie = 2, .cookie_mask = 3, .instructions = changed_}));
    EXPECT_NE(instructions_of(1), changed_);
    EXPECT_EQ(instructions_of(2), changed_);
    EXPECT_EQ(switch_.rule(CLIENT, TABLE, 2)->cookie, 2U);
}

class DeleteTest : public SwitchTest {};

TEST_F(DeleteTest, TakesTheRulesThatTheMatchIncludesWhateverTheirPriority)
{
    ASSERT_FALSE(send({.priority = 1, .match = ipv4_dst(0x0a010000, 0xffff0000)}));
    ASSERT_FALSE(send({.priority = 2, .match = ipv4_dst(0x0b000001)}));
    ASSERT_FALSE(send({.priority = 3, .match = in_port(1)}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .match = ipv4_dst(0x0a000000, 0xff000000)}));
    EXPECT_EQ(ids(), (std::vector<uint32_t>{2, 3}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE}));
    EXPECT_TRUE(ids().empty());
}

TEST_F(DeleteTest, StrictTakesTheIdenticalRuleOnly)
{
    ASSERT_FALSE(send({.priority = 1, .match = in_port(1)}));
    ASSERT_FALSE(send({.priority = 2, .match = in_port(1)}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT, .priority = 2, .match = in_port(1)}));
    EXPECT_EQ(ids(), std::vector<uint32_t>{1});
    EXPECT_FALSE(send({.command = OFPFC_DELETE_STRICT, .priority = 1}));
    EXPECT_EQ(ids(), std::vector<uint32_t>{1});
}

TEST_F(DeleteTest, OfNothingIsNoError)
{
    EXPECT_FALSE(send({.command = OFPFC_DELETE}));
    EXPECT_FALSE(send({.command = OFPFC_DELETE_STRICT, .match = in_port(1)}));
}

TEST_F(DeleteTest, KeepsToPortGroupAndCookie)
{
    ASSERT_FALSE(send_group(build::group_mod(OFPGC_ADD, OFPGT_ALL, 4)));
    ASSERT_FALSE(send({.cookie = 1,
                       .match = in_port(1),
                       .instructions = build::write_actions({build::output(5)})}));
    ASSERT_FALSE(send({.cookie = 2,
                       .match = in_port(2),
                       .instructions = build::write_actions({build::group_action(4)})}));
    ASSERT_FALSE(send({.cookie = 3,
                       .match = in_port(3),
                       .instructions = build::write_actions({build::output(6)})}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .out_port = 5}));
    EXPECT_EQ(ids(), (std::vector<uint32_t>{2, 3}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .out_group = 4}));
    EXPECT_EQ(ids(), std::vector<uint32_t>{3});
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .cookie = 2, .cookie_mask = 0xff}));
    EXPECT_EQ(ids(), std::vector<uint32_t>{3});
    ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT, .out_port = 5, .match = in_port(3)}));
    EXPECT_EQ(ids(), std::vector<uint32_t>{3});
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .cookie = 3, .cookie_mask = 0xff}));
    EXPECT_TRUE(ids().empty());
}

TEST_F(DeleteTest, ReachesAllTablesOfTheClient)
{
    ASSERT_FALSE(send({.table = 1, .match = in_port(1)}));
    ASSERT_FALSE(send({.table = 2, .match = in_port(1)}));
    ASSERT_FALSE(send({.table = 2, .match = in_port(2)}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT, .table = OFPTT_ALL, .match = in_port(1)}));
    EXPECT_EQ(rules(CLIENT, 1), 0U);
    EXPECT_EQ(rules(CLIENT, 2), 1U);
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .table = OFPTT_ALL}));
    EXPECT_EQ(rules(CLIENT, 2), 0U);
}

TEST_F(DeleteTest, LooksAtTheMatchButNotAtTheInstructions)
{
    ASSERT_FALSE(send({.match = in_port(1)}));
    EXPECT_EQ(send({.command = OFPFC_DELETE, .match = build::match({build::oxm8(10, 6)})}),
              (Error{OFPET_BAD_MATCH, OFPBMC_BAD_PREREQ}));
    EXPECT_FALSE(send({.command = OFPFC_DELETE_STRICT,
                       .match = in_port(1),
                       .instructions = build::write_actions({build::group_action(1)})}));
    EXPECT_EQ(rules(), 0U);
}

TEST_F(DeleteTest, OfAnItemThatNoRuleHasTakesNothing)
{
    const std::array<uint8_t, 4> one = {0, 0, 0, 1};
    const std::array<uint8_t, 4> two = {0, 0, 0, 2};
    ASSERT_FALSE(send({.match = build::match({build::item(37, one)})}));
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .match = build::match({build::item(37, two)})}));
    EXPECT_EQ(rules(), 1U);
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .match = build::match({build::item(37, one)})}));
    EXPECT_EQ(rules(), 0U);
}

TEST_F(DeleteTest, GivesIdsBack)
{
    for (uint32_t port = 1; port <= 3; port++) {
        ASSERT_FALSE(send({.match = in_port(port)}));
    }
    ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT, .match = in_port(2)}));
    ASSERT_FALSE(send({.match = in_port(9)}));
    EXPECT_EQ(ids(), (std::vector<uint32_t>{1, 2, 3}));
    EXPECT_EQ(match_of(2), in_port(9));
}

} // namespace
