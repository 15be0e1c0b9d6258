// Sets of VLAN ids: as text, as the ranges that setters take, as the maps that queries fill.
#ifndef OFPCTL_OPTION_VLAN_SET_H
#define OFPCTL_OPTION_VLAN_SET_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ofp/config.h"
#include "ofp/platform.h"

namespace ofpctl {

struct VlanRange {
    uint16_t first;
    uint16_t last; // inclusive

    bool operator==(const VlanRange &) const = default;
};

// Ascending, none next to another.
using VlanSet = std::vector<VlanRange>;

// "1-10,20", or "none". Else what is wrong with it.
std::variant<VlanSet, std::string> parse_vlans(std::string_view text);
std::string format_vlans(const VlanSet &vlans);

OfpVlanRangeList vlan_range_list(const VlanSet &vlans, uint16_t instance);

// The platform's bitmap with room for every VLAN id.
class VlanMap {
public:
    VlanMap();
    explicit VlanMap(std::span<const uint8_t> travelled); // a map as it travels
    VlanMap(const VlanMap &) = delete;
    VlanMap &operator=(const VlanMap &) = delete;

    Bitmap *bitmap() { return map_; }
    VlanSet vlans() const;

private:
    alignas(8) uint8_t buffer_[1024] = {};
    Bitmap *map_;
};

} // namespace ofpctl

#endif
