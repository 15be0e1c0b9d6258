#include "ofp/vlan.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr uint16_t unknown = 0xFFFF;
constexpr uint16_t max_vlan_id = 4094;
constexpr uint16_t vlan_bits = 0x0FFF;

// Threads that ask at the same time store the same answer.
constinit std::atomic<uint16_t> min_vlan_id = unknown;

} // namespace

OFP_API uint16_t OFP_util_GetMinVlanID(void)
{
    uint16_t id = min_vlan_id.load(std::memory_order_relaxed);
    if (id == unknown) {
        id = VLAN_GetMinVlanID();
        min_vlan_id.store(id, std::memory_order_relaxed);
    }
    return id;
}

OFP_API uint16_t OFP_util_GetMaxVlanID(void) { return max_vlan_id; }

OFP_API void OFP_util_GetBitmapFromVlanMask(const OfpVlanMask *vlan, Bitmap *bitmap)
{
    const uint32_t vid = vlan->vlan_id;
    const uint32_t mask = vlan->mask;

    Bitmap_Zero(bitmap);
    if (vid == unknown)
        return;
    if (mask == 0xFFFF || mask == vlan_bits) {
        Bitmap_Set(bitmap, vid);
        return;
    }
    const uint32_t low = std::max<uint32_t>(vid & mask, OFP_util_GetMinVlanID());
    const uint32_t high = std::min<uint32_t>((vid | ~mask) & vlan_bits, OFP_util_GetMaxVlanID());
    if (mask == 0) {
        const BitmapRange range = {.count = 1, .first = low, .last = high};
        Bitmap_SetRange(bitmap, &range);
        return;
    }
    for (uint32_t v = low; v <= high; ++v) {
        if (((vid ^ v) & mask) == 0)
            Bitmap_Set(bitmap, v);
    }
}

OFP_API uint16_t OFP_util_IsAllBitMasked(const uint8_t *mask, uint64_t length)
{
    return std::all_of(mask, mask + length, [](uint8_t byte) { return byte == 0xFF; });
}
