#include "config/configure.h"
#include "ofp/config.h"
#include "ofp/message.h"

using ofp::configure;
using ofp::notify;

OFP_API uint32_t OFP_set_FlowEntryLimit(const OfpFlowEntryLimit *limit)
{
    return configure(OFP_MSG_SET_FLOW_ENTRY_LIMIT, OFP_TLV_FlowEntryLimit, *limit);
}

OFP_API uint32_t OFP_set_MissRule(const OfpMissRule *rule)
{
    return configure(OFP_MSG_SET_MISS_RULE, OFP_TLV_MissRule, *rule);
}

OFP_API uint32_t OFP_set_FlowLogDisable(uint16_t instance_id, uint16_t disable)
{
    return configure(OFP_MSG_SET_FLOW_LOG_DISABLE, OFP_TLV_FlowLogDisable,
                     OfpFlowLogDisable{.instance_id = instance_id, .disable = disable});
}

OFP_API uint32_t OFP_set_RefreshIpFlow(uint16_t value)
{
    return configure(OFP_MSG_REFRESH_IP_FLOW, OFP_TLV_RefreshIpFlow,
                     OfpRefreshIpFlow{.value = value});
}

OFP_API uint32_t OFP_set_ResetCache(uint16_t key)
{
    return notify(OFP_MSG_RESET_CACHE, OFP_TLV_CacheInfo, OfpCacheInfo{.value_u16_0 = key});
}

OFP_API uint32_t OFP_set_ResvAclRes(const OfpResrvAclRes *reserved)
{
    return configure(OFP_MSG_SET_RESV_ACL_RES, OFP_TLV_ResrvAclRes, *reserved);
}

OFP_API uint32_t OFP_set_PacketFilter(uint16_t instance_id, uint32_t filter)
{
    return configure(OFP_MSG_SET_PACKET_FILTER, OFP_TLV_PacketFilter,
                     OfpPacketFilter{.filter = filter, .instance_id = instance_id});
}

OFP_API uint32_t OFP_set_FlowMonitorInterval(const OfpFlowMonitorInterval *interval)
{
    return configure(OFP_MSG_SET_FLOW_MONITOR_INTERVAL, OFP_TLV_FlowMonitorInterval, *interval);
}

OFP_API uint32_t OFP_set_FlowMonitorThreShold(const OfpFlowMonitorThreShold *threshold)
{
    return configure(OFP_MSG_SET_FLOW_MONITOR_THRESHOLD, OFP_TLV_FlowMonitorThreShold, *threshold);
}

OFP_API uint32_t OFP_set_FlowMonitorAction(uint64_t value0, uint64_t value8, uint8_t value16,
                                           uint16_t value17)
{
    return configure(OFP_MSG_SET_FLOW_MONITOR_ACTION, OFP_TLV_FlowMonitorAction,
                     OfpFlowMonitorAction{.value_u64_0 = value0,
                                          .value_u64_8 = value8,
                                          .value_u8_16 = value16,
                                          .value_u16_17 = value17});
}
