// Finds the rule of highest priority that matches a packet.
//
// Rules with the same mask stand in one tuple, a hash table from their bits under that mask. Tuples
// are looked at in the order of the highest priority they may have, until no further one can have a
// better rule. A table of a hundred thousand rules with two hundred masks takes two hundred
// look-ups at most.
//
// Rules with an opaque field match no packet and stand in no tuple.
#pragma once

#include <cstdint>
#include <map>
#include <memory_resource>
#include <vector>

#include "switch/hash_table.h"
#include "switch/mask.h"
#include "switch/packet.h"
#include "switch/rule.h"
#include "switch/slots.h"

namespace agent {

class Classifier {
public:
    Classifier(const Slots<Rule> &rules, std::pmr::memory_resource *memory);
    Classifier(const Classifier &) = delete;
    Classifier &operator=(const Classifier &) = delete;

    // Takes in a rule that is not in it; with rising priority, and falling id within one, at once.
    // False when so many rules have the same bits that keeping them in order would take long, and
    // throws std::bad_alloc: the classifier is then good for nothing but to be destroyed.
    [[nodiscard]] bool insert(uint32_t id);
    void erase(uint32_t id) noexcept;

    // Of several rules with the same priority the one with the smallest id; 0 when none matches.
    uint32_t best(const Packet &packet);

    // The rules of higher priority than this, those of the lowest such priority first; -1: all.
    // Until a visit returns true.
    template <class Visit>
    void any_above(int priority, Visit visit) const
    {
        for (auto at = heads_.upper_bound(priority); at != heads_.end(); ++at) {
            for (uint32_t id = at->second; id != 0; id = links_[id - 1].after) {
                if (const uint32_t next = links_[id - 1].after) {
                    prefetch(*rules_[next]);
                }
                if (visit(id)) {
                    return;
                }
            }
        }
    }

private:
    struct Tuple {
        Tuple(MaskRef of, std::pmr::memory_resource *memory) : mask(std::move(of)), chains(memory)
        {}
        MaskRef mask;
        HashTable chains; // to the first of the rules with these bits
        uint32_t rules = 0;
        uint16_t highest = 0; // priority that a rule of it has or had
    };

    // What stands beside a rule, by its id: its neighbours among those with the same bits, by
    // falling priority and then rising id, and among those of the same priority.
    struct Links {
        uint32_t better = 0;
        uint32_t worse = 0;
        uint32_t before = 0;
        uint32_t after = 0;
    };

    // The record, and the key and match behind it.
    static void prefetch(const Rule &rule)
    {
        const auto *block = reinterpret_cast<const char *>(&rule);
        for (size_t line = 0; line < 4; line++) {
            __builtin_prefetch(block + line * 64);
        }
    }

    bool goes_before(uint32_t a, uint32_t b) const;
    bool insert_chain(uint32_t id);
    void erase_chain(uint32_t id) noexcept;
    bool insert_sorted(uint32_t head, uint32_t id) noexcept;
    void link(uint32_t better, uint32_t worse) noexcept;
    uint32_t best_of(const Tuple &tuple, const Packet &packet, uint32_t best) const;

    const Slots<Rule> &rules_;
    std::pmr::memory_resource *memory_;
    std::pmr::map<uint32_t, Tuple> tuples_; // by mask id
    std::pmr::vector<Tuple *> order_;       // by falling highest priority, when sorted_
    bool sorted_ = true;
    std::pmr::map<int, uint32_t> heads_; // of the rules of each priority
    std::pmr::vector<Links> links_;
};

} // namespace agent
