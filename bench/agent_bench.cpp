// What a rule costs over the wire, in processor time of the agent and in time passed: added and
// strictly deleted, with the agent's table at two sizes.
#include <algorithm>
#include <chrono>
#include <vector>

#include <benchmark/benchmark.h>

#include "demand.h"
#include "peer.h"
#include "table.h"

namespace {

constexpr uint32_t part = 24'000; // rules of a call: a connection, datagrams of twelve
constexpr int64_t rounds = 11;

double now()
{
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

double median(std::vector<double> &values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// An agent filled to a size. Rounds add new rules and delete as many of the oldest.
class Filled {
public:
    Filled(uint32_t size, uint32_t masks) : rules_(part, masks)
    {
        open();
        while (next_ < size)
            add(std::min(part, size - next_));
    }
    void round()
    {
        open();
        measure(added_, [this] { add(part); });
        measure(deleted_, [this] { remove_oldest(); });
    }
    // Nanoseconds a rule.
    double add_agent() { return median(added_.agent); }
    double add_passed() { return median(added_.passed); }
    double delete_agent() { return median(deleted_.agent); }
    double delete_passed() { return median(deleted_.passed); }

private:
    struct Times {
        std::vector<double> agent, passed;
    };

    void open()
    {
        agent_.use();
        bench::check(OFP_SmoothStart(bench::client, 1, 0) == 0, "a smooth period");
    }
    void add(uint32_t count)
    {
        std::vector<uint64_t> results(count, 1);
        rules_.number(next_);
        bench::check(OFP_AddFlowRule(bench::client, bench::rule_table, count, rules_.from(0),
                                     results.data()) == 0 &&
                         std::count(results.begin(), results.end(), 0) == count,
                     "adding rules");
        next_ += count;
    }
    void remove_oldest()
    {
        rules_.number(oldest_);
        bench::check(OFP_DelFlowRule(bench::client, bench::rule_table, part, rules_.from(0), 1) ==
                         0,
                     "deleting rules");
        oldest_ += part;
    }
    template <class Work>
    void measure(Times &times, Work work)
    {
        const double taken = agent_.processor_time();
        const double start = now();
        work();
        times.passed.push_back((now() - start) / part * 1e9);
        times.agent.push_back((agent_.processor_time() - taken) / part * 1e9);
    }

    bench::Agent agent_;
    bench::Table rules_;
    uint32_t next_ = 0;
    uint32_t oldest_ = 0;
    Times added_;
    Times deleted_;
};

// The sizes take turns, so that whatever else the machine does meets both.
void run(benchmark::State &state, uint32_t masks)
{
    Filled small(10'000, masks);
    Filled large(1'000'000, masks);
    for (auto _ : state) {
        small.round();
        large.round();
    }
    state.counters["add_10k"] = small.add_agent();
    state.counters["add_1M"] = large.add_agent();
    state.counters["delete_10k"] = small.delete_agent();
    state.counters["delete_1M"] = large.delete_agent();
    state.counters["add_10k_passed"] = small.add_passed();
    state.counters["add_1M_passed"] = large.add_passed();
    state.counters["delete_10k_passed"] = small.delete_passed();
    state.counters["delete_1M_passed"] = large.delete_passed();
}

void demand(std::vector<bench::Demand> &demands, const std::string &rules, const std::string &what)
{
    const auto row = [&](const char *clock, const std::string &suffix) {
        demands.push_back({what + ", a million rules to ten thousand, " + rules + ", " + clock,
                           {rules, what + "_1M" + suffix},
                           {rules, what + "_10k" + suffix},
                           bench::Sense::at_most,
                           1.2});
    };
    row("the agent's processor time", "");
    row("time passed", "_passed");
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<bench::Demand> demands;
    const auto rules = [&](const char *name, uint32_t masks) {
        benchmark::RegisterBenchmark(name, run, masks)->Iterations(rounds)->Repetitions(1);
        demand(demands, name, "add");
        demand(demands, name, "delete");
    };
    rules("five-tuples", 1);
    rules("200 masks", 200);
    return bench::run(argc, argv, demands);
}
