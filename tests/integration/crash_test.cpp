// What is left when the agent or its client is killed.
#include <atomic>
#include <csignal>
#include <thread>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "integration/agent_test.h"
#include "integration/flow_items.h"

namespace integration {
namespace {

using namespace std::chrono_literals;

constexpr uint32_t BATCH = 12; // rules that the library puts into one datagram

class Crash : public AgentTest {
protected:
    void SetUp() override { smooth_start(); }
};

TEST_F(Crash, AnAgentKilledBetweenBatchesIsStartedByTheNextCall)
{
    FlowItems items;
    items.add_range(1, 20);
    add_rules(items);
    const pid_t first = agent();
    stop_agent(SIGKILL);
    smooth_start();
    EXPECT_NE(agent(), first);
    EXPECT_TRUE(rule_ids().empty()); // rules are their owners' to program again
    EXPECT_EQ(add_rules(items), std::vector<uint64_t>(20, 0));
    EXPECT_EQ(rule_ids().size(), 20u);
}

TEST_F(Crash, AnAgentKilledDuringABatchEndsTheCallAtOnceWithResultsThatHold)
{
    FlowItems items;
    items.add_range(1, 40'000);
    const pid_t victim = agent();
    std::atomic<bool> loaded = false;
    std::thread killer([&] {
        within(10s, [&] {
            OfpTableInfo info{};
            return loaded ||
                   (OFP_get_TableInfo(CLIENT, TABLE, &info) == 0 && info.rule_count > 500);
        });
        kill(victim, SIGKILL);
    });
    const auto begin = std::chrono::steady_clock::now();
    uint32_t call = 0;
    const std::vector<uint64_t> results = add_rules(items, &call);
    loaded = true;
    killer.join();
    EXPECT_EQ(call, uint32_t{OFP_RC_FAILED});
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s); // not the channel's 30 seconds

    const auto refused =
        std::find_if(results.begin(), results.end(), [](uint64_t result) { return result != 0; });
    EXPECT_GT(refused - results.begin(), 500);
    EXPECT_LT(refused - results.begin(), 40'000);
    for (auto at = refused; at != results.end(); ++at) {
        ASSERT_EQ(*at, uint64_t{OFP_RC_FAILED});
    }

    ASSERT_TRUE(within(5s, [this] { return agent() == 0; }));
    smooth_start();
    FlowItems again;
    again.add_range(1, 100);
    const std::vector<uint64_t> accepted = add_rules(again);
    EXPECT_EQ(rule_ids().size(),
              static_cast<size_t>(std::count(accepted.begin(), accepted.end(), 0u)));
}

TEST_F(Crash, OfAClientKilledWhileLoadingEveryAcceptedRuleAndOnlyWholeBatchesArePresent)
{
    auto *const accepted = static_cast<std::atomic<uint32_t> *>(
        mmap(nullptr, sizeof(std::atomic<uint32_t>), PROT_READ | PROT_WRITE,
             MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(accepted, MAP_FAILED);
    const pid_t child = fork();
    if (child == 0) {
        for (uint32_t first = 1; first < 1'000'000; first += BATCH) {
            FlowItems items;
            items.add_range(first, BATCH);
            for (const uint64_t result : add_rules(items)) {
                *accepted += result == 0;
            }
        }
        _exit(0);
    }
    EXPECT_TRUE(within(10s, [&] { return *accepted > 2000; }));
    kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));

    OfpTableInfo info{};
    ASSERT_EQ(OFP_get_TableInfo(CLIENT, TABLE, &info), 0u);
    EXPECT_GE(info.rule_count, accepted->load());
    EXPECT_LE(info.rule_count, accepted->load() + BATCH);
    EXPECT_EQ(info.rule_count % BATCH, 0u);
    munmap(accepted, sizeof *accepted);
}

} // namespace
} // namespace integration
