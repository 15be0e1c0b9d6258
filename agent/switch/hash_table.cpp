#include "switch/hash_table.h"

#include <cstring>
#include <new>

namespace agent {
namespace {

constexpr uint32_t LEAST_CAPACITY = 4;

} // namespace

HashTable::HashTable(HashTable &&other) noexcept
    : memory_(other.memory_), entries_(std::exchange(other.entries_, nullptr)),
      capacity_(std::exchange(other.capacity_, 0)), count_(std::exchange(other.count_, 0))
{}

HashTable &HashTable::operator=(HashTable &&other) noexcept
{
    std::swap(memory_, other.memory_);
    std::swap(entries_, other.entries_);
    std::swap(capacity_, other.capacity_);
    std::swap(count_, other.count_);
    return *this;
}

HashTable::~HashTable()
{
    if (entries_ != nullptr) {
        memory_->deallocate(entries_, capacity_ * sizeof(Entry), alignof(Entry));
    }
}

void HashTable::insert(uint32_t tag, uint32_t ref)
{
    if (count_ >= capacity_ - capacity_ / 4) {
        resize(capacity_ == 0 ? LEAST_CAPACITY : capacity_ * 2);
    }
    put(tag, ref);
    count_++;
}

void HashTable::put(uint32_t tag, uint32_t ref) noexcept
{
    uint32_t at = home(tag);
    while (entries_[at].ref != 0) {
        at = (at + 1) & (capacity_ - 1);
    }
    entries_[at] = {tag, ref};
}

void HashTable::erase(Entry *entry) noexcept
{
    const uint32_t last = capacity_ - 1;
    auto hole = static_cast<uint32_t>(entry - entries_);
    // Entries behind the hole move up, unless that would put them before their home.
    for (uint32_t at = (hole + 1) & last; entries_[at].ref != 0; at = (at + 1) & last) {
        if (((at - home(entries_[at].tag)) & last) >= ((at - hole) & last)) {
            entries_[hole] = entries_[at];
            hole = at;
        }
    }
    entries_[hole].ref = 0;
    count_--;
    if (capacity_ > LEAST_CAPACITY && count_ < capacity_ / 8) {
        try {
            resize(capacity_ / 2);
        } catch (const std::bad_alloc &) { // then it stays as large as it is
            return;
        }
    }
}

void HashTable::resize(uint32_t capacity)
{
    HashTable larger(memory_);
    const size_t bytes = capacity * sizeof(Entry);
    larger.entries_ = static_cast<Entry *>(memory_->allocate(bytes, alignof(Entry)));
    larger.capacity_ = capacity;
    std::memset(larger.entries_, 0, bytes);
    any([&larger](const Entry &entry) {
        larger.put(entry.tag, entry.ref);
        return false;
    });
    larger.count_ = count_;
    *this = std::move(larger);
}

} // namespace agent
