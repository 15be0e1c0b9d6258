#include "config/setting.h"

using namespace test;

static const std::vector<Setting> settings = {
    {"Instance", [] { return OFP_set_Instance(1, 0x0102, 0x03040506); },
     hex("0001 0004 00000001"
         "007c 0008 0102 0000 03040506")},
    {.name = "InstanceRemoved",
     .call = [] { return OFP_set_Instance(0, 0x0102, 0x03040506); },
     .datagram = hex("0001 0004 00000002"
                     "007c 0008 0102 0000 03040506"),
     .without_daemon = OFP_RC_OK},
    {"InstanceOfAnotherOperation", [] { return OFP_set_Instance(2, 0x0102, 0x03040506); },
     hex("0001 0004 00000002"
         "007c 0008 0102 0000 03040506")},
    {"ActiveInst", [] { return OFP_set_ActiveInst(0x0102, 1); },
     hex("0001 0004 00000017"
         "0004 0004 0102 0000")},
    {"ActiveInstDeactivated", [] { return OFP_set_ActiveInst(0x0102, 0); },
     hex("0001 0004 0000000a"
         "0004 0004 0102 0000")},
    {"ActiveInstOfAnotherOperation", [] { return OFP_set_ActiveInst(0x0102, 2); },
     hex("0001 0004 0000000a"
         "0004 0004 0102 0000")},
    {"Description", [] { return OFP_set_Description(0x0102, "edge"); },
     hex("0001 0004 00000009"
         "0003 0110 00000000 00000000 00000000 0102 0000") +
         padded("edge", 256)},
    {"DataPathID",
     [] {
         return with(OFP_set_DataPathID, {.datapath_id = 0x0102030405060708,
                                          .instance_id = 0x090a,
                                          .reserved_10 = {1, 2, 3, 4, 5, 6}});
     },
     hex("0001 0004 00000010"
         "0057 0010 0102030405060708 090a 010203040506")},
    {"Precedence", [] { return OFP_set_Precedence(0x0102, 0x0304); },
     hex("0001 0004 0000001a"
         "009a 0008 0102 0304 01000000")}, // the last number as it lies
    {"DataPlaneMode", [] { return OFP_set_DataPlaneMode(0x0102, 0x0304); },
     hex("0001 0004 00000031"
         "00c7 0004 0102 0304")},
    {"TtpMode", [] { return OFP_set_TTPMode(0x0102, 0x0304); },
     hex("0001 0004 00000035"
         "00d3 0004 0102 0304")},
    {"SmartGroup", [] { return OFP_set_SmartGroup(0x0102, 0x0304); },
     hex("0001 0004 00000039"
         "00e0 0004 0304 0102")}, // the second argument first
};

INSTANTIATE_TEST_SUITE_P(InstanceOption, Setter, testing::ValuesIn(settings), name_of);

namespace {

class SetInstance : public PlatformTest {};

class SetDescription : public PlatformTest {
protected:
    // The text as it is sent.
    Bytes sent(const char *text)
    {
        platform.reply(result_reply(OFP_RC_OK));
        EXPECT_EQ(OFP_set_Description(7, text), OFP_RC_OK);
        return platform.sent.back().slice(8 + 4 + 16);
    }
};

} // namespace

TEST_F(SetInstance, IsRemovedAlreadyWhenTheDaemonIsDown)
{
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_set_Instance(0, 7, 0), OFP_RC_OK);
    EXPECT_TRUE(platform.sent.empty());
    EXPECT_EQ(platform.sequence(), "");
    EXPECT_EQ(platform.sequence("SERVICE_"), "SERVICE_GetStatus");
}

TEST_F(SetDescription, OfExactlyAsManyBytesAsFitIsSentWhole)
{
    const std::string text(255, 'x');
    EXPECT_EQ(sent(text.c_str()), padded(text, 256));
}

TEST_F(SetDescription, IsCutAndTerminated)
{
    const std::string text = std::string(255, 'x') + std::string(45, 'y');
    EXPECT_EQ(sent(text.c_str()), padded(text.substr(0, 255), 256));
}

TEST_F(SetDescription, IsEmptyWithoutText)
{
    EXPECT_EQ(sent(""), Bytes(256));
    EXPECT_EQ(sent(nullptr), Bytes(256));
}
