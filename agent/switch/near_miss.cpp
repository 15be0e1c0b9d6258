#include "switch/near_miss.h"

namespace agent {
namespace {

// As many rules are looked at: a table may have a million above the one that matched.
constexpr uint32_t LOOKED_AT = 64;
constexpr size_t OXM_HEADER = 4;

// Until a visit returns true.
template <class Visit>
void any_difference(const Rule &rule, const Packet &packet, Visit visit)
{
    const auto match = openflow::parse_match(rule.match());
    openflow::OxmWalk walk(match->entries);
    while (const auto oxm = walk.next()) {
        if (!matches(*oxm, packet) && visit(*oxm)) {
            return;
        }
    }
}

// Counts up to most.
uint32_t count_differences(const Rule &rule, const Packet &packet, uint32_t most)
{
    uint32_t count = 0;
    any_difference(rule, packet, [&](const openflow::Oxm &) { return ++count == most; });
    return count;
}

Difference difference(const openflow::Oxm &oxm, const Packet &packet)
{
    const auto place = place_of(oxm.oxm_class, oxm.field);
    if (!place) {
        return {oxm.entry.first(OXM_HEADER), {}};
    }
    const uint8_t *has = packet.at(*place);
    return {oxm.entry, {has, has + place->size}};
}

NearMiss describe(uint32_t id, const Rule &rule, const Packet &packet, uint32_t fields)
{
    NearMiss miss{id, rule.priority, fields, {}};
    any_difference(rule, packet, [&](const openflow::Oxm &oxm) {
        miss.differences.push_back(difference(oxm, packet));
        return miss.differences.size() == NearMiss::LISTED;
    });
    return miss;
}

} // namespace

std::optional<NearMiss> near_miss(FlowTable &table, const Packet &packet, int priority)
{
    uint32_t nearest = 0;
    uint32_t fewest = UINT32_MAX;
    uint32_t left = LOOKED_AT;
    table.any_above(priority, [&](uint32_t id) {
        const uint32_t fields = count_differences(*table.find(id), packet, fewest);
        if (fields < fewest) {
            nearest = id;
            fewest = fields;
        }
        return fewest == 1 || --left == 0; // none is nearer than one field
    });
    if (nearest == 0) {
        return {};
    }
    return describe(nearest, *table.find(nearest), packet, fewest);
}

} // namespace agent
