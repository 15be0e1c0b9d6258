#include "ofp/wire_flow.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpClientHead, smooth_mode) == 0);
static_assert(offsetof(OfpClientHead, zone_id) == 4);
static_assert(offsetof(OfpClientHead, smooth_id) == 8);
static_assert(offsetof(OfpClientHead, local_lip) == 12);
static_assert(offsetof(OfpClientHead, client_id) == 14);
OFP_API void OFP_bswap_OfpClientHead(void *value)
{
    swap_members<&OfpClientHead::smooth_mode, &OfpClientHead::zone_id, &OfpClientHead::smooth_id,
                 &OfpClientHead::local_lip, &OfpClientHead::client_id>(value);
}

static_assert(offsetof(OfpFlowMod, cookie) == 8);
static_assert(offsetof(OfpFlowMod, cookie_mask) == 16);
static_assert(offsetof(OfpFlowMod, idle_timeout) == 26);
static_assert(offsetof(OfpFlowMod, hard_timeout) == 28);
static_assert(offsetof(OfpFlowMod, priority) == 30);
static_assert(offsetof(OfpFlowMod, buffer_id) == 32);
static_assert(offsetof(OfpFlowMod, out_port) == 36);
static_assert(offsetof(OfpFlowMod, out_group) == 40);
static_assert(offsetof(OfpFlowMod, flags) == 44);
OFP_API void OFP_bswap_OfpFlowMod(void *value)
{
    swap_members<&OfpFlowMod::cookie, &OfpFlowMod::cookie_mask, &OfpFlowMod::idle_timeout,
                 &OfpFlowMod::hard_timeout, &OfpFlowMod::priority, &OfpFlowMod::buffer_id,
                 &OfpFlowMod::out_port, &OfpFlowMod::out_group, &OfpFlowMod::flags>(value);
}

static_assert(offsetof(OfpGroupMod, command) == 8);
static_assert(offsetof(OfpGroupMod, group_id) == 12);
OFP_API void OFP_bswap_OfpGroupMod(void *value)
{
    swap_members<&OfpGroupMod::command, &OfpGroupMod::group_id>(value);
}

static_assert(offsetof(OfpGroupBucket, length) == 0);
static_assert(offsetof(OfpGroupBucket, weight) == 2);
static_assert(offsetof(OfpGroupBucket, watch_port) == 4);
static_assert(offsetof(OfpGroupBucket, watch_group) == 8);
OFP_API void OFP_bswap_OfpGroupBucket(void *value)
{
    swap_members<&OfpGroupBucket::length, &OfpGroupBucket::weight, &OfpGroupBucket::watch_port,
                 &OfpGroupBucket::watch_group>(value);
}
