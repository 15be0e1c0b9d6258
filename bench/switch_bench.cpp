// The memory switch: what an add with overlap check and a strict delete cost at a given size.
//
// Each run fills a table to the size, then adds new rules and deletes the oldest ones in turn, so
// that the size stays what it says and no rule is found warm in a cache. per_item is one flow-mod,
// decoded and applied.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <malloc.h>
#include <memory>
#include <string>
#include <vector>

#include "openflow/oxm.h"
#include "openflow/wire.h"
#include "switch/switch.h"

namespace {

using namespace openflow;

constexpr uint16_t CLIENT = 4096;
constexpr uint32_t BATCH = 4096;

// Distinct and without order: a bijection of 32-bit numbers.
uint32_t scatter(uint32_t n)
{
    n = (n ^ n >> 16) * 0x7feb352d;
    n = (n ^ n >> 15) * 0x846ca68b;
    return n ^ n >> 16;
}

class Writer {
public:
    template <class T>
    Writer &be(T value)
    {
        store(bytes_.data() + size_, value);
        size_ += sizeof value;
        return *this;
    }
    template <class T>
    Writer &oxm(uint8_t field, T value)
    {
        be(uint16_t{OFPXMC_OPENFLOW_BASIC}).be(static_cast<uint8_t>(field << 1));
        return be(static_cast<uint8_t>(sizeof value)).be(value);
    }
    template <class T>
    Writer &oxm(uint8_t field, T value, T mask)
    {
        be(uint16_t{OFPXMC_OPENFLOW_BASIC}).be(static_cast<uint8_t>(field << 1 | 1));
        be(static_cast<uint8_t>(2 * sizeof value)).be(static_cast<T>(value & mask));
        return be(mask);
    }
    void patch(size_t at, uint16_t value) { store(bytes_.data() + at, value); }
    void pad()
    {
        while (size_ % 8 != 0) {
            be(uint8_t{0});
        }
    }
    size_t size() const { return size_; }
    std::span<const uint8_t> bytes() const { return {bytes_.data(), size_}; }

private:
    std::array<uint8_t, 256> bytes_{};
    size_t size_ = 0;
};

struct Rule {
    uint16_t priority = 100;
    uint32_t src = 0, src_mask = 0xffffffff;
    uint32_t dst = 0, dst_mask = 0xffffffff;
    uint32_t in_port = 0; // 0: not matched
    bool ports = true;
    bool source_port = true;
};

Writer flow_mod(uint8_t command, const Rule &rule)
{
    Writer out;
    out.be(uint8_t{4}).be(uint8_t{OFPT_FLOW_MOD}).be(uint16_t{0}).be(uint32_t{0});
    out.be(uint64_t{0}).be(uint64_t{0}).be(uint8_t{200}).be(command).be(uint32_t{0});
    out.be(rule.priority).be(OFP_NO_BUFFER).be(uint32_t{OFPP_ANY}).be(uint32_t{OFPG_ANY});
    out.be(uint16_t{0x001e}).be(uint16_t{0});
    const size_t match = out.size();
    out.be(uint16_t{OFPMT_OXM}).be(uint16_t{0});
    if (rule.in_port != 0) {
        out.oxm(OFPXMT_IN_PORT, rule.in_port);
    }
    out.oxm(OFPXMT_ETH_TYPE, uint16_t{0x0800}).oxm(OFPXMT_IP_PROTO, uint8_t{6});
    out.oxm(OFPXMT_IPV4_SRC, rule.src, rule.src_mask);
    out.oxm(OFPXMT_IPV4_DST, rule.dst, rule.dst_mask);
    if (rule.ports && rule.source_port) {
        out.oxm(OFPXMT_TCP_SRC, static_cast<uint16_t>(rule.src * 7));
    }
    if (rule.ports) {
        out.oxm(OFPXMT_TCP_DST, uint16_t{443});
    }
    out.patch(match + 2, static_cast<uint16_t>(out.size() - match));
    out.pad();
    out.be(uint16_t{OFPIT_WRITE_ACTIONS}).be(uint16_t{24}).be(uint32_t{0});
    out.be(uint16_t{OFPAT_OUTPUT}).be(uint16_t{16}).be(uint32_t{1}).be(uint64_t{0});
    out.patch(2, static_cast<uint16_t>(out.size()));
    return out;
}

uint32_t prefix(uint32_t length) { return ~uint32_t{0} << (32 - length); }

// Rule sets by number of the rule.
using RuleSet = Rule (*)(uint32_t n);

Rule distinct_priorities(uint32_t n)
{
    return {.priority = static_cast<uint16_t>(n), .src = scatter(n), .dst = scatter(n ^ 0x5555)};
}

Rule one_priority(uint32_t n) { return {.src = scatter(n), .dst = scatter(n ^ 0x5555)}; }

// Destination prefixes of 20 to 32 bits that do not meet, as a routing table has them.
Rule prefix_disjoint(uint32_t n)
{
    const uint32_t length = 20 + scatter(n) % 13;
    const uint32_t network = n << 12; // a /20 each, more than 2^20 come back with other ports
    return {.src = n >> 20, .dst = network | (scatter(n) & 0xfff), .dst_mask = prefix(length)};
}

// 25 lengths of source prefix by 4 of destination, with or without in_port: 200 masks.
Rule masks_200(uint32_t n)
{
    const uint32_t mask = n % 200;
    return {.src = scatter(n),
            .src_mask = prefix(8 + mask % 25),
            .dst = scatter(n ^ 0x5555),
            .dst_mask = prefix(20 + 4 * (mask / 25 % 4)),
            .in_port = mask / 100 != 0 ? 1 + n % 48 : 0};
}

// Each rule leaves two of seven fields out: no field is in all of them.
Rule no_common_field(uint32_t n)
{
    const uint32_t mask = n % 4;
    Rule rule = {.src = scatter(n), .dst = scatter(n ^ 0x5555), .in_port = 1 + scatter(n) % 48};
    if (mask == 0) {
        rule.src_mask = 0;
    } else if (mask == 1) {
        rule.dst_mask = 0;
    } else if (mask == 2) {
        rule.in_port = 0;
    } else {
        rule.source_port = false;
    }
    return rule;
}

size_t heap_bytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// A switch filled to a size, kept between the benchmarks of one rule set.
struct Filled {
    Filled(RuleSet rules, uint32_t size)
    {
        const size_t before = heap_bytes();
        uint32_t number = 0;
        while (sw.table(CLIENT, 200).rules < size) {
            const Writer add = flow_mod(OFPFC_ADD, rules(number++));
            refused += sw.flow_mod(CLIENT, add.bytes()) ? 1U : 0U;
        }
        next = number;
        heap = heap_bytes() - before;
    }

    agent::Switch sw{{.rules_per_table = 2'000'000}};
    uint32_t oldest = 0;
    uint32_t next = 0;
    uint64_t refused = 0;
    size_t heap = 0;
};

Filled &filled(RuleSet rules, uint32_t size)
{
    static std::unique_ptr<Filled> kept;
    static RuleSet kept_rules = nullptr;
    static uint32_t kept_size = 0;
    if (kept_rules != rules || kept_size != size) {
        kept.reset();
        kept = std::make_unique<Filled>(rules, size);
        kept_rules = rules;
        kept_size = size;
    }
    return *kept;
}

// Processor time: other work on the machine shows in the caches only.
double seconds()
{
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double send_all(agent::Switch &sw, const std::vector<Writer> &messages)
{
    const double start = seconds();
    for (const Writer &message : messages) {
        benchmark::DoNotOptimize(sw.flow_mod(CLIENT, message.bytes()));
    }
    return seconds() - start;
}

void run(benchmark::State &state, RuleSet rules, bool time_adds)
{
    const auto size = static_cast<uint32_t>(state.range(0));
    Filled &full = filled(rules, size);
    std::vector<Writer> adds(BATCH);
    std::vector<Writer> deletes(BATCH);
    for (auto _ : state) {
        for (uint32_t n = 0; n < BATCH; n++) {
            adds[n] = flow_mod(OFPFC_ADD, rules(full.next++));
            deletes[n] = flow_mod(OFPFC_DELETE_STRICT, rules(full.oldest++));
        }
        const double added = send_all(full.sw, adds);
        const double deleted = send_all(full.sw, deletes);
        state.SetIterationTime(time_adds ? added : deleted);
    }
    const uint32_t now = full.sw.table(CLIENT, 200).rules;
    if (now < size - size / 10 || now > size + size / 10) {
        state.SkipWithError("the table did not keep its size");
    }
    state.SetItemsProcessed(state.iterations() * BATCH);
    state.counters["per_item"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * BATCH,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["bytes/rule"] = static_cast<double>(full.sw.memory()) / size;
    state.counters["heap/rule"] = static_cast<double>(full.heap) / size;
    state.counters["refused"] = static_cast<double>(full.refused);
}

void registered(const char *name, RuleSet rules)
{
    for (const int64_t size : {10'000, 100'000, 1'000'000}) {
        for (const bool adds : {true, false}) {
            const std::string full_name = std::string(adds ? "Add/" : "DeleteStrict/") + name;
            benchmark::RegisterBenchmark(
                full_name.c_str(),
                [rules, adds](benchmark::State &state) { run(state, rules, adds); })
                ->Arg(size)
                ->UseManualTime()
                ->Iterations(48);
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    registered("distinct_priorities", distinct_priorities);
    registered("one_priority", one_priority);
    registered("prefix_disjoint", prefix_disjoint);
    registered("200_masks", masks_200);
    registered("no_common_field", no_common_field);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
