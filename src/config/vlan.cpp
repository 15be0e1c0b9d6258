#include "ofp/vlan.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "config/configure.h"
#include "ofp/config.h"
#include "ofp/message.h"
#include "ofp/platform.h"

namespace ofp {
namespace {

constexpr uint32_t last_vlan_id = 4095; // of twelve bits

// A bitmap object of the platform with the VLAN ids of a list.
class VlanMap {
public:
    // False when the list names what is no VLAN id, or the platform lays out no map.
    [[nodiscard]] bool fill(const OfpVlanRangeList &vlans);

    const Bitmap *object() const { return map_; }
    uint64_t size() const;

private:
    alignas(8) uint8_t buffer_[1024] = {};
    Bitmap *map_ = nullptr;
};

bool VlanMap::fill(const OfpVlanRangeList &vlans)
{
    map_ = Bitmap_CreateFromBuffer(OFP_util_GetMaxVlanID(), buffer_, sizeof buffer_);
    if (map_ == nullptr)
        return false;
    const uint64_t count = std::min<uint64_t>(vlans.count, std::size(vlans.range));
    for (uint64_t i = 0; i < count; ++i) {
        const BitmapRange range{1, vlans.range[i].first, vlans.range[i].last};
        if (range.first > last_vlan_id || range.last > last_vlan_id)
            return false;
        Bitmap_SetRange(map_, &range);
    }
    return true;
}

// Two 32-bit fields, the first of which counts the bytes of bits behind them.
uint64_t VlanMap::size() const
{
    constexpr uint64_t fields = 8;
    uint32_t bytes;
    std::memcpy(&bytes, map_, sizeof bytes);
    return fields + std::min<uint64_t>(bytes, sizeof buffer_ - fields);
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_set_VlanList(const OfpInstFilter *filter, uint16_t value)
{
    return ofp::configure_with(OFP_MSG_SET_VLAN_LIST, [=](ofp::Writer &request) {
        request
            .tlv(OFP_TLV_InstanceCfg,
                 OfpInstanceCfg{.instance_id = filter->instance_id, .vlan_value = value})
            .with([=](uint64_t room, uint8_t *out) {
                return OFP_util_EncapInstFilterTLV(filter, room, out);
            });
    });
}

OFP_API uint32_t OFP_set_InManageVlan(const OfpVlanRangeList *vlans)
{
    ofp::VlanMap map;
    if (!map.fill(*vlans))
        return OFP_RC_FAILED;
    return ofp::configure_with(OFP_MSG_SET_IN_MANAGE_VLAN, [&](ofp::Writer &request) {
        request.tlv(OFP_TLV_InstanceID, OfpInstanceID{.instance_id = vlans->instance_id})
            .tlv(OFP_TLV_VlanBitmap, map.object(), map.size());
    });
}

OFP_API uint32_t OFP_set_NormalForwardVlan(const OfpVlanRangeList *vlans)
{
    ofp::VlanMap map;
    if (!map.fill(*vlans))
        return OFP_RC_FAILED;
    return ofp::configure(OFP_MSG_SET_NORMAL_FORWARD_VLAN, OFP_TLV_VlanBitmap, map.object(),
                          map.size());
}

OFP_API uint32_t OFP_set_QinQNetEnable(uint16_t instance_id, uint16_t enable)
{
    return ofp::configure(OFP_MSG_SET_QINQ_NET_ENABLE, OFP_TLV_QinqNetWkcfg,
                          OfpQinqNetWkcfg{.enable = enable, .instance_id = instance_id});
}

OFP_API uint32_t OFP_set_MacLearning(uint16_t instance_id, uint16_t enable)
{
    return ofp::configure(OFP_MSG_SET_MAC_LEARNING, OFP_TLV_MacLearning,
                          OfpMacLearning{.instance_id = instance_id, .enable = enable});
}

OFP_API uint32_t OFP_set_DynMac(const OfpDynMacAware *aware)
{
    return ofp::configure(OFP_MSG_SET_DYN_MAC, OFP_TLV_DynMacAware, *aware);
}
