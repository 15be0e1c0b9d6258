#include "verbs/nouns.h"

#include <string_view>

namespace ofpctl {

namespace {

constexpr OptionRow common[] = {
    {.name = "json", .help = "print one JSON document, also on failure"},
    {.name = "timeout",
     .kind = Kind::number,
     .value = "SECONDS",
     .help = "longest wait for one answer",
     .fallback = "30",
     .least = 1,
     .most = 3600},
    {.name = "verbose", .letter = 'v', .help = "say more"},
    {.name = "help", .letter = 'h', .help = "print help and exit"},
    {.name = "version", .letter = 'V', .help = "print the version and exit"},
};

template <class Row>
const Row *find(std::span<const Row> rows, std::string_view name)
{
    for (const Row &row : rows) {
        if (row.name == name)
            return &row;
    }
    return nullptr;
}

} // namespace

std::span<const Noun> nouns()
{
    static const Noun all[] = {
        {"agent", "The agent process: start, stop, examine.", agent_verbs},
        {"instance", "OpenFlow instances.", instance_verbs},
        {"controller", "Controllers of an instance.", controller_verbs},
        {"vlan", "VLANs of an instance and of the switch.", vlan_verbs},
        {"port", "Ports.", port_verbs},
        {"global", "Options of the whole switch.", global_verbs},
        {"debug", "Debugging switches.", debug_verbs},
        {"smooth", "Smooth periods: at their end the rules not programmed again go.", smooth_verbs},
        {"flow", "Flow rules.", flow_verbs},
        {"group", "Groups of output ports.", group_verbs},
        {"meter", "Meters.", meter_verbs},
        {"table", "Flow tables.", table_verbs},
        {"packet", "What the switch does with a packet.", packet_verbs},
        {"summary", "All instances at a glance.", summary_verbs},
        {"resource", "Resources of the switch.", resource_verbs},
        {"app", "Registered applications.", app_verbs},
        {"event", "Events of the agent.", event_verbs},
        {"msg", "Datagrams.", msg_verbs},
        {"completion", "Completion scripts for shells.", completion_verbs},
    };
    return all;
}

std::span<const OptionRow> common_options() { return common; }

const Noun *find_noun(std::string_view name) { return find(nouns(), name); }

const Verb *find_verb(const Noun &noun, std::string_view name) { return find(noun.verbs, name); }

const OptionRow *find_option(const Verb &verb, std::string_view name)
{
    const OptionRow *own = find(verb.options, name);
    return own ? own : find(common_options(), name);
}

} // namespace ofpctl
