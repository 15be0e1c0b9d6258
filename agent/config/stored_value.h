// Single members of the configuration as values of the store, and back.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "config/settings.h"
#include "config/store.h"

namespace agent {

template <class T>
concept Number = std::integral<T>;

template <Number T>
StoredValue to_stored(T number)
{
    return static_cast<int64_t>(number); // 64-bit ids keep their bits
}

template <size_t Size>
StoredValue to_stored(const std::array<uint8_t, Size> &bytes)
{
    return StoredBytes(bytes.begin(), bytes.end());
}

inline StoredValue to_stored(const std::string &text) { return text; }

// Ranges: "1-10,20".
StoredValue to_stored(const VlanSet &vlans);

// These return false for a value of another kind or out of range.
template <Number T>
bool from_stored(const StoredValue &value, T &number)
{
    const auto *const stored = std::get_if<int64_t>(&value);
    if (!stored) {
        return false;
    }
    number = static_cast<T>(*stored);
    return static_cast<int64_t>(number) == *stored;
}

template <size_t Size>
bool from_stored(const StoredValue &value, std::array<uint8_t, Size> &bytes)
{
    const auto *const stored = std::get_if<StoredBytes>(&value);
    if (!stored || stored->size() != Size) {
        return false;
    }
    std::memcpy(bytes.data(), stored->data(), Size);
    return true;
}

bool from_stored(const StoredValue &value, std::string &text); // at most 255 bytes
bool from_stored(const StoredValue &value, VlanSet &vlans);

} // namespace agent
