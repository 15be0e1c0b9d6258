#include "config/setting.h"

using namespace test;

namespace {

template <uint32_t Code>
uint32_t bind(const OfpPortInstanceCfg *port)
{
    return OFP_set_BindPort(Code, port);
}

const std::vector<Setting> settings = {
    {"ForbiddenPort", [] { return OFP_set_ForbiddenPort(0x0102, 0x03040506); },
     hex("0001 0004 00000015"
         "0080 0008 03040506 0102 0000")},
    {"PermitPortType", [] { return OFP_set_PermitPortType(0x0102, 0x03040506); },
     hex("0001 0004 00000024"
         "00ac 0008 03040506 0102 0000")},
    {"BindPort",
     [] {
         return with(bind<33>,
                     {.if_index = 0x01020304, .value_u32_4 = 0x05060708, .instance_id = 0x090a});
     },
     hex("0001 0004 00000021"
         "008e 000c 01020304 05060708 090a 0000")},
    {"BindPortOfAnyCode", [] { return with(bind<0xfffffffe>, {.if_index = 1, .instance_id = 2}); },
     hex("0001 0004 fffffffe"
         "008e 000c 00000001 00000000 0002 0000")},
    {.name = "PortBindInst",
     .call = [] { return OFP_set_PortBindInst(34, 0x0102, 0x03040506); },
     .datagram = hex("0001 0004 00000022"
                     "008e 000c 03040506 00000000 0102 0000"),
     .without_daemon = OFP_RC_PORT_NO_DAEMON},
    {"PortShutdown", [] { return OFP_set_PortShutdown(42, 0x01020304); },
     hex("0001 0004 0000002a"
         "00b6 0004 01020304")},
    {"LoopProtect", [] { return OFP_set_LoopProtect(0x0102, 0x0304); },
     hex("0001 0004 0000002c"
         "00b7 0004 0102 0304")},
};

INSTANTIATE_TEST_SUITE_P(Port, Setter, testing::ValuesIn(settings), name_of);

class SetPortBindInst : public PlatformTest {};

} // namespace

TEST_F(SetPortBindInst, NamesTheDaemonThatIsDown)
{
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_set_PortBindInst(33, 1, 2), 0x22300376u);
    EXPECT_EQ(platform.sequence("S"), "SERVICE_GetStatus");
}
