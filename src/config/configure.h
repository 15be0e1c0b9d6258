// How a configuration call travels: one datagram with one record, over a channel of its own.
#pragma once

#include <cstdint>
#include <span>
#include <type_traits>

namespace ofp {

// A record without a hole: no byte that its members do not name ever travels.
template <typename T>
concept Record = std::is_trivially_copyable_v<T> && std::has_unique_object_representations_v<T>;

// Sends a value and returns the code of the result reply.
[[nodiscard]] uint32_t configure_value(uint32_t code, uint32_t type, uint64_t length,
                                       const void *value);
// The same for a datagram that stands.
[[nodiscard]] uint32_t configure_datagram(std::span<const uint8_t> datagram);
// Sends a value and awaits no reply.
[[nodiscard]] uint32_t notify_value(uint32_t code, uint32_t type, uint64_t length,
                                    const void *value);

template <Record T> [[nodiscard]] uint32_t configure(uint32_t code, uint32_t type, const T &record)
{
    return configure_value(code, type, sizeof record, &record);
}

template <Record T> [[nodiscard]] uint32_t notify(uint32_t code, uint32_t type, const T &record)
{
    return notify_value(code, type, sizeof record, &record);
}

// The 16-bit operation of calls that set or remove.
constexpr uint16_t operation_set = 1;

} // namespace ofp
