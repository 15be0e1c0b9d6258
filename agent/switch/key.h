// The key of a rule: its match as words of value and mask, so that two matches are compared by a
// few machine instructions whatever their fields.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "openflow/oxm.h"
#include "switch/field_layout.h"
#include "switch/mask.h"
#include "switch/opaque.h"

namespace agent {

// Words in ascending order, one for each word of the mask; no bit outside the mask is set.
struct KeyView {
    const MaskRef &mask;
    const uint64_t *values;
};

struct Key {
    MaskRef mask;
    std::array<uint64_t, MATCH_WORDS> values;
    OpaqueList opaques; // fields whose value stands in the key as the number of an opaque value
    bool known = true;  // false: an opaque value that no rule has; the number is 0

    KeyView view() const { return {mask, values.data()}; }
};

// Checks the match and makes its key. Opaque values are looked up, not made.
std::optional<openflow::Error> read_key(const openflow::Match &match, MaskSet &masks,
                                        const Opaques &opaques, Key &key);

// Takes a share in the opaque values of the key, making those that do not exist, and puts their
// numbers into it; release_opaques gives the share back.
void acquire_opaques(Key &key, Opaques &opaques);
void release_opaques(KeyView key, Opaques &opaques) noexcept;

// The same fields with the same bits.
bool identical(KeyView a, KeyView b);

// Some packet matches both.
bool compatible(KeyView a, KeyView b);

// Every packet that matches narrow matches wide.
bool includes(KeyView wide, KeyView narrow);

inline uint64_t mix(uint64_t hash, uint64_t word)
{
    hash = (hash ^ word) * 0x9e3779b97f4a7c15;
    return hash ^ hash >> 32;
}

// The 32 bits of a hash that tables go by.
inline uint32_t finish(uint64_t hash)
{
    return static_cast<uint32_t>(hash * 0xd6e8feb86659fd93 >> 32);
}

// A hash of the bits of the key that onto has; the key's mask covers onto.
uint32_t project(KeyView key, const Mask &onto);

} // namespace agent
