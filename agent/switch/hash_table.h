// Open addressing from a 32-bit tag to a 32-bit reference, 8 bytes an entry. A tag is in the table
// at most once.
#pragma once

#include <bit>
#include <cstdint>
#include <memory_resource>
#include <utility>

namespace agent {

struct Entry {
    uint32_t tag;
    uint32_t ref; // 0: empty
};

class HashTable {
public:
    explicit HashTable(std::pmr::memory_resource *memory) : memory_(memory) {}
    HashTable(HashTable &&other) noexcept;
    HashTable &operator=(HashTable &&other) noexcept;
    ~HashTable();

    Entry *find(uint32_t tag) const
    {
        if (count_ == 0) {
            return nullptr;
        }
        uint32_t at = home(tag);
        while (entries_[at].ref != 0 && entries_[at].tag != tag) {
            at = (at + 1) & (capacity_ - 1);
        }
        return entries_[at].ref != 0 ? &entries_[at] : nullptr;
    }

    void insert(uint32_t tag, uint32_t ref); // a tag that is not in the table
    void erase(Entry *entry) noexcept;
    uint32_t size() const { return count_; }

    // Fetches ahead where the tag would be.
    void prefetch(uint32_t tag) const
    {
        if (count_ != 0) {
            __builtin_prefetch(&entries_[home(tag)]);
        }
    }

    // Visits entries until one visit is true.
    template <class Visit>
    bool any(Visit visit) const
    {
        for (uint32_t at = 0; at < capacity_; at++) {
            if (entries_[at].ref != 0 && visit(entries_[at])) {
                return true;
            }
        }
        return false;
    }

private:
    uint32_t home(uint32_t tag) const { return tag >> (32 - std::countr_zero(capacity_)); }
    void resize(uint32_t capacity);
    void put(uint32_t tag, uint32_t ref) noexcept;

    std::pmr::memory_resource *memory_;
    Entry *entries_ = nullptr;
    uint32_t capacity_ = 0; // a power of two, or 0
    uint32_t count_ = 0;
};

} // namespace agent
