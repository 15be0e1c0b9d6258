// A rule's match on the wire.
#pragma once

#include <type_traits>
#include <utility>

#include "flow/oxm_experimenter.h"
#include "flow/oxm_fields.h"

namespace ofp {

using OctetBits = std::make_integer_sequence<unsigned, 8>;

// The fields of eight neighbouring bits, ascending.
template <unsigned First, unsigned... Bits>
inline uint8_t *put_octet(const Match *match, uint64_t fields, uint64_t masked, uint8_t *out,
                          std::integer_sequence<unsigned, Bits...>)
{
    const auto put_if_set = [&]<unsigned Bit>(std::integral_constant<unsigned, Bit>) {
        if constexpr (is_assigned<Bit>) {
            if (has_bit(fields, Bit))
                out = put_field<Bit>(match, masked, out);
        }
    };
    (put_if_set(std::integral_constant<unsigned, First + Bits>{}), ...);
    return out;
}

// Every field in straight line, octet by octet up to the last bit: most rules have theirs in the
// first two.
template <unsigned First = 0>
inline uint8_t *put_fields(const Match *match, uint64_t fields, uint64_t masked, uint8_t *out)
{
    if constexpr ((assigned_fields >> First & 0xff) != 0) {
        if ((fields >> First & 0xff) != 0)
            out = put_octet<First>(match, fields, masked, out, OctetBits{});
    }
    if constexpr (First < 56) {
        if (fields >> (First + 8) != 0)
            return put_fields<First + 8>(match, fields, masked, out);
    }
    return out;
}

// At most 7 zero bytes. Returns the end.
inline uint8_t *put_padding(uint8_t *out, uint64_t count)
{
    uint8_t *const end = out + count;
    if (count & 4) {
        put(out, uint32_t{0});
        out += 4;
    }
    if (count & 2) {
        put(out, uint16_t{0});
        out += 2;
    }
    if (count & 1)
        *out = 0;
    return end;
}

inline constexpr uint32_t match_type_oxm = 1;

// Type, length, fields, experimenter matches, padding to 8 bytes. Returns the end.
inline uint8_t *put_match(const Match *match, uint8_t *out)
{
    uint8_t *end = out + 4;
    if (match->fields != 0)
        end = put_fields(match, match->fields, match->mask->masked, end);
    if (match->exp_match.count != 0)
        end += put_experimenter_items(match->exp_match, end);
    const auto length = static_cast<uint64_t>(end - out);
    put(out, match_type_oxm << 16 | static_cast<uint16_t>(length));
    return put_padding(end, (8 - length % 8) % 8);
}

} // namespace ofp
