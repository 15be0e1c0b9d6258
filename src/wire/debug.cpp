#include "ofp/wire_debug.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpGlbDebug, value_u16_0) == 0);
static_assert(offsetof(OfpGlbDebug, value_u16_2) == 2);
static_assert(offsetof(OfpGlbDebug, value_u16_4) == 4);
static_assert(offsetof(OfpGlbDebug, value_u16_6) == 6);
static_assert(offsetof(OfpGlbDebug, value_u32_8) == 8);
static_assert(offsetof(OfpGlbDebug, value_u64_16) == 16);
static_assert(offsetof(OfpGlbDebug, value_u16_28) == 28);
static_assert(offsetof(OfpGlbDebug, value_u32_32) == 32);
static_assert(offsetof(OfpGlbDebug, value_u32_36) == 36);
static_assert(offsetof(OfpGlbDebug, value_u32_40) == 40);
static_assert(offsetof(OfpGlbDebug, value_u16_48) == 48);
static_assert(offsetof(OfpGlbDebug, value_u16_50) == 50);
static_assert(offsetof(OfpGlbDebug, value_u16_68) == 68);
static_assert(offsetof(OfpGlbDebug, value_u16_70) == 70);
static_assert(offsetof(OfpGlbDebug, value_u32_88) == 88);
OFP_API void OFP_bswap_GlbDebug(void *value)
{
    swap_members<&OfpGlbDebug::value_u16_0, &OfpGlbDebug::value_u16_2, &OfpGlbDebug::value_u16_4,
                 &OfpGlbDebug::value_u16_6, &OfpGlbDebug::value_u32_8, &OfpGlbDebug::value_u64_16,
                 &OfpGlbDebug::value_u16_28, &OfpGlbDebug::value_u32_32, &OfpGlbDebug::value_u32_36,
                 &OfpGlbDebug::value_u32_40, &OfpGlbDebug::value_u16_48, &OfpGlbDebug::value_u16_50,
                 &OfpGlbDebug::value_u16_68, &OfpGlbDebug::value_u16_70,
                 &OfpGlbDebug::value_u32_88>(value);
}

static_assert(offsetof(OfpGlbDebugPkt, value_u64_0) == 0);
static_assert(offsetof(OfpGlbDebugPkt, value_u16_8) == 8);
static_assert(offsetof(OfpGlbDebugPkt, value_u16_10) == 10);
static_assert(offsetof(OfpGlbDebugPkt, value_u64_16) == 16);
static_assert(offsetof(OfpGlbDebugPkt, value_u64_24) == 24);
OFP_API void OFP_bswap_GlbDebugPkt(void *value)
{
    swap_members<&OfpGlbDebugPkt::value_u64_0, &OfpGlbDebugPkt::value_u16_8,
                 &OfpGlbDebugPkt::value_u16_10, &OfpGlbDebugPkt::value_u64_16,
                 &OfpGlbDebugPkt::value_u64_24>(value);
}

static_assert(offsetof(OfpCtrlDebugInfo, value_u64_1) == 1);
static_assert(offsetof(OfpCtrlDebugInfo, value_u32_105) == 105);
OFP_API void OFP_bswap_CtrlDebugInfo(void *value)
{
    swap_members<&OfpCtrlDebugInfo::value_u64_1, &OfpCtrlDebugInfo::value_u32_105>(value);
}

static_assert(offsetof(OfpFlowMonitorInterval, instance_id) == 0);
static_assert(offsetof(OfpFlowMonitorInterval, interval) == 4);
OFP_API void ofp_bswap_FlowMonitorInterval(void *value)
{
    swap_members<&OfpFlowMonitorInterval::instance_id, &OfpFlowMonitorInterval::interval>(value);
}

static_assert(offsetof(OfpFlowMonitorThreShold, instance_id) == 0);
static_assert(offsetof(OfpFlowMonitorThreShold, threshold) == 4);
OFP_API void ofp_bswap_FlowMonitorThreShold(void *value)
{
    swap_members<&OfpFlowMonitorThreShold::instance_id, &OfpFlowMonitorThreShold::threshold>(value);
}

static_assert(offsetof(OfpFlowMonitorAction, value_u64_0) == 0);
static_assert(offsetof(OfpFlowMonitorAction, value_u64_8) == 8);
static_assert(offsetof(OfpFlowMonitorAction, value_u16_17) == 17);
OFP_API void ofp_bswap_FlowMonitorAction(void *value)
{
    swap_members<&OfpFlowMonitorAction::value_u64_0, &OfpFlowMonitorAction::value_u64_8,
                 &OfpFlowMonitorAction::value_u16_17>(value);
}

namespace ofp {

static_assert(offsetof(OfpFlowLogDisable, instance_id) == 0);
static_assert(offsetof(OfpFlowLogDisable, disable) == 2);
void bswap_FlowLogDisable(void *value)
{
    swap_members<&OfpFlowLogDisable::instance_id, &OfpFlowLogDisable::disable>(value);
}

} // namespace ofp
