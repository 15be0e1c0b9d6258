// Counts what is held.
#pragma once

#include <cstddef>
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

    std::pmr::memory_resource *upstream_;
    size_t held_ = 0;
};

} // namespace agent
