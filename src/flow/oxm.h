// Match fields on the wire (OXM): a header, the value, and the mask where the field takes one.
#ifndef OFP_FLOW_OXM_H
#define OFP_FLOW_OXM_H

#include <type_traits>

#include "flow/put.h"
#include "ofp/flow_item.h"

namespace ofp {

using Match = OfpFRMatch;
using Mask = OfpMatchMask;
using Ipv6 = OfpMatchIpv6;

inline constexpr uint32_t oxm_basic = 0x8000;
inline constexpr uint32_t oxm_experimenter = 0xffff;
inline constexpr uint32_t oxm_header_size = 4;
inline constexpr uint32_t oxm_chunk = 62;                     // batch interfaces in one OXM
inline constexpr uint64_t oxm_assigned = 0xfc0000ff'ffffffff; // field bits 0 to 39 and 58 to 63
inline constexpr uint32_t experimenter_id = 0x00000fe2;

// Bytes of a value, by field bit. pbb_isid travels in 4 bytes, not in the standard's 3.
inline constexpr uint8_t oxm_payload[64] = {
    4, 4, 8, 6, 6, 2, 2, 1, 1, 1, 1,  4,  4, 2, 2, 2, // 0 to 15
    2, 2, 2, 1, 1, 2, 4, 4, 6, 6, 16, 16, 4, 1, 1, 16,
    6, 6, 4, 1, 1, 4, 8, 2, 0, 0, 0,  0,  0, 0, 0, 0, // 32 to 47
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 80, 0,  2, 1, 4, 2,
};

constexpr bool has_bit(uint64_t bits, unsigned bit) { return bits >> bit & 1; }

// With a mask the length covers both; it is a byte, of which the value may use seven bits.
constexpr uint32_t oxm_header(uint32_t oxm_class, uint32_t field, uint32_t length, bool masked)
{
    const uint32_t size = masked ? length % 128 * 2 : length % 256;
    return oxm_class << 16 | (field << 9 & 0xfe00) | (masked ? 0x100u : 0u) | size;
}

inline constexpr std::nullptr_t no_mask = nullptr;

// What the wire does to a value and its mask.
constexpr uint64_t as_it_is(uint64_t value) { return value; }
constexpr uint64_t present_vid(uint64_t vid) { return (vid & 0x0fff) | 0x1000; }
template <unsigned Bits>
constexpr uint64_t low_bits(uint64_t value)
{
    return value & ((1u << Bits) - 1);
}

namespace detail {

template <auto Transform, typename T>
inline void put_value(uint8_t *out, const T &value)
{
    if constexpr (std::unsigned_integral<T>)
        put(out, static_cast<T>(Transform(value)));
    else
        put(out, value);
}

template <typename T>
const T &value_of(const Match &match, T Match::*member)
{
    return match.*member;
}

template <typename T>
const T &value_of(const Match &match, T Ipv6::*member)
{
    return match.ipv6->*member;
}

} // namespace detail

// The rule of every field: with its bit clear nothing; else header, value, and the mask where the
// field takes one and its mask bit is set. A basic field without a mask of its own announces and
// skips one all the same, a private one announces it only. Returns the bytes to advance.
template <uint32_t Class, unsigned Bit, auto Value, auto MaskValue, auto Transform>
inline uint64_t field(const Match *match, uint8_t *out)
{
    if (!has_bit(match->fields, Bit))
        return 0;
    const auto &value = detail::value_of(*match, Value);
    constexpr uint32_t size = sizeof value;
    static_assert(size == oxm_payload[Bit]);
    constexpr bool takes_mask = !std::is_null_pointer_v<decltype(MaskValue)>;

    const bool masked = has_bit(match->mask->masked, Bit);
    put(out, masked ? oxm_header(Class, Bit, size, true) : oxm_header(Class, Bit, size, false));
    out += oxm_header_size;
    detail::put_value<Transform>(out, value);
    if constexpr (takes_mask) {
        if (masked)
            detail::put_value<Transform>(out + size, match->mask->*MaskValue);
    }
    return oxm_header_size + (masked && (takes_mask || Class == oxm_basic) ? 2 * size : size);
}

template <unsigned Bit, auto Value, auto MaskValue = no_mask, auto Transform = as_it_is>
inline uint64_t basic(const Match *match, uint8_t *out)
{
    return field<oxm_basic, Bit, Value, MaskValue, Transform>(match, out);
}

template <unsigned Bit, auto Value, auto MaskValue = no_mask, auto Transform = as_it_is>
inline uint64_t priv(const Match *match, uint8_t *out)
{
    return field<oxm_experimenter, Bit, Value, MaskValue, Transform>(match, out);
}

} // namespace ofp

#endif
