// The value of any match field as one number: up to 64 bits in low, IPv6 addresses in both words.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace ofpctl {

struct Wide {
    uint64_t high = 0;
    uint64_t low = 0;

    friend constexpr bool operator==(const Wide &, const Wide &) = default;
    friend constexpr Wide operator&(Wide a, Wide b) { return {a.high & b.high, a.low & b.low}; }
    constexpr explicit operator bool() const { return (high | low) != 0; }
};

// The lowest bits set, up to 128.
constexpr Wide ones(unsigned bits)
{
    constexpr auto word = [](unsigned n) { return n == 0 ? 0 : ~uint64_t{0} >> (64 - n); };
    return bits > 64 ? Wide{word(bits - 64), word(64)} : Wide{0, word(bits)};
}

// The number the first bits of a width-bit field make when they are set.
constexpr Wide prefix(unsigned bits, unsigned width)
{
    const Wide all = ones(width);
    const Wide rest = ones(width - bits);
    return {all.high & ~rest.high, all.low & ~rest.low};
}

// How many leading bits a mask sets when it sets nothing else, else -1.
constexpr int prefix_length(Wide mask, unsigned width)
{
    const int set = std::popcount(mask.high) + std::popcount(mask.low);
    return mask == prefix(static_cast<unsigned>(set), width) ? set : -1;
}

// Big-endian bytes, at most 16.
constexpr Wide from_bytes(const uint8_t *bytes, std::size_t count)
{
    Wide value;
    for (std::size_t i = 0; i < count; ++i) {
        value.high = value.high << 8 | value.low >> 56;
        value.low = value.low << 8 | bytes[i];
    }
    return value;
}

constexpr void to_bytes(Wide value, uint8_t *bytes, std::size_t count)
{
    for (std::size_t i = count; i-- > 0;) {
        bytes[i] = static_cast<uint8_t>(value.low);
        value.low = value.low >> 8 | value.high << 56;
        value.high >>= 8;
    }
}

} // namespace ofpctl
