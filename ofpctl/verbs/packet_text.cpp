#include "verbs/packet_text.h"

#include <fmt/format.h>

#include "flow/port_text.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

constexpr uint32_t no_group = 0xffffffff;

bool held_back(const agent::PacketOutputRecord &output)
{
    return (output.flags & agent::PACKET_HELD_BACK) != 0;
}

std::string_view end_name(agent::PacketEnd end)
{
    switch (end) {
    case agent::PacketEnd::carried_out:
        return "carried_out";
    case agent::PacketEnd::no_rule:
        return "no_rule";
    case agent::PacketEnd::no_table:
        return "no_table";
    case agent::PacketEnd::permitted:
        return "permitted";
    default:
        return "cut";
    }
}

// ---- Text

std::string why_not(const PacketNearMiss &miss)
{
    std::string text;
    for (const PacketDifference &difference : miss.differences) {
        text += text.empty() ? "" : ", ";
        if (difference.has.empty())
            text += fmt::format("{} is not known of a packet", difference.field);
        else
            text += fmt::format("{} is {}, not {}", difference.field, difference.has,
                                difference.wanted);
    }
    const std::size_t told = miss.differences.size();
    const std::size_t more = miss.fields > told ? miss.fields - told : 0;
    return more == 0 ? text : fmt::format("{}, and {} differ", text, counted(more, "more field"));
}

void print_visit(Output &out, const PacketVisit &visit, const RuleText &rule_text)
{
    if (visit.rule == 0)
        out.line(fmt::format("table {}: no rule matches", visit.table));
    else
        out.line(fmt::format("table {}: rule {} matches, {}", visit.table, visit.rule,
                             rule_text(visit.table, visit.rule)));
    if (!visit.better)
        return;
    const PacketNearMiss &miss = *visit.better;
    out.line(fmt::format("    not rule {}, {}", miss.rule, rule_text(visit.table, miss.rule)));
    out.line(fmt::format("        {}", why_not(miss)));
}

void print_output(Output &out, const agent::PacketOutputRecord &output)
{
    std::string line = "output: port ";
    append_port(line, output.port);
    if (output.group_id != no_group)
        line += fmt::format(", by group {}, bucket {}", output.group_id, output.bucket);
    if (held_back(output))
        line += "; not sent, the packet came from there";
    out.line(line);
}

void print_end(Output &out, const PacketReply &reply)
{
    if (reply.output_count > reply.outputs.size())
        out.line(fmt::format("... and {}",
                             counted(reply.output_count - reply.outputs.size(), "more output")));
    switch (reply.end) {
    case agent::PacketEnd::carried_out:
        if (reply.outputs.empty())
            out.line("dropped: nothing sends it anywhere");
        return;
    case agent::PacketEnd::no_rule:
        return out.line(fmt::format("dropped: no rule of table {} matches",
                                    reply.visits.empty() ? 0 : reply.visits.back().table));
    case agent::PacketEnd::permitted:
        return out.line("forwarded normally, as the instance does with what no rule matches");
    case agent::PacketEnd::no_table:
        return out.line(fmt::format("dropped: there is no table {}", reply.missing_table));
    default:
        return out.line("followed no further: too many actions and buckets");
    }
}

void print_text(Output &out, const std::string &packet, const PacketReply &reply,
                const RuleText &rule_text)
{
    out.line(fmt::format("packet: {}", packet));
    for (const PacketVisit &visit : reply.visits)
        print_visit(out, visit, rule_text);
    if (reply.end == agent::PacketEnd::carried_out)
        out.line(fmt::format("action set: {}", reply.actions.empty() ? "empty" : reply.actions));
    for (const agent::PacketOutputRecord &output : reply.outputs)
        print_output(out, output);
    print_end(out, reply);
}

// ---- JSON

void write_near_miss(JsonWriter &json, uint8_t table, const PacketNearMiss &miss,
                     const RuleText &rule_text)
{
    json.begin_object("better");
    json.number("id", miss.rule);
    json.number("priority", miss.priority);
    json.text("rule", rule_text(table, miss.rule));
    json.number("differing", miss.fields);
    json.begin_array("differences");
    for (const PacketDifference &difference : miss.differences) {
        json.begin_object();
        json.text("field", difference.field);
        json.text("wanted", difference.wanted);
        json.text("packet", difference.has);
        json.end();
    }
    json.end();
    json.end();
}

void write_visit(JsonWriter &json, const PacketVisit &visit, const RuleText &rule_text)
{
    json.begin_object();
    json.number("table", visit.table);
    if (visit.rule != 0) {
        json.number("id", visit.rule);
        json.number("priority", visit.priority);
        json.text("rule", rule_text(visit.table, visit.rule));
    } else {
        json.null("id");
    }
    if (visit.better)
        write_near_miss(json, visit.table, *visit.better, rule_text);
    else
        json.null("better");
    json.end();
}

void write_output(JsonWriter &json, const agent::PacketOutputRecord &output)
{
    std::string port;
    append_port(port, output.port);
    json.begin_object();
    json.text("port", port);
    if (output.group_id != no_group) {
        json.number("group", output.group_id);
        json.number("bucket", output.bucket);
    }
    json.flag("sent", !held_back(output));
    json.end();
}

void write_json(JsonWriter &json, const std::string &packet, const PacketReply &reply,
                const RuleText &rule_text)
{
    json.text("packet", packet);
    json.text("end", end_name(reply.end));
    if (reply.end == agent::PacketEnd::no_table)
        json.number("missing_table", reply.missing_table);
    json.begin_array("tables");
    for (const PacketVisit &visit : reply.visits)
        write_visit(json, visit, rule_text);
    json.end();
    json.text("action_set", reply.actions);
    json.begin_array("outputs");
    for (const agent::PacketOutputRecord &output : reply.outputs)
        write_output(json, output);
    json.end();
    json.number("output_count", reply.output_count);
}

} // namespace

void print_packet(Output &out, const std::string &packet, const PacketReply &reply,
                  const RuleText &rule_text)
{
    if (out.json())
        write_json(out.document(), packet, reply, rule_text);
    else
        print_text(out, packet, reply, rule_text);
}

} // namespace ofpctl
