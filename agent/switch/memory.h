// Counts what is held.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <memory_resource>

namespace agent {

class CountedMemory final : public std::pmr::memory_resource {
public:
    explicit CountedMemory(std::pmr::memory_resource *upstream) : upstream_(upstream) {}
    size_t held() const { return held_; }

private:
    void *do_allocate(size_t bytes, size_t alignment) override
    {
        void *block = upstream_->allocate(bytes, alignment);
        held_ += bytes;
        if (bytes >= LARGE) {
            advise(block, bytes);
        }
        return block;
    }

    void do_deallocate(void *block, size_t bytes, size_t alignment) override
    {
        held_ -= bytes;
        upstream_->deallocate(block, bytes, alignment);
    }

    bool do_is_equal(const memory_resource &other) const noexcept override
    {
        return this == &other;
    }

    // Tables over a million rules are read all over: large pages save a good part of the time.
    // Advice only, so that it may fail.
    static void advise(void *block, size_t bytes)
    {
        constexpr uintptr_t page = 4096;
        const uintptr_t address = reinterpret_cast<uintptr_t>(block);
        const uintptr_t skipped = (page - address % page) % page;
        madvise(static_cast<char *>(block) + skipped, bytes - skipped, MADV_HUGEPAGE);
    }

    static constexpr size_t LARGE = size_t{4} << 20;

    std::pmr::memory_resource *upstream_;
    size_t held_ = 0;
};

} // namespace agent
