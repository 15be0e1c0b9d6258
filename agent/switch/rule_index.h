// Finds a rule by priority and match, and whether another rule of the same priority overlaps it.
//
// Under each priority stands a bucket: one rule, or a node with several. A small node is a list.
// A larger one has views. A view splits the rules of its node by the bits they have under the
// view's mask, which is part of the mask of every rule in the node; what falls together goes into a
// bucket below. A rule can only overlap what has the same bits as itself under a mask that both
// cover, so that a query whose mask covers the view's goes down into a single bucket. For a query
// that does not, the node gets another view, by what the query and the rules have in common; a view
// that is finer than the new one goes, its splitting comes back below. If they have nothing in
// common that would tell rules apart, the node keeps one bucket per mask, and a query visits all.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <optional>
#include <vector>

#include "switch/agreement.h"
#include "switch/hash_table.h"
#include "switch/key.h"
#include "switch/mask.h"
#include "switch/rule.h"
#include "switch/slots.h"

namespace agent {

class RuleIndex {
public:
    RuleIndex(MaskSet &masks, const Slots<Rule> &rules, std::pmr::memory_resource *memory);
    ~RuleIndex();
    RuleIndex(const RuleIndex &) = delete;
    RuleIndex &operator=(const RuleIndex &) = delete;

    uint32_t find(uint16_t priority, KeyView key) const; // 0 when there is none

    // The smallest id above after of a rule with this match, whatever its priority; 0 when none.
    uint32_t next_identical(KeyView key, uint32_t after) const;

    // Whether a rule of this priority overlaps. Memory for a new view may be short; then the
    // question stays open and std::bad_alloc is thrown, which leaves the index good.
    bool overlaps(uint16_t priority, KeyView key);

    // The rule must not be in the index already. All or nothing: throws std::bad_alloc.
    void insert(uint32_t id);
    void erase(uint32_t id) noexcept;

    // Starts to fetch what a question about this rule will look at: in a table of a million rules
    // that takes as long as checking its actions.
    void prefetch(uint16_t priority, KeyView key) const;

private:
    struct View {
        MaskRef mask;
        MaskRef below; // bits by which all rules of a bucket agree: this mask and those above it
        HashTable buckets;
    };

    struct Views {
        Views(Agreement all, std::pmr::memory_resource *memory)
            : agreement(std::move(all)), by_bits(memory)
        {}
        Agreement agreement;
        std::pmr::vector<View> by_bits; // none covers another
        std::optional<HashTable> by_mask;
    };

    struct Node {
        MaskRef common; // what the masks of all rules share
        MaskRef base;   // bits by which the views above have split already
        Views *views = nullptr;
        uint32_t rules = 0;
        uint32_t capacity = 0; // of the list; its entries lie behind the record
        bool mixed = false;    // the rules have had different masks

        Entry *list() { return reinterpret_cast<Entry *>(this + 1); }
        const Entry *list() const { return reinterpret_cast<const Entry *>(this + 1); }
    };

    KeyView key_of(uint32_t id) const { return rules_[id]->key(); }
    static size_t size_of(uint32_t capacity) { return sizeof(Node) + capacity * sizeof(Entry); }

    // Buckets: a reference is a rule or a node.
    void insert_bucket(HashTable &buckets, uint32_t tag, uint32_t id, const MaskRef &base);
    void erase_bucket(HashTable &buckets, uint32_t tag, uint32_t id) noexcept;
    uint32_t find_bucket(uint32_t ref, KeyView key) const;
    bool overlaps_bucket(uint32_t ref, KeyView key);
    void destroy_buckets(HashTable &buckets) noexcept;

    // Nodes.
    Node *make_node(const MaskRef &common, const MaskRef &base, uint32_t capacity);
    void free_node(Node *node) noexcept;
    void destroy_node(uint32_t number) noexcept;
    uint32_t make_pair(uint32_t first, uint32_t second, const MaskRef &base);
    uint32_t find_node(const Node &node, KeyView key) const;
    bool overlaps_node(Node &node, KeyView key);
    void insert_node(uint32_t number, uint32_t id);
    void erase_node(Node &node, uint32_t id) noexcept;

    // Lists.
    uint32_t find_list(const Node &node, KeyView key) const;
    bool overlaps_list(const Node &node, KeyView key) const;
    bool overlaps_some(const Node &node, KeyView key, uint32_t most) const;
    void insert_list(uint32_t number, uint32_t id);
    void erase_list(Node &node, uint32_t id) noexcept;
    void append(Node &node, uint32_t id, const MaskRef &common) noexcept;
    bool spreads(const Node &node, const MaskRef &mask);
    void spread(uint32_t number, const MaskRef &mask);

    // Views.
    void insert_views(Node &node, uint32_t id);
    void erase_views(Node &node, uint32_t id) noexcept;
    static const View *covered_view(const Node &node, const Mask &mask);
    const View *view_for(Node &node, const MaskRef &mask);
    Views *make_views(const Agreement &agreement);
    void free_views(Views *views) noexcept;
    uint32_t make_heir(const Node &node, const MaskRef &base);
    void bequeath(Node &node, uint32_t heir) noexcept;
    View make_view(const Node &node, const MaskRef &mask);
    HashTable &split_by_mask(Node &node);
    HashTable split_mixed(const Node &node);
    HashTable split_uniform(Node &node);
    void push_down(Node &node, const MaskRef &mask);
    void drop_views_unless_covered(Node &node, const Mask &mask) noexcept;
    void drop_views_that_cover(Node &node, const Mask &mask) noexcept;

    template <class Visit>
    bool any_in_bucket(uint32_t ref, Visit &visit) const;
    template <class Visit>
    bool any_in_node(const Node &node, Visit &visit) const;

    MaskSet &masks_;
    const Slots<Rule> &rules_;
    std::pmr::memory_resource *memory_;
    Slots<Node> nodes_;
    HashTable priorities_;
};

} // namespace agent
