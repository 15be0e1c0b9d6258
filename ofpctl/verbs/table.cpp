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

namespace ofpctl {

namespace {

constexpr uint8_t before_first = 255;

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

void show_tables(Context &context)
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

constexpr OptionRow show_options[] = {
    {.name = "instance",
     .kind = Kind::number,
     .value = "ID",
     .help = "the instance; a client's rules are in the one with its id",
     .fallback = "4096",
     .least = 1,
     .most = UINT16_MAX},
};

constexpr Example show_examples[] = {
    {"ofpctl table show", "The tables that hold the rules of client 4096"},
    {"ofpctl table show --instance 4097 --json", "Those of client 4097, as JSON"},
};

constexpr Verb rows[] = {
    {.name = "show",
     .run = show_tables,
     .help = "Lists an instance's tables with the rules they hold and may hold.",
     .options = show_options,
     .examples = show_examples},
};

} // namespace

const std::span<const Verb> table_verbs = rows;

} // namespace ofpctl
