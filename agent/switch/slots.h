// Objects by number. Numbers are dense from 1 on and given again, so that an index holds 4 bytes
// for each object instead of a pointer.
#pragma once

#include <bit>
#include <cstdint>
#include <memory_resource>
#include <vector>

namespace agent {

template <class T>
class Slots {
public:
    explicit Slots(std::pmr::memory_resource *memory) : slots_(memory) {}

    uint32_t add(T *object)
    {
        if (free_ == 0) {
            slots_.push_back(std::bit_cast<uintptr_t>(object));
            return static_cast<uint32_t>(slots_.size());
        }
        const uint32_t number = free_;
        free_ = static_cast<uint32_t>(slots_[number - 1] >> 1);
        slots_[number - 1] = std::bit_cast<uintptr_t>(object);
        return number;
    }

    void replace(uint32_t number, T *object) noexcept
    {
        slots_[number - 1] = std::bit_cast<uintptr_t>(object);
    }

    // A free slot holds the next free number, marked by an odd word.
    void remove(uint32_t number) noexcept
    {
        slots_[number - 1] = uintptr_t{free_} << 1 | 1;
        free_ = number;
    }

    T *operator[](uint32_t number) const { return std::bit_cast<T *>(slots_[number - 1]); }

    // Null for a number that is not in use.
    T *find(uint32_t number) const
    {
        if (number == 0 || number > slots_.size() || (slots_[number - 1] & 1) != 0) {
            return nullptr;
        }
        return (*this)[number];
    }

private:
    std::pmr::vector<uintptr_t> slots_;
    uint32_t free_ = 0;
};

} // namespace agent
