// What a list query costs an element, by the length of the list, in the library alone.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "demand.h"
#include "in_process.h"

namespace {

enum class Order { ascending, descending };

// The datagrams that carry records of one type, as many as fit into each.
class Pages {
public:
    explicit Pages(uint16_t type) : type_(type) {}

    template <class Record>
    void add(Record record)
    {
        if (pages_.empty() || used_ + 4 + sizeof record > OFP_DATAGRAM_SIZE)
            begin();
        pages_.back().resize(OFP_DATAGRAM_SIZE);
        used_ += OFP_msg_SetTlvData(&pages_.back()[used_], OFP_DATAGRAM_SIZE - used_, type_,
                                    sizeof record, &record);
        pages_.back().resize(used_);
    }
    // A datagram of no record, or of one that ends the list.
    void begin()
    {
        pages_.emplace_back(OFP_DATAGRAM_SIZE);
        used_ = OFP_msg_SetMsgHead(pages_.back().data(), OFP_DATAGRAM_SIZE, 0x20000000);
        pages_.back().resize(used_);
    }
    const std::vector<bench::Bytes> &datagrams() const { return pages_; }

private:
    uint16_t type_;
    std::vector<bench::Bytes> pages_;
    uint64_t used_ = 0;
};

uint32_t number(uint32_t i, uint32_t count, Order order)
{
    return order == Order::ascending ? i + 1 : count - i;
}

Pages references(uint32_t count, Order order)
{
    Pages pages(OFP_TLV_RefRuleID);
    for (uint32_t i = 0; i < count; ++i)
        pages.add(OfpRefRuleID{.rule_id = number(i, count, order), .table_id = 200});
    pages.begin();
    return pages;
}

Pages ports(uint32_t count, Order order)
{
    Pages pages(OFP_TLV_AcPortInfo);
    for (uint32_t i = 0; i < count; ++i) {
        OfpAcPortInfo port = {.if_index = i + 1};
        std::snprintf(port.name, sizeof port.name, "GE1/0/%u", number(i, count, order));
        pages.add(port);
    }
    pages.begin();
    return pages;
}

void read_references(benchmark::State &state, const Pages &pages, uint32_t count)
{
    std::vector<OfpLink> lists(OFP_RULE_REF_TABLES);
    OFP_get_InitRuleRefAR(lists.data());
    for (auto _ : state) {
        uint32_t total = 0;
        bench::in_process::answer_with(pages.datagrams());
        bench::check(OFP_get_GroupRefRule(1, 1, lists.data(), &total) == OFP_REF_RULE_END &&
                         total == count,
                     "reading references");
        OFP_get_FiniRuleRefAR(lists.data());
    }
}

void read_ports(benchmark::State &state, const Pages &pages, uint32_t count)
{
    OfpLink list;
    OFP_get_InitMeterBandList(&list);
    for (auto _ : state) {
        bench::in_process::answer_with(pages.datagrams());
        bench::check(OFP_get_AcPortInfo(&list) == 0, "reading ports");
        const auto last = reinterpret_cast<const OfpAcPortElement *>(list.previous);
        bench::check(last->port.name == "GE1/0/" + std::to_string(count), "the last port");
        OFP_get_FiniMeterBandList(&list);
    }
}

struct List {
    const char *name;
    Pages (*pages)(uint32_t count, Order order);
    void (*read)(benchmark::State &state, const Pages &pages, uint32_t count);
};

constexpr List lists[] = {
    {"references to a group", references, read_references},
    {"attachment ports", ports, read_ports},
};

std::string add(const List &list, uint32_t count, Order order)
{
    std::string name = list.name;
    name += ", " + std::to_string(count);
    name += order == Order::ascending ? " in order" : " in reverse";
    benchmark::RegisterBenchmark(name.c_str(), [&list, pages = list.pages(count, order),
                                                count](benchmark::State &state) {
        list.read(state, pages, count);
    })->Unit(benchmark::kNanosecond);
    return name;
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<bench::Demand> demands;
    for (const List &list : lists) {
        const std::string short_list = add(list, 100, Order::ascending);
        for (const uint32_t count : {1000U, 10'000U, 100'000U}) {
            const std::string name = add(list, count, Order::ascending);
            demands.push_back({name + ", an element, to one of 100",
                               {name, bench::Figure::processor, static_cast<double>(count)},
                               {short_list, bench::Figure::processor, 100},
                               bench::Sense::at_most,
                               1.5});
        }
        const std::string longest = std::string(list.name) + ", 100000 in order";
        demands.push_back({longest + ", seconds in all",
                           {longest, bench::Figure::processor, 1e9, "s"},
                           {},
                           bench::Sense::at_most,
                           0.5});
        const std::string reverse = add(list, 10'000, Order::descending);
        demands.push_back({reverse + ", seconds in all",
                           {reverse, bench::Figure::processor, 1e9, "s"},
                           {},
                           bench::Sense::at_most,
                           1});
    }
    return bench::run(argc, argv, demands);
}
