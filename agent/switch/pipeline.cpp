#include "switch/pipeline.h"

#include <algorithm>

#include "switch/action_set.h"
#include "switch/near_miss.h"

namespace agent {
namespace {

using openflow::Action;
using openflow::Bucket;
using openflow::Bytes;
using openflow::Instruction;

// The instructions of a rule, by type: they are carried out in an order of their own.
struct Instructions {
    explicit Instructions(Bytes bytes)
    {
        openflow::InstructionWalk walk(bytes);
        while (const auto instruction = walk.next()) {
            by_type[instruction->type] = *instruction;
        }
    }
    const Instruction *find(openflow::InstructionType type) const
    {
        return by_type[type].bytes.empty() ? nullptr : &by_type[type];
    }
    Instruction by_type[openflow::OFPIT_METER]; // meters are refused
};

class Journey {
public:
    Journey(const Packet &packet, const PacketQuery &query, FlowTables &tables, Groups &groups)
        : packet_(packet), query_(query), tables_(tables), groups_(groups)
    {}

    Trace travel();

private:
    const Rule *look_up(uint8_t id);
    std::optional<uint8_t> carry_out(const Rule &rule);
    void write_metadata(const Instruction &instruction);
    void miss();
    void finish();

    void act(const Action &action);
    void output(uint32_t port, uint32_t group, uint32_t bucket);
    void enter_group(uint32_t id);
    void enter_bucket(uint32_t id, GroupEntry &group, uint32_t number, const Bucket &bucket);
    bool is_live(const Bucket &bucket) const;
    bool step();

    Packet packet_;
    const PacketQuery &query_;
    FlowTables &tables_;
    Groups &groups_;
    ActionSet set_;
    Trace trace_;
    uint32_t steps_ = 0;
};

Trace Journey::travel()
{
    std::optional<uint8_t> next = query_.first;
    while (next) {
        if (!std::binary_search(query_.tables.begin(), query_.tables.end(), *next)) {
            trace_.end = TraceEnd::no_table;
            trace_.missing_table = *next;
            return std::move(trace_);
        }
        const Rule *rule = look_up(*next);
        if (rule == nullptr) {
            miss();
            return std::move(trace_);
        }
        next = carry_out(*rule);
    }
    finish();
    return std::move(trace_);
}

const Rule *Journey::look_up(uint8_t id)
{
    TableVisit &visit = trace_.visits.emplace_back();
    visit.table = id;
    const auto at = tables_.find(id);
    if (at == tables_.end()) { // nothing was ever programmed into it
        return nullptr;
    }
    FlowTable &table = at->second;
    trace_.counted_once.push_back(&table.use.lookups);
    visit.rule = table.look_up(packet_);
    Rule *rule = table.find(visit.rule);
    visit.better = near_miss(table, packet_, rule != nullptr ? rule->priority : -1);
    if (rule != nullptr) {
        visit.priority = rule->priority;
        trace_.counted_once.push_back(&table.use.matched);
        trace_.counted.push_back(&rule->counters);
    }
    return rule;
}

// The table that the rule sends the packet on to.
std::optional<uint8_t> Journey::carry_out(const Rule &rule)
{
    const Instructions instructions(rule.instructions());
    if (const Instruction *apply = instructions.find(openflow::OFPIT_APPLY_ACTIONS)) {
        openflow::ActionWalk walk(openflow::actions_of(*apply));
        while (const auto action = walk.next()) {
            act(*action);
        }
    }
    if (instructions.find(openflow::OFPIT_CLEAR_ACTIONS) != nullptr) {
        set_.clear();
    }
    if (const Instruction *write = instructions.find(openflow::OFPIT_WRITE_ACTIONS)) {
        set_.write(openflow::actions_of(*write));
    }
    if (const Instruction *metadata = instructions.find(openflow::OFPIT_WRITE_METADATA)) {
        write_metadata(*metadata);
    }
    const Instruction *go = instructions.find(openflow::OFPIT_GOTO_TABLE);
    return go != nullptr ? std::optional(go->bytes[4]) : std::nullopt;
}

void Journey::write_metadata(const Instruction &instruction)
{
    const auto place = *place_of(openflow::OFPXMC_OPENFLOW_BASIC, openflow::OFPXMT_METADATA);
    const uint64_t value = openflow::load64(instruction.bytes.data() + 8);
    const uint64_t mask = openflow::load64(instruction.bytes.data() + 16);
    const uint64_t old = openflow::load64(packet_.at(place));
    openflow::store<uint64_t>(packet_.at(place), (old & ~mask) | (value & mask));
}

// The action set is left alone.
void Journey::miss()
{
    trace_.end = query_.permit_missed ? TraceEnd::permitted : TraceEnd::no_rule;
    if (query_.permit_missed) {
        output(openflow::OFPP_NORMAL, openflow::OFPG_ANY, 0);
    }
}

void Journey::finish()
{
    for (const Action &action : set_.ordered()) {
        trace_.action_set.insert(trace_.action_set.end(), action.bytes.begin(), action.bytes.end());
        act(action);
    }
}

// One packet may be sent through thousands of groups of thousands of buckets.
bool Journey::step()
{
    if (steps_ == Trace::STEPS) {
        trace_.end = TraceEnd::cut;
        return false;
    }
    steps_++;
    return true;
}

void Journey::act(const Action &action)
{
    if (!step()) {
        return;
    }
    if (const auto port = openflow::output_port(action)) {
        output(*port, openflow::OFPG_ANY, 0);
    } else if (const auto group = openflow::output_group(action)) {
        enter_group(*group);
    } else {
        apply(action, packet_);
    }
}

void Journey::output(uint32_t port, uint32_t group, uint32_t bucket)
{
    trace_.output_count++;
    if (trace_.outputs.size() < Trace::OUTPUTS_LISTED) {
        trace_.outputs.push_back({port, group, bucket, port == packet_.in_port()});
    }
}

bool Journey::is_live(const Bucket &bucket) const
{
    return !query_.is_up || query_.is_up(bucket.watch_port);
}

// A group of type all copies the packet to each bucket, failover sends it to the first live one.
void Journey::enter_group(uint32_t id)
{
    GroupEntry &group = *groups_.find(id);
    trace_.counted.push_back(&group.counters);
    openflow::BucketWalk walk(group.buckets);
    for (uint32_t number = 0; const auto bucket = walk.next(); number++) {
        const bool failover = group.type == openflow::OFPGT_FF;
        if (failover && !is_live(*bucket)) {
            continue;
        }
        if (!step()) {
            return;
        }
        enter_bucket(id, group, number, *bucket);
        if (failover) {
            return;
        }
    }
}

// A bucket has an action set of its own. Buckets name no groups, so that there are no circles.
void Journey::enter_bucket(uint32_t id, GroupEntry &group, uint32_t number, const Bucket &bucket)
{
    trace_.counted.push_back(&group.bucket_counters[number]);
    ActionSet set;
    set.write(bucket.actions);
    for (const Action &action : set.ordered()) {
        if (const auto port = openflow::output_port(action)) {
            output(*port, id, number);
        }
    }
}

} // namespace

Trace follow(const Packet &packet, const PacketQuery &query, FlowTables &tables, Groups &groups)
{
    return Journey(packet, query, tables, groups).travel();
}

} // namespace agent
