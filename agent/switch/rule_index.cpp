// Buckets, nodes and lists; views are in rule_index_views.cpp.
#include "switch/rule_index.h"

#include <algorithm>
#include <new>

#include "switch/rule_index_parts.h"

namespace agent {
namespace {

constexpr uint32_t LIST_MAX = 16; // as many are compared faster than split
constexpr uint32_t PAIR_CAPACITY = 2;
constexpr uint32_t SAMPLE = 64;

} // namespace

RuleIndex::RuleIndex(MaskSet &masks, const Slots<Rule> &rules, std::pmr::memory_resource *memory)
    : masks_(masks), rules_(rules), memory_(memory), nodes_(memory), priorities_(memory)
{}

RuleIndex::~RuleIndex() { destroy_buckets(priorities_); }

void RuleIndex::prefetch(uint16_t priority, KeyView key) const
{
    const Entry *entry = priorities_.find(spread_tag(priority));
    if (entry == nullptr || is_rule(entry->ref)) {
        return;
    }
    const Node &node = *nodes_[number_of(entry->ref)];
    if (node.views == nullptr) {
        __builtin_prefetch(node.list() + node.rules);
    } else if (const View *view = covered_view(node, *key.mask)) {
        view->buckets.prefetch(project(key, *view->mask));
    }
}

uint32_t RuleIndex::find(uint16_t priority, KeyView key) const
{
    const Entry *entry = priorities_.find(spread_tag(priority));
    return entry != nullptr ? find_bucket(entry->ref, key) : 0;
}

uint32_t RuleIndex::next_identical(KeyView key, uint32_t after) const
{
    uint32_t next = 0;
    priorities_.any([&](const Entry &entry) {
        const uint32_t id = find_bucket(entry.ref, key);
        if (id > after && (next == 0 || id < next)) {
            next = id;
        }
        return false;
    });
    return next;
}

bool RuleIndex::overlaps(uint16_t priority, KeyView key)
{
    const Entry *entry = priorities_.find(spread_tag(priority));
    return entry != nullptr && overlaps_bucket(entry->ref, key);
}

void RuleIndex::insert(uint32_t id)
{
    insert_bucket(priorities_, spread_tag(rules_[id]->priority), id, masks_.none());
}

void RuleIndex::erase(uint32_t id) noexcept
{
    erase_bucket(priorities_, spread_tag(rules_[id]->priority), id);
}

void RuleIndex::insert_bucket(HashTable &buckets, uint32_t tag, uint32_t id, const MaskRef &base)
{
    Entry *entry = buckets.find(tag);
    if (entry == nullptr) {
        buckets.insert(tag, rule_ref(id));
    } else if (is_rule(entry->ref)) {
        entry->ref = node_ref(make_pair(number_of(entry->ref), id, base));
    } else {
        insert_node(number_of(entry->ref), id);
    }
}

void RuleIndex::erase_bucket(HashTable &buckets, uint32_t tag, uint32_t id) noexcept
{
    Entry *entry = buckets.find(tag);
    if (is_rule(entry->ref)) {
        buckets.erase(entry);
        return;
    }
    const uint32_t number = number_of(entry->ref);
    Node &node = *nodes_[number];
    erase_node(node, id);
    if (node.views == nullptr && node.rules == 1) { // a list of one is that one
        entry->ref = node.list()[0].ref;
        destroy_node(number);
    } else if (node.rules == 0) {
        buckets.erase(entry);
        destroy_node(number);
    }
}

uint32_t RuleIndex::find_bucket(uint32_t ref, KeyView key) const
{
    if (is_rule(ref)) {
        const uint32_t id = number_of(ref);
        return identical(key_of(id), key) ? id : 0;
    }
    return find_node(*nodes_[number_of(ref)], key);
}

bool RuleIndex::overlaps_bucket(uint32_t ref, KeyView key)
{
    if (is_rule(ref)) {
        return compatible(key_of(number_of(ref)), key);
    }
    return overlaps_node(*nodes_[number_of(ref)], key);
}

void RuleIndex::destroy_buckets(HashTable &buckets) noexcept
{
    buckets.any([this](const Entry &entry) {
        if (!is_rule(entry.ref)) {
            destroy_node(number_of(entry.ref));
        }
        return false;
    });
    buckets = HashTable(memory_);
}

RuleIndex::Node *RuleIndex::make_node(const MaskRef &common, const MaskRef &base, uint32_t capacity)
{
    void *block = memory_->allocate(size_of(capacity), alignof(Node));
    return new (block) Node{common, base, nullptr, 0, capacity, false};
}

void RuleIndex::free_node(Node *node) noexcept
{
    const size_t size = size_of(node->capacity);
    free_views(node->views);
    node->~Node();
    memory_->deallocate(node, size, alignof(Node));
}

void RuleIndex::destroy_node(uint32_t number) noexcept
{
    Node *node = nodes_[number];
    if (node->views != nullptr) {
        for (View &view : node->views->by_bits) {
            destroy_buckets(view.buckets);
        }
        if (node->views->by_mask) {
            destroy_buckets(*node->views->by_mask);
        }
    }
    free_node(node);
    nodes_.remove(number);
}

uint32_t RuleIndex::make_pair(uint32_t first, uint32_t second, const MaskRef &base)
{
    const MaskRef &mask = rules_[first]->mask;
    const MaskRef common = masks_.intersect(mask, rules_[second]->mask);
    Node *node = make_node(common, base, PAIR_CAPACITY);
    uint32_t number = 0;
    try {
        number = nodes_.add(node);
    } catch (...) {
        free_node(node);
        throw;
    }
    node->mixed = mask != rules_[second]->mask;
    append(*node, first, common);
    append(*node, second, common);
    return number;
}

uint32_t RuleIndex::find_node(const Node &node, KeyView key) const
{
    if (node.views == nullptr) {
        return find_list(node, key);
    }
    const Entry *entry = nullptr;
    if (node.views->by_mask) {
        entry = node.views->by_mask->find(spread_tag(key.mask->id));
    } else {
        const View &view = node.views->by_bits.front();
        if (!covers(*key.mask, *view.mask)) {
            return 0;
        }
        entry = view.buckets.find(project(key, *view.mask));
    }
    return entry != nullptr ? find_bucket(entry->ref, key) : 0;
}

bool RuleIndex::overlaps_node(Node &node, KeyView key)
{
    if (node.views == nullptr) {
        return overlaps_list(node, key);
    }
    if (!compatible(node.views->agreement.view(), key)) {
        return false;
    }
    const View *view = covered_view(node, *key.mask);
    if (view == nullptr) {
        // A wide query overlaps most rules: no view is made to learn that.
        if (overlaps_some(node, key, SAMPLE)) {
            return true;
        }
        view = view_for(node, key.mask);
    }
    if (view != nullptr) {
        const Entry *entry = view->buckets.find(project(key, *view->mask));
        return entry != nullptr && overlaps_bucket(entry->ref, key);
    }
    if (!node.mixed) { // and then it can hardly miss
        return overlaps_some(node, key, node.rules);
    }
    return split_by_mask(node).any(
        [&](const Entry &entry) { return overlaps_bucket(entry.ref, key); });
}

void RuleIndex::insert_node(uint32_t number, uint32_t id)
{
    Node &node = *nodes_[number];
    if (node.views != nullptr) {
        insert_views(node, id);
    } else if (node.rules < LIST_MAX || !spreads(node, rules_[id]->mask)) {
        insert_list(number, id);
    } else {
        spread(number, rules_[id]->mask);
        insert_views(*nodes_[number], id);
    }
}

void RuleIndex::erase_node(Node &node, uint32_t id) noexcept
{
    if (node.views != nullptr) {
        erase_views(node, id);
    } else {
        erase_list(node, id);
    }
}

uint32_t RuleIndex::find_list(const Node &node, KeyView key) const
{
    if (!covers(*key.mask, *node.common)) {
        return 0;
    }
    const uint32_t tag = project(key, *node.common);
    for (const Entry *at = node.list(); at != node.list() + node.rules; at++) {
        const uint32_t id = number_of(at->ref);
        if (at->tag == tag && identical(key_of(id), key)) {
            return id;
        }
    }
    return 0;
}

bool RuleIndex::overlaps_list(const Node &node, KeyView key) const
{
    const Entry *end = node.list() + node.rules;
    if (!covers(*key.mask, *node.common)) {
        return std::any_of(node.list(), end, [&](const Entry &entry) {
            return compatible(key_of(number_of(entry.ref)), key);
        });
    }
    const uint32_t tag = project(key, *node.common);
    return std::any_of(node.list(), end, [&](const Entry &entry) {
        return entry.tag == tag && compatible(key_of(number_of(entry.ref)), key);
    });
}

void RuleIndex::insert_list(uint32_t number, uint32_t id)
{
    Node *node = nodes_[number];
    const MaskRef &mask = rules_[id]->mask;
    const MaskRef common = masks_.intersect(node->common, mask);
    if (node->rules == node->capacity) {
        Node *larger = make_node(node->common, node->base, node->capacity * 2);
        larger->rules = node->rules;
        larger->mixed = node->mixed;
        std::copy_n(node->list(), node->rules, larger->list());
        free_node(node);
        nodes_.replace(number, larger);
        node = larger;
    }
    node->mixed = node->mixed || mask != node->common;
    if (common != node->common) {
        node->common = common;
        for (Entry *at = node->list(); at != node->list() + node->rules; at++) {
            at->tag = project(key_of(number_of(at->ref)), *common);
        }
    }
    append(*node, id, common);
}

void RuleIndex::append(Node &node, uint32_t id, const MaskRef &common) noexcept
{
    node.list()[node.rules++] = {project(key_of(id), *common), rule_ref(id)};
}

void RuleIndex::erase_list(Node &node, uint32_t id) noexcept
{
    Entry *end = node.list() + node.rules;
    Entry *at = std::find_if(node.list(), end,
                             [id](const Entry &entry) { return entry.ref == rule_ref(id); });
    *at = *(end - 1);
    node.rules--;
}

} // namespace agent
