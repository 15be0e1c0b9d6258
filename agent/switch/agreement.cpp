#include "switch/agreement.h"

#include <array>

namespace agent {

Agreement::Agreement(KeyView first, std::pmr::memory_resource *memory)
    : mask_(first.mask), values_(first.values, first.values + first.mask->words, memory)
{}

void Agreement::narrow(KeyView key, MaskSet &masks)
{
    if (includes(view(), key)) {
        return;
    }
    std::array<uint64_t, MATCH_WORDS> bits;
    std::array<uint64_t, MATCH_WORDS> values;
    uint64_t map = 0;
    size_t words = 0;
    const uint64_t *own_bits = mask_->bits();
    const uint64_t *own_values = values_.data();
    const uint64_t *key_bits = key.mask->bits();
    const uint64_t *key_values = key.values;
    for (uint64_t rest = mask_->map | key.mask->map; rest != 0; rest &= rest - 1) {
        const uint64_t bit = rest & -rest;
        const bool own = (mask_->map & bit) != 0;
        const bool has = (key.mask->map & bit) != 0;
        const uint64_t both = own && has ? *own_bits & *key_bits : 0;
        const uint64_t same = both != 0 ? both & ~(*own_values ^ *key_values) : 0;
        if (same != 0) {
            map |= bit;
            bits[words] = same;
            values[words++] = *own_values & same;
        }
        own_bits += own ? 1 : 0;
        own_values += own ? 1 : 0;
        key_bits += has ? 1 : 0;
        key_values += has ? 1 : 0;
    }
    mask_ = masks.intern(map, bits.data());
    values_.assign(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(words));
}

} // namespace agent
