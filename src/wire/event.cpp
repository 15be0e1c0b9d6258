#include "ofp/wire_event.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpConfigEvent, event) == 0);
OFP_API void OFP_bswap_ConfigEvent(void *value) { swap_members<&OfpConfigEvent::event>(value); }

static_assert(offsetof(OfpEventType, event) == 0);
OFP_API void ofp_bswap_EventType(void *value) { swap_members<&OfpEventType::event>(value); }

static_assert(offsetof(OfpAppInfo, event) == 0);
OFP_API void ofp_bswap_AppInfo(void *value) { swap_members<&OfpAppInfo::event>(value); }

static_assert(offsetof(OfpAppPktStats, value_u64_8) == 8);
static_assert(offsetof(OfpAppPktStats, value_u32_80) == 80);
static_assert(offsetof(OfpAppPktStats, value_u32_84) == 84);
OFP_API void ofp_bswap_AppPktStats(void *value)
{
    swap_members<&OfpAppPktStats::value_u64_8, &OfpAppPktStats::value_u32_80,
                 &OfpAppPktStats::value_u32_84>(value);
}

static_assert(offsetof(OfpAppContext, value_u32_0) == 0);
static_assert(offsetof(OfpAppContext, value_u16_4) == 4);
static_assert(offsetof(OfpAppContext, value_u64_8) == 8);
static_assert(offsetof(OfpAppContext, value_u32_16) == 16);
OFP_API void OFP_bswap_AppContext(void *value)
{
    swap_members<&OfpAppContext::value_u32_0, &OfpAppContext::value_u16_4,
                 &OfpAppContext::value_u64_8, &OfpAppContext::value_u32_16>(value);
}

static_assert(offsetof(OfpCtrlStatusEventData, status) == 0);
OFP_API void ofp_bswap_CtrlStatusEventData(void *value)
{
    swap_members<&OfpCtrlStatusEventData::status>(value);
}

static_assert(offsetof(OfpXmlEventReg, value_u16_0) == 0);
static_assert(offsetof(OfpXmlEventReg, value_u32_4) == 4);
OFP_API void ofp_bswap_XmlEventReg(void *value)
{
    swap_members<&OfpXmlEventReg::value_u16_0, &OfpXmlEventReg::value_u32_4>(value);
}

static_assert(offsetof(OfpXmlFlowMonitorData, value_u64_0) == 0);
static_assert(offsetof(OfpXmlFlowMonitorData, value_u64_8) == 8);
static_assert(offsetof(OfpXmlFlowMonitorData, value_u32_20) == 20);
OFP_API void ofp_bswap_XmlFlowMonitorData(void *value)
{
    swap_members<&OfpXmlFlowMonitorData::value_u64_0, &OfpXmlFlowMonitorData::value_u64_8,
                 &OfpXmlFlowMonitorData::value_u32_20>(value);
}
