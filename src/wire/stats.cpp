#include "ofp/wire_stats.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpFRStatsHead, value_u32_0) == 0);
static_assert(offsetof(OfpFRStatsHead, value_u32_4) == 4);
static_assert(offsetof(OfpFRStatsHead, value_u32_8) == 8);
static_assert(offsetof(OfpFRStatsHead, value_u16_12) == 12);
OFP_API void OFP_bswap_FRStatsHead(void *value)
{
    swap_members<&OfpFRStatsHead::value_u32_0, &OfpFRStatsHead::value_u32_4,
                 &OfpFRStatsHead::value_u32_8, &OfpFRStatsHead::value_u16_12>(value);
}

static_assert(offsetof(OfpFRStatsInfo, packet_count) == 0);
static_assert(offsetof(OfpFRStatsInfo, byte_count) == 8);
static_assert(offsetof(OfpFRStatsInfo, duration_sec) == 16);
OFP_API void OFP_bswap_FRStatsInfo(void *value)
{
    swap_members<&OfpFRStatsInfo::packet_count, &OfpFRStatsInfo::byte_count,
                 &OfpFRStatsInfo::duration_sec>(value);
}

static_assert(offsetof(OfpMissFlow, packet_count) == 0);
static_assert(offsetof(OfpMissFlow, byte_count) == 8);
static_assert(offsetof(OfpMissFlow, value_u32_16) == 16);
static_assert(offsetof(OfpMissFlow, value_u32_20) == 20);
static_assert(offsetof(OfpMissFlow, value_u32_24) == 24);
static_assert(offsetof(OfpMissFlow, value_u32_28) == 28);
static_assert(offsetof(OfpMissFlow, value_u16_32) == 32);
static_assert(offsetof(OfpMissFlow, value_u16_34) == 34);
static_assert(offsetof(OfpMissFlow, value_u16_104) == 104);
OFP_API void OFP_bswap_MissFlow(void *value)
{
    swap_members<&OfpMissFlow::packet_count, &OfpMissFlow::byte_count, &OfpMissFlow::value_u32_16,
                 &OfpMissFlow::value_u32_20, &OfpMissFlow::value_u32_24, &OfpMissFlow::value_u32_28,
                 &OfpMissFlow::value_u16_32, &OfpMissFlow::value_u16_34,
                 &OfpMissFlow::value_u16_104>(value);
}

static_assert(offsetof(OfpSingleFRStats, packet_count) == 0);
static_assert(offsetof(OfpSingleFRStats, byte_count) == 8);
static_assert(offsetof(OfpSingleFRStats, duration_sec) == 16);
OFP_API void OFP_bswap_SingleFRStats(void *value)
{
    swap_members<&OfpSingleFRStats::packet_count, &OfpSingleFRStats::byte_count,
                 &OfpSingleFRStats::duration_sec>(value);
}

static_assert(offsetof(OfpFlowStatsFix, duration_sec) == 4);
static_assert(offsetof(OfpFlowStatsFix, duration_nsec) == 8);
static_assert(offsetof(OfpFlowStatsFix, packet_count) == 16);
static_assert(offsetof(OfpFlowStatsFix, byte_count) == 24);
OFP_API void OFP_bswap_FlowStatsFix(void *value)
{
    swap_members<&OfpFlowStatsFix::duration_sec, &OfpFlowStatsFix::duration_nsec,
                 &OfpFlowStatsFix::packet_count, &OfpFlowStatsFix::byte_count>(value);
}
