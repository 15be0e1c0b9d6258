#include "flow/oxm_size.h"

#include <array>
#include <bit>
#include <utility>

#include "flow/oxm_experimenter.h"
#include "flow/oxm_fields.h"
#include "ofp/flow.h"

namespace ofp {
namespace {

struct FieldSize {
    uint8_t plain;
    uint8_t masked;
};

using FieldSizes = std::array<FieldSize, 64>;

constexpr FieldSize oxm(unsigned payload, unsigned masked_payload)
{
    return {static_cast<uint8_t>(oxm_header_size + payload),
            static_cast<uint8_t>(oxm_header_size + masked_payload)};
}

constexpr FieldSize always(uint8_t size) { return {size, size}; }

// What the encoders advance by; batch interfaces are counted by their list.
template <unsigned Bit>
consteval FieldSize written_size()
{
    if constexpr (!is_assigned<Bit> || Bit == OFP_FIELD_BATCH_IF) {
        return always(0);
    } else {
        constexpr auto form = field<Bit>;
        constexpr unsigned size = sizeof value_of(std::declval<Match>(), form.value);
        return oxm(size, skips_mask<Bit> || form.takes_mask ? 2 * size : size);
    }
}

template <unsigned... Bits>
consteval FieldSizes written_sizes(std::integer_sequence<unsigned, Bits...>)
{
    return {written_size<Bits>()...};
}

constexpr FieldSizes written = written_sizes(std::make_integer_sequence<unsigned, 64>{});

// What batches are cut by: a few fields as they were laid out once, unassigned bits too.
consteval FieldSizes counted_sizes()
{
    FieldSizes sizes = written;
    for (unsigned bit : {58u, 60u, 61u, 62u}) {
        const unsigned payload = written[bit].plain - oxm_header_size;
        sizes[bit] = oxm(payload, 2 * payload);
    }
    for (unsigned bit : {40u, 41u, 45u, 46u, 53u})
        sizes[bit] = always(4);
    for (unsigned bit : {37u, 42u, 44u, 48u, 52u, 54u, 55u, 56u, 57u})
        sizes[bit] = always(8);
    for (unsigned bit : {43u, 49u})
        sizes[bit] = always(10);
    for (unsigned bit : {47u, 50u})
        sizes[bit] = always(6);
    sizes[51] = always(36);
    sizes[38] = always(0); // counted by the experimenter list
    sizes[39] = always(16);
    return sizes;
}

constexpr FieldSizes counted = counted_sizes();

template <unsigned... Bits>
consteval uint64_t bits_that_skip(std::integer_sequence<unsigned, Bits...>)
{
    return ((uint64_t{skips_mask<Bits>} << Bits) | ...);
}

constexpr uint64_t skipping = bits_that_skip(std::make_integer_sequence<unsigned, 64>{});

uint64_t masked_bits(const OfpFRMatch &match)
{
    return match.mask != nullptr ? match.mask->masked : 0;
}

uint64_t sum(const FieldSizes &sizes, const OfpFRMatch &match)
{
    const uint64_t masked = masked_bits(match);
    uint64_t total = 0;
    for (uint64_t left = match.fields; left != 0; left &= left - 1) {
        const auto bit = static_cast<unsigned>(std::countr_zero(left));
        total += has_bit(masked, bit) ? sizes[bit].masked : sizes[bit].plain;
    }
    return total;
}

constexpr uint64_t padded(uint64_t size) { return (size + 7) / 8 * 8; }

// Slot 38 of the list stands for field 38: a string that travels counts as 40 bytes.
uint64_t counted_string(const OfpExpMatchList &list)
{
    constexpr uint32_t slot = 38;
    if (list.items == nullptr || list.count <= slot || list.items[slot] == nullptr)
        return 0;
    const OfpExpMatchItem &item = *list.items[slot];
    return item.length >= sizeof(uint32_t) && load<uint32_t>(item.data) == 1 ? 40 : 0;
}

} // namespace

uint64_t match_size(const OfpFRMatch &match)
{
    uint64_t size = 4 + sum(written, match) + experimenter_items_size(match.exp_match);
    if (has_bit(match.fields, OFP_FIELD_BATCH_IF) && match.batch_if.if_index != nullptr)
        size += OFP_encodeoxm_GetBatchIfOxmLen(match.batch_if.count);
    return padded(size);
}

bool leaves_gaps(const OfpFRMatch &match)
{
    return (match.fields & masked_bits(match) & skipping) != 0;
}

} // namespace ofp

using namespace ofp;

OFP_API uint64_t OFP_encodeoxm_GetOxmLen(const OfpFRMatch *match)
{
    if (match->fields == 0)
        return 8;
    uint64_t size = 4 + sum(counted, *match);
    if (has_bit(match->fields, OFP_FIELD_TUNNEL_ID))
        size += counted_string(match->exp_match);
    if (has_bit(match->fields, OFP_FIELD_BATCH_IF))
        size += OFP_encodeoxm_GetBatchIfOxmLen(match->batch_if.count);
    return padded(size);
}

OFP_API uint64_t OFP_encodeoxm_GetBatchIfOxmLen(uint32_t count)
{
    const uint64_t rest = count % oxm_chunk;
    return count / oxm_chunk * uint64_t{256} + (rest != 0 ? (rest + 2) * 4 : 0);
}
