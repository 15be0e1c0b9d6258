// A run of bytes that someone else owns.
#ifndef UTIL_BYTES_H
#define UTIL_BYTES_H

#include <cstdint>

namespace ofp {

struct Bytes {
    const uint8_t *data;
    uint64_t size;

    const uint8_t *end() const { return data + size; }
    Bytes from(const uint8_t *at) const { return {at, static_cast<uint64_t>(end() - at)}; }
};

} // namespace ofp

#endif
