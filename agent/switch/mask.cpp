#include "switch/mask.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "switch/key.h"

namespace agent {
namespace {

uint64_t hash_of(uint64_t map, const uint64_t *bits, size_t words)
{
    uint64_t hash = mix(0, map);
    for (size_t i = 0; i < words; i++) {
        hash = mix(hash, bits[i]);
    }
    return hash;
}

size_t size_of(size_t words) { return sizeof(Mask) + words * sizeof(uint64_t); }

uint64_t word_of(const Mask &mask, uint64_t bit)
{
    const uint64_t *bits = mask.bits();
    for (uint64_t rest = mask.map & (bit - 1); rest != 0; rest &= rest - 1) {
        bits++;
    }
    return (mask.map & bit) != 0 ? *bits : 0;
}

// Clears each byte of part that is neither empty nor whole.
uint64_t whole_bytes(uint64_t part, uint64_t whole)
{
    for (uint64_t byte = 0xff; byte != 0; byte <<= 8) {
        if ((part & byte) != (whole & byte)) {
            part &= ~byte;
        }
    }
    return part;
}

} // namespace

MaskSet::MaskSet(std::pmr::memory_resource *memory)
    : memory_(memory), by_hash_(memory), by_id_(memory)
{
    none_ = intern(0, nullptr);
}

MaskSet::~MaskSet() { none_ = MaskRef(); }

MaskRef MaskSet::intern(uint64_t map, const uint64_t *bits)
{
    const auto words = static_cast<uint32_t>(std::popcount(map));
    const uint64_t hash = hash_of(map, bits, words);
    const auto [begin, end] = by_hash_.equal_range(hash);
    for (auto at = begin; at != end; ++at) {
        Mask *mask = at->second;
        if (mask->map == map && std::equal(bits, bits + words, mask->bits())) {
            return MaskRef(mask);
        }
    }
    void *block = memory_->allocate(size_of(words), alignof(Mask));
    Mask *mask = new (block) Mask{this, map, hash, 0, words, 0, 0};
    std::copy(bits, bits + words, mask->bits());
    try {
        mask->id = by_id_.add(mask);
        by_hash_.emplace(hash, mask);
    } catch (...) {
        if (mask->id != 0) {
            by_id_.remove(mask->id);
        }
        memory_->deallocate(mask, size_of(words), alignof(Mask));
        throw;
    }
    return MaskRef(mask);
}

void MaskSet::release(Mask *mask) noexcept
{
    const auto [begin, end] = by_hash_.equal_range(mask->hash);
    const auto at = std::find_if(begin, end, [mask](auto &pair) { return pair.second == mask; });
    by_hash_.erase(at);
    by_id_.remove(mask->id);
    memory_->deallocate(mask, size_of(mask->words), alignof(Mask));
}

template <class Combine>
MaskRef MaskSet::combine(const Mask &a, const Mask &b, Combine combine)
{
    std::array<uint64_t, MATCH_WORDS> bits;
    uint64_t map = 0;
    size_t words = 0;
    const uint64_t *in_a = a.bits();
    const uint64_t *in_b = b.bits();
    for (uint64_t rest = a.map | b.map; rest != 0; rest &= rest - 1) {
        const uint64_t bit = rest & -rest;
        const uint64_t word_a = (a.map & bit) != 0 ? *in_a++ : 0;
        const uint64_t word_b = (b.map & bit) != 0 ? *in_b++ : 0;
        if (const uint64_t word = combine(word_a, word_b, bit)) {
            bits[words++] = word;
            map |= bit;
        }
    }
    return intern(map, bits.data());
}

MaskRef MaskSet::intersect(const MaskRef &a, const MaskRef &b)
{
    if (a == b || covers(*b, *a)) {
        return a;
    }
    return combine(*a, *b, [](uint64_t in_a, uint64_t in_b, uint64_t) { return in_a & in_b; });
}

MaskRef MaskSet::unite(const MaskRef &a, const MaskRef &b)
{
    return combine(*a, *b, [](uint64_t in_a, uint64_t in_b, uint64_t) { return in_a | in_b; });
}

MaskRef MaskSet::first_word(const MaskRef &mask)
{
    return mask->map == 0 ? mask : intern(mask->map & -mask->map, mask->bits());
}

MaskRef MaskSet::share(const MaskRef &common, const MaskRef &mask, const MaskRef &base)
{
    const auto beyond_base = [&base](uint64_t in_common, uint64_t in_mask, uint64_t bit) {
        return in_common & in_mask & ~word_of(*base, bit);
    };
    const auto in_whole_bytes = [&base](uint64_t in_common, uint64_t in_mask, uint64_t bit) {
        const uint64_t fresh = in_common & ~word_of(*base, bit);
        return whole_bytes(fresh & in_mask, fresh);
    };
    MaskRef shared = combine(*common, *mask, in_whole_bytes);
    return shared->map != 0 ? shared : combine(*common, *mask, beyond_base);
}

bool covers(const Mask &mask, const Mask &part)
{
    if (&mask == &part) {
        return true;
    }
    if ((part.map & ~mask.map) != 0) {
        return false;
    }
    const uint64_t *in_mask = mask.bits();
    const uint64_t *in_part = part.bits();
    for (uint64_t rest = mask.map; rest != 0; rest &= rest - 1, in_mask++) {
        if ((part.map & rest & -rest) != 0 && (*in_part++ & ~*in_mask) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace agent
