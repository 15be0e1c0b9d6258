#include "config/setting.h"

using namespace test;

namespace {

const std::vector<Setting> settings = {
    {"EchoTime",
     [] {
         return with(OFP_set_EchoTime,
                     {.interval = 0x01020304, .instance_id = 0x0506, .reserved_6 = {7, 8}});
     },
     hex("0001 0004 00000006"
         "0008 0008 01020304 0506 0708")},
    {"ReconnectTime",
     [] { return with(OFP_set_ReconnectTime, {.interval = 0x01020304, .instance_id = 0x0506}); },
     hex("0001 0004 0000000f"
         "0050 0008 01020304 0506 0000")},
    {"ConnectionMode",
     [] { return with(OFP_set_ConnectionMode, {.mode = 0x01020304, .instance_id = 0x0506}); },
     hex("0001 0004 00000013"
         "005e 0008 01020304 0506 0000")},
    {"FailOpen", [] { return with(OFP_set_FailOpen, {.mode = 0x01020304, .instance_id = 0x0506}); },
     hex("0001 0004 00000008"
         "000a 0008 01020304 0506 0000")},
    {"TcpDscp", [] { return with(OFP_set_TcpDscp, {.instance_id = 0x0102, .dscp = 0x03040506}); },
     hex("0001 0004 00000026"
         "00b1 0008 0102 0000 03040506")},
    {"TcpNsr", [] { return OFP_set_TcpNsr(0x0102, 0x0304); },
     hex("0001 0004 00000027"
         "00b2 0004 0102 0304")},
};

INSTANTIATE_TEST_SUITE_P(Connection, Setter, testing::ValuesIn(settings), name_of);

class SetEchoTime : public PlatformTest {};

} // namespace

TEST_F(SetEchoTime, SendsOneRecordAndLeavesTheCallersAlone)
{
    OfpEchoTime time{.interval = 60, .instance_id = 7};
    platform.reply(result_reply(OFP_RC_OK));
    EXPECT_EQ(OFP_set_EchoTime(&time), OFP_RC_OK);
    EXPECT_EQ(platform.sent, std::vector({hex("0001 0004 00000006 0008 0008 0000003c 0007 0000")}));
    EXPECT_EQ(time.interval, 60u);
    EXPECT_EQ(time.instance_id, 7u);
}
