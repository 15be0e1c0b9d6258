#include <set>
#include <string>

#include <gtest/gtest.h>

#include "ofp/message.h"
#include "wire/record_fields.h"

namespace ofpctl {
namespace {

TEST(RecordFields, EveryTypeOfTheConfigurationHasNames)
{
    for (const uint32_t type : {OFP_TLV_InstanceCfg,
                                OFP_TLV_InstanceID,
                                OFP_TLV_CtrlCfg,
                                OFP_TLV_EchoTime,
                                OFP_TLV_FlowEntryLimit,
                                OFP_TLV_FailOpen,
                                OFP_TLV_DynMacAware,
                                OFP_TLV_FlowTable,
                                OFP_TLV_GlbDebug,
                                OFP_TLV_ReconnectTime,
                                OFP_TLV_DataPathID,
                                OFP_TLV_MacLearning,
                                OFP_TLV_ConnMode,
                                OFP_TLV_CtrlID,
                                OFP_TLV_InstFilterInstance,
                                OFP_TLV_InstFilterController,
                                OFP_TLV_InstFilterFlags,
                                OFP_TLV_MissRule,
                                OFP_TLV_ForbiddenPort,
                                OFP_TLV_OapServer,
                                OFP_TLV_AuxCfg,
                                OFP_TLV_PortInstanceCfg,
                                OFP_TLV_CacheInfo,
                                OFP_TLV_Precedence,
                                OFP_TLV_FlowLogDisable,
                                OFP_TLV_PacketFilter,
                                OFP_TLV_QinqNetWkcfg,
                                OFP_TLV_RefreshIpFlow,
                                OFP_TLV_PermitPortType,
                                OFP_TLV_TDTestGlbDebug,
                                OFP_TLV_TcpDscp,
                                OFP_TLV_TcpNsr,
                                OFP_TLV_ConfigEvent,
                                OFP_TLV_ResrvAclRes,
                                OFP_TLV_PortShutdown,
                                OFP_TLV_LoopProtection,
                                OFP_TLV_EnableALAlFunction,
                                OFP_TLV_PacketOutAlAl,
                                OFP_TLV_ExcludeConnID,
                                OFP_TLV_DataPlaneMode,
                                OFP_TLV_EnablePayloadFunction,
                                OFP_TLV_Ignore,
                                OFP_TLV_TrapEnable,
                                OFP_TLV_TTPMode,
                                OFP_TLV_CtrlSSL,
                                OFP_TLV_Ipv6Enhanced,
                                OFP_TLV_SmartGroup,
                                OFP_TLV_FlowMonitorInterval,
                                OFP_TLV_FlowMonitorThreShold,
                                OFP_TLV_FlowMonitorAction})
        EXPECT_FALSE(fields_of(type).empty()) << type;
}

TEST(RecordFields, NamesOfARecordAreDistinct)
{
    for (uint32_t type = 1; type <= OFP_TLV_LAST; type++) {
        std::set<std::string_view> names;
        for (const FieldRow &row : fields_of(type))
            EXPECT_TRUE(names.insert(row.name).second) << type << " " << row.name;
    }
}

TEST(RecordFields, TypesWithOneRecordShareItsNames)
{
    EXPECT_EQ(fields_of(OFP_TLV_InstTblReply).data(), fields_of(OFP_TLV_InstTbl).data());
    EXPECT_EQ(fields_of(OFP_TLV_AppEvent).data(), fields_of(OFP_TLV_AppInfo).data());
}

TEST(RecordFields, PlacesAreThoseOfTheRecord)
{
    const auto rows = fields_of(OFP_TLV_FlowMonitorAction);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[3].name, "value_u16_17");
    EXPECT_EQ(rows[3].offset, 17);
    EXPECT_EQ(rows[3].width, 2);
}

constexpr FieldRow first{8, 8, 0, 4, 1, Shape::number, "a"};
constexpr FieldRow second{8, 8, 4, 4, 1, Shape::number, "b"};
constexpr FieldRow gap[] = {{8, 8, 0, 2, 1, Shape::number, "a"}, second};
constexpr FieldRow whole[] = {first, second};
constexpr FieldRow cut[] = {first};

TEST(RecordFields, AGapIsNoticed)
{
    EXPECT_TRUE(cover_records(whole));
    EXPECT_FALSE(cover_records(gap));
    EXPECT_FALSE(cover_records(cut));
}

TEST(Names, AreThoseOfTheCatalogue)
{
    EXPECT_EQ(tlv_name(8), "EchoTime");
    EXPECT_EQ(tlv_name(236), "");
    EXPECT_EQ(message_name(6), "SET_ECHO_TIME");
    EXPECT_EQ(message_name(0x20000001), "RESULT");
    EXPECT_EQ(message_name(13), "");
}

} // namespace
} // namespace ofpctl
