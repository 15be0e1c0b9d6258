// One flow table: its rules, and what a flow-mod does to them.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <optional>
#include <span>

#include "openflow/wire.h"
#include "switch/classifier.h"
#include "switch/groups.h"
#include "switch/id_set.h"
#include "switch/key.h"
#include "switch/memory.h"
#include "switch/rule.h"
#include "switch/rule_index.h"
#include "switch/slots.h"
#include "switch/traffic.h"

namespace agent {

// What an add or modify writes. All its groups exist.
struct Programming {
    uint16_t priority = 0;
    uint64_t cookie = 0;
    uint64_t period = 0; // the client's count of periods
    uint32_t now = 0;
    bool check_overlap = false;
    std::span<const uint8_t> match;
    std::span<const uint8_t> instructions;
    uint16_t flags = 0;
    uint32_t most_rules = UINT32_MAX; // of the table, besides its capacity
};

// Which of the rules that a match names a modify or delete means.
struct Filter {
    uint64_t cookie = 0;
    uint64_t cookie_mask = 0;
    uint32_t out_port = openflow::OFPP_ANY;
    uint32_t out_group = openflow::OFPG_ANY;

    bool passes(const Rule &rule) const;
};

struct TableUse {
    uint64_t lookups = 0;
    uint64_t matched = 0;
};

class FlowTable {
public:
    FlowTable(MaskSet &masks, Opaques &opaques, Groups &groups, uint32_t capacity,
              std::pmr::memory_resource *memory);
    ~FlowTable();
    FlowTable(const FlowTable &) = delete;
    FlowTable &operator=(const FlowTable &) = delete;

    // These throw std::bad_alloc and have then changed nothing.
    std::optional<openflow::Error> add(Key &key, const Programming &programming);
    void modify(KeyView key, const Filter &filter, const Programming &programming);
    void modify_strict(KeyView key, const Filter &filter, const Programming &programming);

    void erase(KeyView key, const Filter &filter) noexcept;
    void erase_strict(KeyView key, uint16_t priority, const Filter &filter) noexcept;
    void erase_referring(uint32_t group) noexcept;
    uint64_t erase_programmed_before(uint64_t period) noexcept;

    uint32_t next(uint32_t after) const { return ids_.next(after); }
    uint32_t next_identical(KeyView key, uint32_t after) const;
    uint32_t next_referring(uint32_t group, uint32_t after) const;
    const Rule *find(uint32_t id) const { return rules_.find(id); }

    // The best rule for a packet, 0 when none matches. The first look-up, and the first after many
    // changes, makes a classifier of all rules: some hundred nanoseconds a rule. Throws
    // std::bad_alloc.
    uint32_t look_up(const Packet &packet);
    // After a look-up: see Classifier::any_above.
    template <class Visit>
    void any_above(int priority, Visit visit) const
    {
        if (classifier_) {
            classifier_->any_above(priority, visit);
        }
    }
    Rule *find(uint32_t id) { return rules_.find(id); }
    TableUse use;

    uint32_t size() const { return size_; }
    uint32_t capacity() const { return capacity_; }
    size_t memory() const { return memory_.held(); }

    // A flow-mod for this rule is about to come.
    void prefetch(uint16_t priority, KeyView key) const { index_.prefetch(priority, key); }

private:
    void make_classifier();
    void classify(uint32_t id) noexcept;
    void declassify(uint32_t id) noexcept;
    bool keeps_classifier() noexcept;
    Rule *make(KeyView key, const Programming &programming);
    void insert(Key &key, const Programming &programming);
    void rewrite(uint32_t id, Rule *rule, uint16_t flags) noexcept;
    void remove(uint32_t id) noexcept;
    template <class Wanted>
    uint64_t remove_if(Wanted wanted) noexcept;

    Opaques &opaques_;
    Groups &groups_;
    CountedMemory memory_;
    uint32_t capacity_;
    uint32_t size_ = 0;
    Slots<Rule> rules_;
    IdSet ids_;
    RuleIndex index_;
    std::optional<Classifier> classifier_;
    uint32_t changes_ = 0; // since the last look-up
};

} // namespace agent
