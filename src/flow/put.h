// Writing OpenFlow: numbers in network byte order at any address, bytes as they stand.
#ifndef OFP_FLOW_PUT_H
#define OFP_FLOW_PUT_H

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ofp {

template <std::unsigned_integral T>
constexpr T network_order(T value)
{
    if constexpr (std::endian::native == std::endian::big || sizeof(T) == 1)
        return value;
    else if constexpr (sizeof(T) == 2)
        return __builtin_bswap16(value);
    else if constexpr (sizeof(T) == 4)
        return __builtin_bswap32(value);
    else
        return __builtin_bswap64(value);
}

template <std::unsigned_integral T>
inline void put(uint8_t *out, T value)
{
    value = network_order(value);
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

// A number in network order at any address.
template <std::unsigned_integral T>
inline T get(const uint8_t *in)
{
    T value;
    std::memcpy(&value, in, sizeof value);
    return network_order(value);
}

} // namespace ofp

#endif
