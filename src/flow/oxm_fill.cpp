#include <type_traits>
#include <utility>

#include "flow/oxm_experimenter.h"
#include "flow/oxm_fields.h"
#include "ofp/flow.h"

namespace ofp {
namespace {

using OctetBits = std::make_integer_sequence<unsigned, 8>;

// The fields of eight neighbouring bits, ascending.
template <unsigned First, unsigned... Bits>
inline uint8_t *put_octet(const Match *match, uint64_t masked, uint8_t *out,
                          std::integer_sequence<unsigned, Bits...>)
{
    const auto put_if_set = [&]<unsigned Bit>(std::integral_constant<unsigned, Bit>) {
        if constexpr (is_assigned<Bit>) {
            if (has_bit(match->fields, Bit))
                out = put_field<Bit>(match, masked, out);
        }
    };
    (put_if_set(std::integral_constant<unsigned, First + Bits>{}), ...);
    return out;
}

// Every field in straight line, octet by octet: most rules have their bits in one or two of them.
template <unsigned... Octets>
inline uint8_t *put_fields(const Match *match, uint8_t *out,
                           std::integer_sequence<unsigned, Octets...>)
{
    const uint64_t masked = match->mask->masked;
    const auto put_octet_if_any = [&]<unsigned First>(std::integral_constant<unsigned, First>) {
        if constexpr ((assigned_fields >> First & 0xff) != 0) {
            if ((match->fields >> First & 0xff) != 0)
                out = put_octet<First>(match, masked, out, OctetBits{});
        }
    };
    (put_octet_if_any(std::integral_constant<unsigned, Octets * 8>{}), ...);
    return out;
}

// At most 7 zero bytes.
void pad(uint8_t *out, uint64_t count)
{
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
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API void OFP_encodeoxm_Header(uint32_t oxm_class, uint32_t field, uint8_t length,
                                  uint64_t masked, uint8_t *out)
{
    put(out, oxm_header(oxm_class, field, length, field < 64 && has_bit(masked, field)));
}

OFP_API uint64_t OFP_encodeoxm_Fill(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    uint8_t *end = out + 4; // after type and length
    if (match->fields != 0)
        end = put_fields(match, end, OctetBits{});
    if (match->exp_match.count != 0)
        end += put_experimenter_items(match->exp_match, end);
    const auto length = static_cast<uint64_t>(end - out);
    put(out, uint16_t{1}); // OXM
    put(out + 2, static_cast<uint16_t>(length));

    const uint64_t padded = (length + 7) / 8 * 8;
    pad(end, padded - length);
    return padded;
}
