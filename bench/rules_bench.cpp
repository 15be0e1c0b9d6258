// How fast rules are programmed, twelve to a call: a bare exchange of a prepared datagram with a
// peer that answers without looking, the library with that peer, the library with the agent. Client
// and peer share a core when the whole is started on one.
#include <algorithm>
#include <utility>

#include <benchmark/benchmark.h>

#include "demand.h"
#include "peer.h"
#include "table.h"

namespace {

constexpr uint32_t batch = bench::rules_of_a_datagram;
constexpr int64_t calls = 1500; // of a repetition: rules stay distinct, the agent's table has room

bench::Bytes encoded(const OfpFlowItem *items)
{
    const OfpFlowRuleCtx request = {.client_id = bench::client, .table_id = bench::rule_table};
    const uint8_t head[16] = {};
    bench::Bytes datagram(OFP_DATAGRAM_SIZE);
    datagram.resize(
        OFP_encode_FlowRule(&request, head, batch, items, datagram.size(), datagram.data()));
    return datagram;
}

void bare(benchmark::State &state, const bench::EchoPeer &peer, const bench::Table &rules)
{
    peer.use();
    const bench::BareExchange exchange;
    const bench::Bytes datagram = encoded(rules.from(0));
    for (auto _ : state)
        exchange.run(datagram, batch);
}

template <class Peer>
void library(benchmark::State &state, const Peer &peer, bench::Table &rules, uint32_t &next)
{
    peer.use();
    bench::check(OFP_SmoothStart(bench::client, 1, 0) == 0, "a smooth period");
    rules.number(std::exchange(next, next + rules.size()));
    std::size_t done = 0;
    for (auto _ : state) {
        uint64_t results[batch];
        std::fill_n(results, batch, 1);
        bench::check(OFP_AddFlowRule(bench::client, bench::rule_table, batch, rules.from(done),
                                     results) == 0 &&
                         std::count(results, results + batch, 0) == batch,
                     "adding rules");
        done += batch;
    }
}

template <class Function>
void add(const char *name, Function function)
{
    benchmark::RegisterBenchmark(name, function)->Iterations(calls)->UseRealTime();
}

} // namespace

int main(int argc, char **argv)
{
    const bench::EchoPeer peer;
    const bench::Agent agent;
    bench::Table rules(batch * calls);
    uint32_t next = 0;
    add("bare", [&](benchmark::State &state) { bare(state, peer, rules); });
    add("echo", [&](benchmark::State &state) { library(state, peer, rules, next); });
    add("agent", [&](benchmark::State &state) { library(state, agent, rules, next); });

    using enum bench::Sense;
    const auto processor = [](const char *name) {
        return bench::Figure{name, bench::Figure::processor, 1000.0 * batch, "us"};
    };
    return bench::run(argc, argv,
                      {{"rate of OFP_AddFlowRule to that of bare exchanges, the same peer",
                        {"bare", "", batch},
                        {"echo", "", batch},
                        at_least,
                        0.9},
                       {"rate of OFP_AddFlowRule with the agent to that of bare exchanges",
                        {"bare", "", batch},
                        {"agent", "", batch},
                        at_least,
                        0.6},
                       {"client processor time a rule in microseconds, echo peer",
                        processor("echo"),
                        {},
                        at_most,
                        2.5},
                       {"client processor time a rule in microseconds, agent",
                        processor("agent"),
                        {},
                        at_most,
                        2.5}});
}
