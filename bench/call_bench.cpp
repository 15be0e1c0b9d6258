// How long a query and a setting take, as a multiple of the bare exchange of datagrams of the same
// sizes with the same peer. Client and peer share a core when the whole is started on one.
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "demand.h"
#include "peer.h"

namespace {

constexpr uint16_t instance = 1;
constexpr uint8_t table = 200;
constexpr OfpEchoTime echo_time = {.interval = 5, .instance_id = instance};

const OfpRuleIDInfo key = {.rule_id = 1, .instance_id = instance, .table_id = table};

template <class Call>
void repeat(benchmark::State &state, Call call)
{
    for (auto _ : state)
        bench::check(call() == 0, "a call");
}

void bare(benchmark::State &state, const bench::Bytes &request)
{
    const bench::BareExchange exchange;
    for (auto _ : state)
        exchange.run(request, 1);
}

void next_rule(benchmark::State &state)
{
    uint32_t next = 0;
    repeat(state, [&] { return OFP_get_NextRuleID(instance, table, 1, &next); });
}

void rule_info(benchmark::State &state)
{
    const auto buffer = std::make_unique<uint8_t[]>(OFP_LARGE_DATAGRAM_SIZE);
    uint64_t length = 0;
    repeat(state, [&] { return OFP_get_RuleInfo(instance, table, 1, buffer.get(), &length); });
}

void set_echo_time(benchmark::State &state)
{
    repeat(state, [] { return OFP_set_EchoTime(&echo_time); });
}

// Each call changes the value.
void change_echo_time(benchmark::State &state, const bench::Agent &agent,
                      const bench::EchoPeer &after)
{
    agent.use();
    bench::check(OFP_AddInstance(instance) == 0, "an instance");
    OfpEchoTime time = echo_time;
    repeat(state, [&] {
        time.interval = 5 + (time.interval & 1);
        return OFP_set_EchoTime(&time);
    });
    after.use();
}

void status(benchmark::State &state)
{
    repeat(state, [] { return OFP_util_IsDaemonStart() == 1 ? 0 : 1; });
}

// The agent's description of the switch has so many interfaces, all bound to the instance.
constexpr uint32_t interfaces = 1000;
constexpr uint32_t bind = 33; // message code

void describe_interfaces(const bench::Directory &directory)
{
    const std::string file = directory.path() + "/host.toml";
    std::ofstream(file) << "[[interface]]\nindex = 1\nname = \"GE1/0/1\"\ncount = " << interfaces
                        << '\n';
    setenv("OFP_HOST_CONFIG", file.c_str(), 1);
}

void bind_interfaces(const bench::Agent &agent)
{
    agent.use();
    bench::check(OFP_AddInstance(instance) == 0 && OFP_set_ActiveInst(instance, 1) == 0,
                 "an instance");
    for (uint32_t i = 1; i <= interfaces; ++i)
        bench::check(OFP_set_PortBindInst(bind, instance, i) == 0, "a port");
}

uint32_t count(const OfpLink &list)
{
    uint32_t elements = 0;
    for (const OfpLink *at = list.next; at != &list; at = at->next)
        ++elements;
    return elements;
}

void verbose(benchmark::State &state, const bench::Agent &agent, const bench::EchoPeer &after)
{
    agent.use();
    repeat(state, [] {
        OfpVerbose record;
        OFP_get_InitVerbose(&record);
        const uint32_t code = OFP_get_Verbose(instance, &record);
        const bool whole = count(record.configured.interfaces) == interfaces &&
                           count(record.running.interfaces) == interfaces;
        OFP_get_FiniVerbose(&record);
        return code == 0 && whole ? 0 : 1;
    });
    after.use();
}

constexpr int clients = 16;

// Clients that change settings at the same time share commits.
void change_together(benchmark::State &state, const bench::Agent &agent,
                     const bench::EchoPeer &after)
{
    if (state.thread_index() == 0)
        agent.use();
    OfpEchoTime time = {.interval = 5,
                        .instance_id = static_cast<uint16_t>(instance + state.thread_index())};
    repeat(state, [&] {
        time.interval = 5 + (time.interval & 1);
        return OFP_set_EchoTime(&time);
    });
    state.counters["rate"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    if (state.thread_index() == 0)
        after.use();
}

void add_instances(const bench::Agent &agent)
{
    agent.use();
    for (int i = 0; i < clients; ++i)
        bench::check(OFP_AddInstance(static_cast<uint16_t>(instance + i)) == 0, "an instance");
}

template <class... Arguments>
void add(const char *name, Arguments... arguments)
{
    benchmark::RegisterBenchmark(name, arguments...)->UseRealTime();
}

} // namespace

int main(int argc, char **argv)
{
    const bench::Directory description;
    describe_interfaces(description);
    const bench::Agent forgetful(bench::Agent::Store::memory);
    const bench::Agent full(bench::Agent::Store::memory);
    const bench::Agent durable;
    const bench::EchoPeer peer;
    bind_interfaces(full);
    add_instances(durable);
    peer.use();
    add("OFP_get_NextRuleID", next_rule);
    add("bare/OFP_get_NextRuleID", bare,
        bench::request(OFP_MSG_GET_NEXT_RULE_ID, OFP_TLV_RuleIDInfo, key));
    add("OFP_get_RuleInfo", rule_info);
    add("bare/OFP_get_RuleInfo", bare,
        bench::request(OFP_MSG_GET_RULE_INFO, OFP_TLV_RuleIDInfo, key));
    add("OFP_set_EchoTime", set_echo_time);
    add("bare/OFP_set_EchoTime", bare,
        bench::request(OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, echo_time));
    add("status", status);
    add("OFP_get_Verbose", verbose, std::cref(full), std::cref(peer));
    add("memory/OFP_set_EchoTime", change_echo_time, std::cref(forgetful), std::cref(peer));
    add("file/OFP_set_EchoTime", change_echo_time, std::cref(durable), std::cref(peer));

    for (const int together : {1, clients})
        benchmark::RegisterBenchmark(together == 1 ? "alone" : "together", change_together,
                                     std::cref(durable), std::cref(peer))
            ->Threads(together)
            ->UseRealTime();

    using enum bench::Sense;
    return bench::run(
        argc, argv,
        {{"OFP_get_NextRuleID to a bare exchange",
          {"OFP_get_NextRuleID"},
          {"bare/OFP_get_NextRuleID"},
          at_most,
          1.15},
         {"OFP_get_RuleInfo to a bare exchange",
          {"OFP_get_RuleInfo"},
          {"bare/OFP_get_RuleInfo"},
          at_most,
          1.15},
         {"OFP_get_NextRuleID less asking whether the agent runs, to a bare exchange",
          {"OFP_get_NextRuleID"},
          {"bare/OFP_get_NextRuleID"},
          at_most,
          1.07,
          0,
          {"status"}},
         {"OFP_get_RuleInfo less asking whether the agent runs, to a bare exchange",
          {"OFP_get_RuleInfo"},
          {"bare/OFP_get_RuleInfo"},
          at_most,
          1.07,
          0,
          {"status"}},
         {"OFP_set_EchoTime less asking whether the agent runs, to a bare exchange",
          {"OFP_set_EchoTime"},
          {"bare/OFP_set_EchoTime"},
          at_most,
          1.07,
          0,
          {"status"}},
         {"asking whether the agent runs, to a bare exchange",
          {"status"},
          {"bare/OFP_set_EchoTime"},
          at_most,
          0.10},
         {"OFP_set_EchoTime as a whole, to a bare exchange",
          {"OFP_set_EchoTime"},
          {"bare/OFP_set_EchoTime"},
          reported},
         {"OFP_set_EchoTime with an agent that stores in memory, to a bare exchange",
          {"memory/OFP_set_EchoTime"},
          {"bare/OFP_set_EchoTime"},
          at_most,
          1.3},
         {"OFP_set_EchoTime with an agent that stores in a file, to a bare exchange",
          {"file/OFP_set_EchoTime"},
          {"bare/OFP_set_EchoTime"},
          reported},
         {"settings a second of 16 clients at once, stored in a file, to those of one",
          {"together", "rate", 1, "a second"},
          {"alone", "rate", 1, "a second"},
          reported},
         {"OFP_get_Verbose of an instance with 1000 interfaces with the agent, to a "
          "bare exchange",
          {"OFP_get_Verbose"},
          {"bare/OFP_get_NextRuleID"},
          reported}});
}
