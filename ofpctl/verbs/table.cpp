#include <cstdint>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/interrupt.h"
#include "ofp.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

constexpr uint8_t before_first = 255;
constexpr uint32_t last_table = 254;

std::optional<uint8_t> next_table(uint16_t instance, uint8_t table)
{
    uint8_t next = before_first;
    const uint32_t code = OFP_get_NextTableID(instance, table, &next);
    if (code == agent::NO_NEXT)
        return std::nullopt;
    require_success(code, fmt::format("instance {}", instance));
    // Ids ascend: an agent that goes back would be asked for ever.
    if (table != before_first && next <= table)
        throw Failure{.message = fmt::format("instance {}: the agent lists table {} after {}",
                                             instance, next, table)};
    return next;
}

OfpTableInfo table_info(uint16_t instance, uint8_t table)
{
    OfpTableInfo info{};
    require_success(OFP_get_TableInfo(instance, table, &info),
                    fmt::format("table {} of instance {}", table, instance));
    return info;
}

std::vector<OfpTableInfo> all_tables(uint16_t instance)
{
    std::vector<OfpTableInfo> tables;
    for (std::optional<uint8_t> id = next_table(instance, before_first); id;
         id = next_table(instance, *id)) {
        check_interrupt();
        tables.push_back(table_info(instance, *id));
        tables.back().table_id = *id;
    }
    return tables;
}

void print_json(JsonWriter &json, uint16_t instance, const std::vector<OfpTableInfo> &tables)
{
    json.number("instance", instance);
    json.begin_array("tables");
    for (const OfpTableInfo &table : tables) {
        json.begin_object();
        json.number("table", table.table_id);
        json.number("rules", table.rule_count);
        json.number("max_rules", table.max_rules);
        json.end();
    }
    json.end();
}

void print_tables(Context &context)
{
    const auto instance = static_cast<uint16_t>(context.arguments.number("instance"));
    require_agent();
    const std::vector<OfpTableInfo> tables = all_tables(instance);
    if (context.out.json()) {
        print_json(context.out.document(), instance, tables);
        return;
    }
    context.out.line(fmt::format("{:>5} {:>10} {:>10}", "TABLE", "RULES", "MAX RULES"));
    for (const OfpTableInfo &table : tables)
        context.out.line(
            fmt::format("{:>5} {:>10} {:>10}", table.table_id, table.rule_count, table.max_rules));
}

void print_details(Output &out, const OfpTableInfo &table, const OfpFRStatsInfo &miss)
{
    if (out.json()) {
        JsonWriter &json = out.document();
        json.number("instance", table.instance_id);
        json.number("table", table.table_id);
        json.number("kind", table.value_u32_8);
        json.number("rules", table.rule_count);
        json.number("max_rules", table.max_rules);
        json.number("memory_kib", table.value_u32_12);
        json.begin_object("table_miss");
        json.wide("packets", miss.packet_count);
        json.wide("bytes", miss.byte_count);
        json.end();
        return;
    }
    out.line(fmt::format("table {} of instance {}", table.table_id, table.instance_id));
    out.line(fmt::format("  kind        {}", table.value_u32_8));
    out.line(fmt::format("  rules       {} of {}", table.rule_count, table.max_rules));
    out.line(fmt::format("  memory      {} KiB", table.value_u32_12));
    out.line(fmt::format("  table-miss  {} packets, {} bytes", miss.packet_count, miss.byte_count));
}

void print_table(Context &context)
{
    const auto instance = static_cast<uint16_t>(context.arguments.number("instance"));
    const auto id = static_cast<uint8_t>(
        require_number("TABLE", context.arguments.operands().front(), 0, last_table));
    require_agent();
    const OfpTableInfo table = table_info(instance, id);
    OfpFRStatsInfo miss{};
    require_success(OFP_get_MissRuleStats(instance, id, &miss),
                    fmt::format("table-miss rule of table {} of instance {}", id, instance));
    print_details(context.out, table, miss);
}

void list_tables(Context &context) { watch(context, print_tables); }
void show_table(Context &context) { watch(context, print_table); }

constexpr OptionRow options[] = {owner_option, watch_option, rounds_option};

constexpr Example list_examples[] = {
    {"ofpctl table list", "The tables that hold the rules of client 4096"},
    {"ofpctl table list --instance 4097 --json", "Those of client 4097, as JSON"},
    {"ofpctl table list --watch 1 --rounds 2", "Twice, a second apart"},
};
constexpr Example show_examples[] = {
    {"ofpctl table show 200", "The table that holds the rules of client 4096"},
};

constexpr Verb rows[] = {
    {.name = "list",
     .run = list_tables,
     .help = "Lists an instance's tables with the rules they hold and may hold.",
     .options = options,
     .examples = list_examples},
    {.name = "show",
     .run = show_table,
     .help = "Shows one table of an instance.",
     .operands = {"TABLE", Kind::number, 1, 1, 0, last_table},
     .options = options,
     .examples = show_examples},
};

} // namespace

const std::span<const Verb> table_verbs = rows;

} // namespace ofpctl
