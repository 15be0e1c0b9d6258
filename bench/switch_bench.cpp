// The memory switch: what an add with overlap check and a strict delete cost at a given size, and
// what it costs to follow a packet.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <malloc.h>
#include <string>
#include <vector>

#include "demand.h"
#include "openflow/oxm.h"
#include "openflow/wire.h"
#include "switch/switch.h"

namespace {

using namespace openflow;

constexpr uint16_t CLIENT = 4096;
constexpr uint8_t TABLE = 200;
constexpr uint32_t BATCH = 4096;
constexpr int64_t ROUNDS = 24;

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

Rule masks_200_with_priorities(uint32_t n)
{
    Rule rule = masks_200(n);
    rule.priority = static_cast<uint16_t>(1 + scatter(n ^ 0x3333) % 1000);
    return rule;
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

// Processor time: other work on the machine shows in the caches only.
double seconds()
{
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// A switch filled to a size. Rounds add new rules and delete as many of the oldest, so that the
// size stays and no rule is found warm in a cache.
class Filled {
public:
    Filled(RuleSet rules, uint32_t size) : rules_(rules), size_(size)
    {
        const size_t before = heap_bytes();
        while (switch_.table(CLIENT, TABLE).rules < size) {
            switch_.flow_mod(CLIENT, flow_mod(OFPFC_ADD, rules_(next_++)).bytes());
        }
        bytes_ = heap_bytes() - before;
    }

    // Follows a packet that has the fields of a rule, or none's; the rule that it met.
    uint32_t trace(uint32_t n)
    {
        static constexpr std::array tables = {TABLE};
        const Rule rule = rules_(n);
        Writer packet;
        packet.oxm(OFPXMT_IN_PORT, std::max(rule.in_port, uint32_t{1}));
        packet.oxm(OFPXMT_ETH_TYPE, uint16_t{0x0800}).oxm(OFPXMT_IP_PROTO, uint8_t{6});
        packet.oxm(OFPXMT_IPV4_SRC, rule.src).oxm(OFPXMT_IPV4_DST, rule.dst);
        packet.oxm(OFPXMT_TCP_SRC, static_cast<uint16_t>(rule.src * 7));
        packet.oxm(OFPXMT_TCP_DST, uint16_t{443});
        agent::Trace trace;
        switch_.trace(CLIENT, {packet.bytes(), tables, TABLE, false, {}}, trace);
        return trace.visits.front().rule;
    }

    void round()
    {
        for (uint32_t n = 0; n < BATCH; n++) {
            adds_[n] = flow_mod(OFPFC_ADD, rules_(next_++));
            deletes_[n] = flow_mod(OFPFC_DELETE_STRICT, rules_(oldest_++));
        }
        const double added = send_all(adds_);
        const double deleted = send_all(deletes_);
        if (rounds_++ > 0) { // the first warms the heap
            add_times_.push_back(added);
            delete_times_.push_back(deleted);
        }
    }

    bool kept_its_size() const
    {
        const uint32_t now = switch_.table(CLIENT, TABLE).rules;
        return now > size_ - size_ / 10 && now < size_ + size_ / 10;
    }
    double nanoseconds_per_add() { return per_rule(add_times_); }
    double nanoseconds_per_delete() { return per_rule(delete_times_); }
    double bytes_per_rule() const { return static_cast<double>(bytes_) / size_; }

private:
    double send_all(const std::vector<Writer> &messages)
    {
        const double start = seconds();
        for (const Writer &message : messages) {
            benchmark::DoNotOptimize(switch_.flow_mod(CLIENT, message.bytes()));
        }
        return seconds() - start;
    }
    static double per_rule(std::vector<double> &times)
    {
        std::sort(times.begin(), times.end());
        return times[times.size() / 2] / BATCH * 1e9;
    }

    RuleSet rules_;
    uint32_t size_;
    agent::Switch switch_{{.rules_per_table = 2'000'000}};
    size_t bytes_ = 0;
    uint32_t oldest_ = 0;
    uint32_t next_ = 0;
    int rounds_ = 0;
    std::vector<Writer> adds_ = std::vector<Writer>(BATCH);
    std::vector<Writer> deletes_ = std::vector<Writer>(BATCH);
    std::vector<double> add_times_;
    std::vector<double> delete_times_;
};

// The sizes take turns, so that whatever else the machine does meets them all.
void run(benchmark::State &state, RuleSet rules)
{
    Filled small(rules, 10'000);
    Filled medium(rules, 100'000);
    Filled large(rules, 1'000'000);
    for (auto _ : state) {
        small.round();
        medium.round();
        large.round();
    }
    if (!small.kept_its_size() || !medium.kept_its_size() || !large.kept_its_size()) {
        state.SkipWithError("a table did not keep its size");
    }
    state.counters["add_10k"] = small.nanoseconds_per_add();
    state.counters["add_100k"] = medium.nanoseconds_per_add();
    state.counters["add_1M"] = large.nanoseconds_per_add();
    state.counters["delete_10k"] = small.nanoseconds_per_delete();
    state.counters["delete_100k"] = medium.nanoseconds_per_delete();
    state.counters["delete_1M"] = large.nanoseconds_per_delete();
    state.counters["bytes_1M"] = large.bytes_per_rule();
}

// Packets of rules that are in the table, and as many of rules that are not.
void run_trace(benchmark::State &state, RuleSet rules)
{
    constexpr uint32_t RULES = 100'000;
    Filled table(rules, RULES);
    table.trace(0); // makes what finds the others
    uint32_t n = 0;
    uint32_t met = 0;
    for (auto _ : state) {
        met += table.trace(scatter(n++) % (2 * RULES)) != 0 ? 1U : 0U;
    }
    if (met < n / 3) {
        state.SkipWithError("too few packets met a rule");
    }
}

constexpr struct {
    const char *name;
    RuleSet rules;
} trace_sets[] = {
    {"trace_200_masks", masks_200},
    {"trace_200_masks_1000_priorities", masks_200_with_priorities},
};

constexpr struct {
    const char *name;
    RuleSet rules;
} rule_sets[] = {
    {"distinct_priorities", distinct_priorities}, {"one_priority", one_priority},
    {"prefix_disjoint", prefix_disjoint},         {"200_masks", masks_200},
    {"no_common_field", no_common_field},
};

} // namespace

int main(int argc, char **argv)
{
    using enum bench::Sense;
    std::vector<bench::Demand> demands;
    for (const auto &[name, rules] : rule_sets) {
        benchmark::RegisterBenchmark(name, run, rules)->Iterations(ROUNDS)->Repetitions(1);
        const std::string set = name;
        demands.push_back({"adding to a million rules to adding to ten thousand, " + set,
                           {set, "add_1M"},
                           {set, "add_10k"},
                           reported});
        demands.push_back({"strict delete from a million rules to one from ten thousand, " + set,
                           {set, "delete_1M"},
                           {set, "delete_10k"},
                           reported});
    }
    for (const auto &[name, rules] : trace_sets) {
        benchmark::RegisterBenchmark(name, run_trace, rules);
        demands.push_back({std::string("following a packet through 100 000 rules, ") + name,
                           {name, "", 1, "ns"},
                           {},
                           at_most,
                           100'000});
    }
    demands.push_back({"bytes of memory a five-tuple rule, of a million",
                       {"one_priority", "bytes_1M", 1, "bytes"},
                       {},
                       at_most,
                       600});
    return bench::run(argc, argv, demands);
}
