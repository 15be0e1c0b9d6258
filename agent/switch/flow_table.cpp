#include "switch/flow_table.h"

#include <algorithm>
#include <new>
#include <vector>

namespace agent {
namespace {

using openflow::Error;

// Ids take 31 bits in the index.
constexpr uint32_t CAPACITY_MAX = 0x7fffffff;

// What a modify writes to a rule: new instructions; all else stays.
Programming modified(const Rule &rule, const Programming &programming)
{
    Programming result = programming;
    result.priority = rule.priority;
    result.cookie = rule.cookie;
    result.now = rule.created;
    result.flags = rule.flags;
    result.match = rule.match();
    return result;
}

} // namespace

bool Filter::passes(const Rule &rule) const
{
    if (((rule.cookie ^ cookie) & cookie_mask) != 0) {
        return false;
    }
    if (out_port != openflow::OFPP_ANY && !outputs_to_port(rule.instructions(), out_port)) {
        return false;
    }
    return out_group == openflow::OFPG_ANY || refers_to_group(rule.instructions(), out_group);
}

FlowTable::FlowTable(MaskSet &masks, Opaques &opaques, Groups &groups, uint32_t capacity,
                     std::pmr::memory_resource *memory)
    : opaques_(opaques), groups_(groups), memory_(memory),
      capacity_(std::min(capacity, CAPACITY_MAX)), rules_(&memory_), ids_(&memory_),
      index_(masks, rules_, &memory_)
{}

FlowTable::~FlowTable()
{
    for (uint32_t id = ids_.next(0); id != 0; id = ids_.next(id)) {
        release_opaques(rules_[id]->key(), opaques_);
        free_rule(rules_[id], &memory_);
    }
}

std::optional<Error> FlowTable::add(Key &key, const Programming &programming)
{
    const uint16_t priority = programming.priority;
    if (const uint32_t same = key.known ? index_.find(priority, key.view()) : 0) {
        rewrite(same, make(key.view(), programming), programming.flags);
        return {};
    }
    if (size_ >= std::min(capacity_, programming.most_rules)) {
        return Error{openflow::OFPET_FLOW_MOD_FAILED, openflow::OFPFMFC_TABLE_FULL};
    }
    if (programming.check_overlap && index_.overlaps(priority, key.view())) {
        return Error{openflow::OFPET_FLOW_MOD_FAILED, openflow::OFPFMFC_OVERLAP};
    }
    insert(key, programming);
    return {};
}

Rule *FlowTable::make(KeyView key, const Programming &programming)
{
    Rule head;
    head.mask = key.mask;
    head.cookie = programming.cookie;
    head.programmed = programming.period;
    head.created = programming.now;
    head.priority = programming.priority;
    head.flags = static_cast<uint8_t>(programming.flags);
    head.uses_groups = refers_to_group(programming.instructions, openflow::OFPG_ANY);
    return make_rule(head, key.values, programming.match, programming.instructions, &memory_);
}

// Step by step, each undone when a later one finds no memory.
void FlowTable::insert(Key &key, const Programming &programming)
{
    acquire_opaques(key, opaques_);
    Rule *rule = nullptr;
    uint32_t id = 0;
    bool listed = false;
    try {
        rule = make(key.view(), programming);
        id = rules_.add(rule);
        ids_.insert(id);
        listed = true;
        index_.insert(id);
    } catch (...) {
        if (listed) {
            ids_.erase(id);
        }
        if (id != 0) {
            rules_.remove(id);
        }
        if (rule != nullptr) {
            free_rule(rule, &memory_);
        }
        release_opaques(key.view(), opaques_);
        throw;
    }
    size_++;
    classify(id);
    if (rule->uses_groups) {
        groups_.refer(rule->instructions());
    }
}

// Puts a rule with the same key in the place of another; the index sees no difference.
void FlowTable::rewrite(uint32_t id, Rule *rule, uint16_t flags) noexcept
{
    Rule *old = rules_[id];
    if ((flags & openflow::OFPFF_RESET_COUNTS) == 0) {
        rule->counters = old->counters;
    }
    if (rule->uses_groups) {
        groups_.refer(rule->instructions());
    }
    if (old->uses_groups) {
        groups_.unrefer(old->instructions());
    }
    rules_.replace(id, rule);
    free_rule(old, &memory_);
}

void FlowTable::remove(uint32_t id) noexcept
{
    Rule *rule = rules_[id];
    declassify(id);
    index_.erase(id);
    ids_.erase(id);
    rules_.remove(id);
    size_--;
    if (rule->uses_groups) {
        groups_.unrefer(rule->instructions());
    }
    release_opaques(rule->key(), opaques_);
    free_rule(rule, &memory_);
}

template <class Wanted>
uint64_t FlowTable::remove_if(Wanted wanted) noexcept
{
    uint64_t removed = 0;
    for (uint32_t id = ids_.next(0); id != 0; id = ids_.next(id)) {
        if (wanted(*rules_[id])) {
            remove(id);
            removed++;
        }
    }
    return removed;
}

void FlowTable::modify(KeyView key, const Filter &filter, const Programming &programming)
{
    std::vector<std::pair<uint32_t, Rule *>> rules;
    try {
        for (uint32_t id = ids_.next(0); id != 0; id = ids_.next(id)) {
            const Rule &rule = *rules_[id];
            if (includes(key, rule.key()) && filter.passes(rule)) {
                rules.emplace_back(id, nullptr);
                rules.back().second = make(rule.key(), modified(rule, programming));
            }
        }
    } catch (...) {
        for (const auto &[id, rule] : rules) {
            if (rule != nullptr) {
                free_rule(rule, &memory_);
            }
        }
        throw;
    }
    for (const auto &[id, rule] : rules) {
        rewrite(id, rule, programming.flags);
    }
}

void FlowTable::modify_strict(KeyView key, const Filter &filter, const Programming &programming)
{
    const uint32_t id = index_.find(programming.priority, key);
    if (id == 0 || !filter.passes(*rules_[id])) {
        return;
    }
    const Rule &rule = *rules_[id];
    rewrite(id, make(rule.key(), modified(rule, programming)), programming.flags);
}

void FlowTable::erase(KeyView key, const Filter &filter) noexcept
{
    remove_if([&](const Rule &rule) { return includes(key, rule.key()) && filter.passes(rule); });
}

void FlowTable::erase_strict(KeyView key, uint16_t priority, const Filter &filter) noexcept
{
    const uint32_t id = index_.find(priority, key);
    if (id != 0 && filter.passes(*rules_[id])) {
        remove(id);
    }
}

void FlowTable::erase_referring(uint32_t group) noexcept
{
    remove_if([group](const Rule &rule) {
        return rule.uses_groups && refers_to_group(rule.instructions(), group);
    });
}

uint64_t FlowTable::erase_programmed_before(uint64_t period) noexcept
{
    return remove_if([period](const Rule &rule) { return rule.programmed < period; });
}

uint32_t FlowTable::look_up(const Packet &packet)
{
    if (!classifier_) {
        make_classifier();
    }
    changes_ = 0;
    return classifier_->best(packet);
}

// In the order in which every rule goes to the front of its chain.
void FlowTable::make_classifier()
{
    std::vector<std::pair<uint16_t, uint32_t>> order;
    order.reserve(size_);
    for (uint32_t id = ids_.next(0); id != 0; id = ids_.next(id)) {
        order.emplace_back(rules_[id]->priority, UINT32_MAX - id);
    }
    std::sort(order.begin(), order.end());
    try {
        classifier_.emplace(rules_, &memory_);
        for (const auto &[priority, reversed] : order) {
            if (!classifier_->insert(UINT32_MAX - reversed)) {
                throw std::bad_alloc();
            }
        }
    } catch (...) {
        classifier_.reset();
        throw;
    }
}

// Keeping a classifier that nobody asks any more costs more than making another one.
bool FlowTable::keeps_classifier() noexcept
{
    constexpr uint32_t FEW = 1024;
    if (classifier_ && ++changes_ > std::max(FEW, size_)) {
        classifier_.reset();
    }
    return classifier_.has_value();
}

// Without memory for it the classifier goes; the rule stays.
void FlowTable::classify(uint32_t id) noexcept
{
    if (!keeps_classifier()) {
        return;
    }
    try {
        if (!classifier_->insert(id)) {
            classifier_.reset();
        }
    } catch (const std::bad_alloc &) {
        classifier_.reset();
    }
}

void FlowTable::declassify(uint32_t id) noexcept
{
    if (keeps_classifier()) {
        classifier_->erase(id);
    }
}

uint32_t FlowTable::next_identical(KeyView key, uint32_t after) const
{
    return index_.next_identical(key, after);
}

uint32_t FlowTable::next_referring(uint32_t group, uint32_t after) const
{
    uint32_t id = ids_.next(after);
    while (id != 0 &&
           !(rules_[id]->uses_groups && refers_to_group(rules_[id]->instructions(), group))) {
        id = ids_.next(id);
    }
    return id;
}

} // namespace agent
