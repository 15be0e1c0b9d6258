#include "switch/key.h"

#include <algorithm>
#include <cstring>

namespace agent {
namespace {

using openflow::Error;
using openflow::Oxm;

size_t opaque_offset(uint8_t field)
{
    const size_t slot = field == openflow::EXPERIMENTER_ITEM_MAX ? OPAQUES - 1 : field;
    return OPAQUE_OFFSET + slot * 4;
}

// All words of a match while it is read. A word is cleared when its first field comes.
class Words {
public:
    uint8_t *value(size_t offset, size_t size) { return touch(offset, size) + value_.data(); }
    uint8_t *mask(size_t offset) { return mask_.data() + offset; }

    void pack(MaskSet &masks, Key &key);

private:
    size_t touch(size_t offset, size_t size)
    {
        for (size_t word = offset / 8; word <= (offset + size - 1) / 8; word++) {
            const uint64_t bit = uint64_t{1} << word;
            if ((map_ & bit) == 0) {
                map_ |= bit;
                std::memset(&value_[word * 8], 0, 8);
                std::memset(&mask_[word * 8], 0, 8);
            }
        }
        return offset;
    }

    uint64_t map_ = 0;
    std::array<uint8_t, MATCH_WORDS * 8> value_;
    std::array<uint8_t, MATCH_WORDS * 8> mask_;
};

void Words::pack(MaskSet &masks, Key &key)
{
    std::array<uint64_t, MATCH_WORDS> bits;
    uint64_t map = 0;
    size_t words = 0;
    for (uint64_t rest = map_; rest != 0; rest &= rest - 1) {
        const auto word = static_cast<size_t>(std::countr_zero(rest));
        std::memcpy(&bits[words], &mask_[word * 8], 8);
        std::memcpy(&key.values[words], &value_[word * 8], 8);
        if (bits[words] != 0) { // a field that is masked out altogether is no field
            map |= uint64_t{1} << word;
            words++;
        }
    }
    key.mask = masks.intern(map, bits.data());
}

// A field without a mask is the same as one whose mask has all bits of the field's width.
void put(Words &words, size_t offset, size_t width, const Oxm &oxm)
{
    const size_t size = oxm.value.size();
    uint8_t *value = words.value(offset, size);
    uint8_t *mask = words.mask(offset);
    std::copy(oxm.value.begin(), oxm.value.end(), value);
    if (oxm.has_mask) {
        std::copy(oxm.mask.begin(), oxm.mask.end(), mask);
        return;
    }
    for (size_t i = 0, spare = size * 8 - width; i < size; i++) {
        const size_t cut = std::min<size_t>(spare, 8);
        mask[i] = static_cast<uint8_t>(0xff >> cut);
        spare -= cut;
    }
}

// Entries of one interface list lie one behind the other and count as one value.
void put_opaque(const Oxm &oxm, OpaqueList &opaques)
{
    const uint8_t field = oxm.field;
    if (opaques.count != 0 && opaques.items[opaques.count - 1].field == field) {
        opaques.items[opaques.count - 1].size += oxm.entry.size();
        return;
    }
    opaques.items[opaques.count++] = {oxm.entry.data(), oxm.entry.size(), field};
}

void place(const Oxm &oxm, Words &words, OpaqueList &opaques)
{
    if (const auto at = place_of(oxm.oxm_class, oxm.field)) {
        put(words, at->offset, at->width, oxm);
    } else {
        put_opaque(oxm, opaques);
    }
}

void look_up(const Opaques &known, Words &words, Key &key)
{
    for (size_t i = 0; i < key.opaques.count; i++) {
        const OpaqueItem &item = key.opaques.items[i];
        const uint32_t number = known.find(item.bytes());
        const size_t offset = opaque_offset(item.field);
        key.known = key.known && number != 0;
        std::memcpy(words.value(offset, 4), &number, 4);
        std::memset(words.mask(offset), 0xff, 4);
    }
}

// The place of an opaque field's number among the packed words of a key that has the field.
uint8_t *opaque_number(Key &key, uint8_t field)
{
    const size_t offset = opaque_offset(field);
    const uint64_t below = (uint64_t{1} << offset / 8) - 1;
    const auto word = static_cast<size_t>(std::popcount(key.mask->map & below));
    return reinterpret_cast<uint8_t *>(&key.values[word]) + offset % 8;
}

} // namespace

std::optional<Error> read_key(const openflow::Match &match, MaskSet &masks, const Opaques &opaques,
                              Key &key)
{
    Words words;
    openflow::OxmWalk walk(match.entries);
    openflow::OxmChecker checker;
    key.opaques.count = 0;
    key.known = true;
    while (const auto oxm = walk.next()) {
        if (auto error = checker.check(*oxm)) {
            return error;
        }
        place(*oxm, words, key.opaques);
    }
    if (walk.truncated()) {
        return Error{openflow::OFPET_BAD_MATCH, openflow::OFPBMC_BAD_LEN};
    }
    look_up(opaques, words, key);
    words.pack(masks, key);
    return {};
}

void acquire_opaques(Key &key, Opaques &opaques)
{
    size_t done = 0;
    std::array<uint32_t, OPAQUES> numbers;
    try {
        for (; done < key.opaques.count; done++) {
            numbers[done] = opaques.acquire(key.opaques.items[done].bytes());
        }
    } catch (...) {
        while (done > 0) {
            opaques.release(numbers[--done]);
        }
        throw;
    }
    for (size_t i = 0; i < done; i++) {
        std::memcpy(opaque_number(key, key.opaques.items[i].field), &numbers[i], 4);
    }
    key.known = true;
}

void release_opaques(KeyView key, Opaques &opaques) noexcept
{
    const uint64_t map = key.mask->map;
    const uint64_t first = uint64_t{1} << OPAQUE_WORD;
    if (map < first) {
        return;
    }
    const auto skipped = static_cast<size_t>(std::popcount(map & (first - 1)));
    for (size_t word = skipped; word < key.mask->words; word++) {
        for (const uint64_t number : {key.values[word] & 0xffffffff, key.values[word] >> 32}) {
            if (number != 0) {
                opaques.release(static_cast<uint32_t>(number));
            }
        }
    }
}

bool identical(KeyView a, KeyView b)
{
    return a.mask == b.mask && std::equal(a.values, a.values + a.mask->words, b.values);
}

bool compatible(KeyView a, KeyView b)
{
    const Mask &in_a = *a.mask;
    const Mask &in_b = *b.mask;
    size_t i = 0;
    size_t j = 0;
    for (uint64_t rest = in_a.map | in_b.map; rest != 0; rest &= rest - 1) {
        const uint64_t bit = rest & -rest;
        const bool has_a = (in_a.map & bit) != 0;
        const bool has_b = (in_b.map & bit) != 0;
        if (has_a && has_b) {
            const uint64_t both = in_a.bits()[i] & in_b.bits()[j];
            if (((a.values[i] ^ b.values[j]) & both) != 0) {
                return false;
            }
        }
        i += has_a ? 1 : 0;
        j += has_b ? 1 : 0;
    }
    return true;
}

bool includes(KeyView wide, KeyView narrow)
{
    return covers(*narrow.mask, *wide.mask) && compatible(wide, narrow);
}

uint32_t project(KeyView key, const Mask &onto)
{
    uint64_t hash = 0;
    const uint64_t *value = key.values;
    if (key.mask.get() == &onto) {
        for (size_t i = 0; i < onto.words; i++) {
            hash = mix(hash, value[i]);
        }
    } else {
        const uint64_t *bits = onto.bits();
        for (uint64_t rest = key.mask->map; rest != 0; rest &= rest - 1, value++) {
            if ((onto.map & rest & -rest) != 0) {
                hash = mix(hash, *value & *bits++);
            }
        }
    }
    return finish(hash);
}

} // namespace agent
