// The TLV, bitmap and text sections of ofp/platform.h: network order headers, bits in bytes.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "double/platform.h"

using test::platform;

struct Bitmap {
    uint32_t bytes; // that hold bits
    uint32_t bits;

    uint8_t *map() { return reinterpret_cast<uint8_t *>(this + 1); }
    const uint8_t *map() const { return reinterpret_cast<const uint8_t *>(this + 1); }
};

namespace {

bool inside(const Bitmap *map, uint32_t bit)
{
    bool ok = map && bit / 8 < map->bytes;
    EXPECT_TRUE(ok) << "bit " << bit << " of a bitmap that does not hold it";
    return ok;
}

uint8_t bit_of(uint32_t bit) { return static_cast<uint8_t>(1u << bit % 8); }

uint32_t swapped(uint32_t value) { return __builtin_bswap32(value); }

} // namespace

uint32_t STLV_Set(void *buffer, uint32_t space, uint32_t type, uint32_t length, const void *value)
{
    if (auto outcome = platform.enter({"STLV_Set", {space, type, length}}))
        return static_cast<uint32_t>(outcome->result);
    if (space < 4 || length > space - 4)
        return 0;
    auto out = static_cast<uint8_t *>(buffer);
    out[0] = static_cast<uint8_t>(type >> 8);
    out[1] = static_cast<uint8_t>(type);
    out[2] = static_cast<uint8_t>(length >> 8);
    out[3] = static_cast<uint8_t>(length);
    if (value && length != 0)
        std::memcpy(out + 4, value, length);
    return length + 4;
}

uint32_t STLV_Get(const void *buffer, uint32_t available, uint16_t *type, uint16_t *length,
                  void **value)
{
    *value = nullptr;
    if (auto outcome = platform.enter({"STLV_Get", {available}}))
        return static_cast<uint32_t>(outcome->result);
    if (available < 4)
        return 0;
    auto in = static_cast<const uint8_t *>(buffer);
    auto size = static_cast<uint16_t>(in[2] << 8 | in[3]);
    if (size > available - 4)
        return 0;
    *type = static_cast<uint16_t>(in[0] << 8 | in[1]);
    *length = size;
    *value = const_cast<uint8_t *>(in + 4);
    return size + 4u;
}

Bitmap *Bitmap_CreateFromBuffer(uint32_t bits, void *buffer, uint32_t size)
{
    if (auto outcome = platform.enter({"Bitmap_CreateFromBuffer", {bits, size}}, {0}))
        return nullptr;
    uint64_t bytes = (uint64_t{bits} + 31) / 32 * 4;
    if (bytes + sizeof(Bitmap) > size)
        return nullptr;
    auto map = static_cast<Bitmap *>(buffer);
    *map = {static_cast<uint32_t>(bytes), bits};
    std::memset(map->map(), 0, bytes);
    return map;
}

void Bitmap_Zero(Bitmap *map)
{
    platform.enter({"Bitmap_Zero", {}});
    std::memset(map->map(), 0, map->bytes);
}

void Bitmap_Set(Bitmap *map, uint32_t bit)
{
    platform.enter({"Bitmap_Set", {bit}});
    if (inside(map, bit))
        map->map()[bit / 8] |= bit_of(bit);
}

void Bitmap_Clear(Bitmap *map, uint32_t bit)
{
    platform.enter({"Bitmap_Clear", {bit}});
    if (inside(map, bit))
        map->map()[bit / 8] &= static_cast<uint8_t>(~bit_of(bit));
}

uint16_t Bitmap_Check(const Bitmap *map, uint32_t bit)
{
    platform.enter({"Bitmap_Check", {bit}});
    return inside(map, bit) && (map->map()[bit / 8] & bit_of(bit)) != 0;
}

void Bitmap_SetRange(Bitmap *map, const BitmapRange *range)
{
    platform.enter({"Bitmap_SetRange", {range->count, range->first, range->last}});
    for (uint32_t bit = range->first; bit <= range->last && inside(map, bit); ++bit)
        map->map()[bit / 8] |= bit_of(bit);
}

void Bitmap_Copy(Bitmap *to, const Bitmap *from)
{
    platform.enter({"Bitmap_Copy", {to->bytes, from->bytes}});
    std::memset(to->map(), 0, to->bytes);
    std::memcpy(to->map(), from->map(), std::min(to->bytes, from->bytes));
}

void Bitmap_H2N(Bitmap *map)
{
    platform.enter({"Bitmap_H2N", {}});
    uint32_t header[2];
    std::memcpy(header, map, sizeof header);
    header[0] = swapped(header[0]);
    header[1] = swapped(header[1]);
    std::memcpy(map, header, sizeof header);
}

size_t scnprintf(char *buffer, size_t size, const char *format, ...)
{
    if (auto outcome = platform.enter({"scnprintf", {size}, {}, format}))
        return static_cast<size_t>(outcome->result);
    va_list arguments;
    va_start(arguments, format);
    int wanted = std::vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    if (wanted < 0 || size == 0)
        return 0;
    return std::min(static_cast<size_t>(wanted), size - 1);
}

size_t strlcpy(char *to, const char *from, size_t size)
{
    platform.enter({"strlcpy", {size}, {}, from});
    size_t length = std::strlen(from);
    if (size != 0) {
        size_t copied = std::min(length, size - 1);
        std::memcpy(to, from, copied);
        to[copied] = '\0';
    }
    return length;
}
