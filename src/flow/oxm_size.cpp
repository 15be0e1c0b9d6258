#include "flow/oxm_size.h"

#include <array>
#include <bit>

#include "flow/oxm.h"
#include "flow/oxm_experimenter.h"
#include "ofp/flow.h"

namespace ofp {
namespace {

struct FieldSize {
    uint8_t plain;
    uint8_t masked;
};

using FieldSizes = std::array<FieldSize, 64>;

constexpr FieldSize with_mask(unsigned payload)
{
    return {static_cast<uint8_t>(oxm_header_size + payload),
            static_cast<uint8_t>(oxm_header_size + 2 * payload)};
}

constexpr FieldSize always(unsigned size)
{
    return {static_cast<uint8_t>(size), static_cast<uint8_t>(size)};
}

// What batches are cut by: some fields count as they were laid out once, unassigned ones too.
consteval FieldSizes counted_sizes()
{
    FieldSizes sizes;
    for (unsigned bit = 0; bit < 64; ++bit)
        sizes[bit] = with_mask(oxm_payload[bit]);
    for (unsigned bit : {37u, 42u, 44u, 48u, 52u, 54u, 55u, 56u, 57u})
        sizes[bit] = always(8);
    for (unsigned bit : {43u, 49u})
        sizes[bit] = always(10);
    for (unsigned bit : {47u, 50u})
        sizes[bit] = always(6);
    sizes[51] = always(36);
    sizes[39] = always(16);
    sizes[38] = always(0); // counted by the experimenter list
    sizes[59] = always(0); // counted by the interfaces
    return sizes;
}

// What the encoders advance by.
consteval FieldSizes written_sizes()
{
    FieldSizes sizes = {};
    for (unsigned bit = 0; bit < 40; ++bit)
        sizes[bit] = with_mask(oxm_payload[bit]);
    for (unsigned bit : {58u, 60u, 61u, 62u})
        sizes[bit] = always(oxm_header_size + oxm_payload[bit]);
    sizes[63] = with_mask(oxm_payload[63]);
    return sizes;
}

constexpr FieldSizes counted = counted_sizes();
constexpr FieldSizes written = written_sizes();

// Bits of basic fields that have no mask.
constexpr uint64_t maskless =
    1ull << 0 | 1ull << 1 | 1ull << 5 | 0xfull << 7 | 7ull << 19 | 0xffull << 29;

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
    return (match.fields & masked_bits(match) & maskless) != 0;
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
