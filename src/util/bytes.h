// A run of bytes that someone else owns.
#pragma once

#include <cstdint>

namespace ofp {

struct Bytes {
    const uint8_t *data;
    uint64_t size;

    const uint8_t *end() const { return data + size; }
    Bytes from(const uint8_t *at) const { return {at, static_cast<uint64_t>(end() - at)}; }
};

} // namespace ofp
