// How long OFP_encode_FlowRule takes for a rule, as a multiple of copying the finished bytes.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "demand.h"
#include "rules.h"

// Every allocation of the process comes by here.
static uint64_t allocations = 0;

extern "C" void *__libc_malloc(std::size_t size);
extern "C" void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

namespace {

constexpr uint32_t batch = 12; // rules of a datagram

struct Shape {
    const char *name;
    void (*fill)(bench::Rule &);
    double limit; // times the copy
    double aim;
};

constexpr Shape shapes[] = {
    {"in_port", bench::in_port, 10, 5},
    {"ipv4_five_tuple", bench::ipv4_five_tuple, 17, 10},
    {"ipv6_group", bench::ipv6_group, 14, 8},
    {"fifteen_fields", bench::fifteen_fields, 22, 15},
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
    const uint64_t before = allocations;
    for (auto _ : state) {
        benchmark::DoNotOptimize(rules.encode());
        benchmark::ClobberMemory();
    }
    state.counters["allocations"] = static_cast<double>(allocations - before);
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

} // namespace

int main(int argc, char **argv)
{
    std::vector<bench::Demand> demands;
    for (const Shape &shape : shapes) {
        const std::string name = shape.name;
        benchmark::RegisterBenchmark(("encode/" + name).c_str(), encode, shape);
        benchmark::RegisterBenchmark(("copy/" + name).c_str(), copy, shape);
        demands.push_back({"encoding a rule, " + name + ", to copying it",
                           {"encode/" + name, bench::Figure::processor, batch},
                           {"copy/" + name, bench::Figure::processor, batch},
                           bench::Sense::at_most,
                           shape.limit,
                           shape.aim});
        demands.push_back({"allocations while encoding, " + name,
                           {"encode/" + name, "allocations"},
                           {},
                           bench::Sense::at_most,
                           0});
    }
    return bench::run(argc, argv, demands);
}
