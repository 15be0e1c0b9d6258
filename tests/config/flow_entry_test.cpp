#include "config/setting.h"

using namespace test;

static const std::vector<Setting> settings = {
    {"FlowEntryLimit",
     [] { return with(OFP_set_FlowEntryLimit, {.limit = 0x01020304, .instance_id = 0x0506}); },
     hex("0001 0004 00000007"
         "0009 0008 01020304 0506 0000")},
    {"MissRule", [] { return with(OFP_set_MissRule, {.mode = 0x01020304, .instance_id = 0x0506}); },
     hex("0001 0004 00000014"
         "007f 0008 01020304 0506 0000")},
    {"FlowLogDisable", [] { return OFP_set_FlowLogDisable(0x0102, 0x0304); },
     hex("0001 0004 0000001b"
         "009d 0004 0102 0304")},
    {"RefreshIpFlow", [] { return OFP_set_RefreshIpFlow(0x0102); },
     hex("0001 0004 0000001c"
         "00a5 0004 0102 0000")},
    {.name = "ResetCache",
     .call = [] { return OFP_set_ResetCache(0x0102); },
     .datagram = hex("0001 0004 00000023"
                     "0098 0008 0102 0000 0000 0000"),
     .answered = false},
    {"ResvAclRes", [] { return with(OFP_set_ResvAclRes, {.value = 0x0102}); },
     hex("0001 0004 00000029"
         "00b4 0004 0102 0000")},
    {"PacketFilter", [] { return OFP_set_PacketFilter(0x0102, 0x03040506); },
     hex("0001 0004 00000018"
         "00a0 0008 06050403 0201 0000")}, // as it lies
    {"FlowMonitorInterval",
     [] {
         return with(OFP_set_FlowMonitorInterval, {.instance_id = 0x0102, .interval = 0x03040506});
     },
     hex("0001 0004 0000003b"
         "00e9 0008 0102 0000 03040506")},
    {"FlowMonitorThreShold",
     [] {
         return with(OFP_set_FlowMonitorThreShold,
                     {.instance_id = 0x0102, .threshold = 0x03040506});
     },
     hex("0001 0004 0000003c"
         "00ea 0008 0102 0000 03040506")},
    {"FlowMonitorAction",
     [] { return OFP_set_FlowMonitorAction(0x0102030405060708, 0x090a0b0c0d0e0f10, 0x11, 0x1213); },
     hex("0001 0004 0000003d"
         "00eb 0013 0102030405060708 090a0b0c0d0e0f10 11 1213")},
};

INSTANTIATE_TEST_SUITE_P(FlowEntry, Setter, testing::ValuesIn(settings), name_of);
