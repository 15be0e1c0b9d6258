// A packet: the value of every match field on its way through the tables.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "openflow/message.h"
#include "openflow/oxm.h"
#include "switch/field_layout.h"
#include "switch/key.h"

namespace agent {

// Fields that were not said are 0, as those that a packet does not have. Opaque fields are never
// known of a packet.
struct Packet {
    std::array<uint64_t, MATCH_WORDS> words{};

    const uint8_t *at(const FieldPlace &place) const
    {
        return reinterpret_cast<const uint8_t *>(words.data()) + place.offset;
    }
    uint8_t *at(const FieldPlace &place)
    {
        return reinterpret_cast<uint8_t *>(words.data()) + place.offset;
    }
    void set(const FieldPlace &place, openflow::Bytes value);

    uint32_t in_port() const;
};

// OXM entries in the order of a match, without masks. Nothing means that the packet is good.
std::optional<openflow::Error> read_packet(openflow::Bytes entries, Packet &packet);

// The rule has no opaque field and the packet has what it asks for.
bool matches(KeyView rule, const Packet &packet);

// This entry of a rule's match lets the packet through.
bool matches(const openflow::Oxm &entry, const Packet &packet);

// The hash that a rule with these bits has under this mask.
uint32_t project(const Packet &packet, const Mask &onto);

// What the action does to the fields; actions that concern none do nothing.
void apply(const openflow::Action &action, Packet &packet);

} // namespace agent
