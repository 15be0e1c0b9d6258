#include "switch/classifier.h"

#include <algorithm>

namespace agent {
namespace {

constexpr int LONG_CHAIN = 4096;

bool has_opaques(const Rule &rule) { return rule.mask->map >> OPAQUE_WORD != 0; }

} // namespace

Classifier::Classifier(const Slots<Rule> &rules, std::pmr::memory_resource *memory)
    : rules_(rules), memory_(memory), tuples_(memory), order_(memory), heads_(memory),
      links_(memory)
{}

bool Classifier::goes_before(uint32_t a, uint32_t b) const
{
    const uint16_t of_a = rules_[a]->priority;
    const uint16_t of_b = rules_[b]->priority;
    return of_a != of_b ? of_a > of_b : a < b;
}

bool Classifier::insert(uint32_t id)
{
    const Rule &rule = *rules_[id];
    if (links_.size() < id) {
        links_.resize(std::max<size_t>(id, links_.size() * 2));
    }
    uint32_t &head = heads_[rule.priority];
    links_[id - 1] = {0, 0, 0, head};
    if (head != 0) {
        links_[head - 1].before = id;
    }
    head = id;
    return has_opaques(rule) || insert_chain(id);
}

bool Classifier::insert_chain(uint32_t id)
{
    const Rule &rule = *rules_[id];
    const auto [at, fresh] = tuples_.try_emplace(rule.mask->id, rule.mask, memory_);
    Tuple &tuple = at->second;
    if (fresh) {
        order_.push_back(&tuple);
    }
    if (fresh || rule.priority > tuple.highest) {
        tuple.highest = rule.priority;
        sorted_ = false;
    }
    tuple.rules++;
    const uint32_t tag = project(rule.key(), *tuple.mask);
    Entry *entry = tuple.chains.find(tag);
    if (entry == nullptr) {
        tuple.chains.insert(tag, id);
        return true;
    }
    if (goes_before(id, entry->ref)) {
        link(id, entry->ref);
        entry->ref = id;
        return true;
    }
    return insert_sorted(entry->ref, id);
}

bool Classifier::insert_sorted(uint32_t head, uint32_t id) noexcept
{
    uint32_t better = head;
    for (int steps = 0; steps < LONG_CHAIN; steps++) {
        const uint32_t next = links_[better - 1].worse;
        if (next == 0 || goes_before(id, next)) {
            link(better, id);
            link(id, next);
            return true;
        }
        better = next;
    }
    return false;
}

// Either may be 0: then the other is an end of the chain.
void Classifier::link(uint32_t better, uint32_t worse) noexcept
{
    if (better != 0) {
        links_[better - 1].worse = worse;
    }
    if (worse != 0) {
        links_[worse - 1].better = better;
    }
}

void Classifier::erase(uint32_t id) noexcept
{
    const Rule &rule = *rules_[id];
    const Links &links = links_[id - 1];
    if (links.after != 0) {
        links_[links.after - 1].before = links.before;
    }
    if (links.before != 0) {
        links_[links.before - 1].after = links.after;
    } else if (links.after != 0) {
        heads_.find(rule.priority)->second = links.after;
    } else {
        heads_.erase(rule.priority);
    }
    if (!has_opaques(rule)) {
        erase_chain(id);
    }
}

void Classifier::erase_chain(uint32_t id) noexcept
{
    const Rule &rule = *rules_[id];
    const auto at = tuples_.find(rule.mask->id);
    Tuple &tuple = at->second;
    const Links links = links_[id - 1];
    link(links.better, links.worse);
    if (links.better == 0) {
        Entry *entry = tuple.chains.find(project(rule.key(), *tuple.mask));
        if (links.worse != 0) {
            entry->ref = links.worse;
        } else {
            tuple.chains.erase(entry);
        }
    }
    if (--tuple.rules == 0) {
        order_.erase(std::find(order_.begin(), order_.end(), &tuple));
        tuples_.erase(at);
    }
}

uint32_t Classifier::best(const Packet &packet)
{
    if (!sorted_) {
        std::sort(order_.begin(), order_.end(),
                  [](const Tuple *a, const Tuple *b) { return a->highest > b->highest; });
        sorted_ = true;
    }
    uint32_t best = 0;
    for (const Tuple *tuple : order_) {
        if (best != 0 && tuple->highest < rules_[best]->priority) {
            break;
        }
        best = best_of(*tuple, packet, best);
    }
    return best;
}

// The best rule of the tuple if it is better than best, else that one. Rules with different bits
// may share a chain, by a hash that they share.
uint32_t Classifier::best_of(const Tuple &tuple, const Packet &packet, uint32_t best) const
{
    const Entry *entry = tuple.chains.find(project(packet, *tuple.mask));
    if (entry == nullptr) {
        return best;
    }
    for (uint32_t id = entry->ref; id != 0; id = links_[id - 1].worse) {
        if (best != 0 && !goes_before(id, best)) {
            return best;
        }
        if (matches(rules_[id]->key(), packet)) {
            return id;
        }
    }
    return best;
}

} // namespace agent
