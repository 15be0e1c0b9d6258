// The asynchronous channel against the real agent.
#include <csignal>
#include <cstring>

#include <poll.h>

#include "integration/agent_test.h"
#include "integration/exchange.h"
#include "integration/flow_items.h"

namespace integration {
namespace {

using namespace std::chrono_literals;

constexpr uint16_t OTHER_CLIENT = 4097;

struct Results {
    std::vector<uint32_t> ports; // in the order of the results
    uint32_t refused = 0;
};
Results first, other;

void take(uint32_t client, uint8_t, const OfpFlowItem *item, uint64_t result)
{
    Results &results = client == CLIENT ? first : other;
    results.ports.push_back(item->match.in_port);
    results.refused += result != 0;
}

class Async : public AgentTest {
protected:
    void SetUp() override
    {
        first = {};
        other = {};
        smooth_start();
        ASSERT_EQ(OFP_SmoothStart(OTHER_CLIENT, SMOOTH_ID, SMOOTH_MODE), 0u);
    }
    void TearDown() override
    {
        OFP_AsyncFini(socket_);
        OFP_AsyncFini(other_socket_);
    }
    void open()
    {
        socket_ = OFP_AsyncInit(CLIENT, take);
        other_socket_ = OFP_AsyncInit(OTHER_CLIENT, take);
        ASSERT_GE(socket_, 0);
        ASSERT_GE(other_socket_, 0);
    }
    static uint32_t rules_of(uint16_t client)
    {
        OfpTableInfo info{};
        return OFP_get_TableInfo(client, TABLE, &info) == 0 ? info.rule_count : 0;
    }
    static bool readable(int socket)
    {
        pollfd ready{socket, POLLIN, 0};
        return poll(&ready, 1, 0) == 1;
    }

    int socket_ = -1;
    int other_socket_ = -1;
};

TEST_F(Async, AHundredThousandSentBeforeTheFirstAnswerIsReadAreAllReported)
{
    constexpr uint32_t RULES = 100'000;
    open();
    FlowItems item;
    item.add(1);
    for (uint32_t port = 1; port <= RULES; ++port) {
        item[0].match.in_port = port;
        ASSERT_EQ(OFP_AsyncAddFlowRule(CLIENT, TABLE, item.data()), 0u);
    }
    while (first.ports.size() < RULES) {
        OFP_AsyncDispatch(socket_);
    }
    for (uint32_t port = 1; port <= RULES; ++port) {
        ASSERT_EQ(first.ports[port - 1], port);
    }
    EXPECT_EQ(first.refused, 0u);
    EXPECT_EQ(rules_of(CLIENT), RULES);
    EXPECT_FALSE(readable(socket_));
}

TEST_F(Async, AHundredThousandRefusedOnesToo)
{
    constexpr uint32_t RULES = 100'000;
    open();
    FlowItems item;
    item.add(1);
    item.last_to_group(123'456);
    for (uint32_t port = 1; port <= RULES; ++port) {
        item[0].match.in_port = port;
        ASSERT_EQ(OFP_AsyncAddFlowRule(CLIENT, TABLE, item.data()), 0u);
    }
    while (first.ports.size() < RULES) {
        OFP_AsyncDispatch(socket_);
    }
    EXPECT_EQ(first.refused, RULES);
    EXPECT_EQ(rules_of(CLIENT), 0u);
}

TEST_F(Async, TwoClientsInterleavedGetTheirOwnResults)
{
    constexpr uint32_t RULES = 5'000;
    open();
    FlowItems item;
    item.add(1);
    for (uint32_t port = 1; port <= RULES; ++port) {
        item[0].match.in_port = port;
        ASSERT_EQ(OFP_AsyncAddFlowRule(CLIENT, TABLE, item.data()), 0u);
        item[0].match.in_port = RULES + port;
        ASSERT_EQ(OFP_AsyncAddFlowRule(OTHER_CLIENT, TABLE, item.data()), 0u);
    }
    while (first.ports.size() < RULES || other.ports.size() < RULES) {
        if (other.ports.size() < RULES) {
            OFP_AsyncDispatch(other_socket_);
        }
        if (first.ports.size() < RULES) {
            OFP_AsyncDispatch(socket_);
        }
    }
    for (uint32_t port = 1; port <= RULES; ++port) {
        ASSERT_EQ(first.ports[port - 1], port);
        ASSERT_EQ(other.ports[port - 1], RULES + port);
    }
    EXPECT_EQ(rules_of(CLIENT), RULES);
    EXPECT_EQ(rules_of(OTHER_CLIENT), RULES);
}

TEST_F(Async, AnAgentKilledWithRulesPendingLeavesThemToFini)
{
    open();
    FlowItems item;
    item.add(1);
    for (uint32_t port = 1; port <= 100; ++port) {
        item[0].match.in_port = port;
        ASSERT_EQ(OFP_AsyncAddFlowRule(CLIENT, TABLE, item.data()), 0u);
    }
    ASSERT_TRUE(within(5s, [] { return rules_of(CLIENT) == 100; }));
    stop_agent(SIGKILL);
    // What the agent had answered is still there; then the channel only hangs up.
    for (int i = 0; i < 300; ++i) {
        OFP_AsyncDispatch(socket_);
    }
    EXPECT_EQ(first.ports.size(), 100u);
    EXPECT_EQ(OFP_AsyncAddFlowRule(CLIENT, TABLE, item.data()), OFP_RC_FAILED);
    pollfd ready{socket_, POLLIN, 0};
    EXPECT_EQ(poll(&ready, 1, 0), 1);
    EXPECT_TRUE(ready.revents & POLLHUP);
    OFP_AsyncFini(socket_);
    OFP_AsyncFini(other_socket_);
    EXPECT_EQ(first.ports.size(), 100u);

    // Everything anew with the next agent.
    smooth_start();
    socket_ = OFP_AsyncInit(CLIENT, take);
    ASSERT_GE(socket_, 0);
    ASSERT_EQ(OFP_AsyncAddFlowRule(CLIENT, TABLE, item.data()), 0u);
    OFP_AsyncDispatch(socket_);
    EXPECT_EQ(first.ports.size(), 101u);
    EXPECT_EQ(rules_of(CLIENT), 1u);
}

// Transaction ids run from 0x80000000 to 0xffffffff and begin again: what a client sends around the
// end of the numbers is answered under the same numbers.
TEST_F(Async, TransactionIdsAroundTheEndOfTheNumbersAreAnsweredAsTheyCame)
{
    Channel channel;
    FlowItems item;
    item.add(1);
    uint32_t xid = 0xfffffff0;
    const auto next = [&xid] { return xid = xid == 0xffffffff ? 0x80000000 : xid + 1; };
    for (int i = 0; i < 64; ++i) {
        item[0].match.in_port = static_cast<uint32_t>(i + 1);
        ASSERT_TRUE(channel.send(asynchronous_batch_of(item, next())));
    }
    xid = 0xfffffff0;
    for (int i = 0; i < 64; ++i) {
        const Datagram reply = channel.receive();
        ASSERT_EQ(reply.size(), 8u);
        uint32_t answered = 0;
        std::memcpy(&answered, &reply[4], sizeof answered);
        EXPECT_EQ(__builtin_bswap32(answered), next());
    }
    EXPECT_EQ(rules_of(CLIENT), 64u);
}

} // namespace
} // namespace integration
