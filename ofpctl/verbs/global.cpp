#include "option/global_option.h"

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/context.h"
#include "verbs/change.h"
#include "verbs/global.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

Change global_change(const GlobalOption &option, const Value &value, const GlobalRecord &record)
{
    Change change{.what = change_text("switch", option.row, value),
                  .row = &option.row,
                  .value = value,
                  .send = [&option, value] { return option.set(value); },
                  .read = {}};
    if (option.read != nullptr)
        change.read = [&option, &record] { return option.read(record); };
    return change;
}

namespace {

void set_global(Context &context)
{
    GlobalRecord record;
    Changes changes{.all = {}, .refresh = [&] { record.read(); }};
    for (const Assignment &assignment :
         parse_assignments(context.arguments.operands(), global_settings()))
        changes.all.push_back(
            global_change(option_of(global_options(), *assignment.row), assignment.value, record));
    perform(context, changes);
}

void print_global(Context &context)
{
    require_agent();
    GlobalRecord record;
    record.read();
    for (const GlobalOption &option : global_options()) {
        if (option.read == nullptr)
            continue;
        const Value value = option.read(record);
        if (context.out.json())
            write_value(context.out.document(), option.row, value);
        else
            context.out.line(
                fmt::format("{:<22} {}", option.row.name, format_value(option.row, value)));
    }
}

void show_global(Context &context) { watch(context, print_global); }

constexpr OptionRow show_options[] = {watch_option, rounds_option};
constexpr OptionRow set_options[] = {dry_run_option, verify_option};

constexpr Example set_examples[] = {
    {"ofpctl global set normal-forward-vlans=100-199", "VLANs that are forwarded as usual"},
    {"ofpctl global set --dry-run ipv6-enhanced=on reserved-acl=2",
     "Shows the two datagrams that would be sent"},
};
constexpr Example show_examples[] = {
    {"ofpctl global show", "What the agent reports of them"},
};

constexpr Verb rows[] = {
    {.name = "set",
     .run = set_global,
     .help = "Sets options of the whole switch.",
     .details = "Each is a request of its own: one that is refused does not undo the others.",
     .operands = {"NAME=VALUE...", Kind::text, 1, any_number},
     .options = set_options,
     .examples = set_examples,
     .settings = global_settings},
    {.name = "show",
     .run = show_global,
     .help = "Shows the options of the whole switch that the agent reports.",
     .options = show_options,
     .examples = show_examples},
};

} // namespace

const std::span<const Verb> global_verbs = rows;

} // namespace ofpctl
