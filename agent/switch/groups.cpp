#include "switch/groups.h"

namespace agent {
namespace {

using openflow::Error;
using openflow::GroupMod;

Error failed(openflow::GroupModFailedCode code) { return {openflow::OFPET_GROUP_MOD_FAILED, code}; }

bool too_high(uint32_t port, uint32_t highest)
{
    return port > highest && port <= openflow::OFPP_MAX;
}

std::optional<Error> check_ports(const openflow::Bucket &bucket, uint32_t highest)
{
    openflow::ActionWalk actions(bucket.actions);
    while (const auto action = actions.next()) {
        if (too_high(openflow::output_port(*action).value_or(0), highest)) {
            return Error{openflow::OFPET_BAD_ACTION, openflow::OFPBAC_BAD_OUT_PORT};
        }
    }
    if (too_high(bucket.watch_port, highest)) {
        return failed(openflow::OFPGMFC_BAD_WATCH);
    }
    return {};
}

// Type and buckets; the number of buckets is left in count.
std::optional<Error> check(const GroupMod &mod, const GroupLimits &limits, uint32_t &count)
{
    if (mod.type != openflow::OFPGT_ALL && mod.type != openflow::OFPGT_FF) {
        return failed(openflow::OFPGMFC_BAD_TYPE);
    }
    if (auto error = openflow::check_buckets(mod.buckets, mod.type)) {
        return error;
    }
    openflow::BucketWalk walk(mod.buckets);
    while (const auto bucket = walk.next()) {
        if (auto error = check_ports(*bucket, limits.ports)) {
            return error;
        }
        // A group may watch others, but groups do not watch themselves here.
        if (bucket->watch_group != openflow::OFPG_ANY) {
            return failed(openflow::OFPGMFC_WATCH_UNSUPPORTED);
        }
        if (++count > limits.buckets) {
            return failed(openflow::OFPGMFC_OUT_OF_BUCKETS);
        }
    }
    return {};
}

} // namespace

std::optional<Error> Groups::add(const GroupMod &mod, const GroupLimits &limits, uint32_t now)
{
    if (mod.group_id > openflow::OFPG_MAX) {
        return failed(openflow::OFPGMFC_INVALID_GROUP);
    }
    if (by_id_.contains(mod.group_id)) {
        return failed(openflow::OFPGMFC_GROUP_EXISTS);
    }
    uint32_t buckets = 0;
    if (auto error = check(mod, limits, buckets)) {
        return error;
    }
    if (by_id_.size() >= limits.groups) {
        return failed(openflow::OFPGMFC_OUT_OF_GROUPS);
    }
    std::pmr::memory_resource *memory = by_id_.get_allocator().resource();
    std::pmr::vector<uint8_t> bytes(mod.buckets.begin(), mod.buckets.end(), memory);
    std::pmr::vector<Traffic> counters(buckets, memory);
    by_id_.emplace(
        mod.group_id,
        GroupEntry{mod.type, buckets, 0, now, {}, std::move(bytes), std::move(counters)});
    return {};
}

std::optional<Error> Groups::modify(const GroupMod &mod, const GroupLimits &limits)
{
    const auto at = by_id_.find(mod.group_id);
    if (at == by_id_.end()) {
        return failed(openflow::OFPGMFC_UNKNOWN_GROUP);
    }
    uint32_t buckets = 0;
    if (auto error = check(mod, limits, buckets)) {
        return error;
    }
    std::pmr::vector<Traffic> counters(buckets, by_id_.get_allocator().resource());
    at->second.buckets.assign(mod.buckets.begin(), mod.buckets.end());
    at->second.bucket_counters = std::move(counters); // those of other buckets
    at->second.type = mod.type;
    at->second.bucket_count = buckets;
    return {};
}

void Groups::erase(uint32_t id) noexcept { by_id_.erase(id); }

const GroupEntry *Groups::find(uint32_t id) const
{
    const auto at = by_id_.find(id);
    return at != by_id_.end() ? &at->second : nullptr;
}

GroupEntry *Groups::find(uint32_t id)
{
    const auto at = by_id_.find(id);
    return at != by_id_.end() ? &at->second : nullptr;
}

std::optional<uint32_t> Groups::next(int64_t after) const
{
    if (after > static_cast<int64_t>(openflow::OFPG_MAX)) {
        return {};
    }
    const auto at = after < 0 ? by_id_.begin() : by_id_.upper_bound(static_cast<uint32_t>(after));
    return at != by_id_.end() ? std::optional(at->first) : std::nullopt;
}

void Groups::refer(std::span<const uint8_t> instructions) noexcept { count(instructions, 1); }

void Groups::unrefer(std::span<const uint8_t> instructions) noexcept
{
    count(instructions, uint32_t{0} - 1);
}

void Groups::count(std::span<const uint8_t> instructions, uint32_t step) noexcept
{
    any_action(instructions, [&](const openflow::Action &action) {
        if (const auto group = openflow::output_group(action)) {
            by_id_.find(*group)->second.references += step;
        }
        return false;
    });
}

bool refers_to_group(std::span<const uint8_t> instructions, uint32_t group)
{
    return any_action(instructions, [group](const openflow::Action &action) {
        const auto named = openflow::output_group(action);
        return named && (group == openflow::OFPG_ANY || *named == group);
    });
}

bool outputs_to_port(std::span<const uint8_t> instructions, uint32_t port)
{
    return any_action(instructions, [port](const openflow::Action &action) {
        return openflow::output_port(action) == port;
    });
}

} // namespace agent
