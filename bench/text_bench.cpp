// Flow text: one line to an item and back, and a file's worth of lines into one array.
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <benchmark/benchmark.h>

#include "flow/flow_json.h"
#include "flow/flow_set.h"
#include "flow/flow_text.h"

namespace {

using namespace ofpctl;

constexpr std::string_view five_tuple =
    "table=200,priority=60000,tcp,nw_src=136.107.241.86/32,nw_dst=123.222.236.0/24,"
    "tp_src=1521,tp_dst=0xf488/0xfff8,actions=write_actions(output:1)";

FlowItemPtr five_tuple_item()
{
    return std::move(std::get<Flow>(parse_flow(five_tuple, ParseMode::program)).item);
}

void parse_line(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(parse_flow(five_tuple, ParseMode::program));
}
BENCHMARK(parse_line);

void print_line(benchmark::State &state)
{
    const FlowItemPtr item = five_tuple_item();
    std::string line;
    for (auto _ : state) {
        line.clear();
        append_flow(line, *item);
        benchmark::DoNotOptimize(line.data());
    }
}
BENCHMARK(print_line);

void parse_json(benchmark::State &state)
{
    const std::string json = flow_to_json(*five_tuple_item());
    for (auto _ : state)
        benchmark::DoNotOptimize(parse_flow_json(json, ParseMode::program));
}
BENCHMARK(parse_json);

void load_lines(benchmark::State &state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        FlowSet flows;
        for (std::size_t i = 0; i < count; ++i)
            flows.add_text(five_tuple, ParseMode::program);
        benchmark::DoNotOptimize(flows.items().data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(load_lines)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
