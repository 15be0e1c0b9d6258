// Values of match fields that are only ever compared as a whole. Each different one exists once and
// has a number, which stands for it in keys.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <unordered_map>
#include <vector>

namespace agent {

struct OpaqueItem {
    const uint8_t *data;
    size_t size;
    uint8_t field;

    std::span<const uint8_t> bytes() const { return {data, size}; }
};

// As many items as there are fields of this kind; those from count on are left as they are.
struct OpaqueList {
    size_t count = 0;
    std::array<OpaqueItem, 61> items;
};

class Opaques {
public:
    explicit Opaques(std::pmr::memory_resource *memory);
    ~Opaques();
    Opaques(const Opaques &) = delete;
    Opaques &operator=(const Opaques &) = delete;

    uint32_t find(std::span<const uint8_t> bytes) const; // 0 when there is none
    uint32_t acquire(std::span<const uint8_t> bytes);
    void release(uint32_t number) noexcept;
    size_t size() const { return by_hash_.size(); }

private:
    struct Value {
        uint8_t *bytes; // null: the number is free
        uint32_t size;
        uint32_t references; // of a free number: the next free one
        uint64_t hash;
    };

    uint32_t find(std::span<const uint8_t> bytes, uint64_t hash) const;

    std::pmr::memory_resource *memory_;
    std::pmr::unordered_multimap<uint64_t, uint32_t> by_hash_;
    std::pmr::vector<Value> values_; // value n at n - 1
    uint32_t free_ = 0;
};

} // namespace agent
