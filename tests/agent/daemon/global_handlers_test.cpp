#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"
#include "daemon/records.h"

namespace agent::test {
namespace {

class GlobalSettings : public testing::Test {
protected:
    Datagram send(uint32_t code, uint16_t type, const Datagram &value)
    {
        return ask_one(model, join({head(code), tlv(type, value)}));
    }
    const GlobalConfig &global() const { return model.configuration().global(); }

    Model model;
};

TEST_F(GlobalSettings, AreReadAsTheyTravel)
{
    for (const SettingRequest &request : setting_requests()) {
        ask(model, request.datagram());
    }
    EXPECT_EQ(global().ignore, 3);
    EXPECT_EQ(global().ipv6_enhanced, 1);
    EXPECT_EQ(global().reserved_acl_resources, 0x40);
    EXPECT_EQ(global().refresh_ip_flow, 2);
    EXPECT_EQ(global().normal_forward_vlans, VlanSet().set(2).set(20).set(200));
    EXPECT_EQ(global().shut_down_ports, std::set<uint32_t>{PORT});
    EXPECT_EQ(global().oap_server, (OapServer{"oap", 7, 8, 9}));
    EXPECT_EQ(global().flow_monitor_action, (FlowMonitorAction{1, 2, 3, 4}));
    EXPECT_EQ(global().test_debug[15], 15);
    const InstanceConfig &instance = *model.instance(INSTANCE);
    EXPECT_EQ(instance.analysis, (AnalysisFunctions{0xff, 1}));
    ASSERT_TRUE(instance.payload);
    EXPECT_EQ(instance.payload->functions, 0xf0u);
    EXPECT_EQ(instance.payload->value_u32_4, 2u);
    EXPECT_EQ(instance.payload->value_u32_8, 3u);
    EXPECT_EQ(instance.payload->opaque[63], 0x33);
}

TEST_F(GlobalSettings, OutOfRangeAreRefused)
{
    uint16_t two = 2;
    Datagram lying(4);
    std::memcpy(lying.data(), &two, sizeof two);
    EXPECT_EQ(send(56, 221, lying), result(BAD_VALUE));
    EXPECT_FALSE(global().ipv6_enhanced);
    EXPECT_EQ(send(46, 186, join({hex("0005 0401"), Datagram(1024)})), result(BAD_VALUE));
    EXPECT_EQ(send(46, 186, join({hex("0005 0400"), Datagram(1024)})), result(0));
    ask(model, SettingRequest{1, instance_filter(INSTANCE)}.datagram());
    EXPECT_EQ(send(45, 184, hex("0005 0001 00000000")), result(BAD_VALUE));
    EXPECT_EQ(send(50, 201, join({hex("0005 0001 00000002 00000003 00000000"), Datagram(64)})),
              result(BAD_VALUE));
}

TEST_F(GlobalSettings, OapServerIsOneWhateverItsName)
{
    const Datagram rest = hex("00000000 0000 0000");
    EXPECT_EQ(send(32, 131, join({text("one", 32), rest})), result(0));
    EXPECT_EQ(send(32, 131, join({text("two", 32), rest})), result(0));
    EXPECT_EQ(global().oap_server->name, "two");
    EXPECT_EQ(send(32, 131, join({Datagram(32, 'x'), rest})), result(BAD_TEXT));
    EXPECT_EQ(send(31, 131, Datagram(40)), result(0));
    EXPECT_FALSE(global().oap_server);
    EXPECT_EQ(send(31, 131, Datagram(40)), result(0));
}

TEST_F(GlobalSettings, DebugSwitchesAreKeptByTheirKeyAndForgottenWhenOff)
{
    const Datagram on = join({hex("0001 0002 0003 0000"), Datagram(88, 0x77)});
    EXPECT_EQ(send(14, 71, on), result(0));
    ASSERT_TRUE(global().debug.contains({1, 2}));
    OfpGlbDebug record = debug_record({1, 2}, global().debug.at({1, 2}));
    EXPECT_EQ(record.value_u16_4, 3);
    EXPECT_EQ(record.value_u32_8, 0x77777777u);
    OFP_msg_ByteSwapData(OFP_TLV_GlbDebug, &record);
    const auto *const bytes = reinterpret_cast<const uint8_t *>(&record);
    EXPECT_EQ(Datagram(bytes, bytes + sizeof record), on);
    EXPECT_EQ(send(14, 71, join({hex("0001 0003"), Datagram(92)})), result(0)); // none to forget
    EXPECT_EQ(send(14, 71, join({hex("0001 0002"), Datagram(92)})), result(0));
    EXPECT_TRUE(global().debug.empty());
}

TEST_F(GlobalSettings, DebugSwitchesAreKeptForABoundedNumberOfKeys)
{
    for (uint16_t key = 0; key < 256; ++key) {
        ASSERT_EQ(send(14, 71, join({be16(key), be16(0), Datagram(92, 1)})), result(0));
    }
    EXPECT_EQ(send(14, 71, join({be16(256), be16(0), Datagram(92, 1)})), result(TOO_MANY));
    EXPECT_EQ(send(14, 71, join({be16(0), be16(0), Datagram(92, 2)})), result(0));
    EXPECT_EQ(send(14, 71, join({be16(0), be16(0), Datagram(92)})), result(0));
    EXPECT_EQ(send(14, 71, join({be16(256), be16(0), Datagram(92, 1)})), result(0));
}

// ---- VLAN maps

TEST_F(GlobalSettings, VlanMapsHoldTheFirstAndTheLastVlan)
{
    EXPECT_EQ(ask_one(model, join({head(47), vlan_map({1, 4094})})), result(0));
    EXPECT_EQ(global().normal_forward_vlans, VlanSet().set(1).set(4094));
    EXPECT_EQ(ask_one(model, join({head(47), vlan_map({})})), result(0));
    EXPECT_TRUE(global().normal_forward_vlans.none());
}

TEST_F(GlobalSettings, VlansOutsideTheirRangeAreRefused)
{
    EXPECT_EQ(ask_one(model, join({head(47), vlan_map({0, 1})})), result(BAD_VLAN));
    EXPECT_EQ(ask_one(model, join({head(47), vlan_map({4095})})), result(BAD_VLAN));
    const Datagram longer = join({be32(516), be32(4128), Datagram(515), hex("01")});
    EXPECT_EQ(send(47, 90, longer), result(BAD_VLAN));
    EXPECT_TRUE(global().normal_forward_vlans.none());
}

TEST_F(GlobalSettings, VlanMapsOfAnotherLengthThanTheySayAreRefused)
{
    EXPECT_EQ(send(47, 90, hex("00000000 00000000")), result(0));
    EXPECT_EQ(send(47, 90, hex("00000001 00000008 02")), result(0)); // VLAN 1
    EXPECT_TRUE(global().normal_forward_vlans[1]);
    EXPECT_EQ(send(47, 90, hex("00000002 00000008 02")), result(BAD_VLAN_MAP));
    EXPECT_EQ(send(47, 90, hex("00000000 00000008 02")), result(BAD_VLAN_MAP));
    EXPECT_EQ(send(47, 90, hex("ffffffff 00000008 02")), result(BAD_VLAN_MAP));
    EXPECT_EQ(send(47, 90, hex("00000000 000000")), result(BAD_TLV_LENGTH));
    EXPECT_EQ(send(47, 90, join({be32(1017), be32(8136), Datagram(1017)})), result(BAD_TLV_LENGTH));
}

TEST_F(GlobalSettings, VlanMapsTravelBackAsTheyCame)
{
    const VlanSet vlans = VlanSet().set(1).set(9).set(4094);
    VlanMap map = agent::vlan_map(vlans);
    OFP_msg_ByteSwapData(OFP_TLV_VlanBitmap, map.bytes);
    EXPECT_EQ(tlv(90, Datagram(map.bytes, map.bytes + map.size)), test::vlan_map({1, 9, 4094}));
}

} // namespace
} // namespace agent::test
