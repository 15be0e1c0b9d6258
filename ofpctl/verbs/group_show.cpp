// group list and show: what the agent holds.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "flow/port_text.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "ofp.h"
#include "openflow/message.h"
#include "verbs/group_text.h"
#include "verbs/group_verbs.h"
#include "verbs/reply_tlvs.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

constexpr uint32_t before_first = 0xffffffff; // group 0 is a group

// A group as the agent holds it.
struct StoredGroup {
    uint32_t id = 0;
    uint64_t packets = 0;
    uint64_t bytes = 0;
    uint64_t age = 0;        // seconds
    uint32_t references = 0; // actions of rules that lead to it
    std::vector<uint32_t> ports;
    std::vector<OfpBucketBase> buckets; // counters, as far as the agent reports them
    std::string type;
    std::string text;
};

uint16_t instance_of(const Context &context)
{
    return static_cast<uint16_t>(context.arguments.number("instance"));
}

std::string name_of(uint16_t instance, uint32_t group)
{
    return fmt::format("group {} of instance {}", group, instance);
}

std::string port_text(uint32_t port)
{
    std::string text;
    append_port(text, port);
    return text;
}

std::string_view type_name(uint8_t type)
{
    constexpr std::string_view names[] = {"all", "select", "indirect", "ff"};
    return type < std::size(names) ? names[type] : "unknown";
}

void read_group_mod(std::span<const uint8_t> message, StoredGroup &group)
{
    const auto mod = openflow::parse_group_mod(message);
    if (!mod)
        throw Failure{.message = fmt::format("group {}: the agent's answer is no group", group.id)};
    group.type = type_name(mod->type);
    group.text = fmt::format("group_id={},type={}", group.id, group.type);
    openflow::BucketWalk buckets(mod->buckets);
    while (const auto bucket = buckets.next()) {
        openflow::ActionWalk actions(bucket->actions);
        group.text += ",bucket=";
        while (const auto action = actions.next()) {
            const auto port = openflow::output_port(*action);
            if (!port)
                continue;
            group.ports.push_back(*port);
            group.text += fmt::format("output:{}", port_text(*port));
        }
    }
}

StoredGroup read_group(uint16_t instance, uint32_t id)
{
    std::vector<uint8_t> buffer(OFP_LARGE_DATAGRAM_SIZE);
    uint64_t length = 0;
    require_success(OFP_get_GroupSummary(instance, id, buffer.size(), buffer.data(), &length),
                    name_of(instance, id));
    StoredGroup group{.id = id};
    each_tlv(std::span(buffer).first(length), [&](const ReplyTlv &tlv) {
        if (tlv.type == OFP_TLV_GroupBase) {
            const auto base = tlv.record<OfpGroupBase>();
            group.packets = base.value_u64_0;
            group.bytes = base.value_u64_8;
            group.age = base.value_u64_16;
            group.references = base.value_u32_40;
        } else if (tlv.type == OFP_TLV_BucketBase) {
            group.buckets.push_back(tlv.record<OfpBucketBase>());
        } else if (tlv.type == OFP_TLV_FlowEntry) {
            read_group_mod(tlv.value, group);
        }
    });
    return group;
}

std::optional<uint32_t> next_group(uint16_t instance, uint32_t after)
{
    uint32_t next = 0;
    const uint32_t code = OFP_get_NextGroupID(instance, after, &next);
    if (code == agent::NO_NEXT)
        return std::nullopt;
    require_success(code, fmt::format("groups of instance {}", instance));
    if (after != before_first && next <= after)
        throw Failure{.message = fmt::format("instance {}: the agent lists group {} after {}",
                                             instance, next, after)};
    return next;
}

void write_group(JsonWriter &json, const StoredGroup &group)
{
    json.number("group", group.id);
    json.text("type", group.type);
    json.begin_array("ports");
    for (const uint32_t port : group.ports)
        json.text({}, port_text(port));
    json.end();
    json.wide("packets", group.packets);
    json.wide("bytes", group.bytes);
    json.wide("age", group.age);
    json.number("references", group.references);
}

void print_groups(Context &context)
{
    const uint16_t instance = instance_of(context);
    require_agent();
    Output &out = context.out;
    if (out.json()) {
        out.document().number("instance", instance);
        out.document().begin_array("groups");
    } else {
        out.line(fmt::format("{:>10} {:<8} {:>7} {:>10} {:>12} {:>15} {:>9}", "GROUP", "TYPE",
                             "BUCKETS", "REFERENCES", "PACKETS", "BYTES", "AGE"));
    }
    for (auto id = next_group(instance, before_first); id; id = next_group(instance, *id)) {
        check_interrupt();
        const StoredGroup group = read_group(instance, *id);
        if (out.json()) {
            out.document().begin_object();
            write_group(out.document(), group);
            out.document().end();
            out.settle();
        } else {
            out.line(fmt::format("{:>10} {:<8} {:>7} {:>10} {:>12} {:>15} {:>8}s", group.id,
                                 group.type, group.ports.size(), group.references, group.packets,
                                 group.bytes, group.age));
        }
    }
    if (out.json())
        out.document().end();
}

// ---- One group

struct Reference {
    uint8_t table;
    uint32_t rule;
};

std::vector<Reference> references_to(uint16_t instance, uint32_t group)
{
    std::vector<OfpLink> heads(OFP_RULE_REF_TABLES);
    OFP_get_InitRuleRefAR(heads.data());
    const auto finish = [](OfpLink *array) { OFP_get_FiniRuleRefAR(array); };
    const std::unique_ptr<OfpLink, decltype(finish)> owner(heads.data(), finish);
    uint32_t total = 0;
    const uint32_t code = OFP_get_GroupRefRule(instance, group, heads.data(), &total);
    if (code != OFP_REF_RULE_END && code != agent::NO_NEXT && code != agent::NOT_SUPPORTED)
        require_success(code, name_of(instance, group));
    std::vector<Reference> references;
    for (const OfpLink &head : heads) {
        for (const OfpLink *at = head.next; at != &head; at = at->next) {
            const auto *element = reinterpret_cast<const OfpRuleRefElement *>(at);
            references.push_back({element->table_id, element->rule_id});
        }
    }
    return references;
}

void print_text(Output &out, const StoredGroup &group, const std::vector<Reference> &references)
{
    out.line(group.text);
    out.line(fmt::format("  packets {}, bytes {}, set {} seconds ago", group.packets, group.bytes,
                         group.age));
    for (std::size_t i = 0; i < group.buckets.size(); i++)
        out.line(fmt::format("  bucket {}: packets {}, bytes {}", i, group.buckets[i].packet_count,
                             group.buckets[i].byte_count));
    for (const Reference &reference : references)
        out.line(fmt::format("  used by rule {} of table {}", reference.rule, reference.table));
}

void print_json(JsonWriter &json, uint16_t instance, const StoredGroup &group,
                const std::vector<Reference> &references)
{
    json.number("instance", instance);
    write_group(json, group);
    json.begin_array("buckets");
    for (const OfpBucketBase &bucket : group.buckets) {
        json.begin_object();
        json.wide("packets", bucket.packet_count);
        json.wide("bytes", bucket.byte_count);
        json.end();
    }
    json.end();
    json.begin_array("used_by");
    for (const Reference &reference : references) {
        json.begin_object();
        json.number("table", reference.table);
        json.number("rule", reference.rule);
        json.end();
    }
    json.end();
}

void print_group(Context &context)
{
    const uint16_t instance = instance_of(context);
    const uint32_t id = require_number("ID", context.arguments.operands().front(), 0, last_group);
    require_agent();
    const StoredGroup group = read_group(instance, id);
    const std::vector<Reference> references = references_to(instance, id);
    if (context.out.json())
        print_json(context.out.document(), instance, group, references);
    else
        print_text(context.out, group, references);
}

} // namespace

void list_groups(Context &context) { watch(context, print_groups); }
void show_group(Context &context) { watch(context, print_group); }

} // namespace ofpctl
