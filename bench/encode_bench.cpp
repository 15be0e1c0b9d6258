// How long OFP_encode_FlowRule takes, as a multiple of copying the bytes it makes: for a full
// datagram of twelve rules and for one with a single rule, head included.
//
// encode_bench takes Google Benchmark's options. The table at the end is of medians.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "rules.h"

namespace {

constexpr uint32_t most_rules = 12;

struct Shape {
    const char *name;
    void (*fill)(bench::Rule &);
    double limit; // times the copy
};

constexpr Shape shapes[] = {
    {"in_port", bench::in_port, 10},
    {"ipv4_five_tuple", bench::ipv4_five_tuple, 17},
    {"ipv6_group", bench::ipv6_group, 14},
    {"fifteen_fields", bench::fifteen_fields, 22},
};

constexpr uint32_t rule_counts[] = {most_rules, 1};

alignas(64) uint8_t datagram[OFP_DATAGRAM_SIZE];
alignas(64) uint8_t copied[OFP_DATAGRAM_SIZE];

// Rules of a shape, each with blocks of its own as in a caller's table.
class Rules {
public:
    Rules(const Shape &shape, uint32_t count) : count_(count)
    {
        for (uint32_t i = 0; i < count; ++i) {
            shape.fill(rules_[i]);
            items_[i] = rules_[i].item;
        }
    }
    uint64_t encode() const
    {
        const OfpFlowRuleCtx ctx = {.command = 0, .client_id = 4096, .table_id = 200};
        const uint8_t head[16] = {};
        return OFP_encode_FlowRule(&ctx, head, count_, items_, sizeof datagram, datagram);
    }

private:
    uint32_t count_;
    bench::Rule rules_[most_rules];
    OfpFlowItem items_[most_rules];
};

void encode(benchmark::State &state, const Shape &shape, uint32_t count)
{
    const Rules rules(shape, count);
    for (auto _ : state) {
        benchmark::DoNotOptimize(rules.encode());
        benchmark::ClobberMemory();
    }
}

void copy(benchmark::State &state, const Shape &shape, uint32_t count)
{
    const Rules rules(shape, count);
    uint64_t length = rules.encode();
    benchmark::DoNotOptimize(length);
    for (auto _ : state) {
        std::memcpy(copied, datagram, length);
        benchmark::ClobberMemory();
    }
}

std::string name_of(const char *what, const Shape &shape, uint32_t count)
{
    return std::string(what) + "/" + shape.name + "/" + std::to_string(count);
}

class Ratios : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration)
                times_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        }
    }
    void Finalize() override
    {
        GetOutputStream()
            << "\nns per rule          rules    encode      copy     ratio     limit\n";
        for (uint32_t count : rule_counts) {
            for (const Shape &shape : shapes)
                print(shape, count);
        }
    }

private:
    void print(const Shape &shape, uint32_t count)
    {
        const double encoding = median(name_of("encode", shape, count)) / count;
        const double copying = median(name_of("copy", shape, count)) / count;
        if (encoding == 0 || copying == 0)
            return; // filtered out
        char line[128];
        std::snprintf(line, sizeof line, "%-20s %5u %9.1f %9.2f %9.1f %9.0f\n", shape.name, count,
                      encoding, copying, encoding / copying, shape.limit);
        GetOutputStream() << line;
    }
    double median(const std::string &name)
    {
        std::vector<double> &times = times_[name];
        if (times.empty())
            return 0;
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }
    std::map<std::string, std::vector<double>> times_;
};

} // namespace

int main(int argc, char **argv)
{
    for (uint32_t count : rule_counts) {
        for (const Shape &shape : shapes) {
            const auto add = [&](const char *what, auto function) {
                benchmark::RegisterBenchmark(name_of(what, shape, count).c_str(), function, shape,
                                             count);
            };
            add("encode", encode);
            add("copy", copy);
        }
    }
    std::vector<char *> arguments(argv, argv + argc);
    char repetitions[] = "--benchmark_repetitions=15";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char time[] = "--benchmark_min_time=0.02";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaving, time});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    Ratios reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
