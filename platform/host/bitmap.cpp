/*
 * A bitmap is a header of two 32-bit words, the bytes that hold bits and the bits asked for, and
 * the bits, eight to a byte, lowest first. Because bits lie in bytes, only the header changes order
 * on the wire. An object lies at any address and may have come from a socket: its fields are read
 * through memcpy and a byte count that no map can have makes it a map without room.
 */
#include <algorithm>
#include <cstring>

#include <arpa/inet.h>

#include "ofp/platform.h"

namespace {

struct Header {
    uint32_t bytes;
    uint32_t bits;
};

/* A map travels in a value of at most 1024 bytes, so that none is ever larger. */
constexpr uint32_t largest_room = 1024 - sizeof(Header);

Header header_of(const Bitmap *map)
{
    Header header;
    memcpy(&header, map, sizeof header);
    return header;
}

uint8_t *bits_of(Bitmap *map) { return reinterpret_cast<uint8_t *>(map) + sizeof(Header); }

const uint8_t *bits_of(const Bitmap *map)
{
    return reinterpret_cast<const uint8_t *>(map) + sizeof(Header);
}

/* Bytes that may be touched; every bit in them is valid. */
uint32_t room(const Bitmap *map)
{
    if (map == nullptr) {
        return 0;
    }
    uint32_t bytes = header_of(map).bytes;
    return bytes <= largest_room ? bytes : 0;
}

bool holds(const Bitmap *map, uint32_t bit) { return bit / 8 < room(map); }

uint8_t mask_of(uint32_t bit) { return static_cast<uint8_t>(1u << bit % 8); }

} // namespace

Bitmap *Bitmap_CreateFromBuffer(uint32_t bits, void *buffer, uint32_t size)
{
    uint64_t bytes = (uint64_t{bits} + 31) / 32 * 4;
    if (buffer == nullptr || bytes > largest_room || size < sizeof(Header) ||
        bytes > size - sizeof(Header)) {
        return nullptr;
    }
    Header header{static_cast<uint32_t>(bytes), bits};
    memcpy(buffer, &header, sizeof header);
    auto *map = static_cast<Bitmap *>(buffer);
    Bitmap_Zero(map);
    return map;
}

void Bitmap_Zero(Bitmap *map)
{
    if (uint32_t bytes = room(map)) {
        memset(bits_of(map), 0, bytes);
    }
}

void Bitmap_Set(Bitmap *map, uint32_t bit)
{
    if (holds(map, bit)) {
        bits_of(map)[bit / 8] |= mask_of(bit);
    }
}

void Bitmap_Clear(Bitmap *map, uint32_t bit)
{
    if (holds(map, bit)) {
        bits_of(map)[bit / 8] &= static_cast<uint8_t>(~mask_of(bit));
    }
}

uint16_t Bitmap_Check(const Bitmap *map, uint32_t bit)
{
    return holds(map, bit) && (bits_of(map)[bit / 8] & mask_of(bit)) != 0 ? 1 : 0;
}

void Bitmap_SetRange(Bitmap *map, const BitmapRange *range)
{
    uint32_t bytes = room(map);
    if (bytes == 0 || range == nullptr || range->count == 0 || range->first > range->last) {
        return;
    }
    uint32_t bit = range->first;
    uint32_t end = std::min(range->last, bytes * 8 - 1) + 1;
    for (; bit < end && bit % 8 != 0; ++bit) {
        Bitmap_Set(map, bit);
    }
    for (; bit < end && end - bit >= 8; bit += 8) {
        bits_of(map)[bit / 8] = 0xff;
    }
    for (; bit < end; ++bit) {
        Bitmap_Set(map, bit);
    }
}

void Bitmap_Copy(Bitmap *to, const Bitmap *from)
{
    uint32_t bytes = room(to);
    uint32_t copied = std::min(bytes, room(from));
    if (bytes == 0 || to == from) {
        return;
    }
    if (copied != 0) {
        memcpy(bits_of(to), bits_of(from), copied);
    }
    memset(bits_of(to) + copied, 0, bytes - copied);
}

void Bitmap_H2N(Bitmap *map)
{
    if (map == nullptr) {
        return;
    }
    Header header = header_of(map);
    header = {htonl(header.bytes), htonl(header.bits)};
    memcpy(map, &header, sizeof header);
}
