#include "flow/rule.h"

#include <cerrno>

#include "double/memory.h"
#include "double/sweep.h"
#include "flow/rules.h"

using namespace test;

namespace {

constexpr uint32_t ok = OFP_RC_OK;
constexpr uint32_t failed = OFP_RC_FAILED;

using Results = std::vector<uint64_t>;

class FlowRule : public FlowTest {
protected:
    uint32_t add(Rules &rules, uint16_t client = 4096)
    {
        results.assign(rules.count(), 0x55);
        return OFP_AddFlowRule(client, 200, rules.count(), rules.items(), results.data());
    }
    // The rules of each datagram.
    std::vector<size_t> batches() const
    {
        std::vector<size_t> counts;
        for (const Bytes &datagram : platform.sent)
            counts.push_back(rules_in(datagram));
        return counts;
    }
    Results results;
};

// Nothing was done for a refused call.
void expect_untouched() { EXPECT_EQ(platform.calls(), std::vector<Call>()); }

} // namespace

TEST_F(FlowRule, AddSendsTheRuleAndTakesItsResult)
{
    Rules rules;
    rules.add(7).output(5);
    platform.reply(barrier_reply(0));
    EXPECT_EQ(add(rules), ok);
    EXPECT_EQ(results, Results({0}));
    ASSERT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(platform.sent[0], hex("0001 0004 50000001") + client_head_tlv(4096) +
                                    hex("007a 0058 04 0e 0058 00000000"
                                        "0000000000000000 0000000000000000"
                                        "c8 00 0000 0000 0064 ffffffff ffffffff ffffffff 001e 0000"
                                        "0001 000c 8000 00 04 00000007 00000000"
                                        "0003 0018 00000000"
                                        "0000 0010 00000005 0000 000000000000"
                                        "007a 0008 04 14 0008 00000000"));
}

TEST_F(FlowRule, ModifyAndDeleteDifferInTheirCommand)
{
    Rules rules(1);
    answer_barriers();
    EXPECT_EQ(OFP_ModifyFlowRule(4096, 200, 1, rules.items(), nullptr), ok);
    for (int16_t strict : {int16_t{0}, int16_t{1}, int16_t{2}, int16_t{-1}})
        EXPECT_EQ(OFP_DelFlowRule(4096, 200, 1, rules.items(), strict), ok);
    std::vector<uint8_t> commands;
    for (const Bytes &datagram : platform.sent)
        commands.push_back(openflow_messages(datagram)[0].u8(25));
    EXPECT_EQ(commands, std::vector<uint8_t>({2, 3, 4, 3, 3}));
}

TEST_F(FlowRule, ArgumentsOutOfRangeAreRefusedUnseen)
{
    Rules rules(1);
    uint64_t result = 0x55;
    for (uint8_t table : {uint8_t{0}, uint8_t{199}, uint8_t{201}, uint8_t{255}})
        EXPECT_EQ(OFP_AddFlowRule(4096, table, 1, rules.items(), &result), failed);
    for (uint16_t client : {uint16_t{0}, uint16_t{4095}, uint16_t{4098}, uint16_t{4100}})
        EXPECT_EQ(OFP_AddFlowRule(client, 200, 1, rules.items(), &result), failed);
    EXPECT_EQ(OFP_AddFlowRule(4096, 200, 0, rules.items(), &result), failed);
    EXPECT_EQ(OFP_AddFlowRule(4096, 200, 1, nullptr, &result), failed);
    EXPECT_EQ(result, 0x55u);
    expect_untouched();
}

TEST_F(FlowRule, AMalformedRuleIsNamedAndNothingIsSent)
{
    Rules rules(4);
    rules[2].item.priority = 0;
    rules[2].item.match.fields = 0;
    EXPECT_EQ(add(rules), failed);
    EXPECT_EQ(results, Results({failed, failed, OFP_RC_INVALID, failed}));
    EXPECT_EQ(OFP_DelFlowRule(4096, 200, 4, rules.items(), 0), failed);
    expect_untouched();
}

TEST_F(FlowRule, AnOutputToTheTableOrToPort0IsRefused)
{
    for (auto [kind, port] : {std::pair{OFP_PORT_RESERVED, 0xfffffff9u}, {OFP_PORT_NUMBER, 0u}}) {
        Rules rules(1);
        rules[0].action(OFP_ACTION_OUTPUT, {static_cast<uint32_t>(kind), port});
        EXPECT_EQ(add(rules), failed);
        EXPECT_EQ(results, Results({OFP_RC_INVALID}));
    }
    expect_untouched();
}

TEST_F(FlowRule, ThirteenRulesTravelAsTwelveAndOne)
{
    Rules rules(13);
    answer_barriers();
    EXPECT_EQ(add(rules), ok);
    EXPECT_EQ(batches(), std::vector<size_t>({12, 1}));
    EXPECT_EQ(results, Results(13, 0));
    EXPECT_EQ(openflow_messages(platform.sent[0])[22].u32(4), 11u);
    const Bytes last = openflow_messages(platform.sent[1])[0];
    EXPECT_EQ(last.u32(4), 0u);       // indexes restart in each datagram
    EXPECT_EQ(last.u32(48 + 8), 13u); // in_port
    EXPECT_EQ(platform.sockets_opened, 1u);
}

TEST_F(FlowRule, ResultsOfTwentyFiveRulesReachTheirEntries)
{
    Rules rules(25);
    platform.on_send = [](const Bytes &datagram) {
        for (uint32_t i = 0; i < rules_in(datagram); ++i) {
            const bool refused = platform.sent.size() == 2 ? i == 11 : i == 0;
            if (refused)
                platform.reply(error_reply(i, 5, 3));
            platform.reply(barrier_reply(i));
        }
    };
    EXPECT_EQ(add(rules), ok);
    EXPECT_EQ(batches(), std::vector<size_t>({12, 12, 1}));
    Results expected(25, 0);
    for (size_t refused : {0u, 23u, 24u})
        expected[refused] = OFP_RC_STATE;
    EXPECT_EQ(results, expected);
}

TEST_F(FlowRule, ARefusedRuleDoesNotFailTheCall)
{
    Rules rules(3);
    for (const Bytes &reply :
         {barrier_reply(0), error_reply(1, 5, 1), barrier_reply(1), barrier_reply(2)})
        platform.reply(reply);
    EXPECT_EQ(add(rules), ok);
    EXPECT_EQ(results, Results({0, OFP_RC_NO_RESOURCE, 0}));
}

TEST_F(FlowRule, ATimeOutInTheSecondBatchKeepsWhatWasAnswered)
{
    Rules rules(25);
    platform.on_send = [](const Bytes &) {
        const uint32_t answered = platform.sent.size() == 1 ? 12 : 2;
        for (uint32_t i = 0; i < answered; ++i)
            platform.reply(barrier_reply(i));
    };
    EXPECT_EQ(add(rules), failed);
    EXPECT_EQ(batches(), std::vector<size_t>({12, 12}));
    Results expected(25, failed);
    std::fill_n(expected.begin(), 14, uint64_t{0});
    EXPECT_EQ(results, expected);
}

TEST_F(FlowRule, ASendThatFailsLeavesTheRestUnsent)
{
    Rules rules(25);
    answer_barriers();
    platform.next("SOCK_Send", {-1, EINTR});
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(add(rules), failed);
    EXPECT_EQ(results, Results(25, failed));
    EXPECT_EQ(platform.calls("SOCK_Recv").size(), 0u);
}

TEST_F(FlowRule, ClientsReachTheDaemonTheirOwnWay)
{
    Rules rules(1);
    answer_barriers();
    EXPECT_EQ(add(rules, 4099), ok);
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_SetOption SOCK_Connect "
                                   "SOCK_Send SOCK_Recv SOCK_Close");
    platform = Platform();
    answer_barriers();
    EXPECT_EQ(add(rules, 4097), ok);
    ASSERT_EQ(platform.calls("SOCK_SetOption").size(), 1u);
    EXPECT_EQ(platform.calls("SOCK_SetOption")[0].arguments[1], 0x113u); // device context
    EXPECT_EQ(platform.sent[0].slice(8, 20), client_head_tlv(4097));
}

TEST_F(FlowRule, ASkippedMaskIsZeroOnTheWire)
{
    Rules first, second;
    first.add(0xffffffff).has({OFP_FIELD_IN_PHY_PORT}).item.match.in_phy_port = 0xffffffff;
    second.add(1).masks({OFP_FIELD_IN_PORT});
    answer_barriers();
    EXPECT_EQ(add(first), ok); // leaves ones where the second rule skips
    EXPECT_EQ(add(second), ok);
    EXPECT_EQ(openflow_messages(platform.sent[1])[0].slice(48, 16),
              hex("0001 0010 8000 01 08 00000001 00000000"));
}

TEST_F(FlowRule, ADatagramBeyond8192BytesIsAllocated)
{
    // 1958 interfaces do not count as large, and do not fit the shared buffer either.
    for (uint32_t interfaces : {1958u, 2000u, 2001u, 10000u}) {
        Rules rules;
        rules.add(1).interfaces(interfaces);
        platform = Platform();
        answer_barriers();
        EXPECT_EQ(add(rules), ok) << interfaces;
        EXPECT_EQ(rules_in(platform.sent.at(0)), 1u);
        EXPECT_GT(platform.sent[0].size(), 8192u);
        platform = Platform();
        memory::fail_at(1);
        EXPECT_EQ(add(rules), failed) << interfaces;
        EXPECT_TRUE(platform.sent.empty());
        EXPECT_EQ(results, Results({failed}));
    }
}

TEST_F(FlowRule, TheLongestDatagramOfTheSharedBufferIsNot)
{
    constexpr uint16_t longest = 8188 - 28 - 4 - 48 - 20 - 8 - 12;
    Rules fitting, exceeding;
    fitting.add(1).string(longest);
    exceeding.add(1).string(longest + 1);
    answer_barriers();
    memory::fail_at(1);
    EXPECT_EQ(add(fitting), ok);
    EXPECT_FALSE(memory::has_failed());
    EXPECT_EQ(platform.sent.at(0).size(), 8188u);
    EXPECT_EQ(add(exceeding), failed);
    EXPECT_TRUE(memory::has_failed());
    EXPECT_EQ(add(exceeding), ok);
    EXPECT_EQ(platform.sent.at(1).size(), 8196u);
}

TEST_F(FlowRule, TheLastRuleDecidesWhetherMemoryIsTakenAtOnce)
{
    Rules rules(12);
    rules.add(13).interfaces(2001);
    answer_barriers();
    memory::fail_at(1);
    EXPECT_EQ(add(rules), failed);
    EXPECT_TRUE(platform.sent.empty()) << "the first batch fits the shared buffer";

    Rules large_first;
    large_first.add(1).interfaces(2001);
    for (uint32_t i = 0; i < 12; ++i)
        large_first.add(i);
    memory::fail_at(1);
    EXPECT_EQ(add(large_first), failed);
    memory::fail_at(0);
    EXPECT_EQ(add(large_first), ok);
    EXPECT_EQ(batches(), std::vector<size_t>({12, 1}));
}

TEST_F(FlowRule, MemoryMayFailBetweenBatches)
{
    Rules rules(12);
    rules.add(13).interfaces(2000);
    answer_barriers();
    memory::fail_at(1);
    EXPECT_EQ(add(rules), failed);
    EXPECT_EQ(batches(), std::vector<size_t>({12}));
    Results expected(13, 0);
    expected[12] = failed;
    EXPECT_EQ(results, expected);
}

TEST_F(FlowRule, TwelveRulesMayExceedTheSharedBuffer)
{
    // What a string adds is not counted.
    Rules rules;
    for (uint32_t i = 0; i < 12; ++i) {
        Rule &rule = rules.add(i + 1);
        for (int k = 0; k < 34; ++k)
            rule.output(1);
        rule.string(48);
    }
    answer_barriers();
    EXPECT_LE(OFP_encode_GetRuleMsgLen(12, rules.items()), 8192u);
    EXPECT_EQ(add(rules), ok);
    EXPECT_EQ(batches(), std::vector<size_t>({12}));
    EXPECT_GT(platform.sent[0].size(), 8192u);
}

TEST_F(FlowRule, RulesThatNoOneDatagramHoldsTravelInSeveral)
{
    Rules rules;
    for (uint32_t i = 0; i < 12; ++i)
        rules.add(i + 1).string(5000);
    answer_barriers();
    EXPECT_EQ(add(rules), ok);
    EXPECT_EQ(batches(), std::vector<size_t>({9, 3}));
    EXPECT_EQ(results, Results(12, 0));
}

TEST_F(FlowRule, ARuleThatNoDatagramHoldsIsRefusedWithItsBatch)
{
    Rules rules(13);
    rules[12].string(49100);
    answer_barriers();
    EXPECT_EQ(add(rules), failed);
    EXPECT_EQ(batches(), std::vector<size_t>({12}));
    Results expected(13, 0);
    expected[12] = failed;
    EXPECT_EQ(results, expected);

    platform = Platform();
    rules[11].string(49100);
    answer_barriers();
    EXPECT_EQ(add(rules), failed);
    EXPECT_EQ(results, Results(13, failed));
    EXPECT_TRUE(platform.sent.empty());
}

TEST_F(FlowRule, ARuleBeyondTheCountedSizeEndsTheCall)
{
    Rules rules;
    Rule &rule = rules.add(1).interfaces(10000);
    for (int i = 0; i < 600; ++i)
        rule.output(1);
    EXPECT_EQ(add(rules), failed);
    EXPECT_EQ(results, Results({failed}));
    EXPECT_TRUE(platform.sent.empty());
}

TEST_F(FlowRule, AnAsynchronousRuleIsSentAndNotAwaited)
{
    Rules rules(1);
    const int32_t socket = platform.open_socket();
    const OfpFlowRuleCtx request = {
        .command = 2, .xid = 0x80000001, .client_id = 4099, .asynchronous = 1, .table_id = 200};
    EXPECT_EQ(ofp::program_rules(request, socket, 1, rules.items(), nullptr), ok);
    EXPECT_EQ(platform.sequence(), "SOCK_Send");
    for (const Bytes &message : openflow_messages(platform.sent.at(0)))
        EXPECT_EQ(message.u32(4), 0x80000001u);
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(ofp::program_rules(request, socket, 1, rules.items(), nullptr), failed);
    EXPECT_EQ(ofp::program_rules(request, -1, 1, rules.items(), nullptr), failed);
    EXPECT_TRUE(platform.open_sockets().contains(socket)) << "the socket is the client's";
    platform.close_socket(socket);
}

TEST(FlowRuleBeforeSmooth, IsRefused)
{
    in_fresh_process([] {
        Rules rules(2);
        uint64_t results[2] = {0x55, 0x55};
        EXPECT_EQ(OFP_AddFlowRule(4096, 200, 2, rules.items(), results), failed);
        EXPECT_EQ(results[0], failed);
        EXPECT_EQ(OFP_ModifyFlowRule(4096, 200, 2, rules.items(), nullptr), failed);
        EXPECT_EQ(OFP_DelFlowRule(4096, 200, 2, rules.items(), 1), failed);
        rules[1].action(nullptr);
        EXPECT_EQ(OFP_AddFlowRule(4096, 200, 2, rules.items(), results), failed);
        EXPECT_EQ(results[1], uint64_t{OFP_RC_INVALID}) << "rules are examined first";
        expect_untouched();
    });
}

TEST_F(FlowRule, EveryFailureIsHandled)
{
    const Codes codes = setter_codes(
        {{"SOCK_Send", failed}, {"SOCK_Recv", failed}, {"Bitmap_CreateFromBuffer", failed}});
    Rules rules(13);
    const Operation operation = {.prepare = answer_barriers, .run = [&] { return add(rules); }};
    expect_failures_handled(operation, codes);
    expect_same_datagrams_on_any_stack(operation);
}

TEST_F(FlowRule, EveryFailureOfALargeRuleFromAContainerIsHandled)
{
    // The device context is set if it can be.
    const Codes codes = setter_codes({{"SOCK_SetOption", ok},
                                      {"SOCK_Send", failed},
                                      {"SOCK_Recv", failed},
                                      {"Bitmap_CreateFromBuffer", failed}});
    Rules rules;
    rules.add(1).interfaces(3000);
    const Operation operation = {
        .prepare =
            [] {
                platform.daemon_runs(false);
                answer_barriers();
            },
        .run = [&] { return add(rules, 4097); },
    };
    expect_failures_handled(operation, codes);
    expect_same_datagrams_on_any_stack(operation);
}
