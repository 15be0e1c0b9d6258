// How long OFP_encode_FlowRule takes for a rule, as a multiple of copying the finished bytes.
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

constexpr uint32_t batch = 12; // rules of a datagram

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

alignas(64) uint8_t datagram[OFP_DATAGRAM_SIZE];
alignas(64) uint8_t copied[OFP_DATAGRAM_SIZE];

// Twelve rules of a shape, each with blocks of its own as in a caller's table.
class Rules {
public:
    explicit Rules(const Shape &shape)
    {
        for (uint32_t i = 0; i < batch; ++i) {
            shape.fill(rules_[i]);
            items_[i] = rules_[i].item;
        }
    }
    uint64_t encode() const
    {
        const OfpFlowRuleCtx ctx = {.command = 0, .client_id = 4096, .table_id = 200};
        const uint8_t head[16] = {};
        return OFP_encode_FlowRule(&ctx, head, batch, items_, sizeof datagram, datagram);
    }

private:
    bench::Rule rules_[batch];
    OfpFlowItem items_[batch];
};

void encode(benchmark::State &state, const Shape &shape)
{
    const Rules rules(shape);
    for (auto _ : state) {
        benchmark::DoNotOptimize(rules.encode());
        benchmark::ClobberMemory();
    }
}

void copy(benchmark::State &state, const Shape &shape)
{
    const Rules rules(shape);
    uint64_t length = rules.encode();
    benchmark::DoNotOptimize(length);
    for (auto _ : state) {
        std::memcpy(copied, datagram, length);
        benchmark::ClobberMemory();
    }
}

// Prints the ratio of the medians below the usual table.
class Ratios : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration)
                times_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override
    {
        GetOutputStream() << "\nper rule, medians, ns      encode    copy   ratio   limit\n";
        for (const Shape &shape : shapes) {
            const double encoding = median("encode/" + std::string(shape.name)) / batch;
            const double copying = median("copy/" + std::string(shape.name)) / batch;
            char line[128];
            std::snprintf(line, sizeof line, "%-24s %8.1f %7.2f %7.1f %7.0f\n", shape.name,
                          encoding, copying, encoding / copying, shape.limit);
            GetOutputStream() << line;
        }
    }

private:
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
    for (const Shape &shape : shapes) {
        benchmark::RegisterBenchmark(("encode/" + std::string(shape.name)).c_str(), encode, shape);
        benchmark::RegisterBenchmark(("copy/" + std::string(shape.name)).c_str(), copy, shape);
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
