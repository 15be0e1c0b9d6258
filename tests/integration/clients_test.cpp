// Many clients, and clients that misbehave.
#include <atomic>
#include <csignal>
#include <thread>

#include "integration/agent_test.h"
#include "integration/exchange.h"
#include "integration/flow_items.h"

namespace integration {
namespace {

using namespace std::chrono_literals;

class Clients : public AgentTest {
protected:
    void SetUp() override { smooth_start(); }
};

Datagram question()
{
    const OfpInstanceID key{.instance_id = CLIENT, .reserved_2 = {}};
    return request_of(OFP_MSG_GET_INSTANCE_EXIST, OFP_TLV_InstanceID, &key, sizeof key);
}

TEST_F(Clients, TwoHundredAtOnceAreAllAnswered)
{
    std::atomic<int> answered = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 200; ++i) {
        threads.emplace_back([&answered] {
            for (int turn = 0; turn < 10; ++turn) {
                uint8_t table = 0;
                answered += OFP_get_NextTableID(CLIENT, 255, &table) == 0 && table == TABLE;
            }
        });
    }
    FlowItems items;
    items.add_range(1, 500);
    EXPECT_EQ(add_rules(items), std::vector<uint64_t>(500, 0));
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(answered, 2000);
}

TEST_F(Clients, OneThatNeverReadsDelaysNoOther)
{
    Channel deaf;
    FlowItems refused; // answered by an error and a barrier reply each
    for (uint32_t port = 1; port <= 12; ++port) {
        refused.add(port);
        refused.last_to_group(4'000'000'000);
    }
    const Datagram request = batch_of(refused);
    constexpr size_t MOST = 100'000; // more answers than the agent keeps
    size_t sent = 0;
    const auto pushed_back = [&] {
        while (sent < MOST && deaf.send_now(request)) {
            ++sent;
        }
        timespec pause{0, 50'000'000}; // time to take what was sent, if the agent still reads
        nanosleep(&pause, nullptr);
        if (!deaf.send_now(request)) {
            return true;
        }
        ++sent;
        return false;
    };
    EXPECT_TRUE(within(20s, pushed_back));
    EXPECT_GT(sent, 180'000u / 12); // rules
    EXPECT_LT(sent, MOST);

    const auto begin = std::chrono::steady_clock::now();
    FlowItems items;
    items.add_range(1, 100);
    EXPECT_EQ(add_rules(items), std::vector<uint64_t>(100, 0));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);

    for (size_t i = 0; i < sent * 12; ++i) { // nothing of it was lost
        ASSERT_EQ(deaf.receive().size(), 76u) << i;
        ASSERT_EQ(deaf.receive().size(), 8u) << i;
    }
}

TEST_F(Clients, ABatchSentWhileAnswersPileUpIsAppliedWhole)
{
    Channel client;
    constexpr size_t QUESTIONS = 600; // more answers than its socket buffer holds
    for (size_t i = 0; i < QUESTIONS; ++i) {
        ASSERT_TRUE(client.send(question()));
    }
    FlowItems items;
    items.add_range(1, 12);
    ASSERT_TRUE(client.send(batch_of(items)));
    EXPECT_TRUE(within(5s, [this] { return rule_ids().size() == 12; }));
    for (size_t i = 0; i < QUESTIONS; ++i) {
        ASSERT_EQ(client.receive().size(), 16u);
    }
    for (uint8_t i = 0; i < 12; ++i) {
        EXPECT_EQ(client.receive(), (Datagram{4, 21, 0, 8, 0, 0, 0, i}));
    }
}

TEST_F(Clients, ThatSendNonsenseAreAnsweredAndHarmNothing)
{
    Channel client;
    const auto code_of = [&](const Datagram &datagram) {
        return client.send(datagram) ? result_of(client.receive()) : NO_ANSWER;
    };
    EXPECT_EQ(code_of({}), 0x42300100u);
    EXPECT_EQ(code_of({1, 2, 3}), 0x42300102u);
    EXPECT_EQ(code_of({0, 1, 0, 4, 0x7f, 0, 0, 1}), 0x42300103u);
    EXPECT_EQ(code_of({0, 1, 0, 4, 0, 0, 0, 6}), 0x42300106u); // configuration of nothing
    EXPECT_EQ(code_of({0, 1, 0, 4, 0x50, 0, 0, 1, 0, 121, 0, 16}), 0x42300105u);
    EXPECT_EQ(code_of(Datagram(65'000, 0xff)), 0x42300102u);
    EXPECT_EQ(code_of({0, 1, 0, 4, 0x50, 0, 0, 7}), 0x42300106u);
    EXPECT_EQ(code_of(question()), NO_ANSWER); // the answer itself
    EXPECT_GT(agent(), 0);
}

} // namespace
} // namespace integration
