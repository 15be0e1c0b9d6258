#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "ofp.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

constexpr uint32_t last_meter = 0xffff0000;

uint16_t instance_of(const Context &context)
{
    return static_cast<uint16_t>(context.arguments.number("instance"));
}

// A meter with its bands, which are freed with it.
class Meter {
public:
    Meter() { OFP_get_InitMeterBandList(&entry_.bands); }
    ~Meter() { OFP_get_FiniMeterBandList(&entry_.bands); }
    Meter(const Meter &) = delete;
    Meter &operator=(const Meter &) = delete;

    OfpMeterEntry *entry() { return &entry_; }
    uint32_t id() const { return entry_.meter_id; }
    uint16_t flags() const { return entry_.flags; }

    std::vector<const OfpMeterBandElement *> bands() const
    {
        std::vector<const OfpMeterBandElement *> bands;
        for (const OfpLink *at = entry_.bands.next; at != &entry_.bands; at = at->next)
            bands.push_back(reinterpret_cast<const OfpMeterBandElement *>(at));
        return bands;
    }

private:
    OfpMeterEntry entry_{};
};

std::string name_of(uint16_t instance, uint32_t id)
{
    return fmt::format("meter {} of instance {}", id, instance);
}

std::string band_type(uint16_t type)
{
    switch (type) {
    case 1:
        return "drop";
    case 2:
        return "dscp_remark";
    default:
        return fmt::format("{}", type);
    }
}

// As OpenFlow's flags say it.
std::string_view unit(uint16_t flags) { return (flags & 2) != 0 ? "packets/s" : "kb/s"; }

void write_meter(JsonWriter &json, const Meter &meter)
{
    json.number("meter", meter.id());
    json.text("unit", unit(meter.flags()));
    json.begin_array("bands");
    for (const OfpMeterBandElement *band : meter.bands()) {
        json.begin_object();
        json.text("type", band_type(band->type));
        json.number("rate", band->rate);
        json.number("burst", band->burst_size);
        json.number("prec_level", band->prec_level);
        json.wide("packets", band->packet_count);
        json.wide("bytes", band->byte_count);
        json.end();
    }
    json.end();
}

void print_meter(Output &out, const Meter &meter)
{
    if (out.json()) {
        write_meter(out.document(), meter);
        return;
    }
    out.line(fmt::format("meter {}", meter.id()));
    for (const OfpMeterBandElement *band : meter.bands())
        out.line(fmt::format("  {} above {} {}, burst {}: {} packets, {} bytes",
                             band_type(band->type), band->rate, unit(meter.flags()),
                             band->burst_size, band->packet_count, band->byte_count));
}

// ---- list

bool next_meter(uint16_t instance, uint32_t after, Meter &meter)
{
    const uint32_t code = OFP_get_NextMeterEntry(instance, after, meter.entry());
    if (code == agent::NO_NEXT || code == agent::NOT_PRESENT)
        return false;
    require_success(code, fmt::format("meters of instance {}", instance));
    if (meter.id() <= after)
        throw Failure{.message = fmt::format("instance {}: the agent lists meter {} after {}",
                                             instance, meter.id(), after)};
    return true;
}

// Zero where the switch has no meters.
uint32_t meter_count(uint16_t instance)
{
    OfpMeterTable table{};
    const uint32_t code = OFP_get_MeterTable(instance, &table);
    if (code == agent::NOT_PRESENT)
        return 0;
    require_success(code, fmt::format("meters of instance {}", instance));
    return table.meter_count;
}

void print_each(Output &out, uint16_t instance)
{
    for (uint32_t after = 0;;) {
        check_interrupt();
        Meter meter;
        if (!next_meter(instance, after, meter))
            return;
        after = meter.id();
        if (out.json())
            out.document().begin_object();
        print_meter(out, meter);
        if (out.json()) {
            out.document().end();
            out.settle();
        }
    }
}

void print_meters(Context &context)
{
    const uint16_t instance = instance_of(context);
    require_agent();
    const uint32_t count = meter_count(instance);
    Output &out = context.out;
    if (!out.json()) {
        out.line(fmt::format("instance {} has {} meters", instance, count));
        print_each(out, instance);
        return;
    }
    out.document().number("instance", instance);
    out.document().number("count", count);
    out.document().begin_array("meters");
    print_each(out, instance);
    out.document().end();
}

// ---- show

void print_one(Context &context)
{
    const uint16_t instance = instance_of(context);
    const uint32_t id = require_number("ID", context.arguments.operands().front(), 1, last_meter);
    require_agent();
    Meter meter;
    require_success(OFP_get_SpecMeterEntry(instance, id, meter.entry()), name_of(instance, id));
    if (context.out.json())
        context.out.document().number("instance", instance);
    print_meter(context.out, meter);
}

void list_meters(Context &context) { watch(context, print_meters); }
void show_meter(Context &context) { watch(context, print_one); }

constexpr OptionRow options[] = {owner_option, watch_option, rounds_option};

constexpr Example list_examples[] = {
    {"ofpctl meter list", "The meters of client 4096; a memory switch has none"},
};
constexpr Example show_examples[] = {
    {"ofpctl meter show 1", "The bands of meter 1 and what they counted"},
};

constexpr Verb rows[] = {
    {.name = "list",
     .run = list_meters,
     .help = "Lists an instance's meters.",
     .options = options,
     .examples = list_examples},
    {.name = "show",
     .run = show_meter,
     .help = "Shows a meter.",
     .operands = {"ID", Kind::number, 1, 1, 1, last_meter},
     .options = options,
     .examples = show_examples},
};

} // namespace

const std::span<const Verb> meter_verbs = rows;

} // namespace ofpctl
