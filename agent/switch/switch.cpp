#include "switch/switch.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <new>
#include <vector>

#include "openflow/message.h"
#include "switch/flow_table.h"
#include "switch/groups.h"
#include "switch/key.h"
#include "switch/memory.h"
#include "switch/pipeline.h"

namespace agent {
namespace {

using openflow::Error;

Error flow_mod_failed(openflow::FlowModFailedCode code)
{
    return {openflow::OFPET_FLOW_MOD_FAILED, code};
}

Error group_mod_failed(openflow::GroupModFailedCode code)
{
    return {openflow::OFPET_GROUP_MOD_FAILED, code};
}

constexpr uint16_t FLAGS = openflow::OFPFF_CHECK_OVERLAP | openflow::OFPFF_RESET_COUNTS |
                           openflow::OFPFF_NO_PKT_COUNTS | openflow::OFPFF_NO_BYT_COUNTS;

bool is_delete(uint8_t command)
{
    return command == openflow::OFPFC_DELETE || command == openflow::OFPFC_DELETE_STRICT;
}

// The fixed part of a flow-mod. Rules do not time out here, no flow-removed message is ever sent
// and no packets are buffered: what asks for that is refused rather than forgotten.
std::optional<Error> check_head(const openflow::FlowMod &mod)
{
    if (mod.command > openflow::OFPFC_DELETE_STRICT) {
        return flow_mod_failed(openflow::OFPFMFC_BAD_COMMAND);
    }
    if (is_delete(mod.command)) {
        return {};
    }
    if (mod.table_id > openflow::OFPTT_MAX) {
        return flow_mod_failed(openflow::OFPFMFC_BAD_TABLE_ID);
    }
    if ((mod.flags & ~FLAGS) != 0) {
        return flow_mod_failed(openflow::OFPFMFC_BAD_FLAGS);
    }
    if (mod.idle_timeout != 0 || mod.hard_timeout != 0) {
        return flow_mod_failed(openflow::OFPFMFC_BAD_TIMEOUT);
    }
    if (mod.buffer_id != openflow::OFP_NO_BUFFER) {
        return Error{openflow::OFPET_BAD_REQUEST, openflow::OFPBRC_BUFFER_UNKNOWN};
    }
    return {};
}

// What the switch has of ports and groups, for the actions of a rule.
std::optional<Error> check_targets(openflow::Bytes instructions, uint32_t ports,
                                   const Groups &groups)
{
    std::optional<Error> error;
    any_action(instructions, [&](const openflow::Action &action) {
        const auto port = openflow::output_port(action);
        const auto group = openflow::output_group(action);
        if (port && *port > ports && *port <= openflow::OFPP_MAX) {
            error = Error{openflow::OFPET_BAD_ACTION, openflow::OFPBAC_BAD_OUT_PORT};
        } else if (group && groups.find(*group) == nullptr) {
            error = Error{openflow::OFPET_BAD_ACTION, openflow::OFPBAC_BAD_OUT_GROUP};
        }
        return error.has_value();
    });
    return error;
}

struct Period {
    uint32_t smooth_id = 0;
    uint64_t opened = 0; // rules programmed since carry this number or a higher one
};

struct Client {
    explicit Client(std::pmr::memory_resource *memory)
        : groups(memory), tables(memory), periods(memory)
    {}

    Groups groups;
    FlowTables tables;
    std::pmr::vector<Period> periods;
    uint64_t opened = 0; // periods so far
};

} // namespace

struct Switch::Impl {
    Impl(const SwitchLimits &bounds, std::pmr::memory_resource *upstream, Clock seconds)
        : limits(bounds), clock(seconds), memory(upstream), masks(&memory), opaques(&memory),
          clients(&memory)
    {}

    Client &client(uint16_t id) { return clients.try_emplace(id, &memory).first->second; }

    const Client *find(uint16_t id) const
    {
        const auto at = clients.find(id);
        return at != clients.end() ? &at->second : nullptr;
    }

    const FlowTable *find(uint16_t id, uint8_t table) const
    {
        const Client *owner = find(id);
        if (owner == nullptr) {
            return nullptr;
        }
        const auto at = owner->tables.find(table);
        return at != owner->tables.end() ? &at->second : nullptr;
    }

    FlowTable &table(Client &owner, uint8_t id)
    {
        return owner.tables
            .try_emplace(id, masks, opaques, owner.groups, limits.rules_per_table, &memory)
            .first->second;
    }

    std::optional<Error> flow_mod(Client &owner, const openflow::FlowMod &mod, uint32_t most_rules);
    std::optional<Error> program(Client &owner, const openflow::FlowMod &mod, Key &key,
                                 uint32_t most_rules);
    void erase(FlowTable &table, const openflow::FlowMod &mod, const Key &key) noexcept;
    std::optional<Error> group_mod(Client &owner, const openflow::GroupMod &mod);
    std::optional<Error> erase_group(Client &owner, const openflow::GroupMod &mod) noexcept;

    SwitchLimits limits;
    Clock clock;
    CountedMemory memory;
    MaskSet masks;
    Opaques opaques;
    std::pmr::map<uint16_t, Client> clients;
};

std::optional<Error> Switch::Impl::flow_mod(Client &owner, const openflow::FlowMod &mod,
                                            uint32_t most_rules)
{
    if (auto error = check_head(mod)) {
        return error;
    }
    const auto at = owner.tables.find(mod.table_id);
    Key key;
    if (auto error = read_key(mod.match, masks, opaques, key)) {
        return error;
    }
    if (at != owner.tables.end()) {
        at->second.prefetch(mod.priority, key.view());
    }
    if (!is_delete(mod.command)) {
        return program(owner, mod, key, most_rules);
    }
    if (mod.table_id == openflow::OFPTT_ALL) {
        for (auto &[id, each] : owner.tables) {
            erase(each, mod, key);
        }
    } else if (at != owner.tables.end()) {
        erase(at->second, mod, key);
    }
    return {};
}

std::optional<Error> Switch::Impl::program(Client &owner, const openflow::FlowMod &mod, Key &key,
                                           uint32_t most_rules)
{
    if (auto error = openflow::check_instructions(mod.instructions, mod.table_id)) {
        return error;
    }
    if (auto error = check_targets(mod.instructions, limits.ports, owner.groups)) {
        return error;
    }
    FlowTable &into = table(owner, mod.table_id);
    const bool check_overlap = (mod.flags & openflow::OFPFF_CHECK_OVERLAP) != 0;
    const Programming programming = {mod.priority,     mod.cookie,    owner.opened,
                                     clock(),          check_overlap, mod.match.bytes,
                                     mod.instructions, mod.flags,     most_rules};
    // A modify is not narrowed by port or group.
    const Filter filter = {mod.cookie, mod.cookie_mask, openflow::OFPP_ANY, openflow::OFPG_ANY};
    if (mod.command == openflow::OFPFC_ADD) {
        return into.add(key, programming);
    }
    if (key.known && mod.command == openflow::OFPFC_MODIFY) {
        into.modify(key.view(), filter, programming);
    } else if (key.known) {
        into.modify_strict(key.view(), filter, programming);
    }
    return {};
}

void Switch::Impl::erase(FlowTable &table, const openflow::FlowMod &mod, const Key &key) noexcept
{
    const Filter filter = {mod.cookie, mod.cookie_mask, mod.out_port, mod.out_group};
    if (!key.known) {
        return;
    }
    if (mod.command == openflow::OFPFC_DELETE) {
        table.erase(key.view(), filter);
    } else {
        table.erase_strict(key.view(), mod.priority, filter);
    }
}

std::optional<Error> Switch::Impl::group_mod(Client &owner, const openflow::GroupMod &mod)
{
    const GroupLimits group_limits = {limits.groups, limits.buckets_per_group, limits.ports};
    switch (mod.command) {
    case openflow::OFPGC_ADD:
        return owner.groups.add(mod, group_limits, clock());
    case openflow::OFPGC_MODIFY:
        return owner.groups.modify(mod, group_limits);
    case openflow::OFPGC_DELETE:
        return erase_group(owner, mod);
    default:
        return group_mod_failed(openflow::OFPGMFC_BAD_COMMAND);
    }
}

// A group takes the rules that refer to it along. One that does not exist is deleted already.
std::optional<Error> Switch::Impl::erase_group(Client &owner,
                                               const openflow::GroupMod &mod) noexcept
{
    if (mod.group_id == openflow::OFPG_ALL) {
        for (auto &[number, table] : owner.tables) {
            table.erase_referring(openflow::OFPG_ANY);
        }
        owner.groups.clear();
        return {};
    }
    if (mod.group_id > openflow::OFPG_MAX) {
        return group_mod_failed(openflow::OFPGMFC_INVALID_GROUP);
    }
    const GroupEntry *group = owner.groups.find(mod.group_id);
    for (auto &[number, table] : owner.tables) {
        if (group != nullptr && group->references != 0) {
            table.erase_referring(mod.group_id);
        }
    }
    owner.groups.erase(mod.group_id);
    return {};
}

uint32_t monotonic_seconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<uint32_t>(now.tv_sec);
}

Switch::Switch(const SwitchLimits &limits, std::pmr::memory_resource *memory, Clock clock)
    : impl_(std::make_unique<Impl>(limits, memory, clock))
{}

Switch::~Switch() = default;

std::optional<Error> Switch::flow_mod(uint16_t client, std::span<const uint8_t> message,
                                      uint32_t most_rules)
{
    const auto mod = openflow::parse_flow_mod(message);
    if (!mod) {
        return mod.error();
    }
    try {
        return impl_->flow_mod(impl_->client(client), *mod, most_rules);
    } catch (const std::bad_alloc &) {
        return flow_mod_failed(openflow::OFPFMFC_TABLE_FULL);
    }
}

std::optional<Error> Switch::group_mod(uint16_t client, std::span<const uint8_t> message)
{
    const auto mod = openflow::parse_group_mod(message);
    if (!mod) {
        return mod.error();
    }
    try {
        return impl_->group_mod(impl_->client(client), *mod);
    } catch (const std::bad_alloc &) {
        return group_mod_failed(openflow::OFPGMFC_OUT_OF_GROUPS);
    }
}

std::optional<Error> Switch::trace(uint16_t client, const PacketQuery &query, Trace &trace)
{
    Packet packet;
    if (auto error = read_packet(query.fields, packet)) {
        return error;
    }
    const auto owner = impl_->clients.find(client);
    if (owner != impl_->clients.end()) {
        trace = follow(packet, query, owner->second.tables, owner->second.groups);
        return {};
    }
    Client nobody(&impl_->memory);
    trace = follow(packet, query, nobody.tables, nobody.groups);
    return {};
}

void Switch::count(const Trace &trace, uint32_t bytes) noexcept
{
    for (uint64_t *packets : trace.counted_once) {
        ++*packets;
    }
    for (Traffic *counters : trace.counted) {
        counters->packets++;
        counters->bytes += bytes;
    }
}

bool Switch::open_period(uint16_t client, uint32_t smooth_id)
{
    try {
        Client &owner = impl_->client(client);
        const auto same = [smooth_id](const Period &period) {
            return period.smooth_id == smooth_id;
        };
        if (!std::any_of(owner.periods.begin(), owner.periods.end(), same)) {
            owner.periods.push_back({smooth_id, owner.opened + 1});
            owner.opened++;
        }
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

uint64_t Switch::close_period(uint16_t client, uint32_t smooth_id)
{
    const auto owner = impl_->clients.find(client);
    if (owner == impl_->clients.end()) {
        return 0;
    }
    auto &periods = owner->second.periods;
    const auto at = std::find_if(periods.begin(), periods.end(), [smooth_id](const Period &period) {
        return period.smooth_id == smooth_id;
    });
    if (at == periods.end()) {
        return 0;
    }
    const uint64_t opened = at->opened;
    periods.erase(at);
    uint64_t removed = 0;
    for (auto &[id, table] : owner->second.tables) {
        removed += table.erase_programmed_before(opened);
    }
    return removed;
}

uint32_t Switch::next_rule(uint16_t client, uint8_t table, uint32_t after) const
{
    const FlowTable *in = impl_->find(client, table);
    return in != nullptr ? in->next(after) : 0;
}

uint32_t Switch::next_rule_matching(uint16_t client, uint8_t table, uint32_t after,
                                    std::span<const uint8_t> match) const
{
    const FlowTable *in = impl_->find(client, table);
    const auto parsed = openflow::parse_match(match);
    if (in == nullptr || !parsed) {
        return 0;
    }
    try {
        Key key;
        if (read_key(*parsed, impl_->masks, impl_->opaques, key) || !key.known) {
            return 0;
        }
        return in->next_identical(key.view(), after);
    } catch (const std::bad_alloc &) {
        return 0;
    }
}

uint32_t Switch::next_rule_of_group(uint16_t client, uint8_t table, uint32_t after,
                                    uint32_t group) const
{
    const FlowTable *in = impl_->find(client, table);
    return in != nullptr ? in->next_referring(group, after) : 0;
}

std::optional<RuleView> Switch::rule(uint16_t client, uint8_t table, uint32_t id) const
{
    const FlowTable *in = impl_->find(client, table);
    const Rule *rule = in != nullptr ? in->find(id) : nullptr;
    if (rule == nullptr) {
        return {};
    }
    RuleView view;
    view.id = id;
    view.priority = rule->priority;
    view.match = rule->match();
    view.instructions = rule->instructions();
    view.counters = rule->counters;
    view.age_seconds = impl_->clock() - rule->created;
    view.cookie = rule->cookie;
    view.flags = rule->flags;
    return view;
}

TableView Switch::table(uint16_t client, uint8_t table) const
{
    const FlowTable *in = impl_->find(client, table);
    if (in == nullptr) {
        return {.capacity = impl_->limits.rules_per_table};
    }
    return {in->capacity(), in->size(), in->memory(), in->use.lookups, in->use.matched};
}

std::optional<uint8_t> Switch::next_table(uint16_t client, int after) const
{
    const Client *owner = impl_->find(client);
    if (owner == nullptr || after >= openflow::OFPTT_ALL) {
        return {};
    }
    const auto at =
        after < 0 ? owner->tables.begin() : owner->tables.upper_bound(static_cast<uint8_t>(after));
    return at != owner->tables.end() ? std::optional(at->first) : std::nullopt;
}

std::optional<uint32_t> Switch::next_group(uint16_t client, int64_t after) const
{
    const Client *owner = impl_->find(client);
    return owner != nullptr ? owner->groups.next(after) : std::nullopt;
}

std::optional<GroupView> Switch::group(uint16_t client, uint32_t id) const
{
    const Client *owner = impl_->find(client);
    const GroupEntry *group = owner != nullptr ? owner->groups.find(id) : nullptr;
    if (group == nullptr) {
        return {};
    }
    return GroupView{id,
                     group->type,
                     group->buckets,
                     group->bucket_count,
                     group->references,
                     impl_->clock() - group->created,
                     group->counters,
                     group->bucket_counters};
}

uint32_t Switch::group_count(uint16_t client) const
{
    const Client *owner = impl_->find(client);
    return owner != nullptr ? owner->groups.size() : 0;
}

size_t Switch::memory() const { return impl_->memory.held(); }

} // namespace agent
