#include "ofp/wire_instance.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpInstanceCfg, value_u32_0) == 0);
static_assert(offsetof(OfpInstanceCfg, value_u32_4) == 4);
static_assert(offsetof(OfpInstanceCfg, value_u32_8) == 8);
static_assert(offsetof(OfpInstanceCfg, instance_id) == 12);
static_assert(offsetof(OfpInstanceCfg, vlan_value) == 14);
OFP_API void OFP_bswap_InstanceCfg(void *value)
{
    swap_members<&OfpInstanceCfg::value_u32_0, &OfpInstanceCfg::value_u32_4,
                 &OfpInstanceCfg::value_u32_8, &OfpInstanceCfg::instance_id,
                 &OfpInstanceCfg::vlan_value>(value);
}

static_assert(offsetof(OfpInstanceID, instance_id) == 0);
OFP_API void OFP_bswap_InstanceID(void *value) { swap_members<&OfpInstanceID::instance_id>(value); }

static_assert(offsetof(OfpInstanceIsExist, exists) == 0);
OFP_API void OFP_bswap_InstanceIsExist(void *value)
{
    swap_members<&OfpInstanceIsExist::exists>(value);
}

static_assert(offsetof(OfpFlowEntryLimit, limit) == 0);
static_assert(offsetof(OfpFlowEntryLimit, instance_id) == 4);
OFP_API void OFP_bswap_FlowEntryLimit(void *value)
{
    swap_members<&OfpFlowEntryLimit::limit, &OfpFlowEntryLimit::instance_id>(value);
}

static_assert(offsetof(OfpSetDevConf, value_u32_0) == 0);
static_assert(offsetof(OfpSetDevConf, value_u32_4) == 4);
static_assert(offsetof(OfpSetDevConf, value_u16_8) == 8);
static_assert(offsetof(OfpSetDevConf, value_u16_10) == 10);
OFP_API void OFP_bswap_SetDevConf(void *value)
{
    swap_members<&OfpSetDevConf::value_u32_0, &OfpSetDevConf::value_u32_4,
                 &OfpSetDevConf::value_u16_8, &OfpSetDevConf::value_u16_10>(value);
}

OFP_API void OFP_bswap_VerbInst(void *) {}

OFP_API void OFP_bswap_DrvContext(void *) {}

static_assert(offsetof(OfpActiveInst, value_u64_0) == 0);
static_assert(offsetof(OfpActiveInst, value_u32_8) == 8);
static_assert(offsetof(OfpActiveInst, value_u32_12) == 12);
static_assert(offsetof(OfpActiveInst, value_u16_16) == 16);
static_assert(offsetof(OfpActiveInst, value_u16_18) == 18);
static_assert(offsetof(OfpActiveInst, value_u32_20) == 20);
static_assert(offsetof(OfpActiveInst, value_u32_24) == 24);
static_assert(offsetof(OfpActiveInst, value_u16_28) == 28);
static_assert(offsetof(OfpActiveInst, value_u32_36) == 36);
OFP_API void OFP_bswap_ActiveInst(void *value)
{
    swap_members<
        &OfpActiveInst::value_u64_0, &OfpActiveInst::value_u32_8, &OfpActiveInst::value_u32_12,
        &OfpActiveInst::value_u16_16, &OfpActiveInst::value_u16_18, &OfpActiveInst::value_u32_20,
        &OfpActiveInst::value_u32_24, &OfpActiveInst::value_u16_28, &OfpActiveInst::value_u32_36>(
        value);
}

static_assert(offsetof(OfpInstActive, active) == 0);
OFP_API void OFP_bswap_InstActive(void *value) { swap_members<&OfpInstActive::active>(value); }

static_assert(offsetof(OfpInstTimer, value_u32_0) == 0);
static_assert(offsetof(OfpInstTimer, value_u32_4) == 4);
OFP_API void OFP_bswap_InstTimer(void *value)
{
    swap_members<&OfpInstTimer::value_u32_0, &OfpInstTimer::value_u32_4>(value);
}

static_assert(offsetof(OfpDataPathID, datapath_id) == 0);
static_assert(offsetof(OfpDataPathID, instance_id) == 8);
OFP_API void OFP_bswap_DataPathID(void *value)
{
    swap_members<&OfpDataPathID::datapath_id, &OfpDataPathID::instance_id>(value);
}

static_assert(offsetof(OfpSummary, value_u64_0) == 0);
static_assert(offsetof(OfpSummary, value_u32_8) == 8);
static_assert(offsetof(OfpSummary, value_u32_12) == 12);
static_assert(offsetof(OfpSummary, value_u16_16) == 16);
static_assert(offsetof(OfpSummary, value_u16_18) == 18);
static_assert(offsetof(OfpSummary, value_u16_20) == 20);
OFP_API void OFP_bswap_Summary(void *value)
{
    swap_members<&OfpSummary::value_u64_0, &OfpSummary::value_u32_8, &OfpSummary::value_u32_12,
                 &OfpSummary::value_u16_16, &OfpSummary::value_u16_18, &OfpSummary::value_u16_20>(
        value);
}

static_assert(offsetof(OfpDeactiveInst, instance_id) == 0);
static_assert(offsetof(OfpDeactiveInst, value_u16_2) == 2);
OFP_API void OFP_bswap_DeactiveInst(void *value)
{
    swap_members<&OfpDeactiveInst::instance_id, &OfpDeactiveInst::value_u16_2>(value);
}

static_assert(offsetof(OfpContext, value_u64_0) == 0);
static_assert(offsetof(OfpContext, value_u32_8) == 8);
static_assert(offsetof(OfpContext, value_u32_12) == 12);
static_assert(offsetof(OfpContext, value_u32_16) == 16);
static_assert(offsetof(OfpContext, value_u16_20) == 20);
OFP_API void ofp_bswap_Context(void *value)
{
    swap_members<&OfpContext::value_u64_0, &OfpContext::value_u32_8, &OfpContext::value_u32_12,
                 &OfpContext::value_u32_16, &OfpContext::value_u16_20>(value);
}

static_assert(offsetof(OfpTcpDscp, instance_id) == 0);
static_assert(offsetof(OfpTcpDscp, dscp) == 4);
OFP_API void OFP_bswap_TcpDscp(void *value)
{
    swap_members<&OfpTcpDscp::instance_id, &OfpTcpDscp::dscp>(value);
}

static_assert(offsetof(OfpDataPlaneMode, instance_id) == 0);
static_assert(offsetof(OfpDataPlaneMode, mode) == 2);
OFP_API void OFP_bswap_DataPlaneMode(void *value)
{
    swap_members<&OfpDataPlaneMode::instance_id, &OfpDataPlaneMode::mode>(value);
}

static_assert(offsetof(OfpTTPMode, instance_id) == 0);
static_assert(offsetof(OfpTTPMode, mode) == 2);
OFP_API void OFP_bswap_TTPMode(void *value)
{
    swap_members<&OfpTTPMode::instance_id, &OfpTTPMode::mode>(value);
}

namespace ofp {

static_assert(offsetof(OfpSummaryCount, count) == 0);
void bswap_SummaryCount(void *value) { swap_members<&OfpSummaryCount::count>(value); }

static_assert(offsetof(OfpInstFilterInstance, instance_id) == 0);
static_assert(offsetof(OfpInstFilterInstance, filter_kind) == 2);
static_assert(offsetof(OfpInstFilterInstance, ext) == 4);
void bswap_InstFilterInstance(void *value)
{
    swap_members<&OfpInstFilterInstance::instance_id, &OfpInstFilterInstance::filter_kind,
                 &OfpInstFilterInstance::ext>(value);
}

static_assert(offsetof(OfpInstFilterController, zero) == 0);
static_assert(offsetof(OfpInstFilterController, param_a) == 4);
static_assert(offsetof(OfpInstFilterController, param_b) == 6);
void bswap_InstFilterController(void *value)
{
    swap_members<&OfpInstFilterController::zero, &OfpInstFilterController::param_a,
                 &OfpInstFilterController::param_b>(value);
}

static_assert(offsetof(OfpInstFilterFlags, param) == 0);
void bswap_InstFilterFlags(void *value) { swap_members<&OfpInstFilterFlags::param>(value); }

static_assert(offsetof(OfpMissRule, mode) == 0);
static_assert(offsetof(OfpMissRule, instance_id) == 4);
void bswap_MissRule(void *value)
{
    swap_members<&OfpMissRule::mode, &OfpMissRule::instance_id>(value);
}

static_assert(offsetof(OfpContextInfo, value_u64_0) == 0);
static_assert(offsetof(OfpContextInfo, value_u32_8) == 8);
static_assert(offsetof(OfpContextInfo, value_u32_12) == 12);
static_assert(offsetof(OfpContextInfo, value_u32_16) == 16);
static_assert(offsetof(OfpContextInfo, value_u16_20) == 20);
void bswap_ContextInfo(void *value)
{
    swap_members<&OfpContextInfo::value_u64_0, &OfpContextInfo::value_u32_8,
                 &OfpContextInfo::value_u32_12, &OfpContextInfo::value_u32_16,
                 &OfpContextInfo::value_u16_20>(value);
}

static_assert(offsetof(OfpPrecedence, instance_id) == 0);
static_assert(offsetof(OfpPrecedence, precedence) == 2);
void bswap_Precedence(void *value)
{
    swap_members<&OfpPrecedence::instance_id, &OfpPrecedence::precedence>(value);
}

static_assert(offsetof(OfpTcpNsr, instance_id) == 0);
static_assert(offsetof(OfpTcpNsr, enable) == 2);
void bswap_TcpNsr(void *value) { swap_members<&OfpTcpNsr::instance_id, &OfpTcpNsr::enable>(value); }

} // namespace ofp
