// How fast asynchronous rules are programmed, one to a datagram and 64 in flight: prepared
// datagrams to a peer that answers without looking, the library with that peer, the library with
// the agent. Client and peer share a core when the whole is started on one.
#include <utility>

#include <benchmark/benchmark.h>

#include "demand.h"
#include "peer.h"
#include "table.h"

namespace {

constexpr uint32_t window = 64;
constexpr int64_t windows = 300; // of a repetition: rules stay distinct, the agent's table has room

uint64_t refused = 0;
uint64_t answered = 0;

void count(uint32_t, uint8_t, const OfpFlowItem *, uint64_t result)
{
    ++answered;
    refused += result != 0;
}

bench::Bytes encoded(const OfpFlowItem *item)
{
    const OfpFlowRuleCtx request = {
        .xid = 7, .client_id = bench::client, .asynchronous = 1, .table_id = bench::rule_table};
    const uint8_t head[16] = {};
    bench::Bytes datagram(OFP_DATAGRAM_SIZE);
    datagram.resize(OFP_encode_FlowRule(&request, head, 1, item, datagram.size(), datagram.data()));
    return datagram;
}

void bare(benchmark::State &state, const bench::EchoPeer &peer, const bench::Table &rules)
{
    peer.use();
    const bench::BareStream stream;
    const bench::Bytes datagram = encoded(rules.from(0));
    for (auto _ : state)
        stream.run(datagram, window);
}

template <class Peer>
void library(benchmark::State &state, const Peer &peer, bench::Table &rules, uint32_t &next)
{
    peer.use();
    bench::check(OFP_SmoothStart(bench::client, 1, 0) == 0, "a smooth period");
    rules.number(std::exchange(next, next + rules.size()));
    const int32_t channel = OFP_AsyncInit(bench::client, count);
    bench::check(channel >= 0, "an asynchronous channel");
    uint32_t sent = 0;
    for (auto _ : state) {
        for (uint32_t i = 0; i < window; ++i)
            bench::check(
                OFP_AsyncAddFlowRule(bench::client, bench::rule_table, rules.from(sent++)) == 0,
                "sending a rule");
        answered = 0;
        for (uint32_t i = 0; i < window; ++i)
            OFP_AsyncDispatch(channel);
        bench::check(answered == window && refused == 0, "an answer to each rule");
    }
    OFP_AsyncFini(channel);
}

template <class Function>
void add(const char *name, Function function)
{
    benchmark::RegisterBenchmark(name, function)->Iterations(windows)->UseRealTime();
}

} // namespace

int main(int argc, char **argv)
{
    const bench::EchoPeer peer;
    const bench::Agent agent;
    bench::Table rules(window * windows);
    uint32_t next = 0;
    add("bare", [&](benchmark::State &state) { bare(state, peer, rules); });
    add("echo", [&](benchmark::State &state) { library(state, peer, rules, next); });
    add("agent", [&](benchmark::State &state) { library(state, agent, rules, next); });

    using enum bench::Sense;
    return bench::run(argc, argv,
                      {{"rate of asynchronous rules to that of the bare stream, the same peer",
                        {"bare", "", window},
                        {"echo", "", window},
                        at_least,
                        0.85},
                       {"rate of asynchronous rules with the agent to that of the bare stream",
                        {"bare", "", window},
                        {"agent", "", window},
                        at_least,
                        0.6}});
}
