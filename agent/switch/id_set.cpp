#include "switch/id_set.h"

#include <bit>

namespace agent {

IdSet::IdSet(std::pmr::memory_resource *memory)
    : levels_{Level(memory), Level(memory), Level(memory),
              Level(memory), Level(memory), Level(memory)}
{}

void IdSet::insert(uint32_t id)
{
    uint32_t at = id;
    for (Level &level : levels_) { // all room first: nothing is half done when memory is short
        at /= 64;
        if (at >= level.size()) {
            level.resize(at + 1);
        }
    }
    at = id;
    for (Level &level : levels_) {
        level[at / 64] |= uint64_t{1} << at % 64;
        at /= 64;
    }
}

void IdSet::erase(uint32_t id) noexcept
{
    for (Level &level : levels_) {
        uint64_t &word = level[id / 64];
        word &= ~(uint64_t{1} << id % 64);
        if (word != 0) {
            return;
        }
        id /= 64;
    }
}

uint32_t IdSet::next(uint32_t after) const
{
    // Up until a word has a later bit, then down along the first bits.
    uint64_t at = uint64_t{after} + 1;
    size_t level = 0;
    for (;; level++, at = at / 64 + 1) {
        if (level == LEVELS || at / 64 >= levels_[level].size()) {
            return 0;
        }
        if (const uint64_t later = levels_[level][at / 64] >> at % 64) {
            at += static_cast<uint64_t>(std::countr_zero(later));
            break;
        }
    }
    while (level > 0) {
        level--;
        at = at * 64 + static_cast<uint64_t>(std::countr_zero(levels_[level][at]));
    }
    return static_cast<uint32_t>(at);
}

} // namespace agent
