/* TLV headers travel in network order, so that a datagram reads the same on every machine. */
#include <cstring>

#include <arpa/inet.h>

#include "ofp/platform.h"

namespace {

struct Header {
    uint16_t type;
    uint16_t length; /* of the value alone */
};

} // namespace

uint32_t STLV_Set(void *buffer, uint32_t space, uint32_t type, uint32_t length, const void *value)
{
    if (buffer == nullptr || length > UINT16_MAX || space < sizeof(Header) ||
        length > space - sizeof(Header)) {
        return 0;
    }
    auto *at = static_cast<uint8_t *>(buffer);
    if (value != nullptr && length != 0) {
        memmove(at + sizeof(Header), value, length);
    }
    Header header{htons(static_cast<uint16_t>(type)), htons(static_cast<uint16_t>(length))};
    memcpy(at, &header, sizeof header);
    return static_cast<uint32_t>(sizeof header) + length;
}

uint32_t STLV_Get(const void *buffer, uint32_t available, uint16_t *type, uint16_t *length,
                  void **value)
{
    Header header;
    *value = nullptr;
    if (buffer == nullptr || available < sizeof header) {
        return 0;
    }
    memcpy(&header, buffer, sizeof header);
    uint16_t bytes = ntohs(header.length);
    if (bytes > available - sizeof header) {
        return 0;
    }
    *type = ntohs(header.type);
    *length = bytes;
    /* The interface hands out the value of a constant buffer for writing; its callers know which.
     */
    *value = const_cast<uint8_t *>(static_cast<const uint8_t *>(buffer) + sizeof header);
    return static_cast<uint32_t>(sizeof header) + bytes;
}
