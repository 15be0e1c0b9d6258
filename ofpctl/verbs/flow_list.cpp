// flow show and count.
#include <cstdint>

#include <fmt/format.h>

#include "flow/flow_json.h"
#include "flow/flow_text.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/progress.h"
#include "verbs/flow_verbs.h"
#include "verbs/rule_store.h"

namespace ofpctl {

namespace {

uint16_t client_of(const Context &context)
{
    return static_cast<uint16_t>(context.arguments.number("client"));
}

void print_text(Output &out, const StoredRule &rule, bool counters)
{
    // Counters stand in front, as where the text comes from; reading skips them.
    std::string line;
    if (counters)
        line = fmt::format("duration={}s, n_packets={}, n_bytes={}, ", rule.counters.duration_sec,
                           rule.counters.packet_count, rule.counters.byte_count);
    append_flow(line, *rule.item);
    out.line(line);
}

void print_json(JsonWriter &json, const StoredRule &rule, bool counters)
{
    json.begin_object();
    json.number("id", rule.id);
    json.raw("rule", flow_to_json(*rule.item));
    if (counters) {
        json.wide("packets", rule.counters.packet_count);
        json.wide("bytes", rule.counters.byte_count);
        json.number("age", rule.counters.duration_sec);
    }
    json.end();
}

} // namespace

void flow_show(Context &context)
{
    const uint16_t client = client_of(context);
    const bool counters = context.arguments.given("stats");
    Output &out = context.out;
    require_agent();
    if (out.json()) {
        out.document().number("client", client);
        out.document().begin_array("rules");
    }
    each_rule(client, [&](const StoredRule &rule) {
        if (out.json()) {
            print_json(out.document(), rule, counters);
            out.settle();
        } else {
            print_text(out, rule, counters);
        }
    });
}

void flow_count(Context &context)
{
    const uint16_t client = client_of(context);
    require_agent();
    const uint32_t count = count_rules(client);
    if (context.out.json()) {
        context.out.document().number("client", client);
        context.out.document().number("rules", count);
    } else {
        context.out.line(fmt::format("{}", count));
    }
}

} // namespace ofpctl
