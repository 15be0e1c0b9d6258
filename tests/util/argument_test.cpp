#include <cstring>

#include "double/platform.h"
#include "double/sweep.h"
#include "ofp/util.h"

using namespace test;

namespace {

class Argument : public PlatformTest {};

OfpDaemonParam parameters_of(uint8_t pattern)
{
    OfpDaemonParam parameters;
    std::memset(&parameters, pattern, sizeof parameters);
    return parameters;
}

} // namespace

TEST_F(Argument, ParseArgWithoutOptionsSetsTheTwoThatMeanNotGiven)
{
    OfpDaemonParam parameters = parameters_of(0x11);
    EXPECT_EQ(OFP_util_ParseArg(nullptr, nullptr, &parameters), 0u);
    OfpDaemonParam expected = parameters_of(0x11);
    expected.MplsTable = 0xffffffff;
    expected.EMTableNum = 0xffffffff;
    EXPECT_EQ(bytes_of(parameters), bytes_of(expected));
}

TEST_F(Argument, ParseArgPassesTheTableInOrder)
{
    OfpDaemonParam parameters{};
    int source1 = 0, source2 = 0;
    OFP_util_ParseArg(&source1, &source2, &parameters);
    auto address = [](void *p) { return uint64_t(reinterpret_cast<uintptr_t>(p)); };
    EXPECT_EQ(platform.calls("OPT_ParseEx"),
              std::vector({Call{"OPT_ParseEx",
                                {address(&source1), address(&source2), 14},
                                {},
                                "ACLTableNum:1:4 MacIPTable:1:4 ACLMaxFlowEntry:1:4 "
                                "Classification:1:4 QinQTable:0:2 ResvAclRes:0:2 TDEnable:0:2 "
                                "NormalFwdVlan:0:2 ProSlow:0:2 MplsTable:1:4 SmartGroup:0:2 "
                                "TTPEnable:0:2 EMTableNum:1:4 Ipv6Enhanced:0:2"}}));
}

TEST_F(Argument, ParseArgFillsTheFieldOfEachOption)
{
    platform.options = {{"ACLTableNum", 1},     {"MacIPTable", 2},     {"MplsTable", 3},
                        {"ACLMaxFlowEntry", 4}, {"Classification", 5}, {"QinQTable", 6},
                        {"ResvAclRes", 7},      {"TDEnable", 8},       {"NormalFwdVlan", 9},
                        {"ProSlow", 10},        {"SmartGroup", 11},    {"TTPEnable", 12},
                        {"EMTableNum", 13},     {"Ipv6Enhanced", 14}};
    OfpDaemonParam parameters{};
    parameters.reserved_24 = 0xabcdef01;
    EXPECT_EQ(OFP_util_ParseArg(nullptr, nullptr, &parameters), 0u);
    EXPECT_EQ(bytes_of(parameters), hex("01000000 02000000 03000000 04000000 05000000" // 32 bits
                                        "0600 0700 01efcdab 0800 0900 0a00 0b00 0c00 0000"
                                        "0d000000 0e00 0000"));
}

TEST_F(Argument, ParseArgReturnsThePlatformsCode)
{
    expect_failures_handled({{},
                             [] {
                                 OfpDaemonParam parameters{};
                                 return OFP_util_ParseArg(nullptr, nullptr, &parameters);
                             }},
                            {{"OPT_ParseEx", platform_failure}});
}

TEST_F(Argument, DbmCfgKeyFormatsTheId)
{
    char buffer[16];
    std::memset(buffer, 0xee, sizeof buffer);
    EXPECT_EQ(OFP_util_GetDbmCfgKey(0xffff, "instance/%u", sizeof buffer, buffer), 14u);
    EXPECT_STREQ(buffer, "instance/65535");
    EXPECT_EQ(OFP_util_GetDbmCfgKey(65535, "instance/%u", 8, buffer), 7u);
    EXPECT_STREQ(buffer, "instanc");
}

TEST_F(Argument, DbmCfgKeyIsEmptyWhenNothingIsFormatted)
{
    char buffer[4] = "abc";
    platform.next("scnprintf", {0});
    EXPECT_EQ(OFP_util_GetDbmCfgKey(1, "%u", sizeof buffer, buffer), 0u);
    EXPECT_STREQ(buffer, "");
    buffer[0] = 'a';
    EXPECT_EQ(OFP_util_GetDbmCfgKey(1, "%u", 0, buffer), 0u);
    EXPECT_EQ(buffer[0], 'a');
}

TEST_F(Argument, DefaultPathIdIsTheIdAboveTheBridgeMac)
{
    EXPECT_EQ(OFP_util_DefaultPathID(1), 0x0001001122334455u);
    platform.bridge_mac = hex("ffeeddccbbaa");
    EXPECT_EQ(OFP_util_DefaultPathID(0xfedc), 0xfedcffeeddccbbaau);
    platform.bridge_mac.reset();
    EXPECT_EQ(OFP_util_DefaultPathID(1), 0x0001000000000000u);
}

TEST_F(Argument, VersionsHaveTextsFrom1To4)
{
    EXPECT_EQ(OFP_util_GetVersionDesc(0), nullptr);
    EXPECT_STREQ(OFP_util_GetVersionDesc(1), "1.0");
    EXPECT_STREQ(OFP_util_GetVersionDesc(2), "1.1");
    EXPECT_STREQ(OFP_util_GetVersionDesc(3), "1.2");
    EXPECT_STREQ(OFP_util_GetVersionDesc(4), "1.3");
    EXPECT_EQ(OFP_util_GetVersionDesc(5), nullptr);
    EXPECT_EQ(OFP_util_GetVersionDesc(0xffffffff), nullptr);
}

TEST_F(Argument, SubModuleFlagSaysThatTheNameIsMissing)
{
    EXPECT_EQ(OFP_util_FindSubModuleNameFlag("connect-state"), 0);
    EXPECT_EQ(OFP_util_FindSubModuleNameFlag("openflow/connect-state/x"), 0);
    EXPECT_EQ(OFP_util_FindSubModuleNameFlag("connect_state"), 1);
    EXPECT_EQ(OFP_util_FindSubModuleNameFlag(""), 1);
}
