#include <algorithm>
#include <cstring>
#include <string>

#include <fmt/format.h>

#include "flow/number_text.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "ofp.h"
#include "option/assignment.h"
#include "option/record_option.h"
#include "verbs/change.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"
#include "wire/record_text.h"

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

bool reports(const OfpGlbDebug &switches)
{
    OfpGlbDebug found = switches; // the key, and then what the agent has
    require_success(OFP_get_GlbDbgInfo(&found), "debugging switches");
    return std::memcmp(&found, &switches, sizeof found) == 0;
}

void set_debug(Context &context)
{
    const OfpGlbDebug record = debug_record(context);
    const bool sent = act(context, {.doing = "debugging switches",
                                    .send = [&] { return OFP_set_GlbDebug(&record); },
                                    .holds = [&] { return reports(record); }});
    if (sent && !context.out.json())
        context.out.line(fmt::format("debugging switches set{}", verified(context)));
}

void set_test_debug(Context &context)
{
    const std::string &text = context.arguments.operands().front();
    std::string bytes;
    OfpTDTestGlbDebug record{};
    if (!scan_bytes(text, bytes) || bytes.size() != sizeof record.content)
        throw usage_failure(fmt::format("\"{}\" is not {} bytes of two hexadecimal digits each",
                                        text, sizeof record.content));
    std::copy(bytes.begin(), bytes.end(), record.content);
    if (act(context, {.doing = "debugging of the test driver",
                      .send = [&] { return OFP_set_TDTestGlbDebug(&record); },
                      .holds = {}}) &&
        !context.out.json())
        context.out.line("debugging of the test driver set");
}

void print_debug(Context &context)
{
    const Words &operands = context.arguments.operands();
    OfpGlbDebug record{};
    record.value_u16_0 = static_cast<uint16_t>(require_number("KEY0", operands[0], 0, UINT16_MAX));
    record.value_u16_2 = static_cast<uint16_t>(require_number("KEY2", operands[1], 0, UINT16_MAX));
    require_agent();
    uint64_t packets[2] = {};
    uint16_t value = 0;
    require_success(OFP_get_GlbDbgInfo(&record), "debugging switches");
    require_success(OFP_get_GlbDbgInfoPkt(record.value_u16_0, record.value_u16_2, packets, &value),
                    "debugging counters");
    if (!context.out.json()) {
        context.out.write(record_lines(OFP_TLV_GlbDebug, &record, 0));
        context.out.line(fmt::format("{:<20} {} {}", "packets", packets[0], packets[1]));
        return;
    }
    JsonWriter &json = context.out.document();
    json.begin_object("switches");
    write_record(json, OFP_TLV_GlbDebug, &record);
    json.end();
    json.begin_array("packets");
    json.wide({}, packets[0]);
    json.wide({}, packets[1]);
    json.end();
    json.number("value", value);
}

void show_debug(Context &context) { watch(context, print_debug); }

constexpr OptionRow show_options[] = {watch_option, rounds_option};

constexpr Example show_examples[] = {
    {"ofpctl debug show 1 0", "The switches of key 1, 0 and what debugging counted"},
};

constexpr OptionRow test_options[] = {dry_run_option};

constexpr Example test_examples[] = {
    {"ofpctl debug test 000102030405060708090a0b0c0d0e0f", "16 bytes in hexadecimal"},
};

constexpr OptionRow set_options[] = {dry_run_option, verify_option};

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
    {.name = "test",
     .run = set_test_debug,
     .help = "Sets the debugging record of the test driver.",
     .details = "It travels as it is given; the agent does not report it.",
     .operands = {"BYTES", Kind::text, 1, 1},
     .options = test_options,
     .examples = test_examples},
    {.name = "show",
     .run = show_debug,
     .help = "Shows the debugging switches of a key and what debugging counted.",
     .operands = {"KEY0 KEY2", Kind::number, 2, 2, 0, UINT16_MAX},
     .options = show_options,
     .examples = show_examples},
};

} // namespace

const std::span<const Verb> debug_verbs = rows;

} // namespace ofpctl
