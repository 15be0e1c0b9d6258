// Writing OpenFlow: numbers in network byte order at any address, bytes as they stand.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "wire/swap_members.h"

namespace ofp {

constexpr uint8_t swapped(uint8_t number) { return number; }

template <std::unsigned_integral T>
inline void put(uint8_t *out, T value)
{
    value = swapped(value);
    std::memcpy(out, &value, sizeof value);
}

template <size_t N>
inline void put(uint8_t *out, const uint8_t (&bytes)[N])
{
    std::memcpy(out, bytes, N);
}

template <size_t N>
inline void put(uint8_t *out, const uint32_t (&words)[N])
{
    for (size_t i = 0; i < N; ++i)
        put(out + i * sizeof words[0], words[i]);
}

// A number that a caller's record holds in host order, at any address.
template <std::unsigned_integral T>
inline T load(const uint8_t *in)
{
    T value;
    std::memcpy(&value, in, sizeof value);
    return value;
}

// Reading it.
template <std::unsigned_integral T>
inline T get(const uint8_t *in)
{
    return swapped(load<T>(in));
}

} // namespace ofp
