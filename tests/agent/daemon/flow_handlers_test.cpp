#include <gtest/gtest.h>

#include "agent/daemon/messages.h"

namespace agent::test {
namespace {

constexpr uint16_t BAD_REQUEST = 1;
constexpr uint16_t FLOW_MOD_FAILED = 5;
constexpr uint16_t GROUP_MOD_FAILED = 6;
constexpr uint16_t EPERM_CODE = 5;

constexpr uint32_t FLOW_RULE = 0x50000001;
constexpr uint32_t SET_GROUP = 0x50000003;
constexpr uint32_t DEL_GROUP = 0x50000004;

uint32_t rules(const Model &model, uint16_t client = CLIENT)
{
    return model.flow_switch().table(client, 200).rules;
}

// ---- Smooth periods

TEST(SmoothStart, IsAnsweredByABarrierReply)
{
    Model model;
    const Datagram request = hex("0001 0004 50000005"                   // message head
                                 "0079 0010 00000001 00000000 00000007" // mode, zone, smooth id
                                 "0000 1001");                          // position, client 4097
    EXPECT_EQ(ask_one(model, request), hex("04 15 0008 00000000"));
    EXPECT_NE(model.table(4097, 200), nullptr);
}

TEST(SmoothStart, RefusesWhoIsNoClientAndPeriodsThatCannotBe)
{
    Model model;
    const std::vector<Datagram> refused = {error_reply(barrier(0), BAD_REQUEST, EPERM_CODE),
                                           barrier_reply(0)};
    EXPECT_EQ(ask(model, smooth_start(4095)), refused);
    EXPECT_EQ(ask(model, smooth_start(4100)), refused);
    EXPECT_EQ(ask(model, smooth_start(CLIENT, 0xffffffff)), refused);
    EXPECT_EQ(ask(model, smooth_start(CLIENT, SMOOTH_ID, 2)), refused);
    EXPECT_FALSE(model.next_instance(0));
}

TEST(SmoothStart, RefusesAHeadThatIsNotWhole)
{
    Model model;
    EXPECT_EQ(ask_one(model, head(0x50000005)), result(MISSING_TLV));
    EXPECT_EQ(ask_one(model, join({head(0x50000005), tlv(121, hex("00"))})),
              result(BAD_TLV_LENGTH));
    EXPECT_EQ(ask_one(model, join({smooth_start(), hex("00")})), result(TRAILING_BYTES));
    EXPECT_FALSE(model.next_instance(0));
}

TEST(SmoothEnd, IsNotAnsweredAndRemovesTheRulesThatWereNotProgrammedAgain)
{
    Model model;
    open_period(model);
    ask(model, batch({{.in_port = 1}, {.in_port = 2}, {.in_port = 3}}));
    EXPECT_TRUE(ask(model, smooth_end()).empty());
    ASSERT_EQ(rules(model), 3u);

    ask(model, smooth_start(CLIENT, SMOOTH_ID + 1));
    ask(model, batch({{.in_port = 2}, {.in_port = 4}}, client_head(CLIENT, SMOOTH_ID + 1)));
    EXPECT_EQ(rules(model), 4u);
    EXPECT_TRUE(ask(model, smooth_end(CLIENT, SMOOTH_ID + 1)).empty());
    EXPECT_EQ(rules(model), 2u);
}

TEST(SmoothEnd, OfAPeriodThatIsNotOpenRemovesNothing)
{
    Model model;
    open_period(model);
    ask(model, batch({{}}));
    ask(model, smooth_end());
    EXPECT_TRUE(ask(model, smooth_end()).empty());
    EXPECT_TRUE(ask(model, smooth_end(CLIENT, 12345)).empty());
    EXPECT_EQ(rules(model), 1u);
    EXPECT_EQ(ask_one(model, smooth_end(1)), result(BAD_CLIENT));
}

// ---- Rule batches

TEST(FlowRules, AnswersEachBarrierWithItsTransactionId)
{
    Model model;
    open_period(model);
    EXPECT_EQ(ask(model, batch({{.in_port = 1}, {.in_port = 2}, {.in_port = 3}})),
              (std::vector<Datagram>{barrier_reply(0), barrier_reply(1), barrier_reply(2)}));
    EXPECT_EQ(rules(model), 3u);
}

TEST(FlowRules, PutsTheErrorOfARefusedRuleBeforeItsBarrierReply)
{
    Model model;
    open_period(model);
    const Rule unknown_table{.in_port = 2, .table = 10};
    EXPECT_EQ(ask(model, batch({{.in_port = 1}, unknown_table, {.in_port = 3}})),
              (std::vector<Datagram>{barrier_reply(0),
                                     error_reply(flow_mod(1, unknown_table), FLOW_MOD_FAILED, 2),
                                     barrier_reply(1), barrier_reply(2)}));
    EXPECT_EQ(rules(model), 2u);
    EXPECT_EQ(model.counters.messages, 3u);
    EXPECT_EQ(model.counters.errors, 1u);
}

TEST(FlowRules, AnErrorHoldsTheOffendersFirst64Bytes)
{
    Model model;
    open_period(model);
    const std::vector<Datagram> answers = ask(model, batch({{.table = 10}}));
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[0],
              hex("04 01 004c 00000000"                  // error, 76 bytes, xid 0
                  "0005 0002"                            // flow-mod failed: bad table
                  "04 0e 0048 00000000"                  // the flow-mod
                  "0000000000000000 0000000000000000"    // cookie and its mask
                  "0a 00 0000 0000 0064"                 // table 10, add, priority 100
                  "ffffffff ffffffff ffffffff 001e 0000" // no buffer, port, group; flags
                  "0001 000c 8000 00 04 00000001 00000000"));
}

TEST(FlowRules, DeletesFromAllTablesAtOnce)
{
    Model model;
    open_period(model);
    ask(model, batch({{.in_port = 1}, {.in_port = 2}}));
    EXPECT_EQ(ask(model, batch({{.in_port = 1, .command = 3, .table = 255}})),
              (std::vector<Datagram>{barrier_reply(0)}));
    EXPECT_EQ(rules(model), 1u);
    const Rule add_everywhere{.table = 255};
    EXPECT_EQ(ask(model, batch({add_everywhere})),
              (std::vector<Datagram>{error_reply(flow_mod(0, add_everywhere), FLOW_MOD_FAILED, 2),
                                     barrier_reply(0)}));
}

TEST(FlowRules, RefusesWhoHasNoSmoothPeriod)
{
    Model model;
    open_period(model);
    const auto refused = [](const Datagram &message) {
        return std::vector<Datagram>{error_reply(message, BAD_REQUEST, EPERM_CODE),
                                     barrier_reply(0)};
    };
    EXPECT_EQ(ask(model, batch({{}}, client_head(CLIENT, 0xffffffff))), refused(flow_mod(0, {})));
    EXPECT_EQ(ask(model, batch({{}}, client_head(4096))), refused(flow_mod(0, {}))); // never began
    EXPECT_EQ(ask(model, batch({{}}, client_head(5))), refused(flow_mod(0, {})));
    EXPECT_EQ(ask(model, group_request(SET_GROUP, group_mod(1), client_head(4096))),
              refused(group_mod(1)));
    EXPECT_EQ(rules(model), 0u);
    EXPECT_EQ(model.flow_switch().group_count(4096), 0u);
}

TEST(FlowRules, GoesOnTakingRulesAfterThePeriodEnded)
{
    Model model;
    open_period(model);
    ask(model, smooth_end());
    EXPECT_EQ(ask(model, batch({{}})), (std::vector<Datagram>{barrier_reply(0)}));
    EXPECT_EQ(rules(model), 1u);
}

TEST(FlowRules, AppliesNothingOfADatagramThatCannotBeReadToItsEnd)
{
    Model model;
    open_period(model);
    const Datagram whole = batch({{.in_port = 1}, {.in_port = 2}});
    const Datagram cut(whole.begin(), whole.end() - 1);
    EXPECT_EQ(ask_one(model, cut), result(BAD_TLV));
    EXPECT_EQ(ask_one(model, join({whole, entry(hex("04 14"))})), result(BAD_TLV_LENGTH));
    EXPECT_EQ(ask_one(model, join({whole, tlv(4, hex("0000 0000"))})), result(MISSING_TLV));
    EXPECT_EQ(rules(model), 0u);
}

TEST(FlowRules, RefusesMessagesOfOtherTypesVersionsAndLengths)
{
    Model model;
    open_period(model);
    const auto only = [&](const Datagram &message) {
        return ask_one(model, join({head(FLOW_RULE), client_head(), entry(message)}));
    };
    const Datagram other_version = hex("01 14 0008 00000009");
    const Datagram echo = hex("04 02 0008 00000009");
    const Datagram too_long = hex("04 14 0010 00000009");
    const Datagram group = group_mod(1);
    EXPECT_EQ(only(other_version), error_reply(other_version, BAD_REQUEST, 0));
    EXPECT_EQ(only(echo), error_reply(echo, BAD_REQUEST, 1));
    EXPECT_EQ(only(too_long), error_reply(too_long, BAD_REQUEST, 6));
    EXPECT_EQ(only(group), error_reply(group, BAD_REQUEST, 1));
    Datagram shorter_than_said = flow_mod(3, {});
    shorter_than_said.pop_back();
    EXPECT_EQ(only(shorter_than_said), error_reply(shorter_than_said, BAD_REQUEST, 6));
}

TEST(FlowRules, OfNoRulesAreNotAnswered)
{
    Model model;
    open_period(model);
    EXPECT_TRUE(ask(model, batch({})).empty());
}

TEST(FlowRules, RefusesMoreRulesThanATableHolds)
{
    SwitchLimits limits;
    limits.rules_per_table = 2;
    Model model(limits);
    open_period(model);
    const Rule third{.in_port = 3};
    EXPECT_EQ(ask(model, batch({{.in_port = 1}, {.in_port = 2}, third})),
              (std::vector<Datagram>{barrier_reply(0), barrier_reply(1),
                                     error_reply(flow_mod(2, third), FLOW_MOD_FAILED, 1),
                                     barrier_reply(2)}));
}

// ---- Groups

TEST(SetGroup, ReadsTheLengthOfItsTlvWithTheHeaderCounted)
{
    Model model;
    open_period(model);
    const Datagram request = hex("0001 0004 50000003"                   // message head
                                 "0079 0010 00000000 00000000 00000007" // client head
                                 "0000 1001"
                                 "007a 0034"                               // 52 bytes, 4 its own
                                 "04 0f 0030 00000000 0000 00 00 00000009" // add group 9
                                 "0020 0000 00000003 ffffffff 00000000"    // a bucket to port 3
                                 "0000 0010 00000003 0000 000000000000"
                                 "007a 0008 04 14 0008 00000000"); // barrier request
    EXPECT_EQ(ask_one(model, request), barrier_reply(0));
    EXPECT_TRUE(model.flow_switch().group(CLIENT, 9));
}

TEST(SetGroup, PutsTheErrorBeforeTheBarrierReply)
{
    Model model;
    open_period(model);
    ask(model, group_request(SET_GROUP, group_mod(9)));
    EXPECT_EQ(
        ask(model, group_request(SET_GROUP, group_mod(9))),
        (std::vector<Datagram>{error_reply(group_mod(9), GROUP_MOD_FAILED, 0), barrier_reply(0)}));
}

TEST(SetGroup, RefusesALengthThatRunsPastTheDatagramOrIsTooShort)
{
    Model model;
    open_period(model);
    const Datagram before = join({head(SET_GROUP), client_head()});
    EXPECT_EQ(ask_one(model, before), Datagram{});
    EXPECT_EQ(ask_one(model, join({before, hex("007a")})), result(BAD_TLV));
    EXPECT_EQ(ask_one(model, join({before, hex("007a 0003")})), result(BAD_TLV));
    EXPECT_EQ(ask_one(model, join({before, hex("007a 0004")})), result(BAD_TLV_LENGTH));
    EXPECT_EQ(ask_one(model, join({before, hex("007a 0035"), group_mod(9)})), result(BAD_TLV));
    EXPECT_EQ(ask_one(model, join({before, hex("0079 0034"), group_mod(9)})), result(MISSING_TLV));
    EXPECT_EQ(model.flow_switch().group_count(CLIENT), 0u);
}

TEST(DeleteGroup, DeletesAndTakesNothingButDeletes)
{
    Model model;
    open_period(model);
    ask(model, group_request(SET_GROUP, group_mod(9)));
    EXPECT_EQ(ask(model, group_request(DEL_GROUP, group_mod(10))),
              (std::vector<Datagram>{error_reply(group_mod(10), GROUP_MOD_FAILED, 11),
                                     barrier_reply(0)}));
    EXPECT_EQ(ask_one(model, group_request(DEL_GROUP, group_mod(9, 2))), barrier_reply(0));
    EXPECT_EQ(model.flow_switch().group_count(CLIENT), 0u);
}

} // namespace
} // namespace agent::test
