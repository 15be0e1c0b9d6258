#include <algorithm>
#include <cstring>

#include "ofp/util.h"

OFP_API uint64_t OFP_util_GetEffData(const void *src, uint64_t src_length, uint64_t dst_length,
                                     void *dst)
{
    uint64_t length = std::min(src_length, dst_length);
    if (length != 0)
        std::memcpy(dst, src, length);
    return length;
}

OFP_API uint16_t OFP_util_IsMemZero(const uint8_t *bytes, uint64_t length)
{
    // A run of equal bytes equals itself moved on by one.
    return length == 0 || (bytes[0] == 0 && std::memcmp(bytes, bytes + 1, length - 1) == 0);
}
