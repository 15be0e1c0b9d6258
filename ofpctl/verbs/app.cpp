#include <optional>
#include <vector>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "ofp.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"
#include "wire/record_text.h"

namespace ofpctl {

namespace {

constexpr uint8_t last_app = 11;

// Nothing for an application that is not registered.
std::optional<OfpAppPktStats> read_app(uint8_t id)
{
    OfpAppPktStats stats{};
    const uint32_t code = OFP_get_AppInfo(id, &stats);
    if (code == agent::NOT_PRESENT || code == agent::NO_NEXT)
        return std::nullopt;
    require_success(code, fmt::format("application {}", id));
    return stats;
}

void print_app(Output &out, uint8_t id, const OfpAppPktStats &stats)
{
    if (out.json()) {
        out.document().begin_object();
        out.document().number("app", id);
        write_record(out.document(), OFP_TLV_AppPktStats, &stats);
        out.document().end();
        return;
    }
    out.line(fmt::format("application {}", id));
    out.write(record_lines(OFP_TLV_AppPktStats, &stats, 2));
}

std::vector<uint8_t> ids_of(const Context &context)
{
    std::vector<uint8_t> ids;
    for (const std::string &operand : context.arguments.operands())
        ids.push_back(static_cast<uint8_t>(require_number("ID", operand, 1, last_app)));
    for (uint8_t id = 1; id <= last_app && context.arguments.operands().empty(); id++)
        ids.push_back(id);
    return ids;
}

void print_apps(Context &context)
{
    const std::vector<uint8_t> ids = ids_of(context);
    const bool named = !context.arguments.operands().empty();
    require_agent();
    std::size_t shown = 0;
    if (context.out.json())
        context.out.document().begin_array("apps");
    for (const uint8_t id : ids) {
        check_interrupt();
        const std::optional<OfpAppPktStats> stats = read_app(id);
        if (!stats && named)
            throw Failure{.status = status_missing,
                          .message = fmt::format("application {} is not registered", id)};
        if (stats)
            print_app(context.out, id, *stats);
        shown += stats ? 1U : 0U;
    }
    if (context.out.json())
        context.out.document().end();
    else if (shown == 0)
        context.out.line("no application is registered");
}

void show_apps(Context &context) { watch(context, print_apps); }

constexpr OptionRow options[] = {watch_option, rounds_option};

constexpr Example examples[] = {
    {"ofpctl app show", "The packet counters of every registered application"},
};

constexpr Verb rows[] = {
    {.name = "show",
     .run = show_apps,
     .help = "Shows registered applications and their packet counters.",
     .details = "Application ids are 1 to 11. Counters that only the agent gives a meaning go by "
                "the names of the record's members.",
     .operands = {"[ID...]", Kind::number, 0, last_app, 1, last_app},
     .options = options,
     .examples = examples},
};

} // namespace

const std::span<const Verb> app_verbs = rows;

} // namespace ofpctl
