#include "ofp/wire_resource.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpLocalRule, value_u16_2) == 2);
static_assert(offsetof(OfpLocalRule, value_u32_4) == 4);
static_assert(offsetof(OfpLocalRule, value_u32_8) == 8);
OFP_API void OFP_bswap_LocalRule(void *value)
{
    swap_members<&OfpLocalRule::value_u16_2, &OfpLocalRule::value_u32_4,
                 &OfpLocalRule::value_u32_8>(value);
}

static_assert(offsetof(OfpQueueNum, count) == 0);
OFP_API void ofp_bswap_QueueNum(void *value) { swap_members<&OfpQueueNum::count>(value); }

static_assert(offsetof(OfpResrvAclRes, value) == 0);
OFP_API void OFP_bswap_ResrvAclRes(void *value) { swap_members<&OfpResrvAclRes::value>(value); }

static_assert(offsetof(OfpShowAclResv, value_u16_0) == 0);
static_assert(offsetof(OfpShowAclResv, value_u16_2) == 2);
OFP_API void OFP_bswap_ShowAclResv(void *value)
{
    swap_members<&OfpShowAclResv::value_u16_0, &OfpShowAclResv::value_u16_2>(value);
}

static_assert(offsetof(OfpGetAclTableNum, count) == 0);
OFP_API void OFP_bswap_GetAclTableNum(void *value)
{
    swap_members<&OfpGetAclTableNum::count>(value);
}

static_assert(offsetof(OfpRepResourcesIF, if_index) == 0);
static_assert(offsetof(OfpRepResourcesIF, value_u32_4) == 4);
static_assert(offsetof(OfpRepResourcesIF, value_u16_8) == 8);
static_assert(offsetof(OfpRepResourcesIF, value_u16_10) == 10);
static_assert(offsetof(OfpRepResourcesIF, value_u16_28) == 28);
static_assert(offsetof(OfpRepResourcesIF, value_u16_30) == 30);
OFP_API void OFP_bswap_RepResourcesIF(void *value)
{
    swap_members<&OfpRepResourcesIF::if_index, &OfpRepResourcesIF::value_u32_4,
                 &OfpRepResourcesIF::value_u16_8, &OfpRepResourcesIF::value_u16_10,
                 &OfpRepResourcesIF::value_u16_28, &OfpRepResourcesIF::value_u16_30>(value);
}

static_assert(offsetof(OfpReqResourcesIF, if_index) == 0);
static_assert(offsetof(OfpReqResourcesIF, value_u16_4) == 4);
OFP_API void OFP_bswap_ReqResourcesIF(void *value)
{
    swap_members<&OfpReqResourcesIF::if_index, &OfpReqResourcesIF::value_u16_4>(value);
}

namespace ofp {

static_assert(offsetof(OfpReserved140, value_u16_0) == 0);
void bswap_Reserved140(void *value) { swap_members<&OfpReserved140::value_u16_0>(value); }

static_assert(offsetof(OfpReserved144, value_u32_0) == 0);
void bswap_Reserved144(void *value) { swap_members<&OfpReserved144::value_u32_0>(value); }

static_assert(offsetof(OfpCacheInfo, value_u16_0) == 0);
static_assert(offsetof(OfpCacheInfo, value_u16_2) == 2);
static_assert(offsetof(OfpCacheInfo, value_u16_4) == 4);
void bswap_CacheInfo(void *value)
{
    swap_members<&OfpCacheInfo::value_u16_0, &OfpCacheInfo::value_u16_2,
                 &OfpCacheInfo::value_u16_4>(value);
}

static_assert(offsetof(OfpCacheInfoRep, value_u16_12) == 12);
static_assert(offsetof(OfpCacheInfoRep, value_u16_14) == 14);
static_assert(offsetof(OfpCacheInfoRep, value_u32_16) == 16);
static_assert(offsetof(OfpCacheInfoRep, value_u32_24) == 24);
static_assert(offsetof(OfpCacheInfoRep, value_u32_44) == 44);
static_assert(offsetof(OfpCacheInfoRep, value_u16_60) == 60);
static_assert(offsetof(OfpCacheInfoRep, value_u16_62) == 62);
static_assert(offsetof(OfpCacheInfoRep, value_u16_64) == 64);
void bswap_CacheInfoRep(void *value)
{
    swap_members<&OfpCacheInfoRep::value_u16_12, &OfpCacheInfoRep::value_u16_14,
                 &OfpCacheInfoRep::value_u32_16, &OfpCacheInfoRep::value_u32_24,
                 &OfpCacheInfoRep::value_u32_44, &OfpCacheInfoRep::value_u16_60,
                 &OfpCacheInfoRep::value_u16_62, &OfpCacheInfoRep::value_u16_64>(value);
}

static_assert(offsetof(OfpRefreshIpFlow, value) == 0);
void bswap_RefreshIpFlow(void *value) { swap_members<&OfpRefreshIpFlow::value>(value); }

static_assert(offsetof(OfpReserved194, value_u32_0) == 0);
static_assert(offsetof(OfpReserved194, value_u16_4) == 4);
static_assert(offsetof(OfpReserved194, value_u32_8) == 8);
void bswap_Reserved194(void *value)
{
    swap_members<&OfpReserved194::value_u32_0, &OfpReserved194::value_u16_4,
                 &OfpReserved194::value_u32_8>(value);
}

} // namespace ofp
