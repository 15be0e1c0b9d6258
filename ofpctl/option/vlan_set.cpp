#include "option/vlan_set.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "flow/number_text.h"
#include "frame/words.h"
#include "ofp/vlan.h"
#include "ofp/wire.h"

namespace ofpctl {

namespace {

constexpr uint16_t last_vlan = 4094;
constexpr std::size_t most_ranges = std::size(OfpVlanRangeList{}.range);

bool scan_vlan(std::string_view text, uint16_t &vlan)
{
    uint64_t number = 0;
    if (!scan_number(text, last_vlan, number) || number == 0)
        return false;
    vlan = static_cast<uint16_t>(number);
    return true;
}

bool scan_range(std::string_view text, VlanRange &range)
{
    const std::size_t dash = text.find('-');
    if (!scan_vlan(text.substr(0, dash), range.first))
        return false;
    if (dash == text.npos) {
        range.last = range.first;
        return true;
    }
    return scan_vlan(text.substr(dash + 1), range.last) && range.first <= range.last;
}

VlanSet merged(VlanSet vlans)
{
    std::sort(vlans.begin(), vlans.end(),
              [](const VlanRange &a, const VlanRange &b) { return a.first < b.first; });
    VlanSet apart;
    for (const VlanRange &range : vlans) {
        if (!apart.empty() && range.first <= apart.back().last + 1)
            apart.back().last = std::max(apart.back().last, range.last);
        else
            apart.push_back(range);
    }
    return apart;
}

} // namespace

std::variant<VlanSet, std::string> parse_vlans(std::string_view text)
{
    if (text == "none")
        return VlanSet{};
    if (text.empty() || text.back() == ',')
        return fmt::format("\"{}\" is no list of VLANs: 1-10,20 or none", text);
    VlanSet vlans;
    for (const std::string_view part : split(text, ',')) {
        VlanRange range{};
        if (!scan_range(part, range))
            return fmt::format("\"{}\" is no VLAN from 1 to {} and no range like 10-20", part,
                               last_vlan);
        vlans.push_back(range);
    }
    vlans = merged(std::move(vlans));
    if (vlans.size() > most_ranges)
        return fmt::format("{} ranges of VLANs; a request takes at most {}", vlans.size(),
                           most_ranges);
    return vlans;
}

std::string format_vlans(const VlanSet &vlans)
{
    std::string out;
    for (const VlanRange &range : vlans) {
        out += fmt::format("{}{}", out.empty() ? "" : ",", range.first);
        if (range.last != range.first)
            out += fmt::format("-{}", range.last);
    }
    return out.empty() ? "none" : out;
}

OfpVlanRangeList vlan_range_list(const VlanSet &vlans, uint16_t instance)
{
    OfpVlanRangeList list{};
    for (const VlanRange &range : vlans) {
        list.range[list.count].first = range.first;
        list.range[list.count].last = range.last;
        list.count++;
    }
    list.instance_id = instance;
    return list;
}

VlanMap::VlanMap() : map_(Bitmap_CreateFromBuffer(OFP_util_GetMaxVlanID(), buffer_, sizeof buffer_))
{}

VlanMap::VlanMap(std::span<const uint8_t> travelled) : map_(reinterpret_cast<Bitmap *>(buffer_))
{
    std::copy_n(travelled.begin(), std::min(travelled.size(), sizeof buffer_), buffer_);
    OFP_bswap_VlanBitmap(buffer_);
}

VlanSet VlanMap::vlans() const
{
    VlanSet vlans;
    for (uint16_t vlan = 1; vlan <= last_vlan; vlan++) {
        if (Bitmap_Check(map_, vlan) == 0)
            continue;
        if (!vlans.empty() && vlans.back().last + 1 == vlan)
            vlans.back().last = vlan;
        else
            vlans.push_back({vlan, vlan});
    }
    return vlans;
}

} // namespace ofpctl
