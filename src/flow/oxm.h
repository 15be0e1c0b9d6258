// Match fields on the wire (OXM): a header, the value, and the mask where the field takes one.
#pragma once

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
inline constexpr uint32_t oxm_chunk = 62; // batch interfaces in one OXM
inline constexpr uint32_t experimenter_id = 0x00000fe2;

constexpr bool has_bit(uint64_t bits, unsigned bit) { return bits >> bit & 1; }

// With a mask the length covers both; it is a byte, of which the value may use seven bits.
constexpr uint32_t oxm_header(uint32_t oxm_class, uint32_t field, uint32_t length, bool masked)
{
    const uint32_t size = masked ? length % 128 * 2 : length % 256;
    return oxm_class << 16 | (field << 9 & 0xfe00) | (masked ? 0x100u : 0u) | size;
}

// What the wire does to a number and its mask.
using Transform = uint64_t (*)(uint64_t);
constexpr uint64_t as_it_is(uint64_t value) { return value; }
constexpr uint64_t present_vid(uint64_t vid) { return (vid & 0x0fff) | 0x1000; }
template <unsigned Bits>
constexpr uint64_t low(uint64_t value)
{
    return value & ((1u << Bits) - 1);
}

// A field: where its value and its mask (null: it takes none) lie in a rule.
template <typename Value, typename MaskValue>
struct FieldForm {
    uint32_t oxm_class;
    Value value;
    MaskValue mask;
    Transform transform;

    static constexpr bool takes_mask = !std::is_null_pointer_v<MaskValue>;
};

template <typename Value, typename MaskValue = std::nullptr_t>
constexpr FieldForm<Value, MaskValue> basic(Value value, MaskValue mask = {},
                                            Transform transform = as_it_is)
{
    return {oxm_basic, value, mask, transform};
}

template <typename Value, typename MaskValue = std::nullptr_t>
constexpr FieldForm<Value, MaskValue> priv(Value value, MaskValue mask = {},
                                           Transform transform = as_it_is)
{
    return {oxm_experimenter, value, mask, transform};
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

template <Transform transform, typename T>
inline void put_value(uint8_t *out, const T &value)
{
    if constexpr (std::unsigned_integral<T>)
        put(out, static_cast<T>(transform(value)));
    else
        put(out, value);
}

} // namespace ofp
