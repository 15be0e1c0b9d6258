#include "switch/packet.h"

#include <algorithm>

namespace agent {
namespace {

using openflow::Action;
using openflow::Error;
using openflow::Oxm;

constexpr Error bad_match(openflow::BadMatchCode code) { return {openflow::OFPET_BAD_MATCH, code}; }

FieldPlace basic(openflow::OxmField field)
{
    return *place_of(openflow::OFPXMC_OPENFLOW_BASIC, field);
}

template <class T>
T get(const Packet &packet, openflow::OxmField field)
{
    return openflow::load<T>(packet.at(basic(field)));
}

template <class T>
void put(Packet &packet, openflow::OxmField field, T value)
{
    openflow::store<T>(packet.at(basic(field)), value);
}

void set_field(const Action &action, Packet &packet)
{
    openflow::OxmWalk walk(action.bytes.subspan(4));
    if (const auto oxm = walk.next()) {
        packet.set(*place_of(oxm->oxm_class, oxm->field), oxm->value);
    }
}

// The new tag takes over what the outermost one says.
void push_vlan(Packet &packet)
{
    const auto vid = get<uint16_t>(packet, openflow::OFPXMT_VLAN_VID);
    put(packet, openflow::OFPXMT_VLAN_VID, static_cast<uint16_t>(vid | openflow::OFPVID_PRESENT));
}

// What lies under the outermost tag is not known.
void pop_vlan(Packet &packet)
{
    put(packet, openflow::OFPXMT_VLAN_VID, uint16_t{openflow::OFPVID_NONE});
    put(packet, openflow::OFPXMT_VLAN_PCP, uint8_t{0});
}

void pop_mpls(Packet &packet)
{
    put(packet, openflow::OFPXMT_MPLS_LABEL, uint32_t{0});
    put(packet, openflow::OFPXMT_MPLS_TC, uint8_t{0});
    put(packet, openflow::OFPXMT_MPLS_BOS, uint8_t{0});
}

} // namespace

void Packet::set(const FieldPlace &place, openflow::Bytes value)
{
    std::copy(value.begin(), value.end(), at(place));
}

uint32_t Packet::in_port() const { return get<uint32_t>(*this, openflow::OFPXMT_IN_PORT); }

std::optional<Error> read_packet(openflow::Bytes entries, Packet &packet)
{
    openflow::OxmWalk walk(entries);
    openflow::OxmChecker checker;
    while (const auto oxm = walk.next()) {
        if (auto error = checker.check(*oxm)) {
            return error;
        }
        const auto place = place_of(oxm->oxm_class, oxm->field);
        if (!place) {
            return bad_match(openflow::OFPBMC_BAD_FIELD);
        }
        if (oxm->has_mask) {
            return bad_match(openflow::OFPBMC_BAD_MASK);
        }
        packet.set(*place, oxm->value);
    }
    return walk.truncated() ? std::optional(bad_match(openflow::OFPBMC_BAD_LEN)) : std::nullopt;
}

bool matches(KeyView rule, const Packet &packet)
{
    const uint64_t *bits = rule.mask->bits();
    const uint64_t *value = rule.values;
    for (uint64_t rest = rule.mask->map; rest != 0; rest &= rest - 1, bits++, value++) {
        const auto word = static_cast<size_t>(std::countr_zero(rest));
        if (word >= OPAQUE_WORD || ((packet.words[word] & *bits) ^ *value) != 0) {
            return false;
        }
    }
    return true;
}

bool matches(const Oxm &entry, const Packet &packet)
{
    const auto place = place_of(entry.oxm_class, entry.field);
    if (!place) {
        return false;
    }
    const uint8_t *has = packet.at(*place);
    for (size_t i = 0; i < place->size; i++) {
        const uint8_t mask = entry.has_mask ? entry.mask[i] : 0xff;
        if (((has[i] ^ entry.value[i]) & mask) != 0) {
            return false;
        }
    }
    return true;
}

uint32_t project(const Packet &packet, const Mask &onto)
{
    uint64_t hash = 0;
    const uint64_t *bits = onto.bits();
    for (uint64_t rest = onto.map; rest != 0; rest &= rest - 1) {
        hash = mix(hash, packet.words[static_cast<size_t>(std::countr_zero(rest))] & *bits++);
    }
    return finish(hash);
}

void apply(const Action &action, Packet &packet)
{
    switch (action.type) {
    case openflow::OFPAT_SET_FIELD:
        return set_field(action, packet);
    case openflow::OFPAT_PUSH_VLAN:
        return push_vlan(packet);
    case openflow::OFPAT_POP_VLAN:
        return pop_vlan(packet);
    case openflow::OFPAT_POP_MPLS:
        pop_mpls(packet);
        [[fallthrough]];
    case openflow::OFPAT_PUSH_MPLS:
    case openflow::OFPAT_PUSH_PBB:
        return put(packet, openflow::OFPXMT_ETH_TYPE, openflow::load16(action.bytes.data() + 4));
    default:
        return;
    }
}

} // namespace agent
