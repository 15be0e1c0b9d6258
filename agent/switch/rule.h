// A rule: one block of memory that holds its record, its key and the bytes it was received as.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <span>

#include "switch/key.h"
#include "switch/traffic.h"

namespace agent {

struct Rule {
    MaskRef mask;
    uint64_t cookie = 0;
    Traffic counters;
    uint64_t programmed = 0; // the client's count of periods when it was programmed last
    uint32_t created = 0;
    uint16_t priority = 0;
    uint16_t match_size = 0;
    uint16_t instructions_size = 0;
    bool uses_groups = false;
    uint8_t flags = 0; // of the flow-mod that added it

    KeyView key() const { return {mask, reinterpret_cast<const uint64_t *>(this + 1)}; }
    std::span<const uint8_t> match() const { return {bytes(), match_size}; }
    std::span<const uint8_t> instructions() const
    {
        return {bytes() + match_size, instructions_size};
    }

private:
    const uint8_t *bytes() const
    {
        return reinterpret_cast<const uint8_t *>(key().values + mask->words);
    }
};

// Copies all it is given.
Rule *make_rule(const Rule &head, const uint64_t *values, std::span<const uint8_t> match,
                std::span<const uint8_t> instructions, std::pmr::memory_resource *memory);
void free_rule(Rule *rule, std::pmr::memory_resource *memory) noexcept;

} // namespace agent
