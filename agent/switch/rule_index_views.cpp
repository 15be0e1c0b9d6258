#include <algorithm>
#include <new>

#include "switch/rule_index.h"
#include "switch/rule_index_parts.h"

namespace agent {
namespace {

// A node with so many views gets further ones on a single word only: those serve many queries.
constexpr size_t MANY_VIEWS = 4;

} // namespace

template <class Visit>
bool RuleIndex::any_in_bucket(uint32_t ref, Visit &visit) const
{
    return is_rule(ref) ? visit(number_of(ref)) : any_in_node(*nodes_[number_of(ref)], visit);
}

// Visits the ids of the node's rules until one visit is true.
template <class Visit>
bool RuleIndex::any_in_node(const Node &node, Visit &visit) const
{
    const auto in_bucket = [&](const Entry &entry) { return any_in_bucket(entry.ref, visit); };
    if (node.views == nullptr) {
        return std::any_of(node.list(), node.list() + node.rules, in_bucket);
    }
    if (!node.views->by_bits.empty()) {
        return node.views->by_bits.front().buckets.any(in_bucket);
    }
    return node.views->by_mask->any(in_bucket);
}

// Whether one of the first rules, as many as most, overlaps.
bool RuleIndex::overlaps_some(const Node &node, KeyView key, uint32_t most) const
{
    bool found = false;
    auto check = [&](uint32_t id) {
        found = compatible(key_of(id), key);
        return found || --most == 0;
    };
    any_in_node(node, check);
    return found;
}

// Whether views could tell rules of this list apart, one with this mask among them.
bool RuleIndex::spreads(const Node &node, const MaskRef &mask)
{
    return node.mixed || mask != node.common ||
           masks_.share(node.common, mask, node.base)->map != 0;
}

RuleIndex::Views *RuleIndex::make_views(const Agreement &agreement)
{
    Agreement copy = agreement;
    void *block = memory_->allocate(sizeof(Views), alignof(Views));
    return new (block) Views(std::move(copy), memory_);
}

void RuleIndex::free_views(Views *views) noexcept
{
    if (views != nullptr) {
        views->~Views();
        memory_->deallocate(views, sizeof(Views), alignof(Views));
    }
}

// Gives a list a view, or the split by masks, that takes in a rule with this mask.
void RuleIndex::spread(uint32_t number, const MaskRef &mask)
{
    Node *list = nodes_[number];
    Agreement agreement(key_of(number_of(list->list()[0].ref)), memory_);
    for (const Entry *at = list->list(); at != list->list() + list->rules; at++) {
        agreement.narrow(key_of(number_of(at->ref)), masks_);
    }
    Node *node = make_node(list->common, list->base, 0);
    node->rules = list->rules;
    node->mixed = list->mixed;
    try {
        node->views = make_views(agreement);
        const MaskRef shared = masks_.share(list->common, mask, list->base);
        if (shared->map != 0) {
            node->views->by_bits.reserve(1);
            node->views->by_bits.push_back(make_view(*list, shared));
        } else {
            node->views->by_mask = split_mixed(*list);
        }
    } catch (...) {
        free_node(node);
        throw;
    }
    free_node(list);
    nodes_.replace(number, node);
}

void RuleIndex::insert_views(Node &node, uint32_t id)
{
    const MaskRef &mask = rules_[id]->mask;
    const MaskRef common = masks_.intersect(node.common, mask);
    if (view_for(node, mask) == nullptr) {
        split_by_mask(node);
    }
    drop_views_unless_covered(node, *mask);
    node.views->agreement.narrow(key_of(id), masks_);
    std::pmr::vector<View> &views = node.views->by_bits;
    size_t done = 0;
    try {
        for (; done < views.size(); done++) {
            View &view = views[done];
            insert_bucket(view.buckets, project(key_of(id), *view.mask), id, view.below);
        }
        if (node.views->by_mask) {
            insert_bucket(*node.views->by_mask, spread_tag(mask->id), id, node.base);
        }
    } catch (...) {
        while (done > 0) {
            View &view = views[--done];
            erase_bucket(view.buckets, project(key_of(id), *view.mask), id);
        }
        throw;
    }
    node.mixed = node.mixed || mask != node.common;
    node.common = common;
    node.rules++;
}

void RuleIndex::erase_views(Node &node, uint32_t id) noexcept
{
    for (View &view : node.views->by_bits) {
        erase_bucket(view.buckets, project(key_of(id), *view.mask), id);
    }
    if (node.views->by_mask) {
        erase_bucket(*node.views->by_mask, spread_tag(rules_[id]->mask->id), id);
    }
    node.rules--;
}

const RuleIndex::View *RuleIndex::covered_view(const Node &node, const Mask &mask)
{
    for (const View &view : node.views->by_bits) {
        if (covers(mask, *view.mask)) {
            return &view;
        }
    }
    return nullptr;
}

// A view whose mask this one covers, made if need be; null when the mask shares no bit with the
// rules by which the views above have not split them yet.
const RuleIndex::View *RuleIndex::view_for(Node &node, const MaskRef &mask)
{
    if (const View *view = covered_view(node, *mask)) {
        return view;
    }
    std::pmr::vector<View> &views = node.views->by_bits;
    MaskRef shared = masks_.share(node.common, mask, node.base);
    if (shared->map == 0) {
        return nullptr;
    }
    if (views.size() >= MANY_VIEWS) {
        shared = masks_.first_word(shared);
    }
    if (covers(*node.views->agreement.mask(), *shared)) {
        push_down(node, shared);
        return &node.views->by_bits.front();
    }
    views.reserve(views.size() + 1);
    View view = make_view(node, shared);
    drop_views_that_cover(node, *shared);
    views.push_back(std::move(view));
    return &views.back();
}

RuleIndex::View RuleIndex::make_view(const Node &node, const MaskRef &mask)
{
    View view{mask, masks_.unite(node.base, mask), HashTable(memory_)};
    auto add = [&](uint32_t id) {
        insert_bucket(view.buckets, project(key_of(id), *mask), id, view.below);
        return false;
    };
    try {
        any_in_node(node, add);
    } catch (...) {
        destroy_buckets(view.buckets);
        throw;
    }
    return view;
}

HashTable &RuleIndex::split_by_mask(Node &node)
{
    if (!node.views->by_mask) {
        node.views->by_mask = node.mixed ? split_mixed(node) : split_uniform(node);
    }
    return *node.views->by_mask;
}

HashTable RuleIndex::split_mixed(const Node &node)
{
    HashTable buckets(memory_);
    auto add = [&](uint32_t id) {
        insert_bucket(buckets, spread_tag(rules_[id]->mask->id), id, node.base);
        return false;
    };
    try {
        any_in_node(node, add);
    } catch (...) {
        destroy_buckets(buckets);
        throw;
    }
    return buckets;
}

// A node that can take over all that this one has.
uint32_t RuleIndex::make_heir(const Node &node, const MaskRef &base)
{
    Node *heir = make_node(node.common, base, 0);
    try {
        heir->views = make_views(node.views->agreement);
        return nodes_.add(heir);
    } catch (...) {
        free_node(heir);
        throw;
    }
}

void RuleIndex::bequeath(Node &node, uint32_t heir) noexcept
{
    nodes_[heir]->rules = node.rules;
    nodes_[heir]->mixed = node.mixed;
    std::swap(nodes_[heir]->views, node.views);
}

// All rules have one mask: the node's views go on as those of the only bucket.
HashTable RuleIndex::split_uniform(Node &node)
{
    HashTable buckets(memory_);
    const uint32_t heir = make_heir(node, node.base);
    try {
        buckets.insert(spread_tag(node.common->id), node_ref(heir));
    } catch (...) {
        destroy_node(heir);
        throw;
    }
    bequeath(node, heir);
    return buckets;
}

// All rules agree on the bits of the mask: a view on it has one bucket, with all that was there.
void RuleIndex::push_down(Node &node, const MaskRef &mask)
{
    View view{mask, masks_.unite(node.base, mask), HashTable(memory_)};
    const uint32_t heir = make_heir(node, view.below);
    try {
        nodes_[heir]->views->by_bits.reserve(1);
        const uint32_t tag = project(node.views->agreement.view(), *mask);
        view.buckets.insert(tag, node_ref(heir));
    } catch (...) {
        destroy_node(heir);
        throw;
    }
    bequeath(node, heir);
    node.views->by_bits.push_back(std::move(view));
}

void RuleIndex::drop_views_unless_covered(Node &node, const Mask &mask) noexcept
{
    std::erase_if(node.views->by_bits, [&](View &view) {
        if (covers(mask, *view.mask)) {
            return false;
        }
        destroy_buckets(view.buckets);
        return true;
    });
}

void RuleIndex::drop_views_that_cover(Node &node, const Mask &mask) noexcept
{
    std::erase_if(node.views->by_bits, [&](View &view) {
        if (!covers(*view.mask, mask)) {
            return false;
        }
        destroy_buckets(view.buckets);
        return true;
    });
}

} // namespace agent
