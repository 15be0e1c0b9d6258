// In-place exchange of byte order, member by member.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "ofp/wire_number.h"

namespace ofp {

static_assert(std::endian::native == std::endian::little, "elsewhere network order needs no swap");

constexpr uint16_t swapped(uint16_t number) { return __builtin_bswap16(number); }
constexpr uint32_t swapped(uint32_t number) { return __builtin_bswap32(number); }
constexpr uint64_t swapped(uint64_t number) { return __builtin_bswap64(number); }

// The integer that a member of a wire record stands for; no member type but these is converted.
template <typename Member>
struct WireInteger;
template <>
struct WireInteger<uint16_t> : std::type_identity<uint16_t> {};
template <>
struct WireInteger<uint32_t> : std::type_identity<uint32_t> {};
template <>
struct WireInteger<uint64_t> : std::type_identity<uint64_t> {};
template <>
struct WireInteger<OfpUnaligned32> : std::type_identity<uint32_t> {};
template <>
struct WireInteger<OfpUnaligned64> : std::type_identity<uint64_t> {};

// Through memcpy: a record may lie at an odd address, a member of a packed one often does. A member
// pointer is the member's offset in the ABI of g++ and clang.
template <typename Record, typename Member>
void swap_member(Member Record::*member, uint8_t *record)
{
    using Integer = typename WireInteger<std::remove_extent_t<Member>>::type;
    uint8_t *at = record + std::bit_cast<std::ptrdiff_t>(member);
    for (size_t i = 0; i < sizeof(Member); i += sizeof(Integer)) {
        Integer number;
        std::memcpy(&number, at + i, sizeof number);
        number = swapped(number);
        std::memcpy(at + i, &number, sizeof number);
    }
}

// Converts the named members of the record, and nothing else of it.
template <auto... Member>
void swap_members(void *record)
{
    (swap_member(Member, static_cast<uint8_t *>(record)), ...);
}

} // namespace ofp
