#include "query/vlan_map.h"

#include <algorithm>
#include <cstring>

#include "ofp/wire_vlan.h"
#include "query/exchange.h"
#include "wire/swap_members.h"

namespace ofp {
namespace {

constexpr uint32_t largest = sizeof(OfpVlanBitmap) - 8; // behind the two fields of a map

// The first field of a bitmap object: the bytes of bits.
uint32_t bytes_of_bits(const void *map)
{
    uint32_t bytes;
    std::memcpy(&bytes, map, sizeof bytes);
    return bytes;
}

// Whether the platform may touch the value: it goes by the length that stands in it.
bool is_sound(const Tlv &tlv)
{
    return tlv.length >= sizeof(uint32_t) && swapped(bytes_of_bits(tlv.value)) <= largest;
}

} // namespace

void copy_vlan_map(const Tlv &tlv, Bitmap *to)
{
    if (!to || !is_sound(tlv))
        return;
    alignas(8) OfpVlanBitmap map{};
    read_value(tlv, &map);
    map.length = std::min(map.length, bytes_of_bits(to));
    Bitmap_Copy(to, reinterpret_cast<const Bitmap *>(&map));
}

} // namespace ofp
