// What the reply to an asynchronous rule costs, by the number of rules that are pending, in the
// library alone.
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "demand.h"
#include "in_process.h"
#include "table.h"

namespace {

uint64_t accepted = 0;

void count_accepted(uint32_t, uint8_t, const OfpFlowItem *, uint64_t result)
{
    accepted += result == 0;
}

bench::Bytes barrier_reply(uint32_t xid)
{
    bench::Bytes reply = {4, 21, 0, 8, 0, 0, 0, 0};
    std::memcpy(&reply[4], &xid, sizeof xid);
    return reply;
}

// Sends count rules, then takes their replies in order: the time of the second alone.
void take_replies(benchmark::State &state, uint32_t count)
{
    const bench::Table rules(1);
    const std::vector<bench::Bytes> opened = {barrier_reply(0)};
    bench::in_process::answer_with(opened);
    bench::check(OFP_SmoothStart(bench::client, 1, 0) == 0, "a smooth period");
    const int32_t channel = OFP_AsyncInit(bench::client, count_accepted);
    for (auto _ : state) {
        std::vector<bench::Bytes> replies;
        for (uint32_t i = 0; i < count; ++i) {
            bench::check(OFP_AsyncAddFlowRule(bench::client, bench::rule_table, rules.from(0)) == 0,
                         "sending a rule");
            replies.push_back(barrier_reply(bench::in_process::last_word_sent()));
        }
        bench::in_process::answer_with(replies);
        accepted = 0;
        const auto start = std::chrono::steady_clock::now();
        for (uint32_t i = 0; i < count; ++i)
            OFP_AsyncDispatch(channel);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        bench::check(accepted == count, "a result of each rule");
        state.SetIterationTime(taken.count());
    }
    OFP_AsyncFini(channel);
}

std::string add(uint32_t count)
{
    const std::string name = "pending/" + std::to_string(count);
    benchmark::RegisterBenchmark(name.c_str(), take_replies, count)->UseManualTime();
    return name;
}

} // namespace

int main(int argc, char **argv)
{
    return bench::run(argc, argv,
                      {{"a reply with 100 000 rules pending to one with 1000",
                        {add(100'000), "", 100'000},
                        {add(1000), "", 1000},
                        bench::Sense::at_most,
                        1.5}});
}
