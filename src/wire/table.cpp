#include "ofp/wire.h"
#include "wire/converters.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

using Converter = void (*)(void *value);

// A type that travels as it lies in memory.
constexpr Converter as_is = nullptr;

constexpr auto converters = by_type<Converter, OFP_TLV_LAST>({
    {1, OFP_bswap_MsgHead},
    {2, OFP_bswap_ErrCode},

    {3, OFP_bswap_InstanceCfg},
    {4, OFP_bswap_InstanceID},
    {5, OFP_bswap_InstanceIsExist},
    {6, OFP_bswap_Ctrl},
    {7, OFP_bswap_CtrlCfg},
    {8, OFP_bswap_EchoTime},
    {9, OFP_bswap_FlowEntryLimit},
    {10, OFP_bswap_FailOpen},
    {11, OFP_bswap_CtrlInfo},

    {12, OFP_bswap_IfIndex},
    {13, OFP_bswap_PortStats},
    {14, OFP_bswap_InstTbl},
    {15, OFP_bswap_InstTbl}, // one layout with 14

    {16, OFP_bswap_FlowEntryBase},
    {17, OFP_bswap_DropAct},
    {18, OFP_bswap_OutputAct},
    {19, OFP_bswap_GroupAct},
    {20, OFP_bswap_QueueAct},
    {21, OFP_bswap_SetFieldAct},
    {22, OFP_bswap_SetTTLAct},
    {23, OFP_bswap_OutputAct}, // one layout with 18
    {24, OFP_bswap_ActionHdr},
    {25, OFP_bswap_TagOpAct},
    {26, OFP_bswap_MeterAct},
    {27, OFP_bswap_WriteMetaAct},
    {28, OFP_bswap_GotoTblAct},
    {29, OFP_bswap_ActionHdr}, // one layout with 24

    {30, OFP_bswap_FRStatsHead},
    {31, OFP_bswap_RuleID},
    {32, OFP_bswap_SeqRuleID},
    {33, OFP_bswap_FRStatsInfo},
    {34, OFP_bswap_Brr},
    {35, OFP_bswap_TableID}, // byte content
    {36, OFP_bswap_TableStats},

    {37, OFP_bswap_SetDevConf},
    {38, OFP_bswap_VerbInst}, // byte content
    {39, OFP_bswap_VerbCtrlRep},
    {40, OFP_bswap_VerbIfRep},
    {41, OFP_bswap_VerbIfReq},
    {42, OFP_bswap_TblConfig},

    {43, OFP_bswap_RuleNum},
    {44, OFP_bswap_ActionNum},
    {45, OFP_bswap_DelFR},

    {46, OFP_bswap_PortCfg},
    {47, OFP_bswap_PortCfgAdv},
    {48, as_is},

    {49, OFP_bswap_DrvContext}, // byte content
    {50, OFP_bswap_ActiveInst},
    {51, OFP_bswap_FailOpenInfo},
    {52, OFP_bswap_FlowTableInfo}, // byte content
    {53, OFP_bswap_MissFlow},
    {54, OFP_bswap_PktContext},

    {55, OFP_bswap_TableInfo},
    {56, OFP_bswap_RuleIDInfo},
    {57, OFP_bswap_RuleBase},
    {58, OFP_bswap_SingleFRStats},
    {59, OFP_bswap_MatchField},
    {60, OFP_bswap_Group},
    {61, OFP_bswap_Bucket},
    {62, OFP_bswap_GroupReply},
    {63, OFP_bswap_Meter},
    {64, OFP_bswap_Band},
    {65, OFP_bswap_MeterReply},

    {66, bswap_Reserved66},
    {67, OFP_bswap_InstActive},

    {68, OFP_bswap_DynMacAware},
    {69, OFP_bswap_FlowTable},
    {70, OFP_bswap_FlowTableRun},

    {71, OFP_bswap_GlbDebug},
    {72, OFP_bswap_GlbDebugPkt},
    {73, OFP_bswap_DMFilter},
    {74, OFP_bswap_DynMac},
    {75, OFP_bswap_MacIp},

    {76, OFP_bswap_TableMissStats},
    {77, OFP_bswap_SlotID},
    {78, OFP_bswap_MultiPart},
    {79, OFP_bswap_FlowStatsFix},
    {80, OFP_bswap_ReconnectTime},

    {81, OFP_bswap_MeterID},
    {82, OFP_bswap_MeterStats},
    {83, OFP_bswap_QueueID},
    {84, OFP_bswap_QueueStats},

    {85, OFP_bswap_InstTimer},
    {86, OFP_bswap_DisMacTbl},
    {87, OFP_bswap_DataPathID},
    {88, OFP_bswap_VlanLoosen},
    {89, OFP_bswap_DynMacNum},
    {90, OFP_bswap_VlanBitmap}, // as a whole, by the platform
    {91, OFP_bswap_LocalRule},
    {92, OFP_bswap_MacLearning},
    {93, OFP_bswap_Fd},
    {94, OFP_bswap_ConnMode},

    {95, OFP_bswap_GroupTableReq},
    {96, OFP_bswap_GroupTable},
    {97, OFP_bswap_GroupID},
    {98, OFP_bswap_GroupBase},
    {99, OFP_bswap_BucketBase},
    {100, OFP_bswap_GroupRefReq},
    {101, OFP_bswap_RefRuleID},
    {102, OFP_bswap_GroupReq},
    {103, OFP_bswap_GroupStats},
    {104, OFP_bswap_BucketStats},
    {105, OFP_bswap_QueueCfg},
    {106, OFP_bswap_QueueCfgRate},

    {107, OFP_bswap_Port},
    {108, OFP_bswap_PortNum},
    {109, bswap_Reserved109}, // byte content
    {110, bswap_Reserved110}, // byte content
    {111, bswap_SummaryCount},
    {112, OFP_bswap_Summary},

    {113, OFP_bswap_MatchField}, // one layout with 59
    {114, OFP_bswap_MeterTable},
    {115, OFP_bswap_MeterReq},
    {116, OFP_bswap_MsgFlag},
    {117, OFP_bswap_MeterBase},
    {118, OFP_bswap_MeterBand},
    {119, OFP_bswap_MeterRefReq},

    {120, OFP_bswap_CtrlID},
    {121, OFP_bswap_OfpClientHead},
    {122, as_is}, // OpenFlow messages are written in network order
    {123, OFP_bswap_BatchIf},

    {124, bswap_InstFilterInstance},
    {125, bswap_InstFilterController},
    {126, bswap_InstFilterFlags},
    {127, bswap_MissRule},
    {128, bswap_ForbiddenPort},
    {129, bswap_Reserved129},
    {130, OFP_bswap_DeactiveInst},

    {131, bswap_OapServer},
    {132, bswap_OapServerRun},
    {133, bswap_OapClientNum},
    {134, ofp_bswap_Context},
    {135, OFP_bswap_AuxCfg},
    {136, OFP_bswap_AuxID},
    {137, OFP_bswap_Aux},
    {138, as_is},
    {139, bswap_ContextInfo},
    {140, bswap_Reserved140},

    {141, ofp_bswap_IfInfo},
    {142, OFP_bswap_PortInstanceCfg},
    {143, ofp_bswap_QueueNum},
    {144, bswap_Reserved144},

    {145, OFP_bswap_ExpMatchVsiID},
    {146, bswap_Reserved146},
    {147, OFP_bswap_ExpMatchPort},
    {148, OFP_bswap_ExpMatchServ},
    {149, OFP_bswap_ExpLIAct},
    {150, OFP_bswap_ExpServAct},
    {151, OFP_bswap_ExpMatchVpnIndex},

    {152, bswap_CacheInfo},
    {153, bswap_CacheInfoRep},
    {154, bswap_Precedence},
    {155, OFP_bswap_ExpMatchServ}, // one layout with 148
    {156, OFP_bswap_ExpServAct},   // one layout with 150

    {157, bswap_FlowLogDisable},
    {158, as_is},
    {159, as_is},
    {160, as_is}, // PacketFilter
    {161, OFP_bswap_ExpMatchInnerVlan},
    {162, OFP_bswap_ExpMatchEgressPort},
    {163, OFP_bswap_IfAggChg},
    {164, OFP_bswap_QinqNetWkcfg},
    {165, bswap_RefreshIpFlow},
    {166, OFP_bswap_ExpMatchBssID},
    {167, OFP_bswap_ExpMatchEapol},
    {168, as_is},

    {169, ofp_bswap_Cookie},
    {170, as_is},
    {171, OFP_bswap_PktinWithEgress},
    {172, bswap_PermitPortType},
    {173, OFP_bswap_ExpNextHopAct},
    {174, as_is},
    {175, OFP_bswap_ExpNextHopInvalidAct},

    {176, as_is}, // TDTestGlbDebug
    {177, OFP_bswap_TcpDscp},
    {178, bswap_TcpNsr},
    {179, OFP_bswap_ConfigEvent},
    {180, OFP_bswap_ResrvAclRes},
    {181, OFP_bswap_ShowAclResv},
    {182, OFP_bswap_PortShutdown},
    {183, OFP_bswap_LoopProtection},
    {184, bswap_EnableALAlFunction},

    {185, OFP_bswap_ExpPktOffset},
    {186, ofp_bswap_PacketOutAlAl},
    {187, OFP_bswap_NormalFwdVlan},
    {188, OFP_bswap_ExcludeConnID},
    {189, OFP_bswap_ExpPktExpOffset},

    {190, ofp_bswap_EventType},
    {191, ofp_bswap_AppInfo},
    {192, ofp_bswap_AppInfo}, // one layout with 191
    {193, as_is},             // PktData
    {194, bswap_Reserved194},
    {195, ofp_bswap_AppPktStats},
    {196, OFP_bswap_ExpMatchFlowFlag},

    {197, OFP_bswap_SmoothEmpty},
    {198, OFP_bswap_AppContext},
    {199, OFP_bswap_DataPlaneMode},
    {200, as_is}, // AcPortInfo
    {201, bswap_EnablePayloadFunction},
    {202, OFP_bswap_CtrlDebugInfo},
    {203, OFP_bswap_GetAclTableNum},
    {204, OFP_bswap_Ignore},
    {205, as_is},

    {206, OFP_bswap_Mpls},
    {207, as_is},
    {208, as_is},
    {209, OFP_bswap_MibTableInfo},
    {210, OFP_bswap_TrapEnable},
    {211, OFP_bswap_TTPMode},
    {212, as_is},
    {213, as_is},
    {214, as_is},
    {215, as_is},

    {216, OFP_bswap_RepResourcesIF},
    {217, OFP_bswap_ReqResourcesIF},
    {218, bswap_Reserved218},
    {219, as_is}, // CtrlSSL
    {220, as_is},
    {221, as_is}, // Ipv6Enhanced
    {222, as_is},
    {223, as_is},

    {224, OFP_bswap_SmartGroup},
    {225, OFP_bswap_SmartGroupID},
    {226, OFP_bswap_ExpEmpty},
    {227, as_is},

    {228, OFP_bswap_CapSupportEVPN},
    {229, as_is},
    {230, ofp_bswap_CtrlStatusEventData},
    {231, ofp_bswap_XmlEventReg},
    {232, ofp_bswap_XmlFlowMonitorData},
    {233, ofp_bswap_FlowMonitorInterval},
    {234, ofp_bswap_FlowMonitorThreShold},
    {235, ofp_bswap_FlowMonitorAction},
});

} // namespace
} // namespace ofp

OFP_API void OFP_bswap_ByteSwap(uint32_t type, void *value)
{
    if (const auto convert = ofp::converters[type])
        convert(value);
}
