#include <memory>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "ofp.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

// What the agent puts into the summary of an instance.
struct Entry {
    uint16_t instance;
    bool active;
    uint64_t datapath_id;
    uint16_t tables;
    uint32_t ports;
    uint32_t connected;
};

Entry entry_of(const OfpSummary &summary)
{
    return {summary.value_u16_16, summary.value_u16_20 == 1, summary.value_u64_0,
            summary.value_u16_18, summary.value_u32_12,      summary.value_u32_8};
}

void print_entry(Output &out, const Entry &entry)
{
    if (!out.json()) {
        out.line(fmt::format("{:>8} {:<8} 0x{:016x} {:>6} {:>6} {:>9}", entry.instance,
                             entry.active ? "active" : "inactive", entry.datapath_id, entry.tables,
                             entry.ports, entry.connected));
        return;
    }
    JsonWriter &json = out.document();
    json.begin_object();
    json.number("instance", entry.instance);
    json.flag("active", entry.active);
    json.text("datapath-id", fmt::format("0x{:016x}", entry.datapath_id));
    json.number("tables", entry.tables);
    json.number("ports", entry.ports);
    json.number("connected_controllers", entry.connected);
    json.end();
    out.settle();
}

void print_summary(Context &context)
{
    require_agent();
    OfpSummaryList list{};
    OFP_get_InitSummary(&list);
    const auto finish = [](OfpSummaryList *all) { OFP_get_FiniSummary(all); };
    const std::unique_ptr<OfpSummaryList, decltype(finish)> owner(&list, finish);
    const uint32_t code = OFP_get_Summary(&list);
    if (code != agent::NO_NEXT)
        require_success(code, "summary");
    Output &out = context.out;
    if (out.json()) {
        out.document().number("count", list.count);
        out.document().begin_array("instances");
    } else {
        out.line(fmt::format("{:>8} {:<8} {:<18} {:>6} {:>6} {:>9}", "INSTANCE", "STATE",
                             "DATAPATH ID", "TABLES", "PORTS", "CONNECTED"));
    }
    for (const OfpLink *at = list.link.next; at != &list.link; at = at->next)
        print_entry(out, entry_of(reinterpret_cast<const OfpSummaryElement *>(at)->summary));
    if (out.json())
        out.document().end();
}

void show_summary(Context &context) { watch(context, print_summary); }

constexpr OptionRow options[] = {watch_option, rounds_option};

constexpr Example examples[] = {
    {"ofpctl summary show", "Each instance in a few numbers"},
};

constexpr Verb rows[] = {
    {.name = "show",
     .run = show_summary,
     .help = "Shows the agent's summary of all instances; \"ofpctl summary\" does, too.",
     .options = options,
     .examples = examples},
};

} // namespace

const std::span<const Verb> summary_verbs = rows;

} // namespace ofpctl
