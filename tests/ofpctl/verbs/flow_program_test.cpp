// How rules are accounted for, against a library and an agent that do as the test says.
#include "verbs/flow_program.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "frame/agent_link.h"
#include "ofp/host.h"

namespace {

struct Script {
    std::function<uint32_t(uint32_t count, uint64_t *results)> program;
    std::vector<uint32_t> calls; // rules of each
    std::function<int32_t()> agent_pid;
    uint16_t running = 1;
};
Script script;

} // namespace

// These stand before those of libofp.so and libofp-host.so.
OFP_API uint32_t OFP_AddFlowRule(uint16_t, uint8_t, uint32_t count, const OfpFlowItem *,
                                 uint64_t *results)
{
    script.calls.push_back(count);
    std::fill_n(results, count, static_cast<uint64_t>(OFP_RC_FAILED));
    return script.program(count, results);
}

OFP_API uint16_t OFP_util_IsDaemonStart() { return script.running; }
int32_t HOST_GetAgentPid(uint16_t) { return script.agent_pid(); }

namespace ofpctl {
namespace {

constexpr auto failed = static_cast<uint32_t>(OFP_RC_FAILED);
constexpr auto overlap = static_cast<uint32_t>(OFP_RC_STATE);
constexpr auto invalid = static_cast<uint32_t>(OFP_RC_INVALID);

// The library has received something, or noticed that the agent hung up.
void receive(bool hung_up)
{
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
    char byte = 'x';
    ASSERT_TRUE(hung_up || write(ends[1], &byte, 1) == 1);
    close(ends[1]);
    SOCK_Recv(ends[0], &byte, 1, 0);
    close(ends[0]);
}

uint32_t accept_all(uint32_t count, uint64_t *results)
{
    receive(false);
    std::fill_n(results, count, 0);
    return 0;
}

struct ProgramRulesTest : testing::Test {
    ProgramRulesTest()
    {
        setenv("OFP_RUNTIME_DIR", "/nonexistent", 1);
        script = {};
        script.program = accept_all;
        script.agent_pid = [] { return 42; };
        require_agent();
    }

    static Report run(std::size_t count)
    {
        const std::vector<OfpFlowItem> rules(count);
        return program_rules(4096, Command::add, rules);
    }

    static std::vector<std::size_t> counts(const Report &report)
    {
        return {report.count(Outcome::accepted), report.count(Outcome::refused),
                report.count(Outcome::unanswered), report.count(Outcome::not_sent)};
    }
};

TEST_F(ProgramRulesTest, GoesInCallsOfAModerateSize)
{
    const Report report = run(500);
    EXPECT_EQ(script.calls, (std::vector<uint32_t>{240, 240, 20}));
    EXPECT_EQ(counts(report), (std::vector<std::size_t>{500, 0, 0, 0}));
    EXPECT_FALSE(report.stopped);
}

TEST_F(ProgramRulesTest, KeepsTheCodeOfEachRefusedRule)
{
    script.program = [](uint32_t count, uint64_t *results) {
        accept_all(count, results);
        results[1] = overlap;
        results[2] = failed;
        return 0U;
    };
    const Report report = run(4);
    EXPECT_EQ(counts(report), (std::vector<std::size_t>{2, 2, 0, 0}));
    EXPECT_EQ(report.results[1].code, overlap);
    EXPECT_EQ(report.results[2].code, failed);
    EXPECT_FALSE(report.stopped) << "a refused rule does not stop the others";
}

TEST_F(ProgramRulesTest, WhatFollowsTheLastAnswerOfABrokenCallIsUnanswered)
{
    script.program = [](uint32_t count, uint64_t *results) {
        if (script.calls.size() == 1)
            return accept_all(count, results);
        results[0] = 0;
        results[1] = failed; // refused without a reason: a later rule was answered
        results[2] = overlap;
        script.running = 0;
        receive(true);
        return failed;
    };
    const Report report = run(500);
    EXPECT_EQ(counts(report), (std::vector<std::size_t>{241, 2, 237, 20}));
    EXPECT_EQ(report.results[241].outcome, Outcome::refused);
    EXPECT_EQ(report.results[243].outcome, Outcome::unanswered);
    ASSERT_TRUE(report.stopped);
    EXPECT_EQ(report.stopped->status, status_no_agent);
    EXPECT_EQ(script.calls.size(), 2U) << "nothing is sent after a failure";
}

TEST_F(ProgramRulesTest, AHangUpOfALivingAgentIsNoReply)
{
    script.program = [](uint32_t, uint64_t *) {
        receive(true);
        return failed;
    };
    const Report report = run(3);
    EXPECT_EQ(counts(report), (std::vector<std::size_t>{0, 0, 3, 0}));
    ASSERT_TRUE(report.stopped);
    EXPECT_EQ(report.stopped->status, status_no_reply);
}

TEST_F(ProgramRulesTest, AMalformedRuleIsRefusedAndNothingOfItsCallIsSent)
{
    script.program = [](uint32_t, uint64_t *results) {
        results[1] = invalid;
        return failed;
    };
    const Report report = run(3);
    EXPECT_EQ(counts(report), (std::vector<std::size_t>{0, 1, 0, 2}));
    EXPECT_EQ(report.results[1].code, invalid);
    ASSERT_TRUE(report.stopped);
    EXPECT_EQ(report.stopped->status, status_failed);
}

TEST_F(ProgramRulesTest, EndsWhenTheAgentWasRestarted)
{
    script.agent_pid = [] { return script.calls.empty() ? 42 : 43; };
    const Report report = run(500);
    EXPECT_EQ(counts(report), (std::vector<std::size_t>{240, 0, 0, 260}));
    ASSERT_TRUE(report.stopped);
    EXPECT_EQ(report.stopped->status, status_failed);
    EXPECT_NE(report.stopped->message.find("restarted (process 42 is now 43)"), std::string::npos);
}

TEST_F(ProgramRulesTest, WithoutTheAgentSendsNothing)
{
    script.agent_pid = [] { return 0; };
    const Report report = run(3);
    EXPECT_TRUE(script.calls.empty());
    EXPECT_EQ(counts(report), (std::vector<std::size_t>{0, 0, 0, 3}));
    ASSERT_TRUE(report.stopped);
    EXPECT_EQ(report.stopped->status, status_no_agent);
}

TEST(Refusal, SaysWhatTheCodeTellsAndNoMore)
{
    EXPECT_EQ(refusal(overlap), "it overlaps a rule of the same priority");
    EXPECT_EQ(refusal(static_cast<uint32_t>(OFP_RC_NO_RESOURCE)), "the table is full");
    EXPECT_NE(refusal(invalid).find("does not tell which"), std::string::npos);
    EXPECT_EQ(refusal(failed), "the agent gave no reason that the code tells");
}

TEST(CountDatagrams, CutsAsTheLibraryDoes)
{
    const std::vector<OfpFlowItem> rules(25);
    EXPECT_EQ(count_datagrams(std::span(rules).first(0)), 0U);
    EXPECT_EQ(count_datagrams(std::span(rules).first(12)), 1U);
    EXPECT_EQ(count_datagrams(std::span(rules).first(13)), 2U);
    EXPECT_EQ(count_datagrams(rules), 3U);
}

} // namespace
} // namespace ofpctl
