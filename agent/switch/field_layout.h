// Where the match fields lie in the words of keys and packets.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "openflow/oxm.h"
#include "openflow/oxm_fields.h"

namespace agent {

inline constexpr size_t MATCH_WORDS = 54;

// The basic fields by field number: what is matched together lies together, so that a rule on
// addresses, protocol and ports has three words.
inline constexpr std::array<uint16_t, 40> BASIC_OFFSETS = {
    24, 172, 32,  40,  48,  0,  2,  7,   5,   6,   // in_port .. ip_ecn
    4,  8,   12,  16,  18,  20, 22, 64,  66,  68,  // ip_proto .. icmpv4_type
    69, 70,  72,  76,  80,  88, 96, 112, 160, 86,  // icmpv4_code .. icmpv6_type
    87, 128, 144, 152, 164, 47, 54, 168, 56,  94}; // icmpv6_code .. ipv6_exthdr

// Opaque values, each known by its number, have half a word each behind all other fields.
inline constexpr size_t OPAQUE_OFFSET = 184;
inline constexpr size_t OPAQUE_WORD = OPAQUE_OFFSET / 8;
inline constexpr size_t OPAQUES = 61;
static_assert(OPAQUE_OFFSET + OPAQUES * 4 <= MATCH_WORDS * 8);

struct FieldPlace {
    size_t offset;
    size_t size;  // bytes
    size_t width; // bits that count
};

// Nothing for a field whose values are opaque. The field is one of those that a match may have.
inline std::optional<FieldPlace> place_of(uint16_t oxm_class, uint8_t field)
{
    if (oxm_class == openflow::OFPXMC_OPENFLOW_BASIC) {
        const openflow::FieldRule &rule = openflow::BASIC_FIELDS[field];
        return FieldPlace{BASIC_OFFSETS[field], rule.size, rule.width};
    }
    switch (field) {
    case openflow::PRIVATE_VRF:
        return FieldPlace{28, 2, 16};
    case openflow::PRIVATE_FRAGMENT:
        return FieldPlace{46, 1, 8};
    case openflow::PRIVATE_OUT_PORT:
        return FieldPlace{176, 4, 32};
    case openflow::PRIVATE_CVLAN_VID:
        return FieldPlace{30, 2, 13};
    default:
        return {};
    }
}

} // namespace agent
