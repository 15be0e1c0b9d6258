// Sizes that the protocol fixes, and what every record keeps.
#include <type_traits>

#include <gtest/gtest.h>

#include "ofp/wire.h"

namespace {

// Records all of whose bytes are members: none travels with bytes that nobody set.
template <typename... Record>
constexpr bool without_holes = (std::has_unique_object_representations_v<Record> && ...);

static_assert(
    without_holes<
        OfpAcPortInfo, OfpActionHdr, OfpActionNum, OfpActiveInst, OfpAppContext, OfpAppInfo,
        OfpAppPktStats, OfpAux, OfpAuxCfg, OfpAuxID, OfpBand, OfpBatchIf, OfpBrr, OfpBucket,
        OfpBucketBase, OfpBucketStats, OfpCacheInfo, OfpCacheInfoRep, OfpCapSupportEVPN,
        OfpClientHead, OfpConfigEvent, OfpConnMode, OfpContext, OfpContextInfo, OfpCookie, OfpCtrl,
        OfpCtrlCfg, OfpCtrlDebugInfo, OfpCtrlID, OfpCtrlInfo, OfpCtrlSSL, OfpCtrlStatusEventData,
        OfpDMFilter, OfpDataPathID, OfpDataPlaneMode, OfpDeactiveInst, OfpDelFR, OfpDisMacTbl,
        OfpDropAct, OfpDrvContext, OfpDynMac, OfpDynMacAware, OfpDynMacNum, OfpEchoTime,
        OfpEnableALAlFunction, OfpEnablePayloadFunction, OfpErrCode, OfpEventType, OfpExcludeConnID,
        OfpExpEmpty, OfpExpLIAct, OfpExpMatchBssID, OfpExpMatchEapol, OfpExpMatchEgressPort,
        OfpExpMatchFlowFlag, OfpExpMatchHeader, OfpExpMatchInnerVlan, OfpExpMatchL4PortRange,
        OfpExpMatchPort, OfpExpMatchServ, OfpExpMatchVpnIndex, OfpExpMatchVsiID, OfpExpNextHopAct,
        OfpExpNextHopInvalidAct, OfpExpPktExpOffset, OfpExpPktOffset, OfpExpServAct, OfpFRStatsHead,
        OfpFRStatsInfo, OfpFailOpen, OfpFailOpenInfo, OfpFd, OfpFlowEntryBase, OfpFlowEntryLimit,
        OfpFlowLogDisable, OfpFlowMod, OfpFlowMonitorAction, OfpFlowMonitorInterval,
        OfpFlowMonitorThreShold, OfpFlowStatsFix, OfpFlowTable, OfpFlowTableInfo, OfpFlowTableRun,
        OfpForbiddenPort, OfpGetAclTableNum, OfpGlbDebug, OfpGlbDebugPkt, OfpGotoTblAct, OfpGroup,
        OfpGroupAct, OfpGroupBase, OfpGroupBucket, OfpGroupID, OfpGroupMod, OfpGroupRefReq,
        OfpGroupReply, OfpGroupReq, OfpGroupStats, OfpGroupTable, OfpGroupTableReq, OfpIfAggChg,
        OfpIfIndex, OfpIfInfo, OfpIgnore, OfpInstActive, OfpInstFilterController,
        OfpInstFilterFlags, OfpInstFilterInstance, OfpInstTbl, OfpInstTimer, OfpInstanceCfg,
        OfpInstanceID, OfpInstanceIsExist, OfpIpv6Enhanced, OfpLocalRule, OfpLoopProtection,
        OfpMacIp, OfpMacLearning, OfpMatchField, OfpMatchIPRange, OfpMeter, OfpMeterAct,
        OfpMeterBand, OfpMeterBase, OfpMeterID, OfpMeterRefReq, OfpMeterReply, OfpMeterReq,
        OfpMeterStats, OfpMeterTable, OfpMibTableInfo, OfpMissFlow, OfpMissRule, OfpMpls,
        OfpMsgFlag, OfpMsgHead, OfpMultiPart, OfpNormalFwdVlan, OfpOapClientNum, OfpOapServer,
        OfpOapServerRun, OfpOpenflowHeader, OfpOutputAct, OfpPacketFilter, OfpPacketOutAlAl,
        OfpPermitPortType, OfpPktContext, OfpPktinWithEgress, OfpPort, OfpPortCfg, OfpPortCfgAdv,
        OfpPortInstanceCfg, OfpPortNum, OfpPortShutdown, OfpPortStats, OfpPrecedence,
        OfpQinqNetWkcfg, OfpQueueAct, OfpQueueCfg, OfpQueueCfgRate, OfpQueueID, OfpQueueNum,
        OfpQueueStats, OfpReconnectTime, OfpRefRuleID, OfpRefreshIpFlow, OfpRepResourcesIF,
        OfpReqResourcesIF, OfpReserved109, OfpReserved110, OfpReserved129, OfpReserved140,
        OfpReserved144, OfpReserved146, OfpReserved194, OfpReserved218, OfpReserved66,
        OfpResrvAclRes, OfpRuleBase, OfpRuleID, OfpRuleIDInfo, OfpRuleNum, OfpSeqRuleID,
        OfpSetDevConf, OfpSetFieldAct, OfpSetTTLAct, OfpShowAclResv, OfpSingleFRStats, OfpSlotID,
        OfpSmartGroup, OfpSmartGroupID, OfpSmoothEmpty, OfpSummary, OfpSummaryCount,
        OfpTDTestGlbDebug, OfpTTPMode, OfpTableID, OfpTableInfo, OfpTableMissStats, OfpTableStats,
        OfpTagOpAct, OfpTblConfig, OfpTcpDscp, OfpTcpNsr, OfpTrapEnable, OfpVerbCtrlRep,
        OfpVerbIfRep, OfpVerbIfReq, OfpVerbInst, OfpVlanBitmap, OfpVlanLoosen, OfpVlanMask,
        OfpWriteMetaAct, OfpXmlEventReg, OfpXmlFlowMonitorData>);

template <typename... Record>
constexpr bool packed = ((alignof(Record) == 1) && ...);

static_assert(packed<OfpMpls, OfpMibTableInfo, OfpCtrlDebugInfo, OfpFlowMonitorAction>);

struct Size {
    const char *name;
    size_t is;
    size_t must_be;
};

constexpr Size sizes[] = {
    {"AcPortInfo", sizeof(OfpAcPortInfo), 64},
    {"ActionHdr", sizeof(OfpActionHdr), 8},
    {"AppInfo", sizeof(OfpAppInfo), 8},
    {"AppPktStats", sizeof(OfpAppPktStats), 88},
    {"AuxCfg", sizeof(OfpAuxCfg), 64},
    {"AuxID", sizeof(OfpAuxID), 4},
    {"BatchIf", sizeof(OfpBatchIf), 252},
    {"CacheInfo", sizeof(OfpCacheInfo), 8},
    {"CacheInfoRep", sizeof(OfpCacheInfoRep), 68},
    {"OfpClientHead", sizeof(OfpClientHead), 16},
    {"ConfigEvent", sizeof(OfpConfigEvent), 4},
    {"ConnMode", sizeof(OfpConnMode), 8},
    {"Context", sizeof(OfpContext), 24},
    {"Ctrl", sizeof(OfpCtrl), 192},
    {"CtrlCfg", sizeof(OfpCtrlCfg), 156},
    {"CtrlID", sizeof(OfpCtrlID), 4},
    {"CtrlSSL", sizeof(OfpCtrlSSL), 36},
    {"CtrlStatusEventData", sizeof(OfpCtrlStatusEventData), 4},
    {"DataPathID", sizeof(OfpDataPathID), 16},
    {"DataPlaneMode", sizeof(OfpDataPlaneMode), 4},
    {"DynMacAware", sizeof(OfpDynMacAware), 4},
    {"EchoTime", sizeof(OfpEchoTime), 8},
    {"EnableALAlFunction", sizeof(OfpEnableALAlFunction), 8},
    {"EnablePayloadFunction", sizeof(OfpEnablePayloadFunction), 80},
    {"ErrCode", sizeof(OfpErrCode), 4},
    {"EventType", sizeof(OfpEventType), 4},
    {"ExcludeConnID", sizeof(OfpExcludeConnID), 16},
    {"ExpMatchHeader", sizeof(OfpExpMatchHeader), 8},
    {"ExpMatchL4PortRange", sizeof(OfpExpMatchL4PortRange), 4},
    {"FRStatsInfo", sizeof(OfpFRStatsInfo), 24},
    {"FailOpen", sizeof(OfpFailOpen), 8},
    {"FlowEntryLimit", sizeof(OfpFlowEntryLimit), 8},
    {"FlowLogDisable", sizeof(OfpFlowLogDisable), 4},
    {"OfpFlowMod", sizeof(OfpFlowMod), 48},
    {"FlowMonitorAction", sizeof(OfpFlowMonitorAction), 19},
    {"FlowMonitorInterval", sizeof(OfpFlowMonitorInterval), 8},
    {"FlowMonitorThreShold", sizeof(OfpFlowMonitorThreShold), 8},
    {"FlowTable", sizeof(OfpFlowTable), 8},
    {"FlowTableRun", sizeof(OfpFlowTableRun), 12},
    {"ForbiddenPort", sizeof(OfpForbiddenPort), 8},
    {"GetAclTableNum", sizeof(OfpGetAclTableNum), 4},
    {"GlbDebug", sizeof(OfpGlbDebug), 96},
    {"GlbDebugPkt", sizeof(OfpGlbDebugPkt), 32},
    {"OfpGroupBucket", sizeof(OfpGroupBucket), 16},
    {"GroupID", sizeof(OfpGroupID), 8},
    {"OfpGroupMod", sizeof(OfpGroupMod), 16},
    {"GroupRefReq", sizeof(OfpGroupRefReq), 16},
    {"GroupTable", sizeof(OfpGroupTable), 8},
    {"GroupTableReq", sizeof(OfpGroupTableReq), 4},
    {"Ignore", sizeof(OfpIgnore), 4},
    {"InstActive", sizeof(OfpInstActive), 4},
    {"InstFilterController", sizeof(OfpInstFilterController), 8},
    {"InstFilterFlags", sizeof(OfpInstFilterFlags), 4},
    {"InstFilterInstance", sizeof(OfpInstFilterInstance), 8},
    {"InstTbl", sizeof(OfpInstTbl), 4},
    {"InstanceCfg", sizeof(OfpInstanceCfg), 272},
    {"InstanceID", sizeof(OfpInstanceID), 4},
    {"InstanceIsExist", sizeof(OfpInstanceIsExist), 4},
    {"Ipv6Enhanced", sizeof(OfpIpv6Enhanced), 4},
    {"LoopProtection", sizeof(OfpLoopProtection), 4},
    {"MacLearning", sizeof(OfpMacLearning), 4},
    {"MatchIPRange", sizeof(OfpMatchIPRange), 80},
    {"MeterBand", sizeof(OfpMeterBand), 40},
    {"MeterBase", sizeof(OfpMeterBase), 8},
    {"MeterRefReq", sizeof(OfpMeterRefReq), 12},
    {"MeterReq", sizeof(OfpMeterReq), 8},
    {"MeterTable", sizeof(OfpMeterTable), 8},
    {"MibTableInfo", sizeof(OfpMibTableInfo), 15},
    {"MissRule", sizeof(OfpMissRule), 8},
    {"MsgFlag", sizeof(OfpMsgFlag), 4},
    {"MsgHead", sizeof(OfpMsgHead), 4},
    {"OapClientNum", sizeof(OfpOapClientNum), 4},
    {"OapServer", sizeof(OfpOapServer), 40},
    {"OapServerRun", sizeof(OfpOapServerRun), 44},
    {"OfpOpenflowHeader", sizeof(OfpOpenflowHeader), 8},
    {"PacketFilter", sizeof(OfpPacketFilter), 8},
    {"PacketOutAlAl", sizeof(OfpPacketOutAlAl), 1028},
    {"PermitPortType", sizeof(OfpPermitPortType), 8},
    {"PktContext", sizeof(OfpPktContext), 1256},
    {"PortInstanceCfg", sizeof(OfpPortInstanceCfg), 12},
    {"PortShutdown", sizeof(OfpPortShutdown), 4},
    {"Precedence", sizeof(OfpPrecedence), 8},
    {"QinqNetWkcfg", sizeof(OfpQinqNetWkcfg), 4},
    {"ReconnectTime", sizeof(OfpReconnectTime), 8},
    {"RefRuleID", sizeof(OfpRefRuleID), 8},
    {"RefreshIpFlow", sizeof(OfpRefreshIpFlow), 4},
    {"RepResourcesIF", sizeof(OfpRepResourcesIF), 96},
    {"ReqResourcesIF", sizeof(OfpReqResourcesIF), 8},
    {"ResrvAclRes", sizeof(OfpResrvAclRes), 4},
    {"RuleID", sizeof(OfpRuleID), 4},
    {"RuleIDInfo", sizeof(OfpRuleIDInfo), 8},
    {"ShowAclResv", sizeof(OfpShowAclResv), 4},
    {"SmartGroup", sizeof(OfpSmartGroup), 4},
    {"SmartGroupID", sizeof(OfpSmartGroupID), 16},
    {"Summary", sizeof(OfpSummary), 24},
    {"SummaryCount", sizeof(OfpSummaryCount), 4},
    {"TDTestGlbDebug", sizeof(OfpTDTestGlbDebug), 16},
    {"TTPMode", sizeof(OfpTTPMode), 4},
    {"TableID", sizeof(OfpTableID), 4},
    {"TableInfo", sizeof(OfpTableInfo), 28},
    {"TcpDscp", sizeof(OfpTcpDscp), 8},
    {"TcpNsr", sizeof(OfpTcpNsr), 4},
    {"TrapEnable", sizeof(OfpTrapEnable), 6},
    {"VerbCtrlRep", sizeof(OfpVerbCtrlRep), 128},
    {"VerbIfRep", sizeof(OfpVerbIfRep), 52},
    {"VerbIfReq", sizeof(OfpVerbIfReq), 8},
    {"VerbInst", sizeof(OfpVerbInst), 256},
    {"VlanBitmap", sizeof(OfpVlanBitmap), 1024},
    {"VlanLoosen", sizeof(OfpVlanLoosen), 4},
    {"VlanMask", sizeof(OfpVlanMask), 4},
};

TEST(Layout, RecordsAreAsLongAsTheProtocolSays)
{
    for (const auto &size : sizes)
        EXPECT_EQ(size.is, size.must_be) << size.name;
}

} // namespace
