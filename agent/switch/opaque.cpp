#include "switch/opaque.h"

#include <algorithm>
#include <cstring>

#include "switch/key.h"

namespace agent {
namespace {

uint64_t hash_of(std::span<const uint8_t> bytes)
{
    uint64_t hash = bytes.size();
    for (size_t at = 0; at < bytes.size(); at += 8) {
        uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, std::min<size_t>(8, bytes.size() - at));
        hash = mix(hash, word);
    }
    return hash;
}

} // namespace

Opaques::Opaques(std::pmr::memory_resource *memory)
    : memory_(memory), by_hash_(memory), values_(memory)
{}

Opaques::~Opaques()
{
    for (const Value &value : values_) {
        if (value.bytes != nullptr) {
            memory_->deallocate(value.bytes, value.size, 1);
        }
    }
}

uint32_t Opaques::find(std::span<const uint8_t> bytes) const { return find(bytes, hash_of(bytes)); }

uint32_t Opaques::find(std::span<const uint8_t> bytes, uint64_t hash) const
{
    const auto [begin, end] = by_hash_.equal_range(hash);
    for (auto at = begin; at != end; ++at) {
        const Value &value = values_[at->second - 1];
        if (std::equal(bytes.begin(), bytes.end(), value.bytes, value.bytes + value.size)) {
            return at->second;
        }
    }
    return 0;
}

uint32_t Opaques::acquire(std::span<const uint8_t> bytes)
{
    const uint64_t hash = hash_of(bytes);
    if (const uint32_t number = find(bytes, hash)) {
        values_[number - 1].references++;
        return number;
    }
    if (free_ == 0) { // a number made for nothing stays free: nothing to undo below
        values_.push_back({nullptr, 0, 0, 0});
        free_ = static_cast<uint32_t>(values_.size());
    }
    const uint32_t number = free_;
    const auto entry = by_hash_.emplace(hash, number);
    uint8_t *copy = nullptr;
    try {
        copy = static_cast<uint8_t *>(memory_->allocate(bytes.size(), 1));
    } catch (...) {
        by_hash_.erase(entry);
        throw;
    }
    std::copy(bytes.begin(), bytes.end(), copy);
    free_ = values_[number - 1].references;
    values_[number - 1] = {copy, static_cast<uint32_t>(bytes.size()), 1, hash};
    return number;
}

void Opaques::release(uint32_t number) noexcept
{
    Value &value = values_[number - 1];
    if (--value.references != 0) {
        return;
    }
    const auto [begin, end] = by_hash_.equal_range(value.hash);
    by_hash_.erase(
        std::find_if(begin, end, [number](auto &pair) { return pair.second == number; }));
    memory_->deallocate(value.bytes, value.size, 1);
    value = {nullptr, 0, free_, 0};
    free_ = number;
}

} // namespace agent
