#include <fmt/format.h>

#include "frame/context.h"
#include "ofp.h"
#include "option/assignment.h"
#include "option/record_option.h"
#include "verbs/change.h"
#include "verbs/nouns.h"

namespace ofpctl {

namespace {

OfpGlbDebug debug_record(const Context &context)
{
    OfpGlbDebug record{};
    for (const Assignment &assignment :
         parse_assignments(context.arguments.operands(), debug_settings()))
        option_of(debug_options(), *assignment.row).put(record, assignment.value);
    return record;
}

void set_debug(Context &context)
{
    const OfpGlbDebug record = debug_record(context);
    if (act(context, "debugging switches", [&] { return OFP_set_GlbDebug(&record); }) &&
        !context.out.json())
        context.out.line("debugging switches set");
}

constexpr OptionRow set_options[] = {dry_run_option};

constexpr Example set_examples[] = {
    {"ofpctl debug set key0=1 u32-8=0x3", "Two switches of key 1, 0; its others are cleared"},
};

constexpr Verb rows[] = {
    {.name = "set",
     .run = set_debug,
     .help = "Sets debugging switches.",
     .details = "They are one record, sent as a whole: what is not named is zero. The first two "
                "numbers are its key; the others go by width and place in the record, because "
                "their meaning is the agent's.",
     .operands = {"NAME=VALUE...", Kind::text, 1, any_number},
     .options = set_options,
     .examples = set_examples,
     .settings = debug_settings},
};

} // namespace

const std::span<const Verb> debug_verbs = rows;

} // namespace ofpctl
