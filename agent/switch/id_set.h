// A set of small numbers that finds the next one at once, however many are missing between.
#pragma once

#include <array>
#include <cstdint>
#include <memory_resource>
#include <vector>

namespace agent {

class IdSet {
public:
    explicit IdSet(std::pmr::memory_resource *memory);

    void insert(uint32_t id);
    void erase(uint32_t id) noexcept;
    uint32_t next(uint32_t after) const; // the smallest above after, 0 when there is none

private:
    // A bit of a level says that the word of that number one level below is not empty.
    using Level = std::pmr::vector<uint64_t>;
    static constexpr size_t LEVELS = 6; // 64^6 is more than 32 bits need
    std::array<Level, LEVELS> levels_;
};

} // namespace agent
