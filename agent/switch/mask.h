// Masks: which bits of a match a rule looks at. A table of a million rules has few different ones,
// so each exists once and rules, like the index over them, share it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <unordered_map>
#include <utility>

#include "switch/slots.h"

namespace agent {

class MaskSet;

// Bit w of map is set when word w of the match has mask bits; only those words are kept, in
// ascending order, behind the record. No word of them is 0.
struct Mask {
    MaskSet *owner;
    uint64_t map;
    uint64_t hash;
    uint32_t id; // no other mask has it while this one exists
    uint32_t words;
    uint32_t references;
    uint32_t reserved;

    uint64_t *bits() { return reinterpret_cast<uint64_t *>(this + 1); }
    const uint64_t *bits() const { return reinterpret_cast<const uint64_t *>(this + 1); }
};

// Shared ownership of a mask.
class MaskRef {
public:
    MaskRef() = default;
    explicit MaskRef(Mask *mask) : mask_(mask)
    {
        if (mask_ != nullptr) {
            mask_->references++;
        }
    }
    MaskRef(const MaskRef &other) : MaskRef(other.mask_) {}
    MaskRef(MaskRef &&other) noexcept : mask_(std::exchange(other.mask_, nullptr)) {}
    MaskRef &operator=(MaskRef other) noexcept
    {
        std::swap(mask_, other.mask_);
        return *this;
    }
    ~MaskRef();

    Mask *get() const { return mask_; }
    Mask *operator->() const { return mask_; }
    Mask &operator*() const { return *mask_; }
    bool operator==(const MaskRef &) const = default;

private:
    Mask *mask_ = nullptr;
};

class MaskSet {
public:
    explicit MaskSet(std::pmr::memory_resource *memory);
    ~MaskSet();
    MaskSet(const MaskSet &) = delete;
    MaskSet &operator=(const MaskSet &) = delete;

    // The mask with these words, made if need be.
    MaskRef intern(uint64_t map, const uint64_t *bits);

    MaskRef none() const { return none_; }
    MaskRef intersect(const MaskRef &a, const MaskRef &b);
    MaskRef unite(const MaskRef &a, const MaskRef &b);
    MaskRef first_word(const MaskRef &mask);

    // What common and mask share beyond base. Where mask takes only a part of a byte of common it
    // gets none of it, if something else remains: prefixes that come ever shorter then meet in one
    // mask per byte instead of one per bit.
    MaskRef share(const MaskRef &common, const MaskRef &mask, const MaskRef &base);

    size_t size() const { return by_hash_.size(); }

private:
    friend class MaskRef;
    void release(Mask *mask) noexcept;
    template <class Combine>
    MaskRef combine(const Mask &a, const Mask &b, Combine combine);

    std::pmr::memory_resource *memory_;
    std::pmr::unordered_multimap<uint64_t, Mask *> by_hash_;
    Slots<Mask> by_id_;
    MaskRef none_;
};

inline MaskRef::~MaskRef()
{
    if (mask_ != nullptr && --mask_->references == 0) {
        mask_->owner->release(mask_);
    }
}

// True when mask has every bit of part.
bool covers(const Mask &mask, const Mask &part);

} // namespace agent
